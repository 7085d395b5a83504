// Any text through the recogniser and the reader of its format.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <sstream>
#include <string>

#include "fuzz/tape_mutator.h"
#include "photarium/material/Material.h"

namespace {

// Opens the recogniser.
struct Probe : Material<double> {
  using Material<double>::readDB;
};

void read(Material<double>& element, DBType type, std::istream& in) {
  switch (type) {
    case ENDF:
      return element.readENDF(in);
    case MCNP:
      return element.readMCNP(in);
    default:
      return element.readElam(in);
  }
}

void readElements(std::string const& text) {
  std::map<std::string, Material<double>> elements;
  std::istringstream in(text);
  Material<double>::readElam(elements, in);
}

}  // namespace

// The first byte is the atomic number that is sought.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  std::istringstream in(
      std::string(reinterpret_cast<char const*>(data) + 1, size - 1));
  std::ostringstream out;
  try {
    DBType const type = Probe::readDB(in, out);
    std::istringstream text(out.str());
    Material<double> element(static_cast<double>(data[0]));
    read(element, type, text);
    Material<double> const copy = element;
    static_cast<void>(copy.Absorption(10., /*extrapolate=*/true));
    static_cast<void>(copy.Absorption.Discontinuities());
  } catch (std::exception const&) {
    // Any of the library's exceptions is an outcome.
  }
  try {
    readElements(out.str());
  } catch (std::exception const&) {
  }
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data,
                                               std::size_t size,
                                               std::size_t capacity,
                                               unsigned int seed) {
  return mutateTape(data, size, capacity, seed, /*ahead=*/1);
}
