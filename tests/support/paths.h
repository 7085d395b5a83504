#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

/// Folder of the real database files, empty where none is given. A case that
/// needs it begins with PHOTARIUM_NEEDS_DATA().
inline std::filesystem::path testData() {
  char const* const folder = std::getenv("PHOTARIUM_TEST_DATA");
  return folder ? folder : "";
}

#define PHOTARIUM_NEEDS_DATA()                                         \
  if (testData().empty())                                              \
  GTEST_SKIP() << "set PHOTARIUM_TEST_DATA to the folder of the real " \
                  "database files"

/// Begins a case that needs a POSIX system: its shell, devices or links.
#ifdef _WIN32
#define PHOTARIUM_NEEDS_POSIX() GTEST_SKIP() << "needs a POSIX system"
#else
#define PHOTARIUM_NEEDS_POSIX() static_cast<void>(0)
#endif

/// The source tree, for files that the repository holds.
inline std::filesystem::path sourceDir() {
  return std::filesystem::absolute(PHOTARIUM_SOURCE_DIR);
}

/// The whole of a file as bytes.
inline std::string fileText(std::filesystem::path const& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in) << path;
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A folder of its own that goes with the object.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() /
              ("photarium-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ScratchFolder(ScratchFolder const&) = delete;
  ScratchFolder& operator=(ScratchFolder const&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::filesystem::path const& path() const { return path_; }

  /// Writes a file below the folder and returns its path.
  std::string write(std::string const& name, std::string const& text) const {
    std::filesystem::path const file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return file.string();
  }

 private:
  std::filesystem::path path_;
};
