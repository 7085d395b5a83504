// Tables of real materials, from the built-in and from database files.

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "photarium/config/DistributionConfig.h"
#include "photarium/config/MaterialConfig.h"
#include "photarium/config/SpectConfig.h"
#include "photarium/foundation/constants.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/warning.h"
#include "photarium/grid/AngleDist.h"
#include "photarium/grid/BremsTable.h"
#include "photarium/grid/FluoTable.h"
#include "photarium/material/Material.h"
#include "tests/support/paths.h"

namespace {

// The element of a database file below the folder of test data, with the
// built-in cross sections beside its own.
Material<double> element(std::string const& symbol, std::string const& file) {
  MaterialConfig<double> config;
  config.Directory = sourceDir().string();
  config.Material = symbol;
  config.DataFile = (testData() / file).string();
  Material<double> material;
  try {
    material.update(config);
    material.readSigma();
  } catch (warning const&) {
    // Tells that the cross sections are interpolated over Z.
  }
  return material;
}

struct Element {
  char const* symbol;
  char const* file;
};

constexpr Element RealElements[] = {{"W", "endf/074_W_000.endf"},
                                    {"Cu", "endf/029_Cu_000.endf"},
                                    {"Mo", "endf/042_Mo_000.endf"}};

// Rows of numbers; comment lines are left out.
std::vector<std::vector<double>> rowsOf(std::string const& text) {
  std::vector<std::vector<double>> rows;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with('#')) continue;
    std::string_view rest = line;
    auto& row = rows.emplace_back();
    for (double value = 0; extractNumber(rest, value);) row.push_back(value);
  }
  return rows;
}

std::vector<std::vector<double>> bremsRows(Material<double> const& material,
                                           bool builtin) {
  SpectConfig<double> spect;
  DistributionConfig<double> dist;
  spect.kVp = 150;
  spect.EBin = 0.5;
  spect.Pratt = builtin;
  dist.Steps = 101;
  std::ostringstream out;
  BremsTable(out, spect, dist, material);
  return rowsOf(out.str());
}

TEST(RealBremsTable, SamplesRisingFractionsUpToOne) {
  PHOTARIUM_NEEDS_DATA();
  for (auto const& [symbol, file] : RealElements) {
    Material<double> const material = element(symbol, file);
    for (bool builtin : {true, false}) {
      auto const rows = bremsRows(material, builtin);
      ASSERT_EQ(rows.size(), 300U);
      for (auto const& row : rows) {
        ASSERT_EQ(row.size(), 102U);
        EXPECT_GT(row[0], 0);
        EXPECT_NEAR(row.back(), 1, 1e-6);  // printed digits
        for (std::size_t j = 2; j < row.size(); ++j)
          EXPECT_GE(row[j], row[j - 1]) << symbol;
      }
    }
  }
}

// By how much the scaled cross section of the file exceeds the built-in one at
// an electron energy [keV], at worst over the fractions from 0.1 to 0.95.
double excess(Material<double> const& material, double velocity) {
  auto const builtin = material.BremsSigma(velocity, false, true);
  auto const tabulated = material.TabSigma(velocity, false, true);
  double worst = 0;
  for (double k : {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 0.95}) {
    double const scaled =
        tabulated(k, false, true) * velocity / (material.Z * material.Z);
    double const ratio = scaled / builtin(k, false, true) - 1;
    if (std::abs(ratio) > std::abs(worst)) worst = ratio;
  }
  return worst;
}

// The energies of the file within the range of the built-in data, as beta.
std::vector<double> velocities(Material<double> const& material) {
  std::vector<double> result;
  for (double velocity : material.TabSigma.nodes())
    if (velocity >= beta(1.) && velocity <= beta(2000.001))
      result.push_back(velocity);
  return result;
}

TEST(RealBremsstrahlung, AgreesWithTheBuiltinAtTheEnergiesOfTheFile) {
  PHOTARIUM_NEEDS_DATA();
  for (auto const& [symbol, file] : RealElements) {
    Material<double> const material = element(symbol, file);
    EXPECT_GE(velocities(material).size(), 3U);
    for (double velocity : velocities(material))
      EXPECT_LT(std::abs(excess(material, velocity)), 0.03) << symbol;
  }
}

// Linear interpolation over few energies, of a quantity that is curved.
TEST(RealBremsstrahlung, IsTensOfPercentHighBetweenTheEnergiesOfTheFile) {
  PHOTARIUM_NEEDS_DATA();
  for (auto const& [symbol, file] : RealElements) {
    Material<double> const material = element(symbol, file);
    double const atFifty = excess(material, beta(50.));
    EXPECT_GT(atFifty, 0.1) << symbol;
    EXPECT_LT(atFifty, 0.4) << symbol;
  }
}

TEST(RealAngleTable, OfTungstenRunsFromBackwardsToForwards) {
  PHOTARIUM_NEEDS_DATA();
  Material<double> const material = element("W", "endf_mt526/074_W_000.endf");
  DistributionConfig<double> dist;
  dist.kVp = 150;
  dist.EBin = 0.5;
  std::ostringstream out;
  AngleDist(out, dist, material);  // without a warning
  auto const rows = rowsOf(out.str());
  ASSERT_EQ(rows.size(), 300U);
  double lastMedian = -1;
  for (auto const& row : rows) {
    ASSERT_EQ(row.size(), 1001U);
    EXPECT_EQ(row.front(), -1);
    for (std::size_t j = 1; j < row.size(); ++j) EXPECT_GE(row[j], row[j - 1]);
    EXPECT_LE(row.back(), 1);
    // The faster the electron, the more forward it goes.
    EXPECT_GE(row[500], lastMedian);
    lastMedian = row[500];
  }
  EXPECT_GT(lastMedian, 0.999);
}

TEST(RealFluoTable, OfCopperSharesAllOfPhotoabsorption) {
  PHOTARIUM_NEEDS_DATA();
  Material<double> const material = element("Cu", "endf/029_Cu_000.endf");
  GridConfig<double> grid;
  grid.kVp = 150;
  grid.EBin = 0.5;
  std::ostringstream out;
  try {
    FluoTable(out, grid, material);
  } catch (warning const&) {
    // Sums of more than one by the rounding of the file.
  }
  auto const rows = rowsOf(out.str());
  std::size_t const edges = material.Edges.size();
  ASSERT_EQ(edges, 10U);
  ASSERT_EQ(rows.size(), edges + 300U);
  EXPECT_NEAR(rows[0][0], 8.98, 0.05);  // K edge [keV]
  for (std::size_t i = 0; i < 300; ++i) {
    std::vector<double> const& row = rows[edges + i];
    ASSERT_EQ(row.size(), 2 * edges);
    double const energy = 0.5 * static_cast<double>(i + 1);
    double sum = 0;
    for (std::size_t j = 0; j < edges; ++j) sum += row[j];
    if (energy < rows[0][0]) continue;
    // The curves of the levels and their sum have other energies, and six
    // digits, in the file.
    EXPECT_LT(sum, 1.0005) << energy;
    EXPECT_GT(sum, 0.999) << energy;
    EXPECT_GT(row[0], 0.8) << energy;    // most of it is the K shell
    EXPECT_GT(row[edges], 0) << energy;  // electrons ionize it, too
  }
}

}  // namespace
