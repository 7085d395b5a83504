#include "photarium/grid/Attenuation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

#include "photarium/config/Header.h"
#include "photarium/config/PlotConfig.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/support/messages.h"

namespace {

using Curve = AttenuationCoeff<double>;
using Energies = std::map<double const, double>;
using Labels = LabelMap<double>;

// A straight line between two points.
Curve line(double x0, double y0, double x1, double y1) {
  return Curve::fromSorted({{{{x0, y0}, {x1, y1}}, Curve::LinLin, false}}, 1.,
                           /*linear=*/true);
}

// Of density 2, with curves that are constant from 1 to 10 keV.
Material<double> flat() {
  Material<double> material("Xx", 0, 0, 2);
  material.Absorption = line(1, 10, 10, 10);
  material.Incoherent = line(1, 20, 10, 20);
  material.Coherent = line(1, 30, 10, 30);
  material.Pair = line(1, 40, 10, 40);
  return material;
}

TEST(Interpolate, AddsToWhatNodesHold) {
  Energies grid{{1, 5}, {2, 6}};
  interpolate(line(1, 10, 2, 20), grid, 2., "", /*extrapolate=*/false);
  EXPECT_EQ(grid, (Energies{{1, 25}, {2, 46}}));
}

TEST(Interpolate, RemovesNodesThatTheCurveDoesNotCover) {
  Energies grid{{0.5, 0}, {1, 0}, {1.5, 0}, {2, 0}, {2.5, 0}};
  interpolate(line(1, 10, 2, 20), grid, 1., "", /*extrapolate=*/false);
  EXPECT_EQ(grid, (Energies{{1, 10}, {1.5, 15}, {2, 20}}));
}

TEST(Interpolate, SumsOverTheIntersectionOfRanges) {
  Energies grid{{1, 0}, {2, 0}, {3, 0}, {4, 0}};
  interpolate(line(1, 10, 3, 10), grid, 1., "", /*extrapolate=*/false);
  interpolate(line(2, 5, 4, 5), grid, 1., "", /*extrapolate=*/false);
  EXPECT_EQ(grid, (Energies{{2, 15}, {3, 15}}));
}

TEST(Interpolate, KeepsAllNodesIfItExtrapolates) {
  Energies grid{{0, 0}, {4, 0}};
  interpolate(line(1, 10, 2, 20), grid, 1., "", /*extrapolate=*/true);
  EXPECT_EQ(grid, (Energies{{0, 0}, {4, 40}}));
}

TEST(Interpolate, RemovesAllNodesForAnEmptyCurve) {
  Energies grid{{1, 0}, {2, 0}};
  interpolate(Curve(), grid, 1., "", /*extrapolate=*/false);
  EXPECT_TRUE(grid.empty());
}

TEST(Interpolate, AddsNothingForAnEmptyCurveIfItExtrapolates) {
  Energies grid{{1, 3}};
  interpolate(Curve(), grid, 1., "", /*extrapolate=*/true);
  EXPECT_EQ(grid, (Energies{{1, 3}}));
}

TEST(MuGen, AddsTheLinearAbsorption) {
  Energies grid{{0.5, 1}, {5, 0}, {20, 0}};
  muGen(flat(), grid);
  EXPECT_EQ(grid, (Energies{{0.5, 21}, {5, 20}, {20, 20}}));
}

// The output of muPlot, which must end without an exception.
std::string plotOf(PlotConfig<double> const& plot,
                   Material<double> const& material, Energies grid) {
  std::ostringstream out;
  Labels labels;
  muPlot(out, plot, material, grid, labels);
  return out.str();
}

PlotConfig<double> tableSettings() {
  PlotConfig<double> plot;
  plot.ACRP = true;
  return plot;
}

TEST(MuPlotTable, WritesTheFourCurves) {
  EXPECT_EQ(plotOf(tableSettings(), flat(), {{1, 7}, {2, 7}, {3, 7}}),
            "#Tramo\t0\tXx\tACRP\t4\t3\t1\t1\n"
            "# Density: 2\t# [g/cm^3]\n"
            "# energy steps of 1 keV, from 1 keV to 3 keV\n"
            "# photoabsorption\tincoherent\tcoherent\tpair production\n"
            "2.000000e+01\t4.000000e+01\t6.000000e+01\t8.000000e+01\n"
            "2.000000e+01\t4.000000e+01\t6.000000e+01\t8.000000e+01\n"
            "2.000000e+01\t4.000000e+01\t6.000000e+01\t8.000000e+01\n");
}

TEST(MuPlotTable, LeavesTheAbsorptionInTheGrid) {
  Energies grid{{1, 7}, {2, 7}};
  Labels labels;
  std::ostringstream out;
  muPlot(out, tableSettings(), flat(), grid, labels);
  EXPECT_EQ(grid, (Energies{{1, 20}, {2, 20}}));
}

TEST(MuPlotTable, LeavesTheStreamScientific) {
  Energies grid{{1, 7}};
  Labels labels;
  std::ostringstream out;
  muPlot(out, tableSettings(), flat(), grid, labels);
  out.str("");
  out << 0.5;
  EXPECT_EQ(out.str(), "5.000000e-01");
}

TEST(MuPlotTable, TakesASingleEnergy) {
  std::string const text = plotOf(tableSettings(), flat(), {{4, 0}});
  EXPECT_EQ(text.substr(0, text.find("# photo")),
            "#Tramo\t0\tXx\tACRP\t4\t1\t4\t0\n"
            "# Density: 2\t# [g/cm^3]\n"
            "# energy steps of 0 keV, from 4 keV to 4 keV\n");
}

TEST(MuPlotTable, NeedsEnergies) {
  EXPECT_EQ(messageOf<std::runtime_error>(
                [&] { plotOf(tableSettings(), flat(), {}); }),
            "No energies given");
}

TEST(MuPlotTable, TakesStepsThatDifferByAMillionth) {
  std::string const text =
      plotOf(tableSettings(), flat(), {{1, 0}, {2, 0}, {3.000001, 0}});
  EXPECT_EQ(text.substr(0, text.find('\n')), "#Tramo\t0\tXx\tACRP\t4\t3\t1\t1");
}

TEST(MuPlotTable, RefusesUnequalSteps) {
  std::ostringstream out;
  Energies grid{{1, 0}, {2, 0}, {3.0001, 0}};
  Labels labels;
  EXPECT_EQ(messageOf<std::runtime_error>(
                [&] { muPlot(out, tableSettings(), flat(), grid, labels); }),
            "Not a regular energy grid");
  EXPECT_EQ(out.str(), "");
}

// A table that ends in a warning: its text, the warning, and what was told on
// the standard error stream.
struct Incomplete {
  Incomplete(Material<double> const& material, Energies energies)
      : grid(std::move(energies)) {
    std::ostringstream errors;
    std::streambuf* const usual = std::cerr.rdbuf(errors.rdbuf());
    std::ostringstream out;
    Labels labels;
    message = messageOf<warning>(
        [&] { muPlot(out, tableSettings(), material, grid, labels); });
    std::cerr.rdbuf(usual);
    text = out.str();
    told = errors.str();
  }

  Energies grid;
  std::string text, message, told;
};

TEST(MuPlotTable, NamesEnergiesThatCurvesLackAndCountsThem) {
  Material<double> material = flat();
  material.Coherent = line(2, 30, 10, 30);
  material.Pair = line(3, 40, 10, 40);
  Incomplete const result(material, {{1, 0}, {2, 0}, {3, 0}, {4, 0}});
  EXPECT_EQ(result.message, "Not enough data for requested energy values\n");
  EXPECT_EQ(result.told, "1\t2\n2\t3\n");
  EXPECT_EQ(result.text,
            "#Tramo\t0\tXx\tACRP\t4\t4\t3\t1\n"
            "# Density: 2\t# [g/cm^3]\n"
            "# energy steps of 1 keV, from 3 keV to 6 keV\n"
            "# photoabsorption\tincoherent\tcoherent\tpair production\n"
            "2.000000e+01\t4.000000e+01\t6.000000e+01\t8.000000e+01\n"
            "2.000000e+01\t4.000000e+01\t6.000000e+01\t8.000000e+01\n");
  EXPECT_EQ(result.grid, (Energies{{3, 20}, {4, 20}}));
}

TEST(MuPlotTable, PassesOverEnergiesThatNoCurveCovers) {
  Incomplete const result(flat(), {{0.5, 0}, {1, 0}, {1.5, 0}});
  EXPECT_EQ(result.told, "");
  EXPECT_EQ(result.text.substr(0, result.text.find('\n')),
            "#Tramo\t0\tXx\tACRP\t4\t2\t1\t0.5");
}

TEST(MuPlotTable, NeedsAnEnergyThatAllCurvesCover) {
  Material<double> material = flat();
  material.Pair = Curve();
  std::ostringstream errors;
  std::streambuf* const usual = std::cerr.rdbuf(errors.rdbuf());
  EXPECT_EQ(messageOf<std::runtime_error>([&] {
              plotOf(tableSettings(), material, {{1, 0}, {2, 0}});
            }),
            "No energies given");
  std::cerr.rdbuf(usual);
  EXPECT_EQ(errors.str(), "1\t3\n2\t3\n");
}

TEST(MuPlotTable, NeedsAnEnergyThatAnyCurveCovers) {
  EXPECT_EQ(messageOf<std::runtime_error>([&] {
              plotOf(tableSettings(), flat(), {{100, 0}});
            }),
            "No energies given");
}

TEST(MuPlotTable, ExtrapolatesIfAsked) {
  PlotConfig<double> plot = tableSettings();
  plot.Extrapolate = true;
  std::string const text = plotOf(plot, flat(), {{100, 0}});
  EXPECT_EQ(text.substr(text.rfind("production\n") + 11),
            "2.000000e+01\t4.000000e+01\t6.000000e+01\t8.000000e+01\n");
}

TEST(MuPlot, BeginsWithTheHeader) {
  PlotConfig<double> const plot;
  EXPECT_EQ(plotOf(plot, flat(), {}), Header<double>("muPlot", plot));
}

// What follows the comment block.
std::string linesOf(PlotConfig<double> const& plot, Energies const& grid,
                    Material<double> const& material = flat()) {
  return plotOf(plot, material, grid)
      .substr(Header<double>("muPlot", plot).size());
}

TEST(MuPlot, WritesTheAbsorptionByDefault) {
  EXPECT_EQ(linesOf(PlotConfig<double>(), {{1, 7}, {2, 7}}),
            "1.000000e+00\t2.000000e+01\n2.000000e+00\t2.000000e+01\n");
}

TEST(MuPlot, SumsTheSelectedCurves) {
  PlotConfig<double> plot;
  plot.Incoherent = plot.Coherent = plot.Pair = true;
  EXPECT_EQ(linesOf(plot, {{1, 7}}), "1.000000e+00\t2.000000e+02\n");
  plot.Coherent = false;
  EXPECT_EQ(linesOf(plot, {{1, 7}}), "1.000000e+00\t1.400000e+02\n");
}

TEST(MuPlot, WritesZerosForNoCurve) {
  PlotConfig<double> plot;
  plot.Absorption = false;
  EXPECT_EQ(linesOf(plot, {{1, 7}, {99, 7}}),
            "1.000000e+00\t0.000000e+00\n9.900000e+01\t0.000000e+00\n");
}

TEST(MuPlot, LeavesOutEnergiesThatACurveLacks) {
  EXPECT_EQ(linesOf(PlotConfig<double>(), {{0.5, 7}, {2, 7}}),
            "2.000000e+00\t2.000000e+01\n");
}

TEST(MuPlot, WritesLabelsBesideTheNodes) {
  std::ostringstream out;
  PlotConfig<double> const plot;
  Energies grid{{1, 0}};
  Labels labels{{1, " K edge"}};
  muPlot(out, plot, flat(), grid, labels);
  EXPECT_EQ(out.str().substr(Header<double>("muPlot", plot).size()),
            "1.000000e+00\t2.000000e+01 K edge\n");
}

TEST(MuPlot, TurnsAttenuationIntoEfficiency) {
  PlotConfig<double> plot;
  plot.Efficiency = true;
  plot.AngleIn = 90;
  plot.Thickness = 0.05;
  // 1 - exp(-0.05 * 20)
  EXPECT_EQ(linesOf(plot, {{1, 0}}), "1.000000e+00\t6.321206e-01\n");
}

TEST(MuPlot, LengthensThePathOfObliqueRays) {
  PlotConfig<double> plot;
  plot.Efficiency = true;
  plot.AngleIn = 30;
  plot.Thickness = 0.05;
  // 1 - exp(-0.1 * 20)
  EXPECT_EQ(linesOf(plot, {{1, 0}}), "1.000000e+00\t8.646647e-01\n");
}

TEST(MuPlot, PrefersElectronScatteringWithoutEfficiency) {
  PlotConfig<double> plot;
  plot.eElScatter = plot.Efficiency = true;
  Material<double> material = flat();
  material.ElectronElastic = line(1, 3, 10, 3);
  EXPECT_EQ(linesOf(plot, {{1, 0}}, material), "1.000000e+00\t6.000000e+00\n");
}

TEST(MuPlot, PrintsTheNodesOfFactors) {
  Material<double> material = flat();
  material.FormFactor = line(1, 1, 2, 1);
  material.ScatterFunction = line(1, 2, 2, 2);
  material.AnomalousImag = line(1, 3, 2, 3);
  material.AnomalousReal = line(1, 4, 2, 4);
  auto const nodes = [](std::string const& value) {
    return "# 1 edges\n# 2 nodes LinLin\n1.000000e+00\t" + value +
           "\n2.000000e+00\t" + value + "\n";
  };
  PlotConfig<double> plot;
  plot.RealFactor = true;
  EXPECT_EQ(linesOf(plot, {}, material), nodes("4.000000e+00"));
  plot.ImagFactor = true;
  EXPECT_EQ(linesOf(plot, {}, material), nodes("3.000000e+00"));
  plot.ScatFunc = true;
  EXPECT_EQ(linesOf(plot, {}, material), nodes("2.000000e+00"));
  plot.FormFactor = true;
  EXPECT_EQ(linesOf(plot, {}, material), nodes("1.000000e+00"));
}

}  // namespace
