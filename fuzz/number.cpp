// Numbers from any text: what extractNumber() finds and leaves is what a stream
// does.

#include "photarium/foundation/number.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>

namespace {

template <class N>
void expectStreamMeaning(std::string const& text) {
  std::istringstream in(text);
  in.imbue(std::locale::classic());
  N expected = 7;
  in >> expected;
  bool const isGood = !in.fail();
  std::size_t left = 0;
  if (!in.eof()) {
    in.clear();
    left = text.size() - static_cast<std::size_t>(in.tellg());
  }
  std::string_view rest = text;
  N found = 7;
  bool const isNumber = extractNumber(rest, found);
  bool const isSame = std::memcmp(&found, &expected, sizeof(N)) == 0;
  if (isNumber != isGood || !isSame || rest.size() != left) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  expectStreamMeaning<double>(text);
  expectStreamMeaning<std::int64_t>(text);
  expectStreamMeaning<std::uint64_t>(text);
  expectStreamMeaning<std::uint32_t>(text);
  return 0;
}
