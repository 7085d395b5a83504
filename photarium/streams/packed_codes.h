#pragma once

// The codes of packed text, for the writer and the reader. Private.

#include <array>
#include <string_view>

namespace PackedText {

// PHMCBuffer::Header, ready before any other static object is.
constexpr std::string_view Magic = "PHMC";

struct Code {
  unsigned int value;
  int bits;
};

constexpr unsigned int EscapeMark = 0x2700;  // 100111, then 8 bits of the byte
constexpr int EscapeBits = 14;
constexpr int PrefixBits = 7;  // with its count field
constexpr Code LineFeedCode{18, 5};
constexpr Code EndCode{EscapeMark | 26, EscapeBits};

constexpr std::array<Code, 256> makeCodes() {
  std::array<Code, 256> codes{};
  for (unsigned int byte = 0; byte < 256; ++byte)
    codes[byte] = {EscapeMark | byte, EscapeBits};
  for (unsigned int digit = 0; digit < 8; ++digit)
    codes['0' + digit] = {digit, 4};
  codes['8'] = {16, 5};
  codes['9'] = {17, 5};
  codes['\n'] = LineFeedCode;
  codes[26] = {3, 2};
  codes[' '] = {76, 7};
  codes['+'] = {154, 8};
  codes['-'] = {310, 9};
  codes['.'] = {311, 9};
  return codes;
}
constexpr std::array<Code, 256> Codes = makeCodes();

}  // namespace PackedText
