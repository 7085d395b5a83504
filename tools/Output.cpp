#include "tools/Output.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <locale>
#include <stdexcept>

#include "tools/command.h"
#include "tools/system.h"

namespace Tool {
namespace {

constexpr std::size_t AreaSize = 65536;

std::runtime_error writeFailure(std::string const& name, int error) {
  return std::runtime_error("Could not write " + name + ": " +
                            std::strerror(error));
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
    auto const rest = static_cast<unsigned int>(pptr() - at);
    auto const written = write(descriptor_, at, rest);
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
    descriptor_ = System::openDevice(target_);
  } else {
    target_ = resolved(target_);
    descriptor_ = System::openBeside(target_, path_);
  }
  if (descriptor_ < 0) fail(errno);
}

SafeFile::~SafeFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!path_.empty()) unlink(path_.c_str());
}

void SafeFile::keep() {
  if (!isDirect_ && !System::prepareToReplace(target_, descriptor_, path_))
    fail(errno);
  int const closed = close(descriptor_);
  descriptor_ = -1;
  if (closed != 0) fail(errno);
  if (isDirect_) return;
  std::error_code failure;
  std::filesystem::rename(path_, target_, failure);
  if (failure) fail(failure.default_error_condition().value());
  path_.clear();
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
