#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <map>
#include <thread>
#include <vector>

#include "photarium/spline/BiLSpline.h"
#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"

namespace {

using Points = std::map<double const, double>;

Points curve(int size) {
  Points points;
  for (int i = 0; i < size; ++i) points[i] = std::sin(0.1 * i);
  return points;
}

/// Evaluates one object in several threads, up and down, and counts values
/// that differ from those of a single thread.
template <class Value>
int differences(Value const& value) {
  std::vector<double> expected;
  for (int i = 0; i < 2000; ++i) expected.push_back(value(0.05 * i, false));
  std::atomic<int> different = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread)
    threads.emplace_back([&, thread] {
      for (int k = 0; k < 2000; ++k) {
        int const i = thread % 2 == 0 ? k : 1999 - k;
        double const x = 0.05 * i;
        if (value(x, thread < 3) != expected[static_cast<std::size_t>(i)])
          ++different;
      }
    });
  for (std::thread& thread : threads) thread.join();
  return different;
}

TEST(SplineThreads, ShareALinearSpline) {
  LSpline<double, double> const spline(curve(101));
  EXPECT_EQ(differences([&](double x, bool s) { return spline(x, s, false); }),
            0);
}

TEST(SplineThreads, ShareACubicSplineOfManyNodes) {
  CSpline<double, double> const spline(curve(5000));
  EXPECT_EQ(differences([&](double x, bool s) { return spline(x, s, false); }),
            0);
}

TEST(SplineThreads, ShareATableAndCopyIt) {
  std::map<double const, LSpline<double, double>> rows;
  for (int u = 0; u <= 10; ++u) {
    rows[10. * u] = LSpline<double, double>(curve(5));
    rows[10. * u] *= u;
  }
  BiLSpline<double, double> const table(rows);
  EXPECT_EQ(differences([&](double x, bool s) {
              BiLSpline<double, double> const copy(table);
              return table(x, s, true)(1.5, s, true) + copy.records()[0].first;
            }),
            0);
}

}  // namespace
