#include <gtest/gtest.h>

#include <cstddef>
#include <thread>

#include "photarium/foundation/bremsstrahlung_tables.h"
#include "photarium/foundation/constants.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"

namespace {

// Numbers between and on the tabulated ones.
constexpr double numbers[] = {29.5, 79, 1, 74, 50.25, 92, 100, 13};

// Some values of the surfaces that a material of that number has.
std::vector<double> sampled(double Z) {
  Material<double> material;
  material.Z = Z;
  try {
    material.readSigma();
  } catch (warning const&) {
  }
  try {
    material.readShape();
  } catch (warning const&) {
  }
  std::vector<double> values;
  for (double energy : {1.5, 42., 480.})
    for (double fraction : {0., 0.33, 0.9}) {
      double const b = beta(energy);
      values.push_back(
          material.BremsSigma(b, false, true)(fraction, false, true));
      for (auto const& coefficient : material.Shape)
        values.push_back(coefficient(b, false, true)(fraction, false, true));
    }
  return values;
}

}  // namespace

TEST(BuiltinTables, AreTheSameFromThreadsAtOnce) {
  std::vector<std::vector<double>> found(std::size(numbers));
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < found.size(); ++i)
    threads.emplace_back([&, i] { found[i] = sampled(numbers[i]); });
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < found.size(); ++i)
    EXPECT_EQ(found[i], sampled(numbers[i])) << numbers[i];
}
