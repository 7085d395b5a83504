#include "photarium/material/AttenuationCoeff.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/foundation/warning.h"

namespace {

using Curve = AttenuationCoeff<double>;
using MapPoints = std::multimap<double, double>;
using Data = std::vector<Curve::MapStretch>;

Curve curve(MapPoints const& points, Curve::Interpolation law,
            bool cubic = false) {
  return Curve(Data{{points, law, cubic}}, 1., true);
}

std::string text(Curve const& curve) {
  std::ostringstream out;
  out << curve;
  return out.str();
}

std::string failure(Curve const& curve, double x) {
  try {
    curve(x, false);
  } catch (std::out_of_range const& outside) {
    return outside.what();
  }
  return "no failure";
}

/// Shows what only derived classes see.
struct OpenCurve : Curve {
  using Curve::Curve;
  using Curve::eraseData;
  explicit OpenCurve(Curve const& other) : Curve(other) {}
};

TEST(AttenuationCoeff, KnowsFiveLaws) {
  for (int law = -1; law < 8; ++law)
    EXPECT_EQ(Curve::InterpolationValid(static_cast<Curve::Interpolation>(law)),
              law >= 1 && law <= 5);
}

TEST(AttenuationCoeff, InterpolatesOnTheScalesOfItsLaw) {
  MapPoints const points{{1., 4.}, {4., 64.}};
  double const e = std::exp(1.);
  EXPECT_EQ(curve(points, Curve::LinLin)(2., false), 24.);
  EXPECT_NEAR(curve(points, Curve::LinLog)(2.5, false), 16., 1e-13);
  EXPECT_NEAR(curve({{1., 4.}, {e * e, 8.}}, Curve::LogLin)(e, false), 6.,
              1e-14);
  EXPECT_NEAR(curve(points, Curve::LogLog)(2., false), 16., 1e-13);
}

TEST(AttenuationCoeff, HoldsConstantValuesUpToTheNextPoint) {
  Curve const steps = curve({{1., 7.}, {2., 5.}, {3., 99.}}, Curve::Const);
  EXPECT_EQ(steps(1., false), 7.);
  EXPECT_EQ(steps(std::nextafter(2., 1.), false), 7.);
  EXPECT_EQ(steps(2., false), 5.);
  EXPECT_EQ(steps(3., false), 5.);
  EXPECT_EQ(steps.Discontinuities(),
            (std::map<double, double>{{1., 0.}, {2., 5. / 7.}}));
  EXPECT_EQ(failure(steps, 3.5),
            "Cannot evaluate at 3.500000e+00 (above 2.000000e+00).");
}

TEST(AttenuationCoeff, HasNoRangesFromOneConstantPoint) {
  Curve const none = curve({{1., 7.}}, Curve::Const);
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(none(1., true), 0.);
}

TEST(AttenuationCoeff, GivesAnEdgeToTheRangeAbove) {
  Curve const steps =
      curve({{1., 2.}, {5., 2.}, {5., 8.}, {9., 8.}}, Curve::LinLin);
  EXPECT_EQ(steps(5., false), 8.);
  EXPECT_EQ(steps(std::nextafter(5., 0.), false), 2.);
  EXPECT_EQ(steps.Discontinuities(),
            (std::map<double, double>{{1., 0.}, {5., 4.}}));
}

TEST(AttenuationCoeff, TakesNearNeighboursForAnEdge) {
  Curve const near =
      curve({{1., 2.}, {2., 2.}, {2. * 1.00005, 4.}, {3., 4.}}, Curve::LinLin);
  EXPECT_EQ(near.Discontinuities().size(), 2u);
  EXPECT_EQ(near.Discontinuities().rbegin()->first, 2. * 1.00005);
  Curve const apart =
      curve({{1., 2.}, {2., 2.}, {2. * 1.0002, 4.}, {3., 4.}}, Curve::LinLin);
  EXPECT_EQ(apart.Discontinuities().size(), 1u);
  EXPECT_EQ(apart(2.0002, false), 3.);
}

TEST(AttenuationCoeff, UsesTheLowerRangeWithinAnEdge) {
  Curve const steps =
      curve({{1., 2.}, {2., 4.}, {2. * 1.00005, 9.}, {3., 9.}}, Curve::LinLin);
  EXPECT_NEAR(steps(2. * 1.00002, true), 4.00008, 1e-12);
  EXPECT_EQ(failure(steps, 2. * 1.00002),
            "Cannot evaluate at 2.000040e+00 (above 1.000000e+00).");
}

TEST(AttenuationCoeff, IsConstantInARangeOfOnePoint) {
  Curve const steps =
      curve({{1., 1.}, {2., 2.}, {2., 5.}, {2., 6.}, {3., 6.}}, Curve::LinLin);
  // The point (2, 5) makes a range that (2, 6) replaces.
  EXPECT_EQ(text(steps),
            "# 2 edges\n# 2 nodes LinLin\n1.000000e+00\t1.000000e+00\n"
            "2.000000e+00\t2.000000e+00\n# 2 nodes LinLin\n"
            "2.000000e+00\t6.000000e+00\n3.000000e+00\t6.000000e+00\n");
  Curve const single =
      curve({{1., 1.}, {2., 2.}, {2.0001, 5.}, {2.0002, 6.}, {3., 6.}},
            Curve::LinLin);
  EXPECT_EQ(single(2.0001, false), 5.);
  EXPECT_EQ(single(2.00015, true), 5.);
}

TEST(AttenuationCoeff, ReplacesAnEarlierRangeThatBeginsAtTheSameEnergy) {
  Curve const both(Data{{{{1., 1.}, {2., 1.}}, Curve::LinLin, false},
                        {{{1., 5.}, {4., 5.}}, Curve::LinLin, false}},
                   1., true);
  EXPECT_EQ(both(3., false), 5.);
  EXPECT_EQ(both.Discontinuities().size(), 1u);
}

TEST(AttenuationCoeff, SortsTheRangesOfStretches) {
  Curve const both(Data{{{{5., 50.}, {6., 60.}}, Curve::LinLin, false},
                        {{{1., 10.}, {2., 20.}}, Curve::LinLin, false}},
                   1., true);
  EXPECT_EQ(both(1.5, false), 15.);
  EXPECT_EQ(both(5.5, false), 55.);
  EXPECT_EQ(failure(both, 4.),
            "Cannot evaluate at 4.000000e+00 (above 1.000000e+00).");
}

TEST(AttenuationCoeff, AppliesTheScaleToPlainValues) {
  Data const plain{{{{1., 2.}, {10., 2.}}, Curve::LogLog, false},
                   {{{20., 2.}, {30., 2.}}, Curve::LinLin, false}};
  Curve const scaled(plain, 3., true);
  EXPECT_NEAR(scaled(5., false), 6., 1e-14);
  EXPECT_EQ(scaled(25., false), 6.);
  double const two = std::log(2.);
  Data const logarithms{
      {{{0., two}, {std::log(10.), two}}, Curve::LogLog, false},
      {{{20., two}, {30., two}}, Curve::LinLin, false}};
  Curve const fromLogarithms(logarithms, 3., false);
  EXPECT_NEAR(fromLogarithms(5., false), 6., 1e-14);
  EXPECT_NEAR(fromLogarithms(25., false), 6., 1e-14);
  EXPECT_EQ(failure(fromLogarithms, 0.5),
            "Cannot evaluate at 5.000000e-01 (below 1.000000e+00).");
}

TEST(AttenuationCoeff, RefusesALawThatIsNone) {
  for (int const law : {0, 6, -1}) try {
      curve({{1., 1.}}, static_cast<Curve::Interpolation>(law));
      FAIL();
    } catch (warning const&) {
      FAIL();
    } catch (std::runtime_error const& error) {
      EXPECT_STREQ(error.what(), "Invalid interpolation type");
    }
}

TEST(AttenuationCoeff, WarnsOfEachStretchWithoutPoints) {
  try {
    Curve const none(Data{{{}, Curve::LinLin, false},
                          {{{1., 1.}}, Curve::LinLin, false},
                          {{}, Curve::Const, true}},
                     1., true);
    FAIL();
  } catch (warning const& finding) {
    EXPECT_STREQ(finding.what(),
                 "No datapoints for interpolation!\n"
                 "No datapoints for interpolation!\n");
  }
}

TEST(AttenuationCoeff, IsZeroOrFailsWithoutRanges) {
  Curve const none;
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(none(5., true), 0.);
  EXPECT_EQ(failure(none, 5.), "No data points for interpolation.");
  EXPECT_FALSE(none.covers(5.));
  EXPECT_TRUE(none.Discontinuities().empty());
  EXPECT_EQ(text(none), "# 0 edges\n");
  EXPECT_TRUE(Curve(Data{}, 1., true).empty());
}

TEST(AttenuationCoeff, NamesTheRangeThatItCannotEvaluate) {
  Curve const range = curve({{100., 1.}, {120., 2.}}, Curve::LogLog, true);
  EXPECT_EQ(failure(range, 150.),
            "Cannot evaluate at 1.500000e+02 (above 1.000000e+02).");
  EXPECT_EQ(failure(range, 50.),
            "Cannot evaluate at 5.000000e+01 (below 1.000000e+02).");
  EXPECT_EQ(failure(range, 0.),
            "Cannot evaluate at 0.000000e+00 (below 1.000000e+02).");
  EXPECT_FALSE(range.covers(150.));
  EXPECT_TRUE(range.covers(110.));
}

TEST(AttenuationCoeff, IsNoNumberWhereTheEnergyIsNone) {
  Curve const steps =
      curve({{1., 2.}, {5., 2.}, {5., 8.}, {9., 8.}}, Curve::LogLog);
  EXPECT_TRUE(std::isnan(steps(std::nan(""), true)));
  EXPECT_TRUE(std::isnan(steps(std::nan(""), false)));
  EXPECT_TRUE(std::isnan(steps(-1., true)));
}

TEST(AttenuationCoeff, HasJumpZeroForItsOnlyRange) {
  EXPECT_EQ(curve({{3., 1.}, {4., 2.}}, Curve::LogLog).Discontinuities(),
            (std::map<double, double>{{3., 0.}}));
}

TEST(AttenuationCoeff, AddsWhereBothHaveNodes) {
  Curve const sum = curve({{1., 1.}, {10., 1.}}, Curve::LinLin) +
                    curve({{5., 2.}, {20., 2.}}, Curve::LinLin);
  EXPECT_EQ(text(sum),
            "# 2 edges\n# 1 nodes LinLin\n5.000000e+00\t3.000000e+00\n"
            "# 2 nodes LinLin\n5.000000e+00\t3.000000e+00\n"
            "1.000000e+01\t3.000000e+00\n");
  EXPECT_EQ(failure(sum, 2.),
            "Cannot evaluate at 2.000000e+00 (above 1.000000e+00).");
  EXPECT_EQ(failure(sum, 12.),
            "Cannot evaluate at 1.200000e+01 (above 5.000000e+00).");
}

TEST(AttenuationCoeff, LosesAllInASumOfDisjointRanges) {
  Curve const sum = curve({{1., 1.}, {2., 1.}}, Curve::LinLin) +
                    curve({{5., 2.}, {20., 2.}}, Curve::LogLog);
  EXPECT_TRUE(sum.empty());
}

TEST(AttenuationCoeff, TakesTheScalesOfEitherOperand) {
  Curve const sum = curve({{1., 1.}, {10., 4.}}, Curve::LogLog, true) +
                    curve({{1., 2.}, {3., 7.}, {10., 2.}}, Curve::LinLin);
  EXPECT_NE(text(sum).find(" nodes LogLog\n"), std::string::npos);
  // Three nodes: a cubic spline is not the chord between the first two.
  double const l = std::log(2.);
  double const part = l / std::log(3.);
  double const chord =
      std::log(3.) + part * (std::log(sum(3., false)) - std::log(3.));
  EXPECT_GT(std::abs(std::log(sum(2., false)) - chord), 0.01);
  Curve const mixed = curve({{1., 1.}, {9., 1.}}, Curve::LinLog) +
                      curve({{1., 1.}, {9., 1.}}, Curve::Const);
  EXPECT_NE(text(mixed).find(" nodes LinLog\n"), std::string::npos);
  Curve const steps = curve({{1., 1.}, {9., 1.}}, Curve::Const) +
                      curve({{1., 1.}, {9., 1.}}, Curve::Const);
  EXPECT_NE(text(steps).find(" nodes LinLin\n"), std::string::npos);
}

TEST(AttenuationCoeff, KeepsAnEdgeOfOneOperandInASum) {
  Curve sum = curve({{1., 1.}, {4., 1.}, {4., 3.}, {8., 3.}}, Curve::LinLin);
  sum += curve({{1., 10.}, {8., 10.}}, Curve::LinLin);
  EXPECT_EQ(sum(4., false), 13.);
  EXPECT_EQ(sum(std::nextafter(4., 0.), false), 11.);
  EXPECT_EQ(sum.Discontinuities().at(4.), 13. / 11.);
}

TEST(AttenuationCoeff, CountsAsNothingInASumIfEmpty) {
  Curve const one = curve({{1., 1.}, {4., 2.}}, Curve::LinLin);
  EXPECT_EQ(text(one + Curve()), text(one));
  EXPECT_EQ(text(Curve() + one), text(one));
  Curve twice = one;
  twice += twice;
  EXPECT_EQ(twice(4., false), 4.);
}

TEST(AttenuationCoeff, MultipliesLogarithmsByAdding) {
  Curve scaled = curve({{1., 2.}, {4., 8.}}, Curve::LinLog);
  std::string const before = text(scaled);
  scaled *= 1.;
  EXPECT_EQ(text(scaled), before);
  scaled *= 3.;
  EXPECT_NEAR(scaled(1., false), 6., 1e-14);
  EXPECT_NEAR(scaled(4., false), 24., 1e-13);
  scaled *= 0.;
  EXPECT_EQ(scaled(1., false), 0.);
  Curve const factor(curve({{1., 2.}, {4., 8.}}, Curve::LinLin), 0.5);
  EXPECT_EQ(factor(4., false), 4.);
}

TEST(AttenuationCoeff, IsEmptyAfterAssignmentToItself) {
  Curve itself = curve({{1., 2.}, {4., 8.}}, Curve::LinLog);
  Curve const& alias = itself;
  itself = alias;
  EXPECT_TRUE(itself.empty());
}

TEST(AttenuationCoeff, SolvesAScaledCurveAnewInACopyOrMove) {
  Curve scaled =
      curve({{1., 2.}, {4., 8.}, {5., 1.}, {9., 3.}}, Curve::LinLin, true);
  scaled *= 0.1;
  Curve const copy(scaled);
  Curve assigned;
  assigned = scaled;
  Curve const moved(std::move(scaled));
  EXPECT_TRUE(scaled.empty());
  CSpline<double, double> const anew(std::map<double const, double>{
      {1., 2. * 0.1}, {4., 8. * 0.1}, {5., 1. * 0.1}, {9., 3. * 0.1}});
  for (double x = 1.; x < 9.; x += 0.3) {
    EXPECT_EQ(copy(x, false), anew(x, false, false));
    EXPECT_EQ(assigned(x, false), anew(x, false, false));
    EXPECT_EQ(moved(x, false), anew(x, false, false));
  }
}

TEST(AttenuationCoeff, SquaresItsNodes) {
  Curve both(Data{{{{1., 3.}, {2., 5.}}, Curve::LinLin, false},
                  {{{4., 3.}, {5., 7.}}, Curve::LogLog, true}},
             1., true);
  both.sqr();
  EXPECT_EQ(both(1.5, false), 17.);
  EXPECT_NEAR(both(4., false), 9., 1e-14);
  both.sqrt();
  EXPECT_EQ(both(1.5, false), 4.);
  EXPECT_NEAR(both(5., false), 7., 1e-14);
}

TEST(AttenuationCoeff, KeepsWhatItConvertedWhenARootFails) {
  Curve steps(Data{{{{1., 4.}, {2., 4.}}, Curve::LinLin, false},
                   {{{3., 4.}, {4., -4.}}, Curve::LinLin, false},
                   {{{5., 4.}, {6., 4.}}, Curve::LinLin, false}},
              1., true);
  try {
    steps.sqrt();
    FAIL();
  } catch (std::runtime_error const& error) {
    EXPECT_STREQ(error.what(), "Cannot take sqare root of negative values");
  }
  EXPECT_EQ(steps(1., false), 2.);
  EXPECT_EQ(steps(3., false), 4.);
  EXPECT_EQ(steps(5., false), 4.);
}

TEST(AttenuationCoeff, ErasesOneRangeOrAll) {
  OpenCurve steps(
      curve({{1., 2.}, {5., 2.}, {5., 8.}, {9., 8.}}, Curve::LinLin));
  steps(6., false);
  steps.eraseData(4.);
  EXPECT_EQ(steps.Discontinuities().size(), 2u);
  steps.eraseData(5.);
  EXPECT_EQ(steps(6., true), 2.);
  steps.eraseData();
  EXPECT_TRUE(steps.empty());
}

TEST(AttenuationCoeff, PrintsPlainNumbersAndLeavesTheFormat) {
  std::ostringstream out;
  out.precision(2);
  out << curve({{1., 2.}, {10., 0.02}}, Curve::LogLog) << 0.5;
  EXPECT_EQ(out.str(),
            "# 1 edges\n# 2 nodes LogLog\n1.000000e+00\t2.000000e+00\n"
            "1.000000e+01\t2.000000e-02\n5.000000e-01");
}

TEST(AttenuationCoeff, HasItsNodesAsPlainNumbersRangeByRange) {
  Curve const edge = curve({{1., 8.}, {2., 4.}, {2., 6.}, {4., 3.}},
                           Curve::LogLog, /*cubic=*/true);
  auto const ranges = edge.nodes();
  ASSERT_EQ(ranges.size(), 2U);
  EXPECT_EQ(ranges[0].second, Curve::LogLog);
  EXPECT_TRUE(ranges[0].third);
  ASSERT_EQ(ranges[0].first.size(), 2U);
  ASSERT_EQ(ranges[1].first.size(), 2U);
  EXPECT_DOUBLE_EQ(ranges[0].first[0].first, 1.);
  EXPECT_DOUBLE_EQ(ranges[0].first[1].second, 4.);
  EXPECT_DOUBLE_EQ(ranges[1].first[0].first, 2.);
  EXPECT_DOUBLE_EQ(ranges[1].first[0].second, 6.);
}

TEST(AttenuationCoeff, KeepsNodesOfLinearScalesToTheBit) {
  Curve const line = curve({{0.1, 0.3}, {0.7, -1.}}, Curve::LinLin);
  Curve::Points const expected{{0.1, 0.3}, {0.7, -1.}};
  EXPECT_EQ(line.nodes().at(0).first, expected);
  EXPECT_FALSE(line.nodes().at(0).third);
  EXPECT_TRUE(Curve().nodes().empty());
}

TEST(AttenuationCoeff, BuildsManyConstantRangesInLittleTime) {
  // Ranges of the second stretch fall between those of the first.
  Curve::Points even, odd;
  for (int i = 0; i < 100000; ++i) {
    even.emplace_back(2. * i, i);
    odd.emplace_back(2. * i + 1., -i);
  }
  Curve const steps = Curve::fromSorted(
      {{even, Curve::Const, false}, {odd, Curve::Const, true}}, 1., true);
  EXPECT_EQ(steps(1000., false), 500.);
  EXPECT_EQ(steps(1001., false), -500.);
  Curve const sum = steps + curve({{0., 1.}, {1e6, 1.}}, Curve::LinLin);
  EXPECT_EQ(sum(1001., false), -499.);
}

}  // namespace
