#include "photarium/material/EndfRecord.h"

#include <bit>
#include <cmath>
#include <cstring>

#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

bool isDigit(char c) {
  return static_cast<unsigned char>(c - '0') < 10;
}

// A number that is not just sign, digits and exponent, the long way: with an
// "e" ahead of the sign that begins the exponent it is what a stream reads.
template <class N>
bool extractField(std::string_view field, N& value) {
  std::string text(trimmed(field));
  value = 0;
  if (text.empty()) return true;
  std::size_t const sign = text.find_first_of("+-", 1);
  if (sign != std::string::npos) text.insert(sign, 1, 'e');
  std::string_view rest = text;
  return extractNumber(rest, value);
}

// Reads digits from `at` on into `number`.
char const* digits(char const* at, char const* end, std::uint64_t& number) {
  for (; at < end && isDigit(*at); ++at)
    number = number * 10 + static_cast<std::uint64_t>(*at - '0');
  return at;
}

// Reads the exponent that begins with the sign at `at`; null if there is none.
char const* exponent(char const* at, char const* end, int& power) {
  if (*at != '-' && *at != '+') return nullptr;
  std::uint64_t magnitude = 0;
  char const* const stop = digits(at + 1, end, magnitude);
  if (stop == at + 1) return nullptr;
  power += static_cast<int>(*at == '-' ? 0 - magnitude : magnitude);
  return stop;
}

char const* skipSpaces(char const* at, char const* end) {
  while (at < end && *at == ' ') ++at;
  return at;
}

// Any number of one field that consists of sign, digits and exponent alone.
// It has 11 digits at most, so that they and the exponent are exact.
bool plainNumber(char const* at, double& value) {
  char const* const end = at + EndfFieldWidth;
  at = skipSpaces(at, end);
  value = 0;
  if (at == end) return true;
  bool const negative = *at == '-';
  if (negative || *at == '+') ++at;
  std::uint64_t number = 0;
  int power = 0;
  char const* const first = at;
  at = digits(at, end, number);
  auto count = at - first;
  if (at < end && *at == '.') {
    char const* const point = ++at;
    at = digits(at, end, number);
    count += at - point;
    power = static_cast<int>(point - at);
  }
  if (count == 0) return false;
  if (at < end && *at != ' ') at = exponent(at, end, power);
  if (!at || skipSpaces(at, end) != end) return false;
  value = decimalValue(number, power);
  if (negative) value = -value;
  return std::isfinite(value);
}

#if defined(__SSE2__)

using Word = std::uint64_t;

// Most fields are a blank, then nine digits with a point among or behind them.
// Eight digits at a time are converted within one register: neighbours are
// joined to numbers of two, four and eight digits.
Word eightDigits(Word bytes) {
  bytes &= 0x0f0f0f0f0f0f0f0f;
  bytes = bytes * 10 + (bytes >> 8);
  Word const odd = (bytes & 0x000000ff000000ff) * 0x000f424000000064;
  Word const even = ((bytes >> 16) & 0x000000ff000000ff) * 0x0000271000000001;
  return (odd + even) >> 32;
}

// The mask of the last `count` of eight bytes.
constexpr Word lastBytes(unsigned int count) {
  return count == 0 ? 0 : ~Word(0) << (8 * (8 - count));
}

constexpr std::array<Word, 10> Behind = {
    lastBytes(0), lastBytes(1), lastBytes(2), lastBytes(3), lastBytes(4),
    lastBytes(5), lastBytes(6), lastBytes(7), lastBytes(8), lastBytes(8)};

// Exact powers, so that a quotient of exact numbers is rounded once.
constexpr std::array<double, 10> Powers = {1e0, 1e1, 1e2, 1e3, 1e4,
                                           1e5, 1e6, 1e7, 1e8, 1e9};

// Reads 16 bytes. False if the field is no number of that shape.
bool nineDigits(char const* field, double& value) {
  __m128i const bytes =
      _mm_loadu_si128(reinterpret_cast<__m128i const*>(field));
  __m128i const offsets = _mm_sub_epi8(bytes, _mm_set1_epi8('0'));
  __m128i const areDigits =
      _mm_cmpeq_epi8(_mm_min_epu8(offsets, _mm_set1_epi8(9)), offsets);
  __m128i const arePoints = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('.'));
  unsigned int const points =
      static_cast<unsigned int>(_mm_movemask_epi8(arePoints)) & 0x7ff;
  unsigned int const both = static_cast<unsigned int>(_mm_movemask_epi8(
                                _mm_or_si128(areDigits, arePoints))) &
                            0x7ff;
  bool const hasOnePoint = points != 0 && (points & (points - 1)) == 0;
  if (both != 0x7fe || field[0] != ' ' || !hasOnePoint) return false;
  auto const behind = 10U - static_cast<unsigned int>(std::countr_zero(points));
  Word last;
  std::memcpy(&last, field + 3, sizeof(last));
  // The digits ahead of the point move up over it.
  Word const moved = last << 8 | static_cast<unsigned char>(field[2]);
  Word const mask = Behind[behind];
  Word const eight = (last & mask) | (moved & ~mask);
  auto const first = static_cast<Word>(field[behind == 9 ? 2 : 1] - '0');
  value = static_cast<double>(first * 100000000 + eightDigits(eight)) /
          Powers[behind];
  return true;
}

constexpr std::size_t ReadWidth = 16;

#else

bool nineDigits(char const*, double&) {
  return false;
}

constexpr std::size_t ReadWidth = EndfFieldWidth;

#endif

// `field` has ReadWidth readable bytes.
bool fieldNumber(char const* field, double& value) {
  return nineDigits(field, value) || plainNumber(field, value) ||
         extractField({field, EndfFieldWidth}, value);
}

}  // namespace

bool endfNumber(std::string_view field, double& value) {
  return extractField(field, value);
}

bool endfNumber(std::string_view field, std::uint32_t& value) {
  return extractField(field, value);
}

std::uint32_t endfControl(std::string_view field) {
  char const* const end = field.data() + field.size();
  char const* const first = skipSpaces(field.data(), end);
  std::uint64_t number = 0;
  if (digits(first, end, number) == end)
    return static_cast<std::uint32_t>(number);
  std::uint32_t value = 0;
  return endfNumber(field, value) ? value : 0;
}

std::size_t endfFields(std::string_view line, EndfFields& fields) {
  constexpr std::size_t width = EndfControlColumn - EndfFieldWidth + ReadWidth;
  std::array<char, width> padded;
  char const* field = line.data();
  if (line.size() < width) {
    padded.fill(' ');
    std::memcpy(padded.data(), line.data(), line.size());
    field = padded.data();
  }
  for (std::size_t i = 0; i < fields.size(); ++i, field += EndfFieldWidth)
    if (!fieldNumber(field, fields[i])) return i;
  return EndfNoField;
}

std::string endfError(std::string_view field) {
  return "Error parsing " + std::string(trimmed(field));
}
