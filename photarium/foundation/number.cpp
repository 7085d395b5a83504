#include "photarium/foundation/number.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <system_error>
#include <utility>

// Numbers from text.

namespace {

// The first comparison settles it for all characters of numbers and words.
bool isBlank(char c) {
  return c <= ' ' && (c == ' ' || (c >= '\t' && c <= '\r'));
}

// The value of a digit; above 9 for any other character.
unsigned digitOf(char c) {
  return static_cast<unsigned char>(c) - unsigned{'0'};
}

bool isDigit(char c) {
  return digitOf(c) < 10;
}

char const* skipBlanks(char const* p, char const* end) {
  while (p != end && isBlank(*p)) ++p;
  return p;
}

// False if nothing is left behind the blanks.
bool skipBlanks(std::string_view& text) {
  char const* const end = text.data() + text.size();
  char const* const p = skipBlanks(text.data(), end);
  text = {p, static_cast<std::size_t>(end - p)};
  return p != end;
}

// From decimal digits to a double.

constexpr int MaxDigits = 19;  // so many always fit 64 bits

constexpr std::uint64_t WholeTens[] = {1,     10,     100,     1000,
                                       10000, 100000, 1000000, 10000000};

// Powers of ten that are doubles, so that one operation rounds once: W. D.
// Clinger, Proc. ACM SIGPLAN PLDI (1990) 92.
constexpr int MaxExactTen = 22;
constexpr double Tens[MaxExactTen + 1] = {
    1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

#ifdef __SIZEOF_INT128__
__extension__ using Wide = unsigned __int128;

// The leading 128 bits of a power of five, the first of them set.
struct Five {
  std::uint64_t high;
  std::uint64_t low;
};

// A whole number of 33 limbs, the lowest first.
using Limbs = std::array<std::uint32_t, 33>;

constexpr Five leading(Limbs const& number) {
  std::size_t top = number.size() - 1;
  while (number[top] == 0) --top;
  Wide bits = 0;
  for (std::size_t i = 0; i < 4; ++i)
    bits = bits << 32 | (top >= i ? number[top - i] : 0);
  int const shift = std::countl_zero(number[top]);
  std::uint64_t const next = top >= 4 ? number[top - 4] : 0;
  bits = bits << shift | next << shift >> 32;
  return {static_cast<std::uint64_t>(bits >> 64),
          static_cast<std::uint64_t>(bits)};
}

// 5^q for every power of ten that a double can reach from 19 digits.
constexpr std::size_t TensBelow = 342;
constexpr std::size_t TensAbove = 308;

constexpr auto Fives = [] {
  std::array<Five, TensBelow + 1 + TensAbove> powers{};
  Limbs number{1};
  for (std::size_t q = 0; q <= TensAbove; ++q) {
    powers[TensBelow + q] = leading(number);
    std::uint64_t carry = 0;
    for (std::uint32_t& limb : number) {
      carry += std::uint64_t{5} * limb;
      limb = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  number = {};
  number.back() = std::uint32_t{1} << 31;
  for (std::size_t q = 1; q <= TensBelow; ++q) {
    std::uint64_t rest = 0;
    for (std::size_t i = number.size(); i-- > 0;) {
      rest = rest << 32 | number[i];
      number[i] = static_cast<std::uint32_t>(rest / 5);
      rest %= 5;
    }
    Five& power = powers[TensBelow - q];
    power = leading(number);
    if (q <= 27 && ++power.low == 0) ++power.high;  // rounded up
  }
  return powers;
}();

// The leading 128 bits of `digits` times 5^q; `digits` has its first bit set.
Five timesFive(std::uint64_t digits, Five const& power) {
  Wide const first = Wide{digits} * power.high;
  auto high = static_cast<std::uint64_t>(first >> 64);
  auto low = static_cast<std::uint64_t>(first);
  // Only where a carry from below may reach the bits of a double.
  if ((high & 0x1FF) == 0x1FF) {
    auto const below =
        static_cast<std::uint64_t>(Wide{digits} * power.low >> 64);
    low += below;
    if (low < below) ++high;
  }
  return {high, low};
}

// Stores `digits` * 10^q, rounded, unless it is out of the range of normal
// doubles or too close to call: D. Lemire, Software: Practice and Experience 51
// (2021) 1700.
bool wideValue(std::uint64_t digits, std::int64_t q, double& value) {
  value = 0;
  if (digits == 0) return true;
  auto const index = static_cast<std::uint64_t>(q) + TensBelow;
  if (index >= Fives.size()) return false;
  int const up = std::countl_zero(digits);
  auto const [high, low] = timesFive(digits << up, Fives[index]);
  if (low == ~std::uint64_t{0} && (q < -27 || q > 55)) return false;
  int const carry = static_cast<int>(high >> 63);
  int const cut = 9 + carry;
  std::uint64_t bits = high >> cut;  // of a double, and one more
  // Floor of q log2(10), and the bias of the exponent.
  std::int64_t power = (217706 * q >> 16) + 63 + carry - up + 1023;
  if (power <= 0) return false;
  bool const isMiddle =
      low <= 1 && q >= -4 && q <= 23 && (bits & 3) == 1 && bits << cut == high;
  if (isMiddle) bits &= ~std::uint64_t{1};  // to even
  bits = (bits + (bits & 1)) >> 1;
  // A carry out of the 53 bits counts the exponent up.
  bits += static_cast<std::uint64_t>(power - 1) << 52;
  if (bits >> 52 >= 0x7FF) return false;
  value = std::bit_cast<double>(bits);
  return true;
}
#else
// No wider integer here: leave it to the standard library.
bool wideValue(std::uint64_t, std::int64_t, double&) {
  return false;
}
#endif

// True where exactValue() holds.
bool isExact(std::uint64_t digits, std::int64_t exponent) {
  return std::abs(exponent) <= MaxExactTen && digits >> 53 == 0;
}

// As a double; a signed integer is converted faster than an unsigned one.
double wholeNumber(std::uint64_t digits) {
  return static_cast<double>(static_cast<std::int64_t>(digits));
}

double exactValue(std::uint64_t digits, std::int64_t exponent) {
  double const whole = wholeNumber(digits);
  return exponent < 0 ? whole / Tens[-exponent] : whole * Tens[exponent];
}

// The value of a number without a sign. `isLarge` tells which way it is out of
// range if it is.
double longValue(char const* begin, char const* end, bool isLarge) {
  double value = 0;
  if (std::from_chars(begin, end, value).ec == std::errc()) return value;
  return isLarge ? std::numeric_limits<double>::infinity() : 0;
}

double longValue(std::string digits, std::int64_t exponent) {
  constexpr std::int64_t far = 100000;
  bool const isLarge = static_cast<std::int64_t>(digits.size()) + exponent > 0;
  digits += 'e' + std::to_string(std::clamp(exponent, -far, far));
  return longValue(digits.data(), digits.data() + digits.size(), isLarge);
}

// The value of a mantissa that may have more digits than 64 bits hold. A
// double, and the middle between two, has at most 768 digits: further ones
// matter only by not being zero.
double manyDigitsValue(std::string_view mantissa, std::int64_t exponent) {
  constexpr std::size_t most = 800;
  std::string digits;
  bool isFraction = false;
  bool isCut = false;
  for (char c : mantissa) {
    if (c == '.') {
      isFraction = true;
      continue;
    }
    bool const isKept = digits.size() < most;
    if (isKept && (c != '0' || !digits.empty())) digits += c;
    if (isKept && isFraction) --exponent;
    if (!isKept && !isFraction) ++exponent;
    if (!isKept && c != '0') isCut = true;
  }
  if (digits.empty()) return 0;
  // An odd digit so far out is neither a double nor a middle.
  if (isCut) digits.back() = static_cast<char>(digits.back() | 1);
  return longValue(std::move(digits), exponent);
}

// From text to decimal digits.

char const* skipSign(char const* p, char const* end, bool& negative) {
  negative = p != end && *p == '-';
  return p != end && (*p == '-' || *p == '+') ? p + 1 : p;
}

// A place in a text, and the value of the digits ahead of it.
struct Digits {
  char const* end;
  std::uint64_t value;
};

Digits scanDigits(Digits digits, char const* end) {
  auto [p, value] = digits;
  for (; p != end && isDigit(*p); ++p) value = 10 * value + digitOf(*p);
  return {p, value};
}

constexpr std::uint64_t eachByte(std::uint64_t byte) {
  return byte * 0x0101010101010101;
}

// The eight characters from `p` on, the first lowest, and zeros behind the end.
// There must be eight characters ahead of the end.
std::uint64_t eightCharacters(char const* p, char const* end) {
  std::uint64_t word = 0;
  if (end - p >= 8) {
    std::memcpy(&word, p, 8);
    return word;
  }
  std::memcpy(&word, end - 8, 8);
  return p == end ? 0 : word >> (8 * (8 - (end - p)));
}

// The high bit of each byte above 9; right up to the first of them, and up to
// the second if the first is a point.
std::uint64_t aboveNine(std::uint64_t word) {
  return ((word + eachByte(0x76)) | word) & eachByte(0x80);
}

// The number that eight bytes from 0 to 9 are the digits of: D. Lemire,
// Software: Practice and Experience 51 (2021) 1700.
std::uint64_t eightDigits(std::uint64_t word) {
  constexpr std::uint64_t pairs = 0x000000FF000000FF;
  word = 10 * word + (word >> 8);
  return ((word & pairs) * (100 + (std::uint64_t{1000000} << 32)) +
          ((word >> 16) & pairs) * (1 + (std::uint64_t{10000} << 32))) >>
         32;
}

// As scanDigits(), eight at a time. `begin` is where the text does.
Digits scanManyDigits(char const* begin, Digits digits, char const* end) {
  if (std::endian::native != std::endian::little || end - begin < 8)
    return scanDigits(digits, end);
  auto [p, value] = digits;
  for (;;) {
    std::uint64_t const word = eightCharacters(p, end) ^ eachByte('0');
    std::uint64_t const others = aboveNine(word);
    if (others != 0) {
      int const n = std::countr_zero(others) / 8;
      // What stands behind the digits goes, zeros come ahead of them.
      value = value * WholeTens[n] + eightDigits(word << 8 << (56 - 8 * n));
      return {p + n, value};
    }
    value = value * 100000000 + eightDigits(word);
    p += 8;
  }
}

// A decimal of at most eight digits with a point, as most fields of a table.
struct ShortDecimal {
  char const* end;  // null where there is none
  std::uint64_t digits;
  std::ptrdiff_t fraction;  // how many of the digits are behind the point
};

// Finds the point and the end of the digits in one word. The widest decimals,
// those with six places as programs print them, are told apart by branches:
// a processor that guesses them reads on before the digits are known.
ShortDecimal scanShortDecimal(char const* first, char const* end) {
  if (std::endian::native != std::endian::little || end - first < 10) return {};
  std::uint64_t const word = eightCharacters(first, end) ^ eachByte('0');
  std::uint64_t const others = aboveNine(word);
  int const whole = std::countr_zero(others) / 8;
  if (others == 0 || first[whole] != '.') return {};
  std::uint64_t const behind = others & (others - 1);
  if (behind == 0 && isDigit(first[8]) && isDigit(first[9])) return {};
  std::uint64_t const ahead = ((others ^ behind) >> 7) - 1;
  std::uint64_t const digits = (word & ahead) | (word >> 8 & ~ahead);
  if (behind != 0) {
    int const n = std::countr_zero(behind) / 8;
    if (n == 1) return {};
    return {first + n, eightDigits(digits << 8 << (64 - 8 * n)), n - 1 - whole};
  }
  std::uint64_t const seven = eightDigits(digits << 8);
  if (!isDigit(first[8])) return {first + 8, seven, 7 - whole};
  return {first + 9, 10 * seven + digitOf(first[8]), 8 - whole};
}

// Takes the digits of an exponent with its sign, and stops growing far beyond
// any count of digits that fits memory. False if there is none.
bool scanExponent(char const*& p, char const* end, std::int64_t& exponent) {
  bool negative = false;
  p = skipSign(p, end, negative);
  char const* const first = p;
  for (; p != end && isDigit(*p); ++p)
    if (exponent >> 58 == 0) exponent = 10 * exponent + digitOf(*p);
  if (negative) exponent = -exponent;
  return p != first;
}

bool isExponent(char c) {
  return c == 'e' || c == 'E';
}

// Stores a number whose magnitude is `found`; the largest finite one and false
// if that is infinite.
bool store(double& value, double found, bool negative) {
  bool const fits = found <= std::numeric_limits<double>::max();
  value = fits ? found : std::numeric_limits<double>::max();
  if (negative) value = -value;
  return fits;
}

// The rarer numbers are stored by functions of their own, which leaves the
// registers to the others.

// The digits and the exponent of a number are from `first` to `last`.
[[gnu::noinline]] bool storeWide(double& value, std::uint64_t digits,
                                 std::int64_t scale, char const* first,
                                 char const* last, bool negative) {
  double found = 0;
  if (!wideValue(digits, scale, found))
    found = longValue(first, last, scale > 0);
  return store(value, found, negative);
}

[[gnu::noinline]] bool storeMany(double& value, char const* first,
                                 char const* last, std::int64_t exponent,
                                 bool negative) {
  std::string_view const number(first, static_cast<std::size_t>(last - first));
  std::string_view const mantissa =
      number.substr(0, number.find_first_of("eE"));
  return store(value, manyDigitsValue(mantissa, exponent), negative);
}

// Stores `digits` * 10^`scale`, the text of which is from `first` to `last`.
bool storeDecimal(double& value, std::uint64_t digits, std::int64_t scale,
                  char const* first, char const* last, bool negative) {
  if (!isExact(digits, scale))
    return storeWide(value, digits, scale, first, last, negative);
  double const found = exactValue(digits, scale);
  value = negative ? -found : found;
  return true;
}

// The number begins at `first`, behind its sign.
[[gnu::noinline]] bool extractAny(std::string_view& text, double& value,
                                  char const* first, bool negative) {
  char const* const end = text.data() + text.size();
  Digits digits = scanDigits({first, 0}, end);
  std::ptrdiff_t count = digits.end - first;
  std::ptrdiff_t fraction = 0;
  if (digits.end != end && *digits.end == '.') {
    char const* const behind = digits.end + 1;
    digits = scanManyDigits(text.data(), {behind, digits.value}, end);
    fraction = digits.end - behind;
    count += fraction;
  }
  char const* p = digits.end;
  std::int64_t exponent = 0;
  bool isNumber = count > 0;
  if (isNumber && p != end && isExponent(*p))
    isNumber = scanExponent(++p, end, exponent);
  text = {p, static_cast<std::size_t>(end - p)};
  value = 0;
  if (!isNumber) return false;
  if (count > MaxDigits) return storeMany(value, first, p, exponent, negative);
  return storeDecimal(value, digits.value, exponent - fraction, first, p,
                      negative);
}

// An exponent stands behind the `decimal`.
bool extractScaled(std::string_view& text, double& value, char const* first,
                   ShortDecimal const& decimal, bool negative) {
  char const* const end = text.data() + text.size();
  char const* p = decimal.end + 1;
  std::int64_t exponent = 0;
  bool const isNumber = scanExponent(p, end, exponent);
  text = {p, static_cast<std::size_t>(end - p)};
  value = 0;
  if (!isNumber) return false;
  return storeDecimal(value, decimal.digits, exponent - decimal.fraction, first,
                      p, negative);
}

template <class N>
bool extractInteger(std::string_view& text, N& value) {
  if (!skipBlanks(text)) return false;
  char const* const end = text.data() + text.size();
  bool negative = false;
  char const* const first = skipSign(text.data(), end, negative);
  char const* last = first;
  while (last != end && isDigit(*last)) ++last;
  text.remove_prefix(static_cast<std::size_t>(last - text.data()));
  value = 0;
  if (first == last) return false;
  std::uint64_t magnitude = 0;
  bool const fits = std::from_chars(first, last, magnitude).ec == std::errc();
  using Limits = std::numeric_limits<N>;
  // A signed type reaches one further below zero; an unsigned one wraps.
  std::uint64_t const limit = static_cast<std::uint64_t>(Limits::max()) +
                              (Limits::is_signed && negative ? 1U : 0U);
  if (!fits || magnitude > limit) {
    value = Limits::is_signed && negative ? Limits::min() : Limits::max();
    return false;
  }
  value = static_cast<N>(negative ? 0U - magnitude : magnitude);
  return true;
}

}  // namespace

bool extractNumber(std::string_view& text, double& value) {
  char const* const end = text.data() + text.size();
  char const* const begin = skipBlanks(text.data(), end);
  if (begin == end) {
    text.remove_prefix(text.size());
    return false;
  }
  bool negative = false;
  char const* const first = skipSign(begin, end, negative);
  ShortDecimal const decimal = scanShortDecimal(first, end);
  if (decimal.end == nullptr) return extractAny(text, value, first, negative);
  if (isExponent(*decimal.end))
    return extractScaled(text, value, first, decimal, negative);
  text = {decimal.end, static_cast<std::size_t>(end - decimal.end)};
  double const found = wholeNumber(decimal.digits) / Tens[decimal.fraction];
  value = negative ? -found : found;
  return true;
}

bool extractNumber(std::string_view& text, std::int64_t& value) {
  return extractInteger(text, value);
}

bool extractNumber(std::string_view& text, std::uint64_t& value) {
  return extractInteger(text, value);
}

bool extractNumber(std::string_view& text, std::uint32_t& value) {
  return extractInteger(text, value);
}

double decimalValue(std::uint64_t digits, int exponent) {
  if (isExact(digits, exponent)) return exactValue(digits, exponent);
  double value = 0;
  if (wideValue(digits, exponent, value)) return value;
  return longValue(std::to_string(digits), exponent);
}

std::string_view extractWord(std::string_view& text) {
  skipBlanks(text);
  std::size_t n = 0;
  while (n < text.size() && !isBlank(text[n])) ++n;
  std::string_view const word = text.substr(0, n);
  text.remove_prefix(n);
  return word;
}
