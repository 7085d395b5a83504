#include "photarium/foundation/console.h"

#include <gtest/gtest.h>

#include <iostream>
#include <limits>

namespace {

// Catches what a standard stream prints, and gives it its format back.
class Captured {
 public:
  explicit Captured(std::ostream& stream)
      : stream_(stream),
        buffer_(stream.rdbuf(text_.rdbuf())),
        flags_(stream.flags()),
        precision_(stream.precision()) {}
  Captured(Captured const&) = delete;
  Captured& operator=(Captured const&) = delete;
  ~Captured() {
    stream_.rdbuf(buffer_);
    stream_.flags(flags_);
    stream_.precision(precision_);
  }

  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::ostream& stream_;
  std::streambuf* buffer_;
  std::ios::fmtflags flags_;
  std::streamsize precision_;
};

}  // namespace

TEST(initStreams, PrintsScientificNumbersAndWords) {
  Captured const out(std::cout);
  Captured const err(std::cerr);
  initStreams(true, 3);
  std::cout << 0.5 << ' ' << true;
  EXPECT_EQ(out.text(), "5.000e-01 true");
}

TEST(initStreams, PrintsFixedNumbers) {
  Captured const out(std::cout);
  Captured const err(std::cerr);
  initStreams(false, 2);
  std::cout << 0.5;
  EXPECT_EQ(out.text(), "0.50");
}

TEST(initStreams, PrintsErrorsWithoutDecimals) {
  Captured const out(std::cout);
  Captured const err(std::cerr);
  initStreams(true, 2);
  std::cerr << 1.7 << ' ' << false;
  EXPECT_EQ(err.text(), "2 false");
}

TEST(initStreams, ClearsNoFlag) {
  Captured const out(std::cout);
  Captured const err(std::cerr);
  std::cout.setf(std::ios::showpos);
  initStreams(false, 1);
  initStreams(true, 1);
  EXPECT_NE(std::cout.flags() & std::ios::showpos, 0);
  EXPECT_EQ(std::cout.flags() & std::ios::floatfield,
            std::ios::fixed | std::ios::scientific);
}

TEST(VersionInfo, NamesVersionWidthAndRuntime) {
  std::ostringstream out;
  std::ostream const& same = out << VersionInfo;
  EXPECT_EQ(&same, &out);
  std::string const bits = sizeof(void*) == 8 ? "64" : "32";
  EXPECT_EQ(out.str(),
            "Photarium " PHOTARIUM_VERSION " " + bits + "bit OpenMP");
}

TEST(SpectInfo, PrintsMeanAndFlux) {
  EXPECT_EQ(SpectInfo(32.5, 1e10, 0.), "Avg:   32.500 Flux:   1.00000e+10");
}

TEST(SpectInfo, PrintsAPositiveKerma) {
  EXPECT_EQ(SpectInfo(1234.5678, 1.5, 2e-7),
            "Avg: 1234.568 Flux:   1.50000e+00 Kerma:   2.00000e-07");
  EXPECT_EQ(SpectInfo(0., -1., -2.), "Avg:    0.000 Flux:  -1.00000e+00");
}

TEST(SpectInfo, LetsWideNumbersGrow) {
  EXPECT_EQ(SpectInfo(123456.7, 1e300, 1.),
            "Avg: 123456.700 Flux:  1.00000e+300 Kerma:   1.00000e+00");
}

TEST(SpectInfo, PrintsWhatIsNoNumber) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(SpectInfo(nan, nan, nan), "Avg:      nan Flux:           nan");
}
