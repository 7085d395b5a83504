#pragma once

#include <string>

/// The codes of the format, as the tests write them.
namespace Bits {
inline std::string const End = "10011100011010";
inline std::string const Above = "11";
inline std::string const LineFeed = "10010";
inline std::string const Escape = "100111";
}  // namespace Bits

/// Bytes of the bits in `text`, filled up with zeros; blanks do not count.
inline std::string bytesOf(std::string const& text) {
  std::string bytes;
  int count = 0;
  for (char c : text) {
    if (c == ' ') continue;
    if (count++ % 8 == 0) bytes += '\0';
    if (c == '1') bytes.back() = char(bytes.back() | 0x80 >> (count - 1) % 8);
  }
  return bytes;
}

/// A packed stream of these bits, without an end code of its own.
inline std::string stream(std::string const& bits) {
  return "PHMC" + bytesOf(bits);
}

/// Prefixes that repeat the symbol behind them 17 to the power of `count`
/// times.
inline std::string prefixes(int count) {
  std::string bits;
  for (int i = 0; i < count; ++i) bits += "1011111";
  return bits;
}

/// Packed texts of a few bytes that stand for more than memory holds.
namespace Endless {
inline std::string const Comment = Bits::Escape + "00100011";
/// 17^15 line feeds.
inline std::string const LineFeeds =
    stream(prefixes(15) + Bits::LineFeed + Bits::End);
/// 17^15 / 2 lines "#".
inline std::string const Comments =
    stream(Comment + Bits::Above + prefixes(15) + Bits::Above + Bits::End);
/// A line of 17^15 bytes.
inline std::string const Line =
    stream(prefixes(15) + Comment + Bits::Above + Bits::End);
/// A line of 17^7 bytes, 400 MB.
inline std::string const LongLine =
    stream(prefixes(7) + Comment + Bits::Above + Bits::End);
inline std::string const All[] = {LineFeeds, Comments, Line, LongLine};
}  // namespace Endless
