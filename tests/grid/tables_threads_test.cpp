#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "photarium/config/SpectConfig.h"
#include "photarium/foundation/warning.h"
#include "photarium/grid/AngleDist.h"
#include "photarium/grid/Attenuation.h"
#include "photarium/grid/BremsTable.h"
#include "photarium/grid/FluoTable.h"
#include "photarium/material/Material.h"
#include "tests/support/table_materials.h"

namespace {

// The tables of materials that all threads share.
std::string tables(Material<double> const& brems, Material<double> const& angle,
                   Material<double> const& photon) {
  std::ostringstream out;
  SpectConfig<double> spect;
  DistributionConfig<double> dist;
  spect.kVp = dist.kVp = 20;
  spect.EBin = dist.EBin = 1;
  spect.Pratt = true;
  dist.Steps = 21;
  BremsTable(out, spect, dist, brems);
  spect.Pratt = false;
  BremsTable(out, spect, dist, brems);
  AngleDist(out, dist, angle);
  std::map<double const, double> grid;
  for (int E = 1; E <= 50; ++E) grid[E] = 0;
  LabelMap<double> labels;
  PlotConfig<double> plot;
  plot.ACRP = true;
  muPlot(out, plot, photon, grid, labels);
  return out.str();
}

TEST(TablesThreads, WriteTheSameFromSharedMaterials) {
  Material<double> const brems = bremsMaterial();
  Material<double> const angle = angleMaterial(20);
  Material<double> const photon = photonMaterial();
  std::string const expected = tables(brems, angle, photon);
  std::vector<std::string> results(8);
  std::vector<std::thread> threads;
  for (std::string& result : results)
    threads.emplace_back([&] { result = tables(brems, angle, photon); });
  for (std::thread& thread : threads) thread.join();
  for (std::string const& result : results) EXPECT_EQ(result, expected);
}

// A material built from settings, and all its tables.
std::string buildAndWrite() {
  SpectConfig<double> settings;
  settings.Directory = PHOTARIUM_SOURCE_DIR;
  settings.Material = "CuZn";
  Material<double> brass;
  std::string findings;
  try {
    brass.update(settings);
  } catch (warning const& found) {
    findings = found.what();
  }
  std::ostringstream out;
  GridConfig<double> grid;
  grid.kVp = 20;
  grid.EBin = 1;
  try {
    FluoTable(out, grid, brass);
  } catch (warning const& found) {
    findings += found.what();
  }
  return tables(brass, angleMaterial(20), brass) + out.str() + findings;
}

TEST(TablesThreads, BuildMaterialsAndWriteTheirTables) {
  std::string const expected = buildAndWrite();
  std::vector<std::string> results(8);
  std::vector<std::thread> threads;
  for (std::string& result : results)
    threads.emplace_back([&] { result = buildAndWrite(); });
  for (std::thread& thread : threads) thread.join();
  for (std::string const& result : results) EXPECT_EQ(result, expected);
}

}  // namespace
