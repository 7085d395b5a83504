#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "photarium/foundation/number.h"

// Numbers to text.

namespace {

#ifdef __SIZEOF_INT128__
// For the values and precisions of tables.
__extension__ using Wide = unsigned __int128;

// Largest q for which 5^q fits 64 bits.
constexpr int MaxWholeFive = 27;

constexpr auto WholeFives = [] {
  std::array<std::uint64_t, MaxWholeFive + 1> powers{1};
  for (std::size_t q = 1; q < powers.size(); ++q) powers[q] = 5 * powers[q - 1];
  return powers;
}();

std::uint64_t wholeTen(int exponent) {
  return WholeFives[static_cast<std::size_t>(exponent)] << exponent;
}

// Nearest doubles to the powers of ten from 10^-18 to 10^7.
constexpr int LowestTen = -18;
constexpr double NearTens[] = {1e-18, 1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12,
                               1e-11, 1e-10, 1e-9,  1e-8,  1e-7,  1e-6,  1e-5,
                               1e-4,  1e-3,  1e-2,  1e-1,  1e0,   1e1,   1e2,
                               1e3,   1e4,   1e5,   1e6,   1e7};

constexpr auto Pairs = [] {
  std::array<char, 200> digits{};
  for (std::size_t i = 0; i < digits.size(); ++i)
    digits[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
  return digits;
}();

// Writes two decimal digits of `number`, which is below 100.
void writePair(char* to, std::uint64_t number) {
  std::memcpy(to, Pairs.data() + 2 * number, 2);
}

// Writes the one digit, the point and `precision` digits of `digits`.
char* writeDigits(char* to, std::uint64_t digits, int precision) {
  char* const end = to + precision + (precision > 0 ? 2 : 1);
  int left = precision;
  for (; left >= 2; left -= 2) {
    writePair(to + left, digits % 100);
    digits /= 100;
  }
  if (left == 1) {
    to[2] = static_cast<char>('0' + digits % 10);
    digits /= 10;
  }
  if (precision > 0) to[1] = '.';
  to[0] = static_cast<char>('0' + digits);
  return end;
}

// Writes a positive number in scientific notation and returns its end, null
// where it is not of the usual size. Scaled to `precision` digits behind the
// first one it is a whole number times a power of five, shifted right: exact in
// 128 bits, so that it is rounded as it should be, ties to even.
char* writeUsual(char* to, double value, int precision) {
  if (precision > 6 || !(value >= 1e-18 && value < 1e7)) return nullptr;
  auto const bits = std::bit_cast<std::uint64_t>(value);
  int const power = static_cast<int>(bits >> 52) - 1075;
  std::uint64_t const mantissa =
      (bits & ((std::uint64_t{1} << 52) - 1)) | std::uint64_t{1} << 52;
  // Floor of the logarithm of the leading bit, at most one below that of
  // `value`.
  int ten = (power + 52) * 78913 >> 18;
  if (value >= NearTens[ten + 1 - LowestTen]) ++ten;
  int const scale = precision - ten;
  if (scale < 0) return nullptr;
  int const shift = -power - scale;
  Wide const scaled =
      Wide{mantissa} * WholeFives[static_cast<std::size_t>(scale)];
  auto const doubled = static_cast<std::uint64_t>(scaled >> (shift - 1));
  std::uint64_t digits = doubled >> 1;
  bool const isAbove = Wide{doubled} << (shift - 1) != scaled;
  digits += doubled & 1 & (digits | (isAbove ? 1 : 0));
  if (digits == wholeTen(precision + 1)) {  // rounded up from nines
    digits /= 10;
    ++ten;
  }
  to = writeDigits(to, digits, precision);
  to[0] = 'e';
  to[1] = ten < 0 ? '-' : '+';
  writePair(to + 2, static_cast<std::uint64_t>(std::abs(ten)));
  return to + 4;
}
#else
char* writeUsual(char*, double, int) {
  return nullptr;
}
#endif

void append(std::string& out, double value, std::chars_format format,
            int precision) {
  char buffer[400];  // the largest double has 309 digits ahead of the point
  auto const [end, error] =
      std::to_chars(buffer, buffer + sizeof(buffer), value, format, precision);
  if (error == std::errc()) {
    out.append(buffer, end);
    return;
  }
  std::string large(400 + static_cast<std::size_t>(precision), '\0');
  char* const begin = large.data();
  out.append(
      begin,
      std::to_chars(begin, begin + large.size(), value, format, precision).ptr);
}

}  // namespace

void appendScientific(std::string& out, double value, int precision,
                      bool showSign) {
  bool const negative = std::signbit(value);
  char buffer[16];
  char* const begin = buffer + (negative || showSign ? 1 : 0);
  buffer[0] = negative ? '-' : '+';
  if (char* const end = writeUsual(begin, std::abs(value), precision)) {
    out.append(buffer, end);
    return;
  }
  if (showSign && !negative) out += '+';
  append(out, value, std::chars_format::scientific, precision);
}

void appendFixed(std::string& out, double value, int precision) {
  append(out, value, std::chars_format::fixed, precision);
}

void appendGeneral(std::string& out, double value, int precision) {
  append(out, value, std::chars_format::general, precision);
}

void appendInteger(std::string& out, std::uint64_t value) {
  char buffer[24];
  out.append(buffer, std::to_chars(buffer, buffer + sizeof(buffer), value).ptr);
}
