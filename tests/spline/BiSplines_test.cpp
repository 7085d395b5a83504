#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <stdexcept>
#include <vector>

#include "photarium/spline/BiCLSpline.h"
#include "photarium/spline/BiCSpline.h"
#include "photarium/spline/BiLSpline.h"
#include "tests/spline/reference.h"

namespace {

using Linear = LSpline<double, double>;
using Cubic = CSpline<double, double>;
using BiL = BiLSpline<double, double>;
using BiCL = BiCLSpline<double, double>;
using BiC = BiCSpline<double, double>;
using reference::Points;

/// f(u, v) = u v at the nodes v.
Linear row(double u, std::vector<double> const& v) {
  Points points;
  for (double const x : v) points[x] = u * x;
  return Linear(points);
}

std::map<double const, Linear> rows(std::vector<double> const& u,
                                    std::vector<double> const& v) {
  std::map<double const, Linear> all;
  for (double const x : u) all[x] = row(x, v);
  return all;
}

std::map<double const, Cubic> randomRows(std::mt19937_64& random,
                                         std::size_t outer, std::size_t inner) {
  Points const abscissas = reference::randomPoints(random, inner);
  std::map<double const, Cubic> all;
  for (auto const& [u, ignored] : reference::randomPoints(random, outer)) {
    Points points;
    for (auto const& [v, value] : abscissas)
      points[v] = std::uniform_real_distribution<double>(-3., 3.)(random);
    all[u] = Cubic(points);
  }
  return all;
}

TEST(BiLSpline, IsTheInnerSplineEverywhereWithOneEntry) {
  BiL const table(rows({2.}, {1., 3.}));
  Linear const far = table(77., false, true);
  EXPECT_EQ(far.nodes(), (Points{{1., 2.}, {3., 6.}}));
  EXPECT_EQ(table(2., false, false).nodes(), far.nodes());
  EXPECT_THROW(table(2.5, false, false), std::out_of_range);
}

TEST(BiLSpline, HasTheNodesOfAnEntryExactly) {
  BiL const table(rows({0.1, 0.7, 3.3}, {0.3, 1.1, 2.9}));
  for (double const u : {0.1, 0.7, 3.3}) {
    Linear const at = table(u, true, false);
    Linear const expected = row(u, {0.3, 1.1, 2.9});
    EXPECT_EQ(at.nodes(), expected.nodes());
    EXPECT_EQ(at.records()[0].second, expected.records()[0].second);
  }
}

TEST(BiLSpline, InterpolatesInBothDirections) {
  BiL const table(rows({1., 2.}, {10., 20.}));
  EXPECT_DOUBLE_EQ(table(1.5, false, false)(15., false, false), 22.5);
  EXPECT_DOUBLE_EQ(table(3., true, true)(40., true, true), 120.);
}

TEST(BiLSpline, ScalesOrdinatesAndSlopesAndShiftsOnlyOrdinates) {
  BiL table(rows({1., 2.}, {1., 2.}));
  BiL const before = table;
  table *= 2.;
  EXPECT_EQ(table(1., false, false).records()[0].second, 2.);
  EXPECT_EQ(table(1., false, false).records()[0].third, 2.);
  table /= 2.;
  table += 1.;
  EXPECT_EQ(table(1., false, false).records()[0].second, 1.);
  EXPECT_EQ(table(1., false, false).records()[0].third, 2.);
  table -= 1.;
  EXPECT_EQ(table(1.5, false, false).nodes(),
            before(1.5, false, false).nodes());
}

TEST(BiLSpline, ListsItsOuterCoordinates) {
  EXPECT_EQ(BiL(rows({0.5, 2.}, {1., 2.})).nodes(),
            (std::set<double>{0.5, 2.}));
  EXPECT_TRUE(BiL().nodes().empty());
  EXPECT_EQ(BiCL(rows({0.5, 2.}, {1., 2.})).nodes(),
            (std::set<double>{0.5, 2.}));
  EXPECT_TRUE(BiCL().nodes().empty());
}

TEST(BiLSpline, IsTheOtherOneWhereOneIsEmpty) {
  BiL const table(rows({1., 2.}, {1., 2.}));
  BiL const none;
  EXPECT_TRUE(none.empty());
  EXPECT_EQ((table + none)(1.5, true, true).nodes(),
            table(1.5, true, true).nodes());
  EXPECT_EQ((none + table)(1.5, true, true).nodes(),
            table(1.5, true, true).nodes());
  EXPECT_TRUE((none + none).empty());
}

TEST(BiLSpline, AddsOnTheNodesOfBoth) {
  BiL const one(rows({1., 2.}, {1., 4.}));
  BiL const two(rows({1.5, 3.}, {2., 3., 4.}));
  BiL sum = one;
  sum += two;
  EXPECT_EQ(sum.nodes(), (std::set<double>{1., 1.5, 2., 3.}));
  EXPECT_EQ(sum.records().size(), 4u);
  for (double const u : {1., 1.5, 2., 3.})
    for (double const v : {1., 2., 3., 4.})
      EXPECT_DOUBLE_EQ(sum(u, true, false)(v, true, false),
                       one(u, true, true)(v, true, true) +
                           two(u, true, true)(v, true, true));
}

TEST(BiLSpline, AddsItselfToItself) {
  BiL table(rows({1., 2.}, {1., 4.}));
  table += table;
  EXPECT_DOUBLE_EQ(table(2., false, false)(4., false, false), 16.);
}

TEST(BiLSpline, IsRefusedByNoRows) {
  try {
    BiL()(1., false, true);
    FAIL();
  } catch (std::runtime_error const& error) {
    EXPECT_STREQ(error.what(), "Trying to construct empty spline!");
  }
  EXPECT_TRUE(BiL(std::map<double const, Linear>{}).empty());
}

TEST(BiLSpline, RefusesARowWithFewerNodesThanTheFirst) {
  std::map<double const, Linear> uneven;
  uneven[1.] = row(1., {1., 2., 3.});
  uneven[2.] = row(2., {1., 2.});
  EXPECT_THROW(BiL{uneven}, std::runtime_error);
}

TEST(BiLSpline, TakesTheInnerAbscissasOfTheLastEntry) {
  std::map<double const, Linear> shifted;
  shifted[1.] = row(1., {1., 2.});
  shifted[2.] = row(2., {3., 4.});
  EXPECT_EQ(BiL(shifted).records()[0].first, 3.);
}

TEST(BiLSpline, BuildsTheSameWithoutAMap) {
  std::vector<double> const u{1., 2., 5.};
  std::vector<Linear> splines;
  std::vector<Linear const*> pointers;
  for (double const x : u) splines.push_back(row(x * x, {1., 2.}));
  for (Linear const& spline : splines) pointers.push_back(&spline);
  BiL const fromSplines(u, splines);
  BiL const fromPointers(u, pointers);
  for (double const x : {0., 1.5, 4., 9.}) {
    EXPECT_EQ(fromSplines(x, true, true).nodes(),
              fromPointers(x, true, true).nodes());
  }
  EXPECT_EQ(fromSplines(1.5, true, true).nodes(),
            (Points{{1., 2.5}, {2., 5.}}));
  pointers.pop_back();
  EXPECT_THROW(BiL(u, pointers), std::invalid_argument);
}

TEST(BiCLSpline, IsCubicAcrossAndLinearAlong) {
  std::map<double const, Linear> all;
  Points across;
  for (double const u : {0., 1., 2., 3.}) {
    all[u] = Linear(Points{{0., u * u}, {1., u * u + 1.}});
    across[u] = u * u;
  }
  BiCL table(all);
  Cubic const expected(across);
  Linear const at = table(1.25, false, false);
  EXPECT_EQ(at(0., false, false), expected(1.25, false, false));
  EXPECT_EQ(at.records()[0].second, 1.);
  table += 1.;
  EXPECT_EQ(table(1.25, false, false)(0., false, false),
            expected(1.25, false, false) + 1.);
  table *= 2.;
  EXPECT_EQ(table(1.25, false, false).records()[0].second, 2.);
  EXPECT_THROW(table(3.5, false, false), std::out_of_range);
}

TEST(BiCSpline, InterpolatesEachCoefficientAcross) {
  std::mt19937_64 random(61);
  std::map<double const, Cubic> const all = randomRows(random, 6, 9);
  BiC const table(all);
  ASSERT_EQ(table.records().size(), 9u);
  std::vector<double> us;
  for (auto const& [u, spline] : all) us.push_back(u);
  for (double const u : {us[0] - 1., us[2], (us[3] + us[4]) / 2, us[5] + 1.}) {
    Cubic const at = table(u, true, true);
    for (std::size_t j = 0; j < 9; ++j) {
      Points a, b, c, y;
      for (auto const& [key, spline] : all) {
        a[key] = spline.records()[j].second;
        b[key] = spline.records()[j].third;
        c[key] = spline.records()[j].fourth;
        y[key] = spline.records()[j].fifth;
      }
      EXPECT_PRED2(reference::same, at.records()[j].second,
                   reference::Cubic(a)(u));
      EXPECT_PRED2(reference::same, at.records()[j].third,
                   reference::Cubic(b)(u));
      EXPECT_PRED2(reference::same, at.records()[j].fourth,
                   reference::Cubic(c)(u));
      EXPECT_PRED2(reference::same, at.records()[j].fifth,
                   reference::Cubic(y)(u));
    }
  }
}

TEST(BiCSpline, ScalesAllCoefficientsAndShiftsTheOrdinates) {
  std::mt19937_64 random(62);
  BiC const before(randomRows(random, 4, 5));
  BiC table = before;
  table *= 4.;
  table += 8.;
  double const u = before.records()[0].second.records()[1].first + 0.01;
  Cubic const one = before(u, false, true);
  Cubic const two = table(u, false, true);
  for (std::size_t j = 0; j < 5; ++j) {
    EXPECT_EQ(two.records()[j].second, 4. * one.records()[j].second);
    EXPECT_EQ(two.records()[j].fourth, 4. * one.records()[j].fourth);
    EXPECT_DOUBLE_EQ(two.records()[j].fifth, 4. * one.records()[j].fifth + 8.);
  }
  EXPECT_THROW(BiC()(1., true, true), std::runtime_error);
}

}  // namespace
