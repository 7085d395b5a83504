#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

#include "photarium/material/AttenuationCoeff.h"

namespace {

using Curve = AttenuationCoeff<double>;

TEST(AttenuationThreads, ShareACurveWithEdges) {
  Curve::Points points;
  for (int i = 1; i <= 200; ++i) {
    points.emplace_back(i, 1. / i);
    if (i % 20 == 0) points.emplace_back(i, 5. / i);
  }
  Curve const curve =
      Curve::fromSorted({{points, Curve::LogLog, true}}, 1., true);
  std::vector<double> expected;
  for (int i = 0; i < 2000; ++i)
    expected.push_back(Curve(curve)(1. + 0.09 * i, false));
  std::atomic<int> different = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread)
    threads.emplace_back([&, thread] {
      for (int k = 0; k < 2000; ++k) {
        int const i = thread % 2 == 0 ? k : (k * 613) % 2000;
        double const x = 1. + 0.09 * i;
        if (curve(x, false) != expected[static_cast<std::size_t>(i)])
          ++different;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(different, 0);
}

}  // namespace
