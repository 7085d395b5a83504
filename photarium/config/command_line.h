#pragma once

#include <optional>
#include <string>
#include <vector>

#include "photarium/config/Config.h"

namespace Settings {

/// What a command line asks for.
struct CommandLine {
  OptionMap options;                  // keys in lower case
  std::vector<std::string> sections;  // of each "--section"
  std::optional<std::string> directory;
  std::optional<std::string> file;
  std::vector<std::string> keys;  // of all options in order
  std::string messages;           // a line for each wrong argument
  bool showUsage = false;         // asked for, or there is a message
  bool fileRequired = false;      // an option needs a config file
};

/// Sorts the arguments of a command line. Which keys exist does not matter.
CommandLine parseArguments(std::vector<std::string> const& arguments);

/// Cuts a command line in one text into arguments. Throws std::runtime_error if
/// a quotation is not closed.
std::vector<std::string> splitArguments(std::string const& text);

}  // namespace Settings
