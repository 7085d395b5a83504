// The import of tapes on any text. What it writes is a tape again, and its
// materials stay as they are when they are imported once more.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "fuzz/tape_mutator.h"
#include "tools/endf_tape.h"

namespace {

// Without the heads of tapes: where a material has none, it is written behind
// that of another one, whose tape it then seems to be on.
std::string materials(Tool::EndfElement element) {
  for (auto& [number, sublibrary] : element.sublibraries)
    sublibrary.tapeHead = {};
  return Tool::endfText(element, 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  Tool::EndfTapes tapes;
  try {
    tapes.add("tape", std::string(reinterpret_cast<char const*>(data), size));
  } catch (std::runtime_error const&) {
    return 0;
  }
  for (auto const& [z, element] : tapes.elements()) {
    Tool::endfText(element, 1e-3);
    Tool::endfReport(element);
    Tool::EndfTapes again;
    again.add("text", Tool::endfText(element, 0));
    if (materials(again.elements().at(z)) != materials(element)) std::abort();
  }
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data,
                                               std::size_t size,
                                               std::size_t capacity,
                                               unsigned int seed) {
  return mutateTape(data, size, capacity, seed, /*ahead=*/0);
}
