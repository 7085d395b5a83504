// A command line in one text and a config file, for each settings class.
//
// The first byte, a digit in the seeds, chooses the class. What follows is the
// command line, up to a line "%%", and then the config file.

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

#include "photarium/photarium.h"

namespace {

// A file in memory whose text is that of the present input.
class MemoryFile {
 public:
  void set(std::string_view text) {
    if (ftruncate(handle_, 0) != 0 ||
        pwrite(handle_, text.data(), text.size(), 0) !=
            static_cast<ssize_t>(text.size()))
      std::abort();
  }

  std::string path() const {
    return "/proc/self/fd/" + std::to_string(handle_);
  }

 private:
  int const handle_ = memfd_create("settings", 0);
};

// Other files and connections of this machine are none of the fuzzer's.
bool leavesTheInput(std::string const& line, std::string_view file) {
  std::string const text = tolower(line + std::string(file));
  return text.find("ipc") != std::string::npos ||
         line.find_first_of("/\\") != std::string::npos;
}

template <class C>
void run(std::string const& line, std::string const& path) {
  C settings;
  settings.ConfigFile = path;
  try {
    settings.config(line, "Tube");
  } catch (std::runtime_error const&) {
  }
  try {
    settings.check();
  } catch (warning const&) {
  } catch (std::invalid_argument const&) {
  } catch (std::runtime_error const&) {  // an unknown solid angle
  }
  if (settings.write("# ", true).empty() || settings.settings(true).empty())
    std::abort();
  C const copy(settings);
  if (copy.write("", false) != settings.write("", false)) std::abort();
}

using Run = void (*)(std::string const&, std::string const&);

constexpr Run Runs[] = {
    run<GridConfig<double>>,     run<MathConfig<double>>,
    run<ScalingConfig<double>>,  run<GeometryConfig<double>>,
    run<MaterialConfig<double>>, run<PlotConfig<double>>,
    run<SpectConfig<double>>,    run<FilterConfig<double>>,
    run<DetectorConfig<double>>, run<DistributionConfig<double>>,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  static MemoryFile file;
  std::string_view const text(reinterpret_cast<char const*>(data) + 1,
                              size - 1);
  std::string_view const mark = "\n%%\n";
  std::size_t const end = text.find(mark);
  bool const hasFile = end != std::string_view::npos;
  std::string const line(text.substr(0, end));
  std::string_view const config = hasFile ? text.substr(end + mark.size()) : "";
  if (leavesTheInput(line, config)) return 0;
  file.set(config);
  Runs[std::uint8_t(data[0] - '0') % std::size(Runs)](line, file.path());
  return 0;
}
