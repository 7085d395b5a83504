// Any text, written in pieces that its first byte chooses: the plain codec
// gives the same bytes, and they give the text back.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/streams/packed_support.h"

namespace {

// Packed text, or the message of its refusal.
template <class Codec>
std::string packedInPieces(std::string const& text, std::size_t piece,
                           bool flushes) {
  std::stringstream out;
  Codec codec(out, out);
  try {
    for (std::size_t at = 0; at < text.size(); at += piece) {
      codec.sputn(text.data() + at,
                  std::streamsize(std::min(piece, text.size() - at)));
      if (flushes) codec.pubsync();
    }
    codec.close();
  } catch (std::runtime_error const& failure) {
    return failure.what();
  }
  return out.str();
}

// The text as it comes back: each line end a line feed, also behind the last
// line.
std::string normalised(std::string const& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    bool const isEnd = text[i] == '\n' || text[i] == '\r';
    result += isEnd ? '\n' : text[i];
    bool const isPair = isEnd && i + 1 < text.size() &&
                        (text[i + 1] == '\n' || text[i + 1] == '\r') &&
                        text[i + 1] != text[i];
    if (isPair) ++i;
  }
  if (!result.empty() && result.back() != '\n') result += '\n';
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  bool const flushes = data[0] % 2 != 0;
  std::size_t const piece = data[0] / 2u + 1;
  std::string const text(reinterpret_cast<char const*>(data + 1), size - 1);
  std::string const bytes = packedInPieces<OpenBuffer>(text, piece, flushes);
  if (bytes != packedInPieces<PlainCodec>(text, piece, flushes)) std::abort();
  bool const isRefused = text.find(OpenBuffer::Subst) != std::string::npos;
  if (isRefused || text.starts_with("PHMC")) return 0;
  if (unpacked(bytes).text != normalised(text)) std::abort();
  return 0;
}
