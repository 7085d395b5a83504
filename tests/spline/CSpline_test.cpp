#include "photarium/spline/CSpline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

#include "tests/spline/reference.h"

namespace {

using Cubic = CSpline<double, double>;
using reference::Points;

double const infinity = std::numeric_limits<double>::infinity();

struct OpenCubic : Cubic {
  explicit OpenCubic(std::vector<Cubic::Node> const& nodes) : Cubic(nodes) {}
};

TEST(CSpline, SolvesOneEquationForThreePoints) {
  Cubic const spline(Points{{0., 1.}, {1., 2.}, {2., 5.}});
  // b_1 = 3 ((5 - 2) - (2 - 1)) / (2 (2 - 0))
  EXPECT_EQ(spline.records()[1].third, 1.5);
  EXPECT_EQ(spline(1.5, false, false), 3.3125);
  EXPECT_EQ(spline.order(), 3);
}

TEST(CSpline, GivesTheLastNodeTheCoefficientsOfTheLastSegment) {
  Cubic const spline(Points{{0., 1.}, {1., 2.}, {2., 5.}});
  auto const& inner = spline.records()[1];
  auto const& last = spline.records()[2];
  EXPECT_EQ(last.second, inner.second);
  EXPECT_EQ(last.third, inner.third);
  EXPECT_EQ(last.fourth, inner.fourth);
  EXPECT_EQ(last.fifth, 5.);
  // Node 1 has 2 + 2 d + 1.5 d^2 - 0.5 d^3, moved here to (2, 5).
  EXPECT_EQ(spline(3., false, true), 5. + 2. + 1.5 - 0.5);
}

TEST(CSpline, ReproducesALineBetweenAndBeyondTheNodes) {
  Cubic const spline(Points{{1., 5.}, {2., 8.}, {4., 14.}, {8., 26.}});
  for (auto const& node : spline.records()) {
    EXPECT_EQ(node.second, 0.);
    EXPECT_EQ(node.third, 0.);
    EXPECT_EQ(node.fourth, 3.);
  }
  EXPECT_EQ(spline(-10., false, true), -28.);
  EXPECT_EQ(spline(3.5, true, false), 12.5);
  EXPECT_EQ(spline(100., true, true), 302.);
}

TEST(CSpline, IsConstantAboveTwoPoints) {
  Cubic const spline(Points{{1., 10.}, {3., 14.}});
  EXPECT_EQ(spline(2., false, false), 12.);
  EXPECT_EQ(spline(0., false, true), 8.);
  EXPECT_EQ(spline(3., false, false), 14.);
  EXPECT_EQ(spline(4., false, true), 14.);
}

TEST(CSpline, IsConstantThroughOnePointAndZeroThroughNone) {
  Cubic const one(Points{{2., 5.}});
  EXPECT_EQ(one(-3., true, true), 5.);
  EXPECT_EQ(one(9., false, true), 5.);
  EXPECT_THROW(one(9., false, false), std::out_of_range);
  Cubic const none(Points{});
  EXPECT_FALSE(none.empty());
  EXPECT_EQ(none.nodes(), (Points{{0., 0.}}));
  EXPECT_EQ(none(9., false, true), 0.);
  EXPECT_THROW(none(1., true, false), std::out_of_range);
}

TEST(CSpline, IsEmptyByDefaultAndItsCloneIsNot) {
  Cubic const spline;
  EXPECT_TRUE(spline.empty());
  EXPECT_EQ(spline(3., true, true), 0.);
  EXPECT_THROW(spline(3., true, false), std::out_of_range);
  std::unique_ptr<Cubic> const clone(spline.Clone());
  EXPECT_FALSE(clone->empty());
  EXPECT_TRUE(Cubic(spline).empty());
}

TEST(CSpline, HasAContinuousSlopeAtInnerNodes) {
  Points points;
  for (int i = 0; i <= 20; ++i) points[0.3 * i] = std::sin(0.3 * i);
  Cubic const spline(points);
  auto const& nodes = spline.records();
  for (std::size_t i = 1; i + 1 < nodes.size(); ++i) {
    double const h = nodes[i].first - nodes[i - 1].first;
    double const left =
        (3 * nodes[i - 1].second * h + 2 * nodes[i - 1].third) * h +
        nodes[i - 1].fourth;
    EXPECT_NEAR(left, nodes[i].fourth, 1e-14);  // rounding
  }
}

TEST(CSpline, ContinuesAboveTheLastNodeWithTheSlopeOfTheSegmentsStart) {
  Points points;
  for (int i = 0; i <= 5; ++i) points[i] = i * i;
  Cubic const spline(points);
  auto const& start = spline.records()[4];
  EXPECT_EQ(spline(5., false, true), 25.);
  double const step = 1e-7;
  double const slope = (spline(5. + step, false, true) - 25.) / step;
  EXPECT_NEAR(slope, start.fourth, 1e-5);  // second order of the step
  EXPECT_GT(
      std::abs(slope - (3 * start.second + 2 * start.third + start.fourth)),
      1.);
}

TEST(CSpline, ReproducesANodeWhereCoefficientsAreNoNumbers) {
  Cubic const spline(Points{{0., 1.}, {1., infinity}, {2., 5.}, {3., 7.}});
  EXPECT_EQ(spline(0., true, false), 1.);
  EXPECT_EQ(spline(1., false, false), infinity);
  EXPECT_EQ(spline(2., true, false), 5.);
  EXPECT_TRUE(std::isnan(spline(2.5, true, false)));
}

TEST(CSpline, ScalesAndShiftsWhatItIs) {
  Points points{{0., 1.}, {1., 3.}, {2.5, 2.}, {4., 8.}};
  Cubic const before(points);
  Cubic spline(before);
  spline *= 2.;
  for (double x = -1.; x < 6.; x += 0.37)
    EXPECT_EQ(spline(x, true, true), 2. * before(x, true, true));
  spline /= 2.;
  spline += 1.5;
  EXPECT_EQ(spline.nodes().at(2.5), 3.5);
  EXPECT_EQ(spline.records()[1].third, before.records()[1].third);
  spline -= 1.5;
  EXPECT_EQ(spline.nodes(), points);
}

TEST(CSpline, ClonesAScaledCurveBySolvingAnew) {
  Cubic spline(Points{{0., 1.}, {1., 3.}, {2.5, 2.}, {4., 8.}});
  spline *= 3.;
  std::unique_ptr<Spline<double, double>> const clone(
      static_cast<Spline<double, double> const&>(spline).Clone());
  for (double x = -1.; x < 6.; x += 0.37)
    EXPECT_NEAR((*clone)(x, false, true), spline(x, false, true), 1e-12);
  Cubic const anew(spline.nodes());
  spline.rebuild();
  for (double x = -1.; x < 6.; x += 0.37)
    EXPECT_EQ(spline(x, false, true), anew(x, false, true));
}

TEST(CSpline, TakesNodesAsTheyAreButNotNone) {
  OpenCubic const spline({{1., 1., 2., 3., 4.}});
  EXPECT_EQ(spline(3., false, true), 8. + 8. + 6. + 4.);
  try {
    OpenCubic const none({});
    FAIL();
  } catch (std::runtime_error const& error) {
    EXPECT_STREQ(error.what(), "Trying to construct empty spline!");
  }
}

TEST(CSpline, IsNoNumberWhereTheAbscissaIsNone) {
  Cubic const spline(Points{{1., 5.}, {2., 6.}, {3., 9.}});
  for (bool const sequential : {false, true})
    for (bool const extrapolate : {false, true})
      EXPECT_TRUE(std::isnan(spline(std::nan(""), sequential, extrapolate)));
}

TEST(CSpline, EqualsThePlainFormToTheBit) {
  std::mt19937_64 random(51);
  std::vector<std::size_t> sizes{4096, 4097, 5000};
  for (std::size_t size = 0; size < 60; ++size) sizes.push_back(size);
  for (std::size_t const size : sizes) {
    Points const points = reference::randomPoints(random, size);
    reference::Cubic const plain(points);
    Cubic const spline(points);
    ASSERT_EQ(spline.records().size(), plain.nodes.size());
    for (std::size_t i = 0; i < plain.nodes.size(); ++i) {
      auto const& one = spline.records()[i];
      auto const& two = plain.nodes[i];
      ASSERT_PRED2(reference::same, one.first, two.first);
      ASSERT_PRED2(reference::same, one.second, two.second);
      ASSERT_PRED2(reference::same, one.third, two.third);
      ASSERT_PRED2(reference::same, one.fourth, two.fourth);
      ASSERT_PRED2(reference::same, one.fifth, two.fifth);
    }
    for (double const probe : reference::probes(random, points)) {
      double const expected = plain(probe);
      ASSERT_PRED2(reference::same, spline(probe, true, true), expected);
      ASSERT_PRED2(reference::same, spline(probe, false, true), expected);
      if (!spline.covers(probe)) continue;
      ASSERT_PRED2(reference::same, spline(probe, true, false), expected);
      ASSERT_PRED2(reference::same, spline(probe, false, false), expected);
    }
  }
}

}  // namespace
