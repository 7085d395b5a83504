#pragma once

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/paths.h"
#include "tests/tools/run.h"

/// What a run of a program left.
struct Outcome {
  int status;  // exit status; 128 and the signal's number if one ended it
  std::string out;
  std::string err;
};

/// Runs programs in a scratch folder of their own.
///
///     Program photarium;
///     photarium.run({"mu", "--material", "Cu"}).out
class Program {
 public:
  std::filesystem::path const& folder() const { return folder_.path(); }
  std::string write(std::string const& name, std::string const& text) const {
    return folder_.write(name, text);
  }
  std::string text(std::string const& name) const {
    return fileText(folder() / name);
  }
  /// The names of all files and folders, save those that runs are caught in.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(folder()))
      names.push_back(entry.path().filename().string());
    std::erase_if(names, [](auto const& name) { return name[0] == '.'; });
    return names;
  }
  bool has(std::string const& name) const {
    return std::filesystem::exists(folder() / name);
  }

  /// The variables of the environment stay; `setting` is one more, "NAME=x".
  void set(std::string const& setting) { settings_.push_back(setting); }

  /// Runs photarium.
  Outcome run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), PHOTARIUM_PROGRAM);
    return runProgram(arguments);
  }

  /// Runs a copy of photarium that stands in the folder.
  Outcome runCopy(std::string const& copy,
                  std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), (folder() / copy).string());
    return runProgram(arguments);
  }

  /// Runs a line of shell, in which photarium is on the path. Windows has a
  /// shell that knows pipes and redirections alone.
  Outcome shell(std::string const& line) const {
    auto const folder = std::filesystem::path(PHOTARIUM_PROGRAM).parent_path();
    return runProgram(shellCommand(folder.string(), line));
  }

 private:
  Outcome runProgram(std::vector<std::string> const& arguments) const {
    std::filesystem::path const out = folder() / ".out",
                                err = folder() / ".err";
    int const status = runIn(folder(), arguments, settings_, out, err);
    return {status, fileText(out), fileText(err)};
  }

  ScratchFolder folder_;
  std::vector<std::string> settings_;
};

/// The numbers of the rows of a table; comment lines are left out.
inline std::vector<std::vector<double>> rowsOf(std::string const& text) {
  std::vector<std::vector<double>> rows;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    auto& row = rows.emplace_back();
    for (double value; fields >> value;) row.push_back(value);
  }
  return rows;
}
