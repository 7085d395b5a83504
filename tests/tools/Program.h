#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/paths.h"

extern char** environ;

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

  /// Runs a line of shell, in which photarium is on the path.
  Outcome shell(std::string const& line) const {
    std::string const folder =
        std::filesystem::path(PHOTARIUM_PROGRAM).parent_path().string();
    return runProgram(
        {"/bin/sh", "-c", "PATH='" + folder + "':\"$PATH\"; " + line});
  }

 private:
  Outcome runProgram(std::vector<std::string> const& arguments) const {
    std::string const out = folder() / ".out", err = folder() / ".err";
    pid_t const child = fork();
    if (child == 0) start(arguments, out, err);
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            fileText(out), fileText(err)};
  }

  [[noreturn]] void start(std::vector<std::string> const& arguments,
                          std::string const& out,
                          std::string const& err) const {
    redirect("/dev/null", O_RDONLY, STDIN_FILENO);
    redirect(out, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    redirect(err, O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    unsetenv("PHOTARIUM_DATA");
    for (auto const& setting : settings_)
      putenv(const_cast<char*>(setting.c_str()));
    std::vector<char*> list;
    for (auto const& argument : arguments)
      list.push_back(const_cast<char*>(argument.c_str()));
    list.push_back(nullptr);
    if (chdir(folder().c_str()) == 0) execv(list[0], list.data());
    _exit(127);
  }

  static void redirect(std::string const& file, int mode, int descriptor) {
    int const opened = open(file.c_str(), mode, 0600);
    dup2(opened, descriptor);
    close(opened);
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
