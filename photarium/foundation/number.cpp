#include "photarium/foundation/number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace {

bool isBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

void skipBlanks(std::string_view& text) {
  std::size_t n = 0;
  while (n < text.size() && isBlank(text[n])) ++n;
  text.remove_prefix(n);
}

// Length of the characters that a stream collects for a floating-point number:
// sign, digits with one point, and behind a digit an exponent with its sign.
std::size_t floatLength(std::string_view text) {
  std::size_t n = 0;
  if (n < text.size() && (text[n] == '+' || text[n] == '-')) ++n;
  bool point = false;
  bool digits = false;
  for (; n < text.size(); ++n) {
    if (isDigit(text[n])) {
      digits = true;
    } else if (text[n] == '.' && !point) {
      point = true;
    } else {
      break;
    }
  }
  if (!digits || n == text.size() || (text[n] != 'e' && text[n] != 'E'))
    return n;
  ++n;
  if (n < text.size() && (text[n] == '+' || text[n] == '-')) ++n;
  while (n < text.size() && isDigit(text[n])) ++n;
  return n;
}

// True if the magnitude of a number that does not fit is too large, false if
// it is too small: its leading digit stands above or below one.
bool overflows(std::string_view number) {
  std::size_t const e = number.find_first_of("eE");
  std::string_view const mantissa = number.substr(0, e);
  std::size_t const point = std::min(mantissa.find('.'), mantissa.size());
  std::size_t const lead = mantissa.find_first_of("123456789");
  std::int64_t exponent = 0;
  if (e != std::string_view::npos) {
    std::string_view digits = number.substr(e + 1);
    extractNumber(digits, exponent);  // saturates, which keeps the sign
  }
  auto const shift =
      static_cast<std::int64_t>(point) - static_cast<std::int64_t>(lead);
  constexpr std::int64_t bound = std::int64_t{1} << 62;
  return std::clamp(exponent, -bound, bound) + shift > 0;
}

template <class N>
bool extractInteger(std::string_view& text, N& value) {
  skipBlanks(text);
  std::size_t n = 0;
  bool const negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) ++n;
  std::size_t const first = n;
  while (n < text.size() && isDigit(text[n])) ++n;
  std::string_view const digits = text.substr(first, n - first);
  text.remove_prefix(n);
  value = 0;
  if (digits.empty()) return false;
  std::uint64_t magnitude = 0;
  auto const [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), magnitude);
  using Limits = std::numeric_limits<N>;
  // A signed type reaches one further below zero; an unsigned one wraps.
  std::uint64_t const limit = static_cast<std::uint64_t>(Limits::max()) +
                              (Limits::is_signed && negative ? 1U : 0U);
  if (error != std::errc() || magnitude > limit) {
    value = Limits::is_signed && negative ? Limits::min() : Limits::max();
    return false;
  }
  value = static_cast<N>(negative ? 0U - magnitude : magnitude);
  return true;
}

void append(std::string& out, double value, std::chars_format format,
            int precision) {
  // Fixed notation of the largest double has 309 digits ahead of the point.
  char buffer[400];
  auto const [end, error] =
      std::to_chars(buffer, buffer + sizeof(buffer), value, format, precision);
  if (error == std::errc()) {
    out.append(buffer, end);
    return;
  }
  std::string large(400 + static_cast<std::size_t>(precision), '\0');
  auto const result = std::to_chars(large.data(), large.data() + large.size(),
                                    value, format, precision);
  out.append(large.data(), result.ptr);
}

}  // namespace

bool extractNumber(std::string_view& text, double& value) {
  skipBlanks(text);
  std::string_view number = text.substr(0, floatLength(text));
  text.remove_prefix(number.size());
  if (!number.empty() && number[0] == '+') number.remove_prefix(1);
  char const* const end = number.data() + number.size();
  double parsed = 0;
  auto const [stop, error] = std::from_chars(number.data(), end, parsed);
  value = 0;
  if (stop != end || error == std::errc::invalid_argument) return false;
  if (error == std::errc()) {
    value = parsed;
    return true;
  }
  bool const negative = number[0] == '-';
  if (overflows(number)) {
    double const most = std::numeric_limits<double>::max();
    value = negative ? -most : most;
    return false;
  }
  value = negative ? -0.0 : 0.0;
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

std::string_view extractWord(std::string_view& text) {
  skipBlanks(text);
  std::size_t n = 0;
  while (n < text.size() && !isBlank(text[n])) ++n;
  std::string_view const word = text.substr(0, n);
  text.remove_prefix(n);
  return word;
}

void appendScientific(std::string& out, double value, int precision,
                      bool showSign) {
  if (showSign && !std::signbit(value)) out += '+';
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
  auto const [end, error] =
      std::to_chars(buffer, buffer + sizeof(buffer), value);
  out.append(buffer, end);
}
