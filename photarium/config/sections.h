#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "photarium/config/Config.h"

namespace Settings {

/// What flattenSections() may repeat.
struct RepeatLimits {
  std::size_t count;  // sections
  std::size_t text;   // names, keys and values in them [bytes]
};

/// The sections in the order in which they apply: each behind those that it
/// includes. A section that is included by itself, directly or over others, and
/// one of `ancestors`, stands in the list without what it includes.
///
/// Throws std::runtime_error "Section NAME not found!\n", and "Sections
/// repeated too often!\n" where the list would exceed `limits`.
std::vector<std::string> flattenSections(
    SectionMap const& data, std::vector<std::string> const& sections,
    std::vector<std::string> const& ancestors, RepeatLimits limits);

}  // namespace Settings
