#include "photarium/grid/AngleDist.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/support/messages.h"
#include "tests/support/nan_signs.h"
#include "tests/support/plain_tables.h"
#include "tests/support/table_materials.h"

namespace {

using Points = std::map<double const, double>;

DistributionConfig<double> settings(double kVp, double EBin,
                                    std::uint64_t steps) {
  DistributionConfig<double> dist;
  dist.kVp = kVp;
  dist.EBin = EBin;
  dist.Steps = steps;
  return dist;
}

// The same cumulative distribution at all energies.
Material<double> constantMaterial(Points const& cumulative) {
  Material<double> material("Xx", 0, 0, 2);
  material.ElasticAngle =
      BiLSpline<double, double>(std::map<double const, LSpline<double, double>>{
          {0, LSpline<double, double>(cumulative)}});
  return material;
}

// A table and the warning it ends in, if any.
struct Result {
  Result(DistributionConfig<double> const& dist,
         Material<double> const& material) {
    std::ostringstream out;
    try {
      AngleDist(out, dist, material);
    } catch (warning const& findings) {
      message = findings.what();
    }
    text = out.str();
  }

  // What follows the header.
  std::string rows() const {
    std::size_t begin = 0;
    for (int line = 0; line < 3; ++line) begin = text.find('\n', begin) + 1;
    return text.substr(begin);
  }

  std::string text, message;
};

TEST(AngleDist, WritesHeaderAndSignedCosines) {
  Result const result(settings(2, 1, 5),
                      constantMaterial({{-1, 0}, {0, 0.5}, {1, 1}}));
  EXPECT_EQ(result.text,
            "#MIC\t0\tXx\tAngle\t5\t2\t1\t1\n"
            "# Density: 2\t# [g/cm^3]\n"
            "# energy steps of 1 keV, from 1 keV to 2 keV\n"
            " -1.000000e+00 -5.000000e-01 +0.000000e+00 +5.000000e-01"
            " +1.000000e+00\n"
            " -1.000000e+00 -5.000000e-01 +0.000000e+00 +5.000000e-01"
            " +1.000000e+00\n");
  EXPECT_EQ(result.message, "");
}

TEST(AngleDist, CountsARemainderAsARow) {
  Result const result(settings(1, 0.3, 2), constantMaterial({{-1, 0}, {1, 1}}));
  EXPECT_EQ(result.text.substr(0, result.text.find(" -")),
            "#MIC\t0\tXx\tAngle\t2\t4\t0.3\t0.3\n"
            "# Density: 2\t# [g/cm^3]\n"
            "# energy steps of 0.3 keV, from 0.3 keV to 1.2 keV\n");
}

TEST(AngleDist, InterpolatesOverTheLogarithmOfTheEnergy) {
  Material<double> material("Xx", 0, 0, 2);
  // The probability of a cosine below 0 falls from 0.5 at 1 keV to 0.25 at 100.
  material.ElasticAngle =
      BiLSpline<double, double>(std::map<double const, LSpline<double, double>>{
          {0, LSpline<double, double>(Points{{-1, 0}, {0, 0.5}, {1, 1}})},
          {2, LSpline<double, double>(Points{{-1, 0}, {0, 0.25}, {1, 1}})}});
  Result const result(settings(20, 10, 9), material);
  std::istringstream rows(result.rows());
  std::vector<double> cosines(9);
  for (double& cosine : cosines) rows >> cosine;
  // At 10 keV it is 0.375, the fourth of nine probabilities.
  EXPECT_EQ(cosines[3], 0);
}

TEST(AngleDist, LeavesSettingsOnTheStream) {
  std::ostringstream out;
  AngleDist(out, settings(2, 1, 2), constantMaterial({{-1, 0}, {1, 1}}));
  out.str("");
  out << 0.5;
  EXPECT_EQ(out.str(), "+5.000000e-01");
}

TEST(AngleDist, KeepsTheLowerOfTwoCosinesOfOneProbability) {
  Result const result(
      settings(2, 1, 3),
      constantMaterial({{-1, 0}, {-0.5, 0.5}, {0.5, 0.5}, {1, 1}}));
  EXPECT_EQ(result.rows().substr(0, 43),
            " -1.000000e+00 -5.000000e-01 +1.000000e+00\n");
  EXPECT_EQ(result.message, "");
}

TEST(AngleDist, TellsOfAFirstCosineThatIsNotMinusOne) {
  Result const late(settings(2, 1, 2), constantMaterial({{-0.5, 0}, {1, 1}}));
  EXPECT_EQ(late.message,
            "Something wrong at: (0, 0) == (1, 0, -0.5)\n"
            "Something wrong at: (1, 0) == (2, 0, -0.5)\n");
}

TEST(AngleDist, TellsOfCosinesOutOfRangeAndWritesThem) {
  // On from -1 at 0.2 to -1.5 at 0.
  Result const high(settings(1.5, 1, 11),
                    constantMaterial({{-1, 0.2}, {1, 1}}));
  EXPECT_EQ(high.message.substr(0, 89),
            "Something wrong at: (0, 0) == (1, 0, -1.5)\n"
            "Something wrong at: (0, 1) == (1, 0.1, -1.25)\n");
  EXPECT_EQ(high.rows().substr(0, 29), " -1.500000e+00 -1.250000e+00 ");
}

TEST(AngleDist, TellsOfAFallingProbability) {
  Result const result(
      settings(1.5, 1, 2),
      constantMaterial({{-1, 0}, {0, 0.7}, {0.5, 0.6}, {1, 1}}));
  EXPECT_EQ(result.message,
            "Probability function not monotonous at: 1, 0.5, 0.6\n"
            "Probability function not monotonous at: 2, 0.5, 0.6\n");
  EXPECT_EQ(result.rows(),
            " -1.000000e+00 +1.000000e+00\n -1.000000e+00 +1.000000e+00\n");
}

TEST(AngleDist, WritesZerosWithoutData) {
  Result const result(settings(2, 1, 3), Material<double>("Xx", 0, 0, 2));
  EXPECT_EQ(result.rows(),
            " +0.000000e+00 +0.000000e+00 +0.000000e+00\n"
            " +0.000000e+00 +0.000000e+00 +0.000000e+00\n");
  EXPECT_EQ(result.message,
            "Something wrong at: (0, 0) == (1, 0, 0)\n"
            "Something wrong at: (1, 0) == (2, 0, 0)\n");
}

TEST(AngleDist, WritesEmptyRowsForNoSteps) {
  Result const result(settings(2, 1, 0), constantMaterial({{-1, 0}, {1, 1}}));
  EXPECT_EQ(result.rows(), "\n\n");
  EXPECT_EQ(result.message, "");
}

TEST(AngleDist, HasNoProbabilityForASingleStep) {
  Result const result(settings(1.5, 1, 1), constantMaterial({{-1, 0}, {1, 1}}));
  EXPECT_NE(result.rows().find("nan"), std::string::npos);
  EXPECT_NE(result.message.find("Something wrong at: (0, 0) == (1, "),
            std::string::npos);
}

TEST(AngleDist, RefusesAStepThatReachesTheVoltage) {
  for (double step : {100., 200.}) {
    std::ostringstream out;
    EXPECT_EQ(messageOf<std::runtime_error>([&] {
                AngleDist(out, settings(100, step, 5), Material<double>());
              }),
              "Unreasonable value for maximum kVp\n");
    EXPECT_EQ(out.str(), "");
  }
}

TEST(AngleDist, RefusesHugeTables) {
  std::ostringstream out;
  EXPECT_EQ(messageOf<std::runtime_error>([&] {
              AngleDist(out, settings(1e9, 1, 5), Material<double>());
            }),
            "Unreasonable number of energies.\n");
  EXPECT_EQ(messageOf<std::runtime_error>([&] {
              AngleDist(out, settings(100, 1, 1000000), Material<double>());
            }),
            "More than 100000 steps requested.\n");
  EXPECT_EQ(out.str(), "");
}

void expectPlain(DistributionConfig<double> const& dist,
                 Material<double> const& material) {
  std::ostringstream expected;
  std::string const findings = plain::angleDist(expected, dist, material);
  Result const result(dist, material);
  EXPECT_EQ(comparable(result.text), comparable(expected.str()));
  EXPECT_EQ(comparable(result.message), comparable(findings));
}

TEST(AngleDist, HasTheBytesOfThePlainForm) {
  expectPlain(settings(100, 7, 301), angleMaterial(50));
}

TEST(AngleDist, HasTheBytesOfThePlainFormForDisorderedProbabilities) {
  std::mt19937_64 random(31);
  std::uniform_int_distribution<int> tenths(-2, 12);
  for (int round = 0; round < 200; ++round) {
    Points cumulative;
    for (double x = -1; x <= 1; x += 0.25) cumulative[x] = tenths(random) / 10.;
    expectPlain(settings(3, 1, 12), constantMaterial(cumulative));
  }
}

TEST(AngleDist, HasTheBytesOfThePlainFormForNoNumbers) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  double const infinity = std::numeric_limits<double>::infinity();
  for (double odd : {nan, infinity, -infinity}) {
    for (double x : {-1., 0., 1.}) {
      Points cumulative{{-1, 0}, {-0.5, 0.2}, {0, 0.5}, {0.5, 0.4}, {1, 1}};
      cumulative[x] = odd;
      expectPlain(settings(2, 1, 5), constantMaterial(cumulative));
    }
  }
}

}  // namespace
