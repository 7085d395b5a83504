#include "photarium/grid/BremsTable.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

#include "photarium/material/Material.h"
#include "tests/support/Listener.h"
#include "tests/support/messages.h"
#include "tests/support/nan_signs.h"
#include "tests/support/plain_tables.h"
#include "tests/support/table_materials.h"

namespace {

// Settings of a small table.
struct Settings {
  Settings(double kVp, double EBin, std::uint64_t steps, bool builtin = true) {
    spect.kVp = kVp;
    spect.EBin = EBin;
    spect.Pratt = builtin;
    dist.Steps = steps;
  }

  SpectConfig<double> spect;
  DistributionConfig<double> dist;
};

std::string tableOf(Settings const& settings,
                    Material<double> const& material) {
  std::ostringstream out;
  BremsTable(out, settings.spect, settings.dist, material);
  return out.str();
}

std::vector<std::string> linesOf(std::string const& text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::vector<double> numbersOf(std::string const& line) {
  std::istringstream in(line);
  std::vector<double> numbers;
  for (double number = 0; in >> number;) numbers.push_back(number);
  return numbers;
}

void expectPlain(Settings const& settings, Material<double> const& material) {
  std::ostringstream expected;
  plain::bremsTable(expected, settings.spect, settings.dist, material);
  EXPECT_EQ(comparable(tableOf(settings, material)),
            comparable(expected.str()));
}

TEST(BremsTable, BeginsWithItsHeader) {
  std::vector<std::string> const lines =
      linesOf(tableOf(Settings(100, 0.5, 11), bremsMaterial()));
  EXPECT_EQ(lines[0], "#Tramo\t0\tW\tBrems\t12\t200\t0.5\t0.5");
  EXPECT_EQ(lines[1], "# Density: 19.3\t# [g/cm^3]");
  EXPECT_EQ(lines[2], "# energy steps of 0.5 keV, from 0.5 keV to 100 keV");
  EXPECT_EQ(lines.size(), 203U);
  for (std::size_t i = 3; i < lines.size(); ++i)
    EXPECT_EQ(numbersOf(lines[i]).size(), 12U);
}

TEST(BremsTable, AddsARowForARemainder) {
  std::vector<std::string> const lines =
      linesOf(tableOf(Settings(100.2, 0.5, 11), bremsMaterial()));
  EXPECT_EQ(lines[2], "# energy steps of 0.5 keV, from 0.5 keV to 100.5 keV");
  EXPECT_EQ(lines.size(), 204U);
}

TEST(BremsTable, TakesItsGridFromTheSpectrumSettings) {
  Settings settings(3, 1, 11);
  settings.dist.kVp = 70;
  settings.dist.EBin = 7;
  EXPECT_EQ(linesOf(tableOf(settings, bremsMaterial())).size(), 6U);
}

TEST(BremsTable, EndsEachRowWithTheFractionOne) {
  std::vector<std::string> const lines =
      linesOf(tableOf(Settings(50, 5, 101), bremsMaterial()));
  for (std::size_t i = 3; i < lines.size(); ++i)
    EXPECT_NEAR(numbersOf(lines[i]).back(), 1, 1e-12);
}

TEST(BremsTable, RisesWithTheProbability) {
  std::vector<std::string> const lines =
      linesOf(tableOf(Settings(50, 5, 101), bremsMaterial()));
  for (std::size_t i = 3; i < lines.size(); ++i) {
    std::vector<double> const row = numbersOf(lines[i]);
    for (std::size_t j = 2; j < row.size(); ++j) EXPECT_GE(row[j], row[j - 1]);
  }
}

// The first fraction of row `row`, times its energy, is near the low limit: the
// inverse at probability 0 lies just below the first point of the integral.
double firstPhoton(double kVp, double EBin, std::size_t row) {
  Settings settings(kVp, EBin, 1001);
  settings.dist.Cubic = false;
  std::vector<std::string> const lines =
      linesOf(tableOf(settings, bremsMaterial()));
  return numbersOf(lines[2 + row])[1] * static_cast<double>(row) * EBin;
}

TEST(BremsTable, BeginsAtAHundredthOfTheEnergy) {
  EXPECT_NEAR(firstPhoton(51, 1, 50), 0.5, 0.006);  // one step of integration
}

TEST(BremsTable, BeginsAtOneKiloelectronvoltAtMost) {
  EXPECT_NEAR(firstPhoton(1001, 20, 50), 1, 0.11);
}

// A spectrum that does not depend on anything: 1 mb at all energies.
Material<double> constantMaterial() {
  Material<double> material("Xx", 2, 4, 3);
  std::map<double const, double> const points{{0, 1}, {0.5, 1}, {1, 1}};
  material.BremsSigma =
      BiCSpline<double, double>(std::map<double const, CSpline<double, double>>{
          {0.1, points}, {0.5, points}, {0.9, points}});
  material.TabSigma =
      BiLSpline<double, double>(std::map<double const, LSpline<double, double>>{
          {0.1, points}, {0.9, points}});
  return material;
}

// The integral of 1 / k over the photon energies from low to E is ln(E / low);
// rectangles at the left end add half of the first one.
TEST(BremsTable, IntegratesTheBuiltinSpectrum) {
  std::vector<std::string> const lines =
      linesOf(tableOf(Settings(101, 50, 5001), constantMaterial()));
  double const squared = beta2(50.);
  double const factor = 6.022140857e23 / 4 * 1e-27 * 3;
  // From 0.5 to 50 keV in 50009 steps.
  EXPECT_NEAR(
      numbersOf(lines[3])[0] / (4 * factor / squared * std::log(50 / 0.5)), 1,
      3e-4);
}

TEST(BremsTable, DividesTheTabulatedSpectrumByBetaOnce) {
  std::vector<std::string> const lines = linesOf(
      tableOf(Settings(101, 50, 5001, /*builtin=*/false), constantMaterial()));
  double const factor = 6.022140857e23 / 4 * 1e-27 * 3;
  EXPECT_NEAR(
      numbersOf(lines[3])[0] / (factor / beta(50.) * std::log(50 / 0.5)), 1,
      3e-4);
}

TEST(BremsTable, RefusesAStepThatReachesTheVoltage) {
  for (double step : {100., 200.})
    EXPECT_EQ(messageOf<std::runtime_error>(
                  [&] { tableOf(Settings(100, step, 0), bremsMaterial()); }),
              "Unreasonable value for maximum kVp.\n");
}

TEST(BremsTable, NeedsTwoSteps) {
  for (std::uint64_t const steps : {0U, 1U}) {
    std::ostringstream out;
    Settings const settings(100, 1, steps);
    EXPECT_EQ(messageOf<std::runtime_error>([&] {
                BremsTable(out, settings.spect, settings.dist, bremsMaterial());
              }),
              "Unreasonable value for number of steps.\n");
    EXPECT_EQ(out.str(), "");
  }
}

TEST(BremsTable, TakesTwoSteps) {
  expectPlain(Settings(7, 1, 2), bremsMaterial());
}

TEST(BremsTable, RefusesHugeTables) {
  EXPECT_EQ(messageOf<std::runtime_error>(
                [] { tableOf(Settings(1e9, 1, 11), bremsMaterial()); }),
            "Unreasonable number of energies.\n");
  EXPECT_EQ(messageOf<std::runtime_error>(
                [] { tableOf(Settings(100, 1, 1000000000), bremsMaterial()); }),
            "More than 100000 steps requested.\n");
}

TEST(BremsTable, HasTheBytesOfThePlainForm) {
  for (bool builtin : {true, false}) {
    for (bool cubic : {true, false}) {
      Settings settings(100.2, 4.7, 101, builtin);
      settings.dist.Cubic = cubic;
      expectPlain(settings, bremsMaterial());
    }
  }
}

TEST(BremsTable, HasTheBytesOfThePlainFormForAnyNumberOfRows) {
  for (double kVp : {1.5, 2.5, 3.5, 4.5, 5.5, 8.5})
    expectPlain(Settings(kVp, 1, 21), bremsMaterial());
}

// A spectrum that is zero, negative or no number in parts, so that steps add
// nothing and rows differ in their points.
Material<double> gappyMaterial(double odd) {
  Material<double> material("W", 0, 0, 0);
  std::map<double const, LSpline<double, double>> tabulated;
  int row = 0;
  for (double velocity : {0.05, 0.1, 0.2, 0.3, 0.4, 0.5}) {
    std::map<double const, double> points;
    for (int k = 0; k <= 10; ++k) points[k / 10.] = (k + row) % 4 ? 3 : odd;
    ++row;
    tabulated[velocity] = LSpline<double, double>(points);
  }
  material.TabSigma = BiLSpline<double, double>(tabulated);
  return material;
}

TEST(BremsTable, HasTheBytesOfThePlainFormForSpectraWithGaps) {
  double const infinity = std::numeric_limits<double>::infinity();
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (double odd : {0., -20., -1e300, nan, infinity, -infinity}) {
    Settings settings(60, 3, 41, /*builtin=*/false);
    expectPlain(settings, gappyMaterial(odd));
    settings.dist.Cubic = false;
    expectPlain(settings, gappyMaterial(odd));
  }
}

TEST(BremsTable, WritesZeroAndNoNumbersWithoutData) {
  for (bool builtin : {true, false}) {
    Material<double> const material("W", 0, 0, 0);
    Settings const settings(2, 1, 3, builtin);
    std::vector<std::string> const lines = linesOf(tableOf(settings, material));
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[3].substr(0, 13), "0.000000e+00\t");
    EXPECT_NE(lines[3].find("nan\t"), std::string::npos);
    expectPlain(settings, material);
  }
}

TEST(BremsTable, DoesNotDependOnTheNumberOfThreads) {
  Settings const settings(100, 1, 51);
  Material<double> const material = bremsMaterial();
  int const usual = omp_get_max_threads();
  omp_set_num_threads(1);
  std::string const alone = tableOf(settings, material);
  for (int threads : {2, 3, 8}) {
    omp_set_num_threads(threads);
    EXPECT_EQ(tableOf(settings, material), alone);
  }
  omp_set_num_threads(usual);
}

TEST(BremsTable, KeepsTheSettingsOfTheStream) {
  Settings const settings(2, 1, 3);
  std::ostringstream out;
  BremsTable(out, settings.spect, settings.dist, bremsMaterial());
  out.str("");
  out << 0.5;
  EXPECT_EQ(out.str(), "0.5");
}

TEST(BremsTable, ReportsEachPercentOnce) {
  int const usual = omp_get_max_threads();
  omp_set_num_threads(1);
  ProgressListener listener;
  {
    Settings settings(200, 1, 11);
    settings.spect.IPC.Connect(listener.address());
    tableOf(settings, bremsMaterial());
  }
  omp_set_num_threads(usual);
  std::vector<std::string> expected;
  for (int percent = 0; percent <= 100; ++percent)
    expected.push_back("Progress: " + std::to_string(percent));
  EXPECT_EQ(listener.lines(), expected);
}

TEST(BremsTable, ReportsRisingPercentsFromATeam) {
  ProgressListener listener;
  {
    Settings settings(50, 1, 11);
    settings.spect.IPC.Connect(listener.address());
    tableOf(settings, bremsMaterial());
  }
  std::vector<std::string> const lines = listener.lines();
  int last = -1;
  for (std::string const& line : lines) {
    ASSERT_EQ(line.substr(0, 10), "Progress: ");
    int const percent = std::stoi(line.substr(10));
    EXPECT_GT(percent, last);
    last = percent;
  }
  EXPECT_EQ(last, 100);
}

TEST(BremsTable, DoesNotMindAPeerThatIsGone) {
  Settings settings(50, 1, 11);
  std::string const quiet = tableOf(settings, bremsMaterial());
  Listener listener;
  settings.spect.IPC.Connect(listener.address());
  listener.accept().close();
  EXPECT_EQ(tableOf(settings, bremsMaterial()), quiet);
}

TEST(BremsTable, ThrowsBehindTheTeamWhatARowThrows) {
  Settings settings(50, 1, 11);
  // The progress stream fails in the first row.
  settings.spect.IPC.setstate(std::ios_base::badbit);
  EXPECT_THROW(settings.spect.IPC.exceptions(std::ios_base::badbit),
               std::ios_base::failure);
  EXPECT_THROW(tableOf(settings, bremsMaterial()), std::ios_base::failure);
}

// Notes how much of a table has been written whenever progress is reported.
class Witness : public std::streambuf {
 public:
  explicit Witness(std::ostringstream& table) : table_(table) {}

  // Bytes of the table at the report of so many percent.
  std::map<int, std::size_t> written;

 protected:
  int_type overflow(int_type c) override {
    line_ += traits_type::to_char_type(c);
    if (line_.back() != '\n') return c;
    written[std::stoi(line_.substr(10))] = table_.view().size();
    line_.clear();
    return c;
  }

 private:
  std::ostringstream& table_;
  std::string line_;
};

TEST(BremsTable, WritesRowsWhileOthersAreComputed) {
  int const usual = omp_get_max_threads();
  omp_set_num_threads(2);
  Settings const settings(2000, 1, 11);
  std::ostringstream out;
  Witness witness(out);
  std::ostream& progress = settings.spect.IPC;
  std::streambuf* const connection = progress.rdbuf(&witness);
  BremsTable(out, settings.spect, settings.dist, bremsMaterial());
  progress.rdbuf(connection);
  omp_set_num_threads(usual);
  double const size = static_cast<double>(out.view().size());
  // Two threads hold back 64 of 2000 rows at most.
  for (auto const& [percent, bytes] : witness.written)
    EXPECT_GT(static_cast<double>(bytes) / size, percent / 100. - 0.04);
  EXPECT_GT(witness.written.size(), 10U);
}

}  // namespace
