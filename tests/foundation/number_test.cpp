#include "photarium/foundation/number.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <ios>
#include <limits>
#include <locale>
#include <random>

#include "tests/support/nan_signs.h"

namespace {

using Random = std::mt19937_64;
using Limits = std::numeric_limits<double>;

std::size_t below(Random& random, std::size_t bound) {
  return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

template <std::size_t N>
std::string oneOf(Random& random, std::array<char const*, N> const& words) {
  return words[below(random, N)];
}

std::string digits(Random& random, std::size_t most) {
  std::string text(below(random, most + 1), '0');
  for (char& c : text) c = static_cast<char>('0' + below(random, 10));
  return text;
}

std::uint64_t bitsOf(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

// What an extraction finds, leaves and tells.
template <class N>
struct Outcome {
  bool good;
  bool atEnd;
  std::size_t taken;
  N value;
};

template <class N>
Outcome<N> byStream(std::string const& text) {
  std::istringstream in(text);
  in.imbue(std::locale::classic());
  N value = 77;
  in >> value;
  bool const good = !in.fail();
  bool const atEnd = in.eof();
  in.clear();
  auto const taken = atEnd ? text.size() : static_cast<std::size_t>(in.tellg());
  return {good, atEnd, taken, value};
}

template <class N>
Outcome<N> byLibrary(std::string const& text) {
  std::string_view rest = text;
  N value = 77;
  bool const good = extractNumber(rest, value);
  return {good, rest.empty(), text.size() - rest.size(), value};
}

template <class N>
bool same(N const& a, N const& b) {
  return std::memcmp(&a, &b, sizeof(N)) == 0;  // tells zeros apart
}

template <class N>
void expectStreamMeaning(std::string const& text) {
  Outcome<N> const expected = byStream<N>(text);
  Outcome<N> const found = byLibrary<N>(text);
  EXPECT_EQ(found.good, expected.good) << text;
  EXPECT_EQ(found.atEnd, expected.atEnd) << text;
  EXPECT_EQ(found.taken, expected.taken) << text;
  EXPECT_TRUE(same(found.value, expected.value))
      << text << ": " << found.value << " for " << expected.value;
}

std::vector<std::string> const oddTexts = {"",
                                           " ",
                                           "\t\n\v\f\r 5",
                                           "-",
                                           "+",
                                           ".",
                                           "-.",
                                           "e5",
                                           ".e5",
                                           "1e",
                                           "1e+",
                                           "1E-",
                                           "1e+x",
                                           "1ee5",
                                           "1e5e",
                                           "1.2.3",
                                           "1..2",
                                           "+.5",
                                           "-.5",
                                           ".5",
                                           "5.",
                                           "5.e1",
                                           "+-5",
                                           "--5",
                                           "- 5",
                                           "0x10",
                                           "0x",
                                           "nan",
                                           "-nan",
                                           "inf",
                                           "-inf",
                                           "infinity",
                                           "1e999",
                                           "-1e999",
                                           "1e-999",
                                           "-1e-999",
                                           "0e999",
                                           "-0",
                                           "-0.0",
                                           "4.9406564584124654e-324",
                                           "2.4703282292062327e-324",
                                           "2.4703282292062328e-324",
                                           "2.2250738585072011e-308",
                                           "2.2250738585072014e-308",
                                           "1.7976931348623157e308",
                                           "1.7976931348623158e308",
                                           "1.7976931348623159e308",
                                           "9007199254740993",
                                           "9007199254740992.5",
                                           "9007199254740993e0",
                                           "18446744073709551615",
                                           "18446744073709551616",
                                           "-18446744073709551615",
                                           "-18446744073709551616",
                                           "9223372036854775807",
                                           "9223372036854775808",
                                           "-9223372036854775808",
                                           "-9223372036854775809",
                                           "4294967295",
                                           "4294967296",
                                           "-1",
                                           "-4294967295",
                                           "-4294967296",
                                           "007",
                                           "1,5",
                                           "1 2",
                                           "1e00000000000000000001",
                                           "1e99999999999999999999",
                                           "1e-99999999999999999999",
                                           "\x80",
                                           "1\x80",
                                           "1.\xb0",
                                           "1.1234\xff\xff",
                                           "1e5.5",
                                           "12345678",
                                           "1.12345678",
                                           "123456781234567812345678",
                                           "1.+5",
                                           "1.234567+5",
                                           std::string("1\0002", 3),
                                           std::string("\0001", 2)};

}  // namespace

TEST(extractNumber, ReadsOddTextsAsAStreamDoes) {
  for (std::string const& text : oddTexts) {
    expectStreamMeaning<double>(text);
    expectStreamMeaning<std::int64_t>(text);
    expectStreamMeaning<std::uint64_t>(text);
    expectStreamMeaning<std::uint32_t>(text);
  }
}

TEST(extractNumber, ReadsRandomTextsAsAStreamDoes) {
  std::array const ahead{"", "", "", " ", "\t ", "\r\n", "x"};
  std::array const sign{"", "", "", "-", "+", "--"};
  std::array const point{"", ".", ".", "."};
  std::array const letter{"", "", "e", "E", "e", "x"};
  std::array const behind{"", "", "", " ", ",", "keV", "e", ".5", "#", "-"};
  Random random(1);
  for (int i = 0; i < 100000; ++i) {
    std::string const text =
        oneOf(random, ahead) + oneOf(random, sign) + digits(random, 20) +
        oneOf(random, point) + digits(random, 20) + oneOf(random, letter) +
        oneOf(random, sign) + digits(random, 3) + oneOf(random, behind);
    expectStreamMeaning<double>(text);
    expectStreamMeaning<std::int64_t>(text);
    expectStreamMeaning<std::uint64_t>(text);
    expectStreamMeaning<std::uint32_t>(text);
  }
}

TEST(extractNumber, ReadsRandomBytesAsAStreamDoes) {
  std::string const alphabet("0123456789+-.eE xn\0\t", 20);
  Random random(2);
  for (int i = 0; i < 100000; ++i) {
    std::string text(below(random, 24), ' ');
    for (char& c : text) c = alphabet[below(random, alphabet.size())];
    expectStreamMeaning<double>(text);
    expectStreamMeaning<std::uint32_t>(text);
  }
}

TEST(extractNumber, ReadsDecimalsOfEveryWidthAheadOfEveryByteAsAStreamDoes) {
  std::string const numerals = "9876543210";
  for (std::size_t whole = 0; whole <= numerals.size(); ++whole)
    for (std::size_t places = 0; places <= numerals.size(); ++places)
      for (int byte = 0; byte < 256; ++byte)
        expectStreamMeaning<double>(numerals.substr(0, whole) + '.' +
                                    numerals.substr(0, places) +
                                    static_cast<char>(byte) + ".12345 6.7e8");
}

TEST(extractNumber, ReadsAnyCountOfDigitsAsAStreamDoes) {
  std::string const zeros(5000, '0');
  std::string const ones(2000, '1');
  for (std::string const& text :
       {zeros, zeros + '.' + zeros, '1' + zeros + "e-5000",
        "0." + zeros + "1e5001", ones + "e-1990", ones + '.' + ones,
        '-' + ones + "e-2400", "." + zeros + ones, zeros + '1' + zeros,
        // The middle between 1 and its successor, and a trace above and below.
        "1.00000000000000011102230246251565404236316680908203125" + zeros,
        "1.00000000000000011102230246251565404236316680908203125" + zeros + '1',
        "1.00000000000000011102230246251565404236316680908203124" +
            std::string(5000, '9')})
    expectStreamMeaning<double>(text);
}

TEST(extractNumber, RoundsMiddlesBetweenDoublesAsAStreamDoes) {
  Random random(3);
  for (int i = 0; i < 20000; ++i) {
    // An odd number of 54 bits lies between two doubles; so do its products
    // with powers of two, which are short decimals for small exponents.
    std::uint64_t const odd =
        (random() >> 11 << 1) | (std::uint64_t{1} << 53) | 1;
    long double const middle =
        std::ldexp(static_cast<long double>(odd),
                   static_cast<int>(below(random, 24)) - 12);
    std::string text(64, '\0');
    char* const begin = text.data();
    char const* const end = std::to_chars(begin, begin + text.size(), middle,
                                          std::chars_format::fixed, 12)
                                .ptr;
    text.resize(static_cast<std::size_t>(end - begin));
    expectStreamMeaning<double>(text);
  }
}

namespace {

// Texts of up to 20 digits with exponents of every size, alone and with text
// behind them.
void expectFromCharsValue(std::uint64_t seed, int count) {
  Random random(seed);
  std::array const behind{"", " ", " 0.5 7.5 8.5"};
  for (int i = 0; i < count; ++i) {
    std::string text = digits(random, 8) + '.' + digits(random, 12);
    if (text.size() == 1) text = "0.";
    std::size_t const reach = i % 2 == 0 ? 30 : 330;
    if (i % 3 != 0)
      text += 'e' + std::to_string(static_cast<int>(below(random, 2 * reach)) -
                                   static_cast<int>(reach));
    double expected = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), expected).ec !=
        std::errc())
      continue;  // out of range, where from_chars has no value
    std::string const left = oneOf(random, behind);
    text += left;
    std::string_view rest = text;
    double value = 0;
    ASSERT_TRUE(extractNumber(rest, value)) << text;
    ASSERT_EQ(rest, left) << text;
    ASSERT_EQ(bitsOf(value), bitsOf(expected)) << text;
  }
}

}  // namespace

TEST(extractNumber, GivesTheDoublesOfFromChars) {
  expectFromCharsValue(4, 1000000);
}

// Ten million texts; run it with --gtest_also_run_disabled_tests.
TEST(extractNumber, DISABLED_GivesTheDoublesOfFromCharsAtLength) {
  expectFromCharsValue(5, 10000000);
}

TEST(extractNumber, GivesBackEveryDoubleThatWasWritten) {
  Random random(6);
  for (int i = 0; i < 200000; ++i) {
    double const value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    std::string text;
    appendScientific(text, value, 16);
    std::string_view rest = text;
    double found = 0;
    ASSERT_TRUE(extractNumber(rest, found)) << text;
    ASSERT_EQ(bitsOf(found), bitsOf(value)) << text;
  }
}

TEST(extractNumber, LeavesTheTextBehindTheNumber) {
  std::string_view rest = " +1.5e3keV";
  double energy = 0;
  EXPECT_TRUE(extractNumber(rest, energy));
  EXPECT_EQ(energy, 1500);
  EXPECT_EQ(rest, "keV");
}

TEST(extractNumber, LeavesTheLargestValueWhereTheTextDoesNotFit) {
  std::string_view rest = "-1e999";
  double value = 0;
  EXPECT_FALSE(extractNumber(rest, value));
  EXPECT_EQ(value, -Limits::max());
}

TEST(extractNumber, WrapsANegativeUnsignedNumber) {
  std::string_view rest = "-1";
  std::uint32_t value = 0;
  EXPECT_TRUE(extractNumber(rest, value));
  EXPECT_EQ(value, 4294967295U);
}

TEST(decimalValue, GivesTheDoublesOfFromChars) {
  Random random(7);
  for (int i = 0; i < 200000; ++i) {
    std::uint64_t const whole = random() >> below(random, 64);
    int const exponent = static_cast<int>(below(random, 700)) - 360;
    std::string const text =
        std::to_string(whole) + 'e' + std::to_string(exponent);
    double expected = 0;
    auto const error =
        std::from_chars(text.data(), text.data() + text.size(), expected).ec;
    if (error != std::errc()) expected = exponent > 0 ? Limits::infinity() : 0;
    ASSERT_EQ(bitsOf(decimalValue(whole, exponent)), bitsOf(expected)) << text;
  }
}

TEST(decimalValue, LeavesTheRangeOfDoublesAtBothEnds) {
  EXPECT_EQ(decimalValue(1, 309), Limits::infinity());
  EXPECT_EQ(decimalValue(1, 2147483647), Limits::infinity());
  EXPECT_EQ(decimalValue(1, -325), 0);
  EXPECT_EQ(decimalValue(1, -2147483647 - 1), 0);
  EXPECT_EQ(decimalValue(0, 2147483647), 0);
}

TEST(extractWord, TakesWordsUntilOnlyBlanksAreLeft) {
  std::string_view rest = " \tab\r\ncd \v";
  EXPECT_EQ(extractWord(rest), "ab");
  EXPECT_EQ(extractWord(rest), "cd");
  EXPECT_EQ(extractWord(rest), "");
  EXPECT_EQ(rest, "");
}

namespace {

std::string streamed(double value, std::ios::fmtflags flags, int precision) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out.setf(flags);
  out.precision(precision);
  out << value;
  return out.str();
}

void expectStreamBytes(double value, int precision) {
  std::string text;
  appendScientific(text, value, precision);
  ASSERT_EQ(comparable(text),
            comparable(streamed(value, std::ios::scientific, precision)));
  text.clear();
  appendScientific(text, value, precision, /*showSign=*/true);
  ASSERT_EQ(comparable(text),
            comparable(streamed(value, std::ios::scientific | std::ios::showpos,
                                precision)));
  text.clear();
  appendFixed(text, value, precision);
  ASSERT_EQ(comparable(text),
            comparable(streamed(value, std::ios::fixed, precision)));
  text.clear();
  appendGeneral(text, value, precision);
  ASSERT_EQ(comparable(text), comparable(streamed(value, {}, precision)));
}

}  // namespace

TEST(appendNumber, WritesTheBytesOfAStream) {
  for (double value : {0.,
                       -0.,
                       1.,
                       -1.,
                       0.5,
                       2.5,
                       9.9999995,
                       99999.95,
                       999999.5,
                       1e-5,
                       1e22,
                       123456789.,
                       Limits::max(),
                       -Limits::max(),
                       Limits::min(),
                       Limits::denorm_min(),
                       -Limits::denorm_min(),
                       Limits::infinity(),
                       -Limits::infinity(),
                       Limits::quiet_NaN(),
                       -Limits::quiet_NaN()})
    for (int precision = 0; precision <= 17; ++precision)
      expectStreamBytes(value, precision);
}

TEST(appendNumber, WritesTheBytesOfAStreamForRandomBits) {
  Random random(8);
  for (int i = 0; i < 20000; ++i)
    expectStreamBytes(std::bit_cast<double>(random()), i % 18);
}

TEST(appendNumber, WritesTheBytesOfAStreamForUsualMagnitudes) {
  Random random(9);
  std::uniform_real_distribution<double> exponent(-8, 8);
  for (int i = 0; i < 20000; ++i)
    expectStreamBytes(std::pow(10., exponent(random)), i % 18);
}

TEST(appendNumber, RoundsTiesLikeAStream) {
  Random random(10);
  for (int i = 0; i < 5000; ++i) {
    double const whole = static_cast<double>(random() % 9000000 + 1000000);
    for (double tie : {whole + 0.5, (whole + 0.5) / 8, (whole + 0.5) / 1024})
      for (int precision : {3, 5, 6}) expectStreamBytes(tie, precision);
  }
}

TEST(appendNumber, WritesTheBytesOfAStreamAroundPowersOfTen) {
  for (int ten = -25; ten <= 12; ++ten) {
    double const power = std::pow(10., ten);
    double const below = std::nextafter(power, 0);
    for (double value : {below, power, std::nextafter(power, 1e300),
                         power * 9.9999994999, power * 9.9999995001})
      for (int precision = 0; precision <= 9; ++precision)
        expectStreamBytes(value, precision);
  }
}

TEST(appendNumber, WritesMoreDigitsThanADoubleHas) {
  expectStreamBytes(Limits::max(), 500);
  expectStreamBytes(Limits::denorm_min(), 1200);
}

TEST(appendNumber, KeepsWhatStandsAhead) {
  std::string text = "E ";
  appendFixed(text, 1.25, 2);
  appendInteger(text, 18446744073709551615U);
  EXPECT_EQ(text, "E 1.2518446744073709551615");
}

namespace {

// Decimal commas and groups of thousands, whatever locales are installed.
struct CommaNumbers : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

class CommaLocale {
 public:
  CommaLocale()
      : before(std::locale::global(
            std::locale(std::locale::classic(), new CommaNumbers))) {
    // Where it is installed, so that the C library has decimal commas too.
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
  }
  CommaLocale(CommaLocale const&) = delete;
  CommaLocale& operator=(CommaLocale const&) = delete;
  ~CommaLocale() {
    std::setlocale(LC_NUMERIC, "C");
    std::locale::global(before);
  }

 private:
  std::locale before;
};

}  // namespace

TEST(number, DoesNotDependOnTheProcessLocale) {
  CommaLocale const comma;
  std::string_view rest = "1234.5,6";
  double value = 0;
  EXPECT_TRUE(extractNumber(rest, value));
  EXPECT_EQ(value, 1234.5);
  EXPECT_EQ(rest, ",6");
  std::string text;
  appendFixed(text, 1234.5, 1);
  appendScientific(text, 1234.5, 1);
  appendGeneral(text, 1234.5);
  appendInteger(text, 1234567);
  EXPECT_EQ(text, "1234.51.2e+031234.51234567");
}
