#pragma once

#include <utility>
#include <vector>

#include "photarium/material/AttenuationCoeff.h"

namespace Tool {

/// The nodes of a curve as it prints them, range by range.
std::vector<std::pair<double, double>> nodesOf(
    AttenuationCoeff<double> const& curve);

}  // namespace Tool
