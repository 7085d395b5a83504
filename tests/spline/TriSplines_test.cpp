#include <gtest/gtest.h>

#include <map>
#include <stdexcept>

#include "photarium/spline/TriCSpline.h"
#include "photarium/spline/TriLSpline.h"

namespace {

using Points = std::map<double const, double>;
using Linear = LSpline<double, double>;
using Cubic = CSpline<double, double>;
using TriL = TriLSpline<double, double>;
using TriC = TriCSpline<double, double>;

template <class One, class Two, class Three>
Three table() {
  std::map<double const, Two> all;
  for (double const u : {1., 2., 3.}) {
    std::map<double const, One> rows;
    for (double const v : {1., 2., 4., 5.}) {
      Points points;
      for (double const w : {0., 1., 3.}) points[w] = u * v + w * (u + v);
      rows[v] = One(points);
    }
    all[u] = Two(rows);
  }
  return Three(all);
}
TriL linearTable() {
  return table<Linear, BiLSpline<double, double>, TriL>();
}
TriC cubicTable() {
  return table<Cubic, BiCSpline<double, double>, TriC>();
}

double plain(double u, double v, double w) {
  return u * v + w * (u + v);
}

TEST(TriLSpline, InterpolatesInThreeDirections) {
  TriL const t = linearTable();
  for (bool const sequential : {false, true})
    EXPECT_NEAR(t(1.5, sequential, false)(3., sequential, false)(
                    0.5, sequential, false),
                plain(1.5, 3., 0.5), 1e-13);  // linear in each, so rounding
  EXPECT_EQ(t(2., false, false)(4., false, false)(3., false, false),
            plain(2., 4., 3.));
}

TEST(TriCSpline, InterpolatesInThreeDirections) {
  TriC const t = cubicTable();
  EXPECT_NEAR(t(1.5, false, false)(3., true, false)(0.5, false, false),
              plain(1.5, 3., 0.5), 1e-13);
  EXPECT_EQ(t(2., false, false)(4., false, false)(3., false, false),
            plain(2., 4., 3.));
}

TEST(TriCSpline, IsItsOnlyEntryEverywhere) {
  std::map<double const, Cubic> rows;
  rows[1.] = Cubic(Points{{0., 1.}, {1., 5.}, {2., 2.}});
  rows[2.] = Cubic(Points{{0., 3.}, {1., 4.}, {2., 9.}});
  BiCSpline<double, double> const entry(rows);
  std::map<double const, BiCSpline<double, double>> one;
  one[7.] = entry;
  TriC const t(one);
  for (double const u : {-100., 7., 100.})
    EXPECT_EQ(t(u, false, true)(1.5, false, true)(0.7, false, true),
              entry(1.5, false, true)(0.7, false, true));
  EXPECT_THROW(t(7.5, false, false), std::out_of_range);
}

TEST(TriSplines, AreRefusedByNoRows) {
  EXPECT_TRUE(TriL().empty());
  EXPECT_TRUE(TriC().empty());
  try {
    TriL()(1., false, true);
    FAIL();
  } catch (std::runtime_error const& error) {
    EXPECT_STREQ(error.what(), "Trying to construct empty spline!");
  }
  EXPECT_THROW(TriC()(1., false, true), std::runtime_error);
}

template <class Three>
void expectScalars(Three t) {
  auto const value = [&t] {
    return t(1.5, false, true)(3., false, true)(0.5, false, true);
  };
  double const before = value();
  t += 1.;
  EXPECT_NEAR(value(), before + 1., 1e-13);
  t -= 1.;
  EXPECT_NEAR(value(), before, 1e-13);
  t *= 2.;
  EXPECT_NEAR(value(), 2 * before, 1e-13);
  t /= 4.;
  EXPECT_NEAR(value(), before / 2, 1e-13);
}

TEST(TriLSpline, ShiftsAndScales) {
  expectScalars(linearTable());
}

TEST(TriCSpline, ShiftsAndScales) {
  expectScalars(cubicTable());
}

}  // namespace
