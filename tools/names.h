#pragma once

#include <string>

#include "photarium/material/SubshellID.h"

namespace Tool {

/// The name of a level as people write it: "K", "L3".
std::string shellName(subshell shell);

/// The symbol of the element of a level, empty where there is none.
std::string elementName(SubshellID const& level);

/// The name of a level with its element: "Cu K".
std::string nameOf(SubshellID const& level);

}  // namespace Tool
