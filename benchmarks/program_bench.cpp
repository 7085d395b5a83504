// The program from process start to the last row, beside a process that does
// nothing.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

extern char** environ;

namespace {

// Runs a program with its output thrown away; true if it succeeded.
bool runs(std::vector<std::string> arguments) {
  std::vector<char*> list;
  for (auto& argument : arguments) list.push_back(argument.data());
  list.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int const stream : {STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY,
                                     0);
  pid_t child = 0;
  int const error =
      posix_spawn(&child, list[0], &actions, nullptr, list.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 1;
  return error == 0 && waitpid(child, &status, 0) == child && status == 0;
}

void BM_Command(benchmark::State& state, std::vector<std::string> arguments) {
  for (auto _ : state)
    if (!runs(arguments)) state.SkipWithError("the program failed");
}

#define PROGRAM(name, ...)                                                   \
  BENCHMARK_CAPTURE(BM_Command, name, std::vector<std::string>{__VA_ARGS__}) \
      ->UseRealTime()                                                        \
      ->Unit(benchmark::kMillisecond)

PROGRAM(Nothing, "/bin/true");
PROGRAM(BrassTable, PHOTARIUM_PROGRAM, "mu", "--material", "CuZn", "--acrp",
        "--kvp", "100", "--ebin", "1");
PROGRAM(MillionEnergies, PHOTARIUM_PROGRAM, "mu", "--material", "Cu", "--acrp",
        "--kvp", "100", "--ebin", "0.0001", "--extrapolate");

}  // namespace
