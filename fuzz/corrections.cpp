// Any text as a correction file, for one material and for all.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <string>

#include "fuzz/scratch_file.h"
#include "photarium/material/Material.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  static ScratchFile const file;
  file.write(data, size);
  try {
    Material<double> copper("Cu", 0, 0, 0);
    copper.readCorr(file.path(), 0.1);
  } catch (std::exception const&) {
    // A finding or a failure is an outcome.
  }
  try {
    std::map<std::string, Material<double>> elements;
    Material<double>::readCorr(elements, file.path());
  } catch (std::exception const&) {
  }
  return 0;
}
