#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include "tools/Output.h"
#include "tools/system.h"

extern char** environ;

namespace Tool::System {
namespace {

constexpr char DescriptorFolder[] = "/proc/self/fd/";
constexpr char NameEnd[] = ".XXXXXX";  // of a temporary file, see mkstemp

mode_t permissionsOf(std::string const& target) {
  struct stat status {};
  if (stat(target.c_str(), &status) == 0) return status.st_mode & 07777;
  mode_t const mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

// A link cannot replace a file, so the new name is one of its own, too.
bool giveName(std::string const& target, int descriptor, std::string& path) {
  std::string const file = DescriptorFolder + std::to_string(descriptor);
  for (int attempt = 0; path.empty(); ++attempt) {
    std::string const name =
        target + '.' + std::to_string(getpid()) + '-' + std::to_string(attempt);
    if (linkat(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(),
               AT_SYMLINK_FOLLOW) == 0)
      path = name;
    else if (errno != EEXIST)
      return false;
  }
  return true;
}

// A pipe whose ends close with the object.
struct Pipe {
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0)
      throw std::runtime_error(std::string("No pipe to gnuplot: ") +
                               std::strerror(errno));
  }
  Pipe(Pipe const&) = delete;
  Pipe& operator=(Pipe const&) = delete;
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  void closeEnd(int i) {
    if (ends[i] >= 0) close(ends[i]);
    ends[i] = -1;
  }

  int ends[2] = {-1, -1};
};

// Starts gnuplot, which reads commands from `in` and writes the picture to
// `out`.
pid_t startGnuplot(int in, int out) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
  char name[] = "gnuplot";
  char defaults[] = "-d";  // whatever the user's ~/.gnuplot sets
  char* arguments[] = {name, defaults, nullptr};
  pid_t child = 0;
  int const error =
      posix_spawnp(&child, name, &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == ENOENT)
    throw std::runtime_error(
        "No picture: gnuplot is not installed (Debian: apt-get install "
        "gnuplot-nox)");
  if (error != 0)
    throw std::runtime_error(std::string("No picture: gnuplot: ") +
                             std::strerror(error));
  return child;
}

bool succeeded(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0)
    if (errno != EINTR) return false;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool send(std::string const& text, int descriptor) {
  DescriptorBuffer buffer(descriptor);
  buffer.sputn(text.data(), static_cast<std::streamsize>(text.size()));
  return buffer.pubsync() == 0;
}

bool isEmpty(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) != 0 || status.st_size == 0;
}

// Keeps files from taking the number of a standard stream that the caller has
// closed; reading or writing that stream fails as before.
void reserveStandardStreams() {
  for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (fcntl(stream, F_GETFD) < 0)  // and so open() gives its number
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

}  // namespace

void start() {
  reserveStandardStreams();
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

std::filesystem::path program() {
  std::error_code failure;
  auto const path = std::filesystem::read_symlink("/proc/self/exe", failure);
  return failure ? std::filesystem::path() : path;
}

// A file in memory, which stays open as long as the process lives.
std::string privateFile(std::string const& name, std::string_view text) {
  int const descriptor = memfd_create(name.c_str(), MFD_CLOEXEC);
  while (descriptor >= 0 && !text.empty()) {
    ssize_t const written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) break;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  if (descriptor < 0 || !text.empty())
    throw std::runtime_error("Could not unfold " + name + ": " +
                             std::strerror(errno));
  return DescriptorFolder + std::to_string(descriptor);
}

bool isPrivate(std::string const& path) {
  return path.starts_with(DescriptorFolder);
}

int openDevice(std::string const& path) {
  return ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
}

// A file without a name goes with the process, however that ends. Where the
// disk knows no such files, a name of its own must do.
int openBeside(std::string const& target, std::string& path) {
  auto const parent = std::filesystem::path(target).parent_path();
  path.clear();
  int descriptor = ::open(parent.empty() ? "." : parent.c_str(),
                          O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
  if (descriptor >= 0) return descriptor;
  path = target + NameEnd;
  descriptor = mkostemp(path.data(), O_CLOEXEC);
  if (descriptor < 0) path.clear();
  return descriptor;
}

bool prepareToReplace(std::string const& target, int descriptor,
                      std::string& path) {
  return fchmod(descriptor, permissionsOf(target)) == 0 &&
         giveName(target, descriptor, path);
}

bool runGnuplot(std::string const& commands, int picture) {
  Pipe pipe;
  pid_t const child = startGnuplot(pipe.ends[0], picture);
  pipe.closeEnd(0);
  bool const sent = send(commands, pipe.ends[1]);
  pipe.closeEnd(1);
  bool const drawn = succeeded(child);
  return sent && drawn && !isEmpty(picture);
}

}  // namespace Tool::System
