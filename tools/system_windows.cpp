#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "tools/system.h"

namespace Tool::System {
namespace {

namespace fs = std::filesystem;

constexpr char NameEnd[] = ".XXXXXX";  // of a temporary file, see mkstemp

// A folder that goes with the process.
struct PrivateFolder {
  PrivateFolder() = default;
  PrivateFolder(PrivateFolder const&) = delete;
  PrivateFolder& operator=(PrivateFolder const&) = delete;
  ~PrivateFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }

  fs::path const path = fs::temp_directory_path() /
                        ("photarium-" + std::to_string(GetCurrentProcessId()));
};

fs::path const& privateFolder() {
  static PrivateFolder const folder;
  return folder.path;
}

}  // namespace

void start() {
  for (int descriptor : {0, 1, 2}) _setmode(descriptor, _O_BINARY);
}

fs::path program() {
  std::wstring name(32768, L'\0');  // the longest path of the system
  DWORD const size =
      GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
  name.resize(size);
  return name;
}

std::string privateFile(std::string const& name, std::string_view text) {
  std::error_code ignored;
  fs::create_directory(privateFolder(), ignored);
  fs::path const path = privateFolder() / name;
  std::ofstream file(path, std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (!file) throw std::runtime_error("Could not unfold " + path.string());
  return path.string();
}

bool isPrivate(std::string const& path) {
  return path.starts_with(privateFolder().string());
}

int openDevice(std::string const& path) {
  return _open(path.c_str(), _O_WRONLY | _O_BINARY | _O_NOINHERIT);
}

int openBeside(std::string const& target, std::string& path) {
  path = target + NameEnd;
  int const descriptor = mkstemp(path.data());
  if (descriptor < 0) path.clear();
  return descriptor;
}

// A new file has the permissions of its folder, and its name.
bool prepareToReplace(std::string const&, int, std::string&) {
  return true;
}

bool runGnuplot(std::string const&, int) {
  throw std::runtime_error("No picture: photarium draws none on Windows");
}

}  // namespace Tool::System
