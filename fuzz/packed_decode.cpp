// Any bytes, as they stand and as packed text. The plain codec says what they
// mean, unless they stand for more text than it keeps.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/streams/packed_support.h"

namespace {

constexpr std::size_t TextLimit = 1 << 14;

class SmallBuffer : public OpenBuffer {
 public:
  SmallBuffer(std::istream& source, std::ostream& target)
      : OpenBuffer(source, target) {
    lineLimit = TextLimit;
  }
};

class SmallPlainCodec : public PlainCodec {
 public:
  SmallPlainCodec(std::istream& source, std::ostream& target)
      : PlainCodec(source, target, TextLimit) {}
};

void check(std::string const& bytes) {
  Outcome const read = outcome<SmallBuffer>(bytes, TextLimit);
  try {
    if (read != outcome<SmallPlainCodec>(bytes, TextLimit)) std::abort();
  } catch (PlainCodec::Excess) {
    // A run that only the library's codec can deliver.
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  std::string const bytes(reinterpret_cast<char const*>(data), size);
  check(bytes);
  check("PHMC" + bytes);
  return 0;
}
