#pragma once

#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

namespace Tool {

/// Writes to a file descriptor; remembers the first error.
class DescriptorBuffer : public std::streambuf {
 public:
  explicit DescriptorBuffer(int descriptor);

  /// The error number of the first failed write, 0 if none failed.
  int error() const { return error_; }

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  bool drain();

  int descriptor_;
  int error_ = 0;
  std::vector<char> area_;
};

/// A file that appears under its name once it is complete: written beside its
/// target, then renamed. Gone without a trace if it is not kept, even where a
/// signal ends the process (but on Windows).
///
/// Devices and pipes are written directly. Permissions of a file that is
/// replaced stay. Throws std::runtime_error with the name and the cause.
class SafeFile {
 public:
  explicit SafeFile(std::string const& target);
  SafeFile(SafeFile const&) = delete;
  SafeFile& operator=(SafeFile const&) = delete;
  ~SafeFile();

  int descriptor() const { return descriptor_; }

  void keep();

 private:
  [[noreturn]] void fail(int error) const;

  std::string target_;
  std::string path_;  // of its own until it is kept, empty while it has none
  bool isDirect_ = false;
  int descriptor_ = -1;
};

/// Where the result of a command goes: a file, or standard output for an empty
/// name and for "-".
///
///     Output output(line.value("output"));
///     muPlot(output.stream(), plot, material, grid, labels);
///     output.finish();  // throws if anything could not be written
///
/// The stream is in the classic locale.
class Output {
 public:
  explicit Output(std::string const& name);

  std::ostream& stream() { return stream_; }

  /// Completes the file. Throws std::runtime_error if it could not be written,
  /// ClosedPipe if nobody reads standard output any more.
  void finish();

 private:
  std::string name_;
  std::unique_ptr<SafeFile> file_;
  DescriptorBuffer buffer_;
  std::ostream stream_;
};

}  // namespace Tool
