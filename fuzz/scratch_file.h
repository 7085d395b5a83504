#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

/// A file for what a target hands to an operation that takes a path; it goes
/// with the object.
class ScratchFile {
 public:
  ScratchFile() : path_("/tmp/photarium-fuzz-XXXXXX") {
    handle_ = mkstemp(path_.data());
  }
  ScratchFile(ScratchFile const&) = delete;
  ScratchFile& operator=(ScratchFile const&) = delete;
  ~ScratchFile() {
    close(handle_);
    std::remove(path_.c_str());
  }

  std::string const& path() const { return path_; }

  /// Makes `data` the contents of the file.
  void write(std::uint8_t const* data, std::size_t size) const {
    if (ftruncate(handle_, 0) != 0) abort();
    for (std::size_t done = 0; done < size;) {
      ssize_t const written =
          pwrite(handle_, data + done, size - done, static_cast<off_t>(done));
      if (written <= 0) abort();
      done += static_cast<std::size_t>(written);
    }
  }

 private:
  std::string path_;
  int handle_;
};
