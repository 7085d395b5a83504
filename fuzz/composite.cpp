// Any text as a material: an element, a number or a composite.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "fuzz/scratch_file.h"
#include "photarium/config/MaterialConfig.h"
#include "photarium/material/Material.h"

namespace {

// Three elements, flat curves.
constexpr std::string_view Database =
    "Element H 1 1.008 8e-5\n"
    "Photo\n 6.9 2 0\n 11.5 -9 0\n"
    "Scatter\n 6.9 0 0 -1 0\n 11.5 -5 0 -2 0\n"
    "EndElement\n"
    "Element O 8 15.999 1.3e-3\n"
    "Edge K 543 0.008 20\n Lines\n  K-L3 Ka1 525 0.6\n"
    "Photo\n 6.9 8 0\n 11.5 -5 0\n"
    "Scatter\n 6.9 1 0 -1 0\n 11.5 -4 0 -2 0\n"
    "EndElement\n"
    "Element Cu 29 63.546 8.96\n"
    "Edge K 8979 0.44 7.9\n Lines\n  K-L3 Ka1 8048 0.5\n"
    "Photo\n 6.9 9 0\n 9.1026 3 0\n 9.1026 5 0\n 11.5 -1 0\n"
    "Scatter\n 6.9 2 0 -1 0\n 11.5 -3 0 -2 0\n"
    "EndElement\n"
    "End\n";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  static ScratchFile const file;
  file.write(reinterpret_cast<std::uint8_t const*>(Database.data()),
             Database.size());
  MaterialConfig<double> config;
  config.DataFile = file.path();
  config.CorrFile = "none";
  config.Material.assign(reinterpret_cast<char const*>(data), size);
  Material<double> material;
  try {
    material.update(config);
  } catch (std::exception const&) {
    // A finding or a failure is an outcome.
  }
  Material<double> const copy = material;
  static_cast<void>(copy.Absorption(10., /*extrapolate=*/true));
  return 0;
}
