#include <windows.h>

#include <cstdlib>

#include "tests/tools/run.h"

namespace {

// A file that a program may inherit.
struct Inherited {
  Inherited(std::filesystem::path const& file, DWORD access, DWORD how) {
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), nullptr,
                                   /*bInheritHandle=*/TRUE};
    handle = CreateFileW(file.c_str(), access, FILE_SHARE_READ, &attributes,
                         how, FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  Inherited(Inherited const&) = delete;
  Inherited& operator=(Inherited const&) = delete;
  ~Inherited() { CloseHandle(handle); }

  HANDLE handle;
};

// As the program takes it for one argument again.
std::string quoted(std::string const& argument) {
  std::string text = "\"";
  std::size_t backslashes = 0;
  for (char const c : argument) {
    if (c == '"') text.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    text += c;
  }
  return text.append(backslashes, '\\') + '"';
}

// The shell takes its line as it stands.
std::string commandLine(std::vector<std::string> const& arguments) {
  std::string line;
  for (auto const& argument : arguments)
    line += (arguments[0] == "cmd" ? argument : quoted(argument)) + ' ';
  return line;
}

double secondsOf(FILETIME const& time) {  // counted in 100 ns
  return 1e-7 * (4294967296. * time.dwHighDateTime + time.dwLowDateTime);
}

double total = 0;  // of what programs took [s]

int statusOf(PROCESS_INFORMATION const& process) {
  DWORD status = 0;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &status);
  FILETIME start, end, system, user;
  GetProcessTimes(process.hProcess, &start, &end, &system, &user);
  total += secondsOf(system) + secondsOf(user);
  CloseHandle(process.hProcess);
  CloseHandle(process.hThread);
  return static_cast<int>(status);
}

}  // namespace

std::vector<std::string> shellCommand(std::string const& folder,
                                      std::string const& line) {
  static int const isSet =
      _putenv(("PATH=" + folder + ';' + std::getenv("PATH")).c_str());
  static_cast<void>(isSet);
  return {"cmd", "/c", line};
}

int runIn(std::filesystem::path const& folder,
          std::vector<std::string> const& arguments,
          std::vector<std::string> const& settings,
          std::filesystem::path const& out, std::filesystem::path const& err) {
  Inherited const in("NUL", GENERIC_READ, OPEN_EXISTING);
  Inherited const output(out, GENERIC_WRITE, CREATE_ALWAYS);
  Inherited const errors(err, GENERIC_WRITE, CREATE_ALWAYS);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in.handle;
  startup.hStdOutput = output.handle;
  startup.hStdError = errors.handle;
  _putenv("PHOTARIUM_DATA=");
  for (auto const& setting : settings) _putenv(setting.c_str());
  std::wstring line = std::filesystem::path(commandLine(arguments)).wstring();
  PROCESS_INFORMATION process{};
  bool const isStarted =
      CreateProcessW(nullptr, line.data(), nullptr, nullptr,
                     /*bInheritHandles=*/TRUE, 0, nullptr, folder.c_str(),
                     &startup, &process) != 0;
  for (auto const& setting : settings)  // gone again without a value
    _putenv(setting.substr(0, setting.find('=') + 1).c_str());
  return isStarted ? statusOf(process) : 127;
}

double secondsOfPrograms() {
  return total;
}
