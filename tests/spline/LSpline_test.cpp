#include "photarium/spline/LSpline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

#include "tests/spline/reference.h"

namespace {

using Linear = LSpline<double, double>;
using reference::Points;

double const infinity = std::numeric_limits<double>::infinity();

/// Shows what only derived classes see.
struct OpenLinear : Linear {
  explicit OpenLinear(std::vector<Linear::Node> const& nodes) : Linear(nodes) {}
};

TEST(LSpline, InterpolatesOnTheChord) {
  Linear const spline(Points{{20., 1.}, {40., 0.5}, {50., 2.5}});
  EXPECT_EQ(spline(30., false, false), 0.75);
  EXPECT_EQ(spline(45., true, false), 1.5);
  EXPECT_EQ(spline.order(), 1);
}

TEST(LSpline, IsZeroEverywhereThroughNoPoints) {
  Linear const spline(Points{});
  EXPECT_FALSE(spline.empty());
  EXPECT_EQ(spline.nodes(), (Points{{0., 0.}}));
  EXPECT_EQ((spline.at<true, true>(-7.)), 0.);
  EXPECT_EQ((spline.at<true, true>(7.)), 0.);
  EXPECT_EQ((spline.at<true, false>(0.)), 0.);
  EXPECT_THROW((spline.at<true, false>(1.)), std::out_of_range);
}

TEST(LSpline, IsEmptyByDefaultAndItsCloneIsNot) {
  Linear const spline;
  EXPECT_TRUE(spline.empty());
  EXPECT_TRUE(spline.nodes().empty());
  EXPECT_EQ((spline.at<false, true>(3.)), 0.);
  EXPECT_EQ((spline.at<true, true>(3.)), 0.);
  EXPECT_THROW((spline.at<false, false>(3.)), std::out_of_range);
  EXPECT_THROW((spline.at<true, false>(3.)), std::out_of_range);
  std::unique_ptr<Linear> const clone(spline.Clone());
  EXPECT_FALSE(clone->empty());
  Linear const copy(spline);
  EXPECT_TRUE(copy.empty());
}

TEST(LSpline, IsConstantThroughOnePoint) {
  Linear const spline(Points{{2., 5.}});
  EXPECT_EQ(spline(-1e6, false, true), 5.);
  EXPECT_EQ(spline(1e6, true, true), 5.);
  EXPECT_EQ(spline(2., false, false), 5.);
  EXPECT_THROW(spline(std::nextafter(2., 3.), false, false), std::out_of_range);
  EXPECT_THROW(spline(std::nextafter(2., 1.), true, false), std::out_of_range);
}

TEST(LSpline, GoesOnAlongTheEndChords) {
  Linear const spline(Points{{1., 10.}, {3., 14.}});
  EXPECT_EQ(spline(0., false, true), 8.);
  EXPECT_EQ(spline(5., false, true), 18.);
  EXPECT_EQ(spline(3., false, true), 14.);
}

TEST(LSpline, CountsBothEndNodesAsInside) {
  Linear const spline(Points{{20., 0.98}, {40., 0.62}});
  EXPECT_EQ(spline(20., true, false), 0.98);
  EXPECT_EQ(spline(40., false, false), 0.62);
  EXPECT_THROW(spline(std::nextafter(20., 0.), true, false), std::out_of_range);
  EXPECT_THROW(spline(std::nextafter(40., 99.), false, false),
               std::out_of_range);
}

TEST(LSpline, ThrowsAnEmptyMessageOutside) {
  Linear const spline(Points{{1., 1.}, {2., 2.}});
  try {
    spline(3., true, false);
    FAIL();
  } catch (std::out_of_range const& outside) {
    EXPECT_STREQ(outside.what(), "");
  }
  EXPECT_EQ(spline(1.5, true, false), 1.5);
}

TEST(LSpline, WalksBackAsWellAsForward) {
  Linear const spline(
      Points{{0., 0.}, {1., 1.}, {2., 4.}, {3., 9.}, {4., 16.}});
  EXPECT_EQ(spline(3., true, true), 9.);
  EXPECT_EQ(spline(1., true, true), 1.);
  EXPECT_EQ(spline(1., true, true), 1.);
  EXPECT_EQ(spline(3., true, true), 9.);
}

TEST(LSpline, RestoresOrdinatesByAddingWhatWasSubtracted) {
  Linear spline(Points{{1., 3.25}, {2., 7.5}});
  Points const before = spline.nodes();
  spline -= 0.75;
  EXPECT_EQ(spline.nodes(), (Points{{1., 2.5}, {2., 6.75}}));
  spline += 0.75;
  EXPECT_EQ(spline.nodes(), before);
  EXPECT_EQ(spline.records()[0].second, 4.25);
}

TEST(LSpline, DividesByMultiplyingWithTheReciprocal) {
  Linear spline(Points{{1., 5.}, {2., 7.}});
  Spline<double, double>& result = spline /= 49.;
  EXPECT_EQ(&result, &spline);
  double const reciprocal = 1.0 / 49.;
  EXPECT_EQ(spline.nodes().at(1.), 5. * reciprocal);
  EXPECT_EQ(spline.records()[0].second, 2. * reciprocal);
  EXPECT_NE(5. * reciprocal, 5. / 49.);
}

TEST(LSpline, BecomesInfiniteByDivisionByZero) {
  Linear spline(Points{{1., 5.}, {2., -7.}});
  spline /= 0.;
  EXPECT_EQ(spline.nodes(), (Points{{1., infinity}, {2., -infinity}}));
}

TEST(LSpline, KeepsTheEarlierOfTwoNodesWithAnEqualAbscissa) {
  OpenLinear const spline({{1., 0., 5.}, {1., 0., 6.}, {2., 0., 7.}});
  EXPECT_EQ(spline.nodes(), (Points{{1., 5.}, {2., 7.}}));
}

TEST(LSpline, TakesNodesWithTheirSlopesAsTheyAre) {
  OpenLinear const spline({{1., 100., 5.}, {2., -100., 7.}});
  EXPECT_EQ(spline(1.5, false, true), 55.);
  EXPECT_EQ(spline(3., false, true), -93.);
}

TEST(LSpline, ClonesThroughItsPoints) {
  OpenLinear const spline({{1., 100., 5.}, {2., -100., 7.}});
  std::unique_ptr<Linear> const clone(spline.Clone());
  EXPECT_EQ((*clone)(1.5, false, true), 6.);
  Linear rebuilt(spline);
  rebuilt.rebuild();
  EXPECT_EQ(rebuilt(1.5, false, true), 6.);
  EXPECT_EQ(Linear(spline)(1.5, false, true), 55.);
}

TEST(LSpline, RefusesToBeMadeOfNoNodes) {
  try {
    OpenLinear const spline({});
    FAIL();
  } catch (std::runtime_error const& error) {
    EXPECT_STREQ(error.what(), "Trying to construct empty spline!");
  }
}

TEST(LSpline, RefusesColumnsOfDifferentLengths) {
  std::vector<double> const x{1., 2.};
  std::vector<double> const y{1.};
  EXPECT_THROW(Linear(x, y), std::invalid_argument);
}

TEST(LSpline, IsEmptyAfterBeingMovedAndCanBeFilledAgain) {
  Linear spline(Points{{1., 5.}, {2., 6.}, {3., 9.}});
  spline(2.5, true, true);
  Linear const moved(std::move(spline));
  EXPECT_EQ(moved(2.5, true, true), 7.5);
  EXPECT_EQ(spline(2.5, true, true), 0.);
  spline.rebuild();
  EXPECT_EQ(spline(2.5, true, true), 0.);
  spline = Linear(Points{{4., 1.}});
  EXPECT_EQ(spline(2.5, true, true), 1.);
}

TEST(LSpline, CopiesDeeply) {
  Linear spline(Points{{1., 5.}, {2., 6.}});
  Linear copy;
  copy = spline;
  spline *= 3.;
  EXPECT_EQ(copy(1.5, false, false), 5.5);
  EXPECT_EQ(spline(1.5, false, false), 16.5);
}

TEST(LSpline, IsNoNumberWhereTheAbscissaIsNone) {
  Linear const spline(Points{{1., 5.}, {2., 6.}, {3., 9.}});
  EXPECT_TRUE(std::isnan(spline(std::nan(""), true, true)));
  EXPECT_TRUE(std::isnan(spline(std::nan(""), false, true)));
  EXPECT_TRUE(std::isnan(spline(std::nan(""), true, false)));
  EXPECT_TRUE(std::isnan(spline(std::nan(""), false, false)));
}

/// Evaluates in all four ways and compares with the plain form.
void expectReference(Points const& points, std::mt19937_64& random) {
  reference::Linear const plain(points);
  Linear const spline(points);
  std::vector<double> x, y;
  for (auto const& [key, value] : points) {
    x.push_back(key);
    y.push_back(value);
  }
  Linear const sorted(x, y);
  double const first = plain.nodes.front().first;
  double const last = plain.nodes.back().first;
  for (double const probe : reference::probes(random, points)) {
    double const expected = plain(probe);
    ASSERT_PRED2(reference::same, spline(probe, true, true), expected);
    ASSERT_PRED2(reference::same, spline(probe, false, true), expected);
    ASSERT_PRED2(reference::same, sorted(probe, true, true), expected);
    ASSERT_EQ(spline.covers(probe), !(first > probe) && !(probe > last));
    if (!spline.covers(probe)) continue;
    ASSERT_PRED2(reference::same, spline(probe, true, false), expected);
    ASSERT_PRED2(reference::same, spline(probe, false, false), expected);
  }
}

TEST(LSpline, EqualsThePlainFormToTheBit) {
  std::mt19937_64 random(41);
  for (std::size_t size = 0; size < 60; ++size)
    expectReference(reference::randomPoints(random, size), random);
}

TEST(LSpline, EqualsThePlainFormToTheBitWithManyNodes) {
  std::mt19937_64 random(42);
  for (std::size_t const size : {4096u, 4097u, 4098u, 5000u})
    expectReference(reference::randomPoints(random, size), random);
}

TEST(LSpline, FindsSegmentsAmongManyCrowdedNodes) {
  std::mt19937_64 random(43);
  Points points{{-1e300, 1.}, {1e300, 2.}};
  for (int i = 0; i < 5000; ++i) points[i * 1e-9] = i;
  expectReference(points, random);
}

TEST(LSpline, FindsSegmentsOfInfiniteLength) {
  std::mt19937_64 random(44);
  Points points{{-infinity, 1.}, {infinity, 2.}};
  for (int i = 0; i < 5000; ++i) points[i] = i;
  expectReference(points, random);
  points.erase(points.begin());  // the last one alone
  expectReference(points, random);
}

TEST(LSpline, SweepsUpAndDownInStepsOfEveryLength) {
  std::mt19937_64 random(45);
  Points const points = reference::randomPoints(random, 300);
  reference::Linear const plain(points);
  Linear const spline(points);
  double const first = points.begin()->first;
  double const last = points.rbegin()->first;
  for (int count = 1; count < 600; count += 7) {
    for (int i = 0; i <= count; ++i) {
      double const up = first + (last - first) * i / count;
      ASSERT_PRED2(reference::same, spline(up, true, true), plain(up));
    }
    for (int i = count; i >= 0; --i) {
      double const down = first + (last - first) * i / count;
      ASSERT_PRED2(reference::same, spline(down, true, true), plain(down));
    }
  }
}

TEST(LSpline, StaysInBoundsWithUnsortedAbscissas) {
  std::mt19937_64 random(46);
  std::vector<double> x(6000), y(6000, 1.);
  for (double& value : x) value = static_cast<double>(random() % 1000);
  x[3000] = std::nan("");
  x[4000] = infinity;
  Linear const spline(x, y);
  for (int i = -10; i < 1010; ++i) {
    spline(i, true, true);
    spline(i, false, true);
  }
  SUCCEED();
}

}  // namespace
