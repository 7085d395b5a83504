#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/tools/run.h"

namespace {

void redirect(std::filesystem::path const& file, int mode, int descriptor) {
  int const opened = open(file.c_str(), mode, 0600);
  dup2(opened, descriptor);
  close(opened);
}

double secondsOf(timeval const& time) {
  return static_cast<double>(time.tv_sec) +
         1e-6 * static_cast<double>(time.tv_usec);
}

}  // namespace

std::vector<std::string> shellCommand(std::string const& folder,
                                      std::string const& line) {
  return {"/bin/sh", "-c", "PATH='" + folder + "':\"$PATH\"; " + line};
}

int runIn(std::filesystem::path const& folder,
          std::vector<std::string> const& arguments,
          std::vector<std::string> const& settings,
          std::filesystem::path const& out, std::filesystem::path const& err) {
  pid_t const child = fork();
  if (child == 0) {
    redirect("/dev/null", O_RDONLY, STDIN_FILENO);
    redirect(out, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    redirect(err, O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    unsetenv("PHOTARIUM_DATA");
    for (auto const& setting : settings)
      putenv(const_cast<char*>(setting.c_str()));
    std::vector<char*> list;
    for (auto const& argument : arguments)
      list.push_back(const_cast<char*>(argument.c_str()));
    list.push_back(nullptr);
    if (chdir(folder.c_str()) == 0) execv(list[0], list.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

double secondsOfPrograms() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
}
