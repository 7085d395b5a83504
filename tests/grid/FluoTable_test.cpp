#include "photarium/grid/FluoTable.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include "photarium/config/GridConfig.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/support/messages.h"

namespace {

using Curve = AttenuationCoeff<double>;

Curve constant(double value) {
  return Curve::fromSorted(
      {{{{0, value}, {1000, value}}, Curve::LinLin, false}}, 1.,
      /*linear=*/true);
}

SubshellID const k(29, K1);
SubshellID const l(29, L1);

// Of density 2, with edges at 2 and 1 keV.
Material<double> copper() {
  Material<double> material("Cu", 0, 0, 2);
  material.Edges = {Edge<double>(k, 2, 0.4, 7), Edge<double>(l, 1, 0, 1)};
  material.Edges[0].Lines = {
      Line<double>(1.5, 0.25, "K-L1", l, /*radiative=*/true),
      Line<double>(1.25, 0.75, "K-L1L1", l, l, /*radiative=*/false)};
  material.Absorption = constant(100);
  material.PhotoIonization = {{k, constant(80)}, {l, constant(10)}};
  material.ElectronIonization = {{k, constant(3)}, {l, constant(4)}};
  return material;
}

GridConfig<double> settings(double kVp, double EBin) {
  GridConfig<double> grid;
  grid.kVp = kVp;
  grid.EBin = EBin;
  return grid;
}

std::string tableOf(GridConfig<double> const& grid,
                    Material<double> const& material) {
  std::ostringstream out;
  FluoTable(out, grid, material);
  return out.str();
}

// A table that ends in a warning.
struct Warned {
  explicit Warned(Material<double> const& material) {
    std::ostringstream out;
    message =
        messageOf<warning>([&] { FluoTable(out, settings(2.5, 1), material); });
    text = out.str();
    rows = text.substr(text.rfind("order)\n") + 7);
  }

  std::string text, rows, message;
};

std::string const comments =
    "# one column per edge (order as above) giving excitation probability in "
    "case of photoabsorption,\n"
    "# followed by excitation cross sections in 1/cm for electrons (same "
    "column order)\n";

TEST(FluoTable, WritesEdgesSharesAndCrossSections) {
  EXPECT_EQ(tableOf(settings(2.5, 0.9), copper()),
            "#Tramo\t0\tCu\tFluo\t2\t3\t0.9\t0.9\n"
            "# Density: 2\t# [g/cm^3]\n"
            "# energy steps of 0.9 keV, from 0.9 keV to 2.7 keV\n"
            "# edge energy\ttransition count\ttransition energy\ttransition "
            "probability\t0: photon, 1: electron, ...\n"
            "2.000000e+00\t2\t1.500000e+00\t2.500000e-01\t0\t1.250000e+00\t"
            "7.500000e-01\t1\n"
            "1.000000e+00\t0\n" +
                comments +
                "0.000000e+00\t0.000000e+00\t0.000000e+00\t0.000000e+00\n"
                "0.000000e+00\t1.000000e-01\t0.000000e+00\t8.000000e+00\n"
                "8.000000e-01\t1.000000e-01\t6.000000e+00\t8.000000e+00\n");
}

TEST(FluoTable, CountsAnEdgeAtItsOwnEnergy) {
  std::string const text = tableOf(settings(2, 1), copper());
  EXPECT_EQ(text.substr(text.rfind(comments) + comments.size()),
            "0.000000e+00\t1.000000e-01\t0.000000e+00\t8.000000e+00\n"
            "8.000000e-01\t1.000000e-01\t6.000000e+00\t8.000000e+00\n");
}

TEST(FluoTable, EndsBehindTheHeadingWithoutEdges) {
  EXPECT_EQ(tableOf(settings(2, 1), Material<double>("Cu", 0, 0, 2)),
            "#Tramo\t0\tCu\tFluo\t0\t2\t1\t1\n"
            "# Density: 2\t# [g/cm^3]\n"
            "# energy steps of 1 keV, from 1 keV to 2 keV\n"
            "# edge energy\ttransition count\ttransition energy\ttransition "
            "probability\t0: photon, 1: electron, ...\n");
}

TEST(FluoTable, ListsAnEdgeAboveTheVoltageWithZeros) {
  std::string const text = tableOf(settings(1.5, 0.8), copper());
  EXPECT_NE(text.find("\n2.000000e+00\t2\t"), std::string::npos);
  EXPECT_EQ(text.substr(text.rfind(comments) + comments.size()),
            "0.000000e+00\t0.000000e+00\t0.000000e+00\t0.000000e+00\n"
            "0.000000e+00\t1.000000e-01\t0.000000e+00\t8.000000e+00\n");
}

TEST(FluoTable, LeavesTheStreamScientific) {
  std::ostringstream out;
  FluoTable(out, settings(2, 1), copper());
  out.str("");
  out << 0.5;
  EXPECT_EQ(out.str(), "5.000000e-01");
}

TEST(FluoTable, TellsOfSharesAboveOneAndWritesThem) {
  Material<double> material = copper();
  material.PhotoIonization[l] = constant(30);
  Warned const result(material);
  EXPECT_EQ(result.message,
            "Probability greater than one: 2.000000e+00\t1.100000e+00\n"
            "Probability greater than one: 3.000000e+00\t1.100000e+00\n");
  EXPECT_EQ(result.rows,
            "0.000000e+00\t3.000000e-01\t0.000000e+00\t8.000000e+00\n"
            "8.000000e-01\t3.000000e-01\t6.000000e+00\t8.000000e+00\n"
            "8.000000e-01\t3.000000e-01\t6.000000e+00\t8.000000e+00\n");
}

TEST(FluoTable, NamesLevelsWithoutPhotoionization) {
  Material<double> material = copper();
  material.PhotoIonization.erase(k);
  Warned const result(material);
  EXPECT_EQ(result.message, "No photoionization data for level: Cu K1\n");
  EXPECT_EQ(result.rows,
            "0.000000e+00\t1.000000e-01\t0.000000e+00\t8.000000e+00\n"
            "0.000000e+00\t1.000000e-01\t6.000000e+00\t8.000000e+00\n"
            "0.000000e+00\t1.000000e-01\t6.000000e+00\t8.000000e+00\n");
}

TEST(FluoTable, NamesLevelsWithoutElectronIonization) {
  Material<double> material = copper();
  material.ElectronIonization.erase(k);
  Warned const result(material);
  EXPECT_EQ(result.message, "No electron ionization data for level: Cu K1\n");
  EXPECT_EQ(result.rows,
            "0.000000e+00\t1.000000e-01\t0.000000e+00\t8.000000e+00\n"
            "8.000000e-01\t1.000000e-01\t0.000000e+00\t8.000000e+00\n"
            "8.000000e-01\t1.000000e-01\t0.000000e+00\t8.000000e+00\n");
}

TEST(FluoTable, NamesALevelThatIsNone) {
  Material<double> material = copper();
  material.Edges[0].ID = SubshellID(0, subshell(99));
  EXPECT_EQ(Warned(material).message,
            "No photoionization data for level: 99\n"
            "No electron ionization data for level: 99\n");
}

TEST(FluoTable, RefusesAStepThatReachesTheVoltage) {
  for (double step : {100., 200.})
    EXPECT_EQ(messageOf<std::runtime_error>(
                  [&] { tableOf(settings(100, step), copper()); }),
              "Unreasonable maximum energy!\n");
}

TEST(FluoTable, RefusesHugeTables) {
  std::ostringstream out;
  EXPECT_EQ(messageOf<std::runtime_error>(
                [&] { FluoTable(out, settings(1e9, 1), copper()); }),
            "Unreasonable number of energies.\n");
  EXPECT_EQ(out.str(), "");
}

}  // namespace
