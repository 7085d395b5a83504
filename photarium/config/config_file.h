#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Settings {

/// The bytes of a file. None if it cannot be read, also where it is a
/// directory. Throws std::runtime_error with "Config file too large: " and
/// `name` above `limit` bytes.
std::optional<std::string> readConfigFile(std::string const& path,
                                          std::string const& name,
                                          std::size_t limit);

/// Reads the text of a config file into the entries of each section, those
/// ahead of the first header into `section`. Of equal keys the last one wins.
/// Throws std::runtime_error where a header has no "]".
void parseConfigText(
    std::string_view text, std::string const& section,
    std::map<std::string, std::map<std::string, std::string>>& data);

}  // namespace Settings
