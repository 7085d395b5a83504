// The ENDF reader on any text.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <sstream>
#include <string>

#include "fuzz/tape_mutator.h"
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

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data,
                                               std::size_t size,
                                               std::size_t capacity,
                                               unsigned int seed) {
  return mutateTape(data, size, capacity, seed, /*ahead=*/0);
}
