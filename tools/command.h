#pragma once

#include <stdexcept>
#include <string>
#include <vector>

/// What every command of the program has in common; see README.md beside.
namespace Tool {

using Arguments = std::vector<std::string>;

/// Exit status of the program.
enum Status {
  Done = 0,       // a result, with or without warnings
  Failed = 1,     // no result
  WrongUsage = 2  // arguments or settings that cannot be used
};

/// One line of the table in main.cpp.
struct Command {
  char const* name;
  char const* synopsis;  // arguments behind the name
  char const* summary;   // a few words for the overview
  void (*run)(Arguments const&);
};

/// Arguments or settings that cannot be used: exit status WrongUsage.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The help that was asked for: goes to standard output, exit status Done.
struct Help : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Whoever read the standard output went away: a quiet end.
struct ClosedPipe : std::runtime_error {
  ClosedPipe() : std::runtime_error("closed pipe") {}
};

// The commands, in the order of the overview; each in a source of its own.
// A command throws where it has no result.
void runAngle(Arguments const& arguments);
void runBrems(Arguments const& arguments);
void runDetector(Arguments const& arguments);
void runFilter(Arguments const& arguments);
void runFluo(Arguments const& arguments);
void runImportEndf(Arguments const& arguments);
void runMath(Arguments const& arguments);
void runMaterial(Arguments const& arguments);
void runMu(Arguments const& arguments);
void runPack(Arguments const& arguments);
void runUnpack(Arguments const& arguments);

}  // namespace Tool
