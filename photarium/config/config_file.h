#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "photarium/config/Config.h"

namespace Settings {

/// The bytes of a file. None if it cannot be read, also where it is a
/// directory. Throws std::runtime_error with "Config file too large: " and
/// `name` above `limit` bytes.
std::optional<std::string> readConfigFile(std::string const& path,
                                          std::string const& name,
                                          std::size_t limit);

/// Reads the text of a config file into the entries of each section, those
/// ahead of the first header into `section`. Of equal keys the last one wins.
/// Throws std::runtime_error where a header has no "]", and where there are
/// more than `limit` entries.
void parseConfigText(std::string_view text, std::string const& section,
                     std::size_t limit, SectionMap& data);

}  // namespace Settings
