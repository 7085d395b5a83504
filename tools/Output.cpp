#include "tools/Output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <locale>
#include <stdexcept>

#include "tools/command.h"

namespace Tool {
namespace {

constexpr std::size_t AreaSize = 65536;
constexpr char NameEnd[] = ".XXXXXX";  // of a temporary file, see mkstemp

std::runtime_error writeFailure(std::string const& name, int error) {
  return std::runtime_error("Could not write " + name + ": " +
                            std::strerror(error));
}

mode_t permissionsOf(std::string const& target) {
  struct stat status {};
  if (stat(target.c_str(), &status) == 0) return status.st_mode & 07777;
  mode_t const mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

bool isSpecial(std::filesystem::path const& path) {
  std::error_code ignored;
  auto const status = std::filesystem::status(path, ignored);
  return std::filesystem::exists(status) &&
         !std::filesystem::is_regular_file(status) &&
         !std::filesystem::is_directory(status);
}

// The file that a symbolic link names is replaced, not the link.
std::string resolved(std::string const& path) {
  std::error_code failure;
  auto const real = std::filesystem::canonical(path, failure);
  return failure ? path : real.string();
}

bool isStandardOutput(std::string const& name) {
  return name.empty() || name == "-";
}

}  // namespace

DescriptorBuffer::DescriptorBuffer(int descriptor)
    : descriptor_(descriptor), area_(AreaSize) {
  setp(area_.data(), area_.data() + area_.size());
}

bool DescriptorBuffer::drain() {
  for (char const* at = pbase(); at < pptr() && error_ == 0;) {
    ssize_t const written =
        write(descriptor_, at, static_cast<std::size_t>(pptr() - at));
    if (written >= 0)
      at += written;
    else if (errno != EINTR)
      error_ = errno;
  }
  setp(area_.data(), area_.data() + area_.size());
  return error_ == 0;
}

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type c) {
  if (!drain()) return traits_type::eof();
  if (!traits_type::eq_int_type(c, traits_type::eof()))
    sputc(traits_type::to_char_type(c));
  return traits_type::not_eof(c);
}

int DescriptorBuffer::sync() {
  return drain() ? 0 : -1;
}

SafeFile::SafeFile(std::string const& target)
    : target_(target), isDirect_(isSpecial(target)) {
  if (std::filesystem::is_directory(target_)) fail(EISDIR);
  if (isDirect_) {
    descriptor_ = ::open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  } else {
    target_ = resolved(target_);
    openBeside();
  }
  if (descriptor_ < 0) fail(errno);
}

// A file without a name goes with the process, however that ends. Where the
// disk knows no such files, a name of its own must do.
void SafeFile::openBeside() {
  auto const parent = std::filesystem::path(target_).parent_path();
  descriptor_ = ::open(parent.empty() ? "." : parent.c_str(),
                       O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
  if (descriptor_ >= 0) return;
  path_ = target_ + NameEnd;
  descriptor_ = mkostemp(path_.data(), O_CLOEXEC);
  if (descriptor_ < 0) path_.clear();
}

SafeFile::~SafeFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!path_.empty()) unlink(path_.c_str());
}

std::uintmax_t SafeFile::size() const {
  struct stat status {};
  if (fstat(descriptor_, &status) != 0) fail(errno);
  return static_cast<std::uintmax_t>(status.st_size);
}

void SafeFile::keep() {
  if (!isDirect_) {
    if (fchmod(descriptor_, permissionsOf(target_)) != 0) fail(errno);
    if (path_.empty()) giveName();
  }
  int const closed = close(descriptor_);
  descriptor_ = -1;
  if (closed != 0) fail(errno);
  if (isDirect_) return;
  if (rename(path_.c_str(), target_.c_str()) != 0) fail(errno);
  path_.clear();
}

// A link cannot replace a file, so the new name is one of its own, too.
void SafeFile::giveName() {
  std::string const file = "/proc/self/fd/" + std::to_string(descriptor_);
  for (int attempt = 0; path_.empty(); ++attempt) {
    std::string const name = target_ + '.' + std::to_string(getpid()) + '-' +
                             std::to_string(attempt);
    if (linkat(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(),
               AT_SYMLINK_FOLLOW) == 0)
      path_ = name;
    else if (errno != EEXIST)
      fail(errno);
  }
}

void SafeFile::fail(int error) const {
  throw writeFailure(target_, error);
}

Output::Output(std::string const& name)
    : name_(isStandardOutput(name) ? "standard output" : name),
      file_(isStandardOutput(name) ? nullptr
                                   : std::make_unique<SafeFile>(name)),
      buffer_(file_ ? file_->descriptor() : STDOUT_FILENO),
      stream_(&buffer_) {
  stream_.imbue(std::locale::classic());
}

void Output::finish() {
  stream_.flush();
  if (buffer_.error() == EPIPE && !file_) throw ClosedPipe();
  if (buffer_.error() != 0) throw writeFailure(name_, buffer_.error());
  if (!stream_) throw std::runtime_error("Could not write " + name_);
  if (file_) file_->keep();
}

}  // namespace Tool
