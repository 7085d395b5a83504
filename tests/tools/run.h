#pragma once

#include <filesystem>
#include <string>
#include <vector>

// Each system has its source.

/// The command that runs a line of shell with `folder` on its path.
std::vector<std::string> shellCommand(std::string const& folder,
                                      std::string const& line);

/// Runs a program in `folder`, without PHOTARIUM_DATA and with the variables
/// "NAME=x" of `settings`. What it prints goes to `out` and `err`. Returns the
/// exit status; 128 and the signal's number if one ended it.
int runIn(std::filesystem::path const& folder,
          std::vector<std::string> const& arguments,
          std::vector<std::string> const& settings,
          std::filesystem::path const& out, std::filesystem::path const& err);

/// Processor time of all programs that ended in runIn() [s].
double secondsOfPrograms();
