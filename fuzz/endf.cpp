// The ENDF reader on any text.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <sstream>
#include <string>

#include "photarium/material/Material.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  std::istringstream in(std::string(reinterpret_cast<char const*>(data), size));
  Material<double> material("Fe", 0, 0, 0);
  try {
    material.readENDF(in);
  } catch (std::exception const&) {
  }
  return 0;
}
