// The program photarium: finds the command and turns what leaves it into
// messages and an exit status.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iterator>
#include <new>
#include <string>

#include "photarium/foundation/console.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/command.h"
#include "tools/report.h"
#include "tools/system.h"

namespace Tool {
namespace {

void runHelp(Arguments const& arguments);
void runVersion(Arguments const& arguments);

constexpr Command Commands[] = {
    {"mu", "[OPTIONS]", "attenuation as a table, a curve or a picture", runMu},
    {"material", "[OPTIONS]", "what is known of a material", runMaterial},
    {"math", "FIRST SECOND", "arithmetic on two spectrum files", runMath},
    {"filter", "[FILE]", "a spectrum behind a filter", runFilter},
    {"detector", "[OPTIONS]", "the settings of a detector", runDetector},
    {"import-endf", "FILE...", "tapes of the laboratories for all commands",
     runImportEndf},
    {"brems", "[OPTIONS]", "table of bremsstrahlung", runBrems},
    {"angle", "[OPTIONS]", "table of electron scattering angles", runAngle},
    {"fluo", "[OPTIONS]", "table of inner-shell ionization", runFluo},
    {"pack", "[FILE]", "pack a text of numbers", runPack},
    {"unpack", "[FILE]", "unpack it again", runUnpack},
    {"help", "[COMMAND]", "this overview, or the help of a command", runHelp},
    {"version", "", "name, version and build of the library", runVersion},
};

Command const* find(std::string const& name) {
  auto const found = std::find_if(
      std::begin(Commands), std::end(Commands),
      [&](Command const& command) { return command.name == name; });
  return found == std::end(Commands) ? nullptr : found;
}

Command const& known(std::string const& name) {
  if (Command const* const command = find(name)) return *command;
  std::vector<std::string> names;
  for (auto const& command : Commands) names.emplace_back(command.name);
  throw UsageError("Unknown command '" + name + "', nearest known name: '" +
                   nearest(name, names) + "'");
}

std::string overview() {
  std::string text =
      "photarium COMMAND [OPTIONS]: X-ray physics on the command line\n\n";
  for (auto const& command : Commands) {
    std::string usage = std::string("  ") + command.name + ' ';
    usage += command.synopsis;
    usage.resize(std::max<std::size_t>(usage.size() + 2, 36), ' ');
    text += usage + command.summary + '\n';
  }
  return text +
         "\n\"photarium COMMAND --help\" lists the options of a command. "
         "Results go to standard\noutput, everything else to standard error. "
         "Exit status: 0 for a result, 1 for a\nfailure, 2 for arguments that "
         "cannot be used.\n";
}

void print(std::string const& text) {
  Output output("");
  output.stream() << text;
  output.finish();
}

void runHelp(Arguments const& arguments) {
  if (arguments.empty() || arguments.front().starts_with("--"))
    throw Help(overview());
  known(arguments.front()).run({"--help"});
}

void runVersion(Arguments const& arguments) {
  CommandLine(arguments, {}).finish("photarium version\n");
  Output output("");
  output.stream() << VersionInfo << '\n';
  output.finish();
}

void dispatch(Arguments arguments) {
  std::string name = arguments.front();
  if (name == "--help" || name == "-h") name = "help";
  if (name == "--version") name = "version";
  arguments.erase(arguments.begin());
  known(name).run(arguments);
}

Status run(Arguments const& arguments) {
  if (arguments.empty()) {
    std::fputs(overview().c_str(), stderr);
    return WrongUsage;
  }
  try {
    dispatch(arguments);
    return Done;
  } catch (Help const& help) {
    print(help.what());
    return Done;
  }
}

Status guarded(Arguments const& arguments) {
  try {
    return run(arguments);
  } catch (ClosedPipe const&) {
    return Done;
  } catch (UsageError const& error) {
    report(error.what());
    return WrongUsage;
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& error) {
    report(error.what());
  }
  return Failed;
}

}  // namespace
}  // namespace Tool

// Every way out ends in a message; a crash is none of them.
int main(int argc, char** argv) try {
  Tool::System::start();
  return Tool::guarded({argv + std::min(argc, 1), argv + argc});
} catch (std::bad_alloc const&) {  // also of a message
  std::fputs("photarium: Not enough memory\n", stderr);
  return Tool::Failed;
}
