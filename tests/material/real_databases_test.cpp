#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/elements.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "photarium/streams/PHMCStream.h"
#include "tests/support/paths.h"
#include "tests/support/thrown.h"

namespace {

// The database and the corrections that the project ships.
class ShippedDatabase : public testing::Test {
 protected:
  ShippedDatabase() { config.Directory = sourceDir().string(); }

  Material<double> element(std::string const& name) {
    MaterialConfig<double> one = config;
    one.Material = name;
    return Material<double>(one);
  }

  // A composite, which warns as the database has no electron data.
  Material<double> composite(std::string const& text) {
    MaterialConfig<double> one = config;
    one.Material = text;
    Material<double> material;
    EXPECT_THROW(material.update(one), warning);
    return material;
  }

  // Sums the curves of elements by their weights and compares.
  void expectSums(std::string const& text,
                  std::map<std::string, double> const& shares) {
    Material<double> const mixture = composite(text);
    for (double const energy : {2., 5., 8.5, 12., 30., 80., 150.}) {
      double photo = 0;
      double coherent = 0;
      double incoherent = 0;
      for (auto const& [name, share] : shares) {
        Material<double> const pure = element(name);
        photo += share * pure.Absorption(energy, false);
        coherent += share * pure.Coherent(energy, false);
        incoherent += share * pure.Incoherent(energy, false);
      }
      // Between its nodes the sum is a spline of its own: within the error of
      // the tables, 0.3 %.
      EXPECT_NEAR(mixture.Absorption(energy, false) / photo, 1, 3e-3) << energy;
      EXPECT_NEAR(mixture.Coherent(energy, false) / coherent, 1, 3e-3);
      EXPECT_NEAR(mixture.Incoherent(energy, false) / incoherent, 1, 3e-3);
    }
  }

  MaterialConfig<double> config;
};

double line(Material<double> const& material, std::string const& label) {
  for (auto const& edge : material.Edges)
    for (auto const& line : edge.Lines)
      if (line.Label == label) return line.Energy;
  return 0;
}

std::string elamFile() {
  return (testData() / "elam/elam.dat").string();
}

}  // namespace

TEST_F(ShippedDatabase, LoadsEveryElementWithoutAFinding) {
  for (unsigned int z = 1; z <= 98; ++z) {
    EXPECT_EQ(element(std::to_string(z)).Name, Elements[z]);
  }
}

TEST_F(ShippedDatabase, HoldsNinetyEightElements) {
  std::map<std::string, Material<double>> elements;
  Material<double>::readDB(elements,
                           (sourceDir() / "data/ElamDB12.txt").string());
  EXPECT_EQ(elements.size(), 98U);
}

TEST_F(ShippedDatabase, GivesBrassAsTheSumOfItsElements) {
  double const copper = MassNumbers[29];
  double const zinc = MassNumbers[30];
  expectSums("CuZn", {{"Cu", copper / (copper + zinc)},
                      {"Zn", zinc / (copper + zinc)}});
}

TEST_F(ShippedDatabase, GivesWaterAsTheSumOfItsElements) {
  double const hydrogen = 2 * MassNumbers[1];
  double const oxygen = MassNumbers[8];
  expectSums("H2O", {{"H", hydrogen / (hydrogen + oxygen)},
                     {"O", oxygen / (hydrogen + oxygen)}});
}

TEST_F(ShippedDatabase, GivesAGlassOfTwoOxides) {
  double const O = MassNumbers[8];
  double const Al = MassNumbers[13];
  double const Si = MassNumbers[14];
  double const silica = Si + 2 * O;
  double const alumina = 2 * Al + 3 * O;
  expectSums("SiO2 0.6 Al2O3 0.4",
             {{"Si", 0.6 * Si / silica},
              {"Al", 0.4 * 2 * Al / alumina},
              {"O", 0.6 * 2 * O / silica + 0.4 * 3 * O / alumina}});
}

TEST_F(ShippedDatabase, GivesSteelByMassParts) {
  expectSums("Fe0.7Cr0.2Ni0.1", {{"Fe", 0.7}, {"Cr", 0.2}, {"Ni", 0.1}});
  EXPECT_EQ(composite("Fe0.7Cr0.2Ni0.1").Name, "Fe0.7Cr0.2Ni0.1");
}

TEST_F(ShippedDatabase, GivesCadmiumTellurideByAtomsOrByMass) {
  double const Cd = MassNumbers[48];
  double const Te = MassNumbers[52];
  expectSums("CdTe", {{"Cd", Cd / (Cd + Te)}, {"Te", Te / (Cd + Te)}});
  expectSums("Cd1Te1", {{"Cd", Cd / (Cd + Te)}, {"Te", Te / (Cd + Te)}});
  expectSums("Cd0.5Te0.5", {{"Cd", 0.5}, {"Te", 0.5}});
}

TEST_F(ShippedDatabase, JumpsAtTheKEdgeOfIronByItsRatio) {
  Material<double> const iron = element("Fe");
  auto const edge = std::find_if(
      iron.Edges.begin(), iron.Edges.end(),
      [](auto const& one) { return one.ID == SubshellID(26, K1); });
  ASSERT_NE(edge, iron.Edges.end());
  EXPECT_EQ(edge->Energy, 7.112);
  double const below = iron.Absorption(7.112 * (1 - 1e-6), false);
  double const above = iron.Absorption(7.112 * (1 + 1e-6), false);
  EXPECT_NEAR(above / below / edge->Jump, 1, 1e-4);
  // McMaster et al. (1969), UCRL-50174: 7.9; Elam et al. (2002): 8.0.
  EXPECT_NEAR(edge->Jump, 8, 0.3);
}

TEST_F(ShippedDatabase, HasTheKLinesOfCopper) {
  Material<double> const copper = element("Cu");
  // Deslattes et al., Rev. Mod. Phys. 75 (2003) 35: 8.04783 and 8.02784 keV,
  // which the lines of Elam et al. (2002) meet within 2 eV.
  EXPECT_NEAR(line(copper, "K-L3"), 8.0478, 0.002);
  EXPECT_NEAR(line(copper, "K-L2"), 8.0278, 0.002);
}

TEST_F(ShippedDatabase, GivesTheSameFromAPackedCopy) {
  ScratchFolder const scratch;
  std::string const path = scratch.write("data/ElamDB12.txt.phc", "");
  {
    PHMCStream packed(path, /*plain=*/false, std::ios::out | std::ios::binary);
    packed << fileText(sourceDir() / "data/ElamDB12.txt");
  }
  scratch.write("data/ELossCorrections.txt",
                fileText(sourceDir() / "data/ELossCorrections.txt"));
  auto const text = [](Material<double> const& material) {
    std::ostringstream out;
    out << material.Absorption << material.Coherent << material.Incoherent;
    return out.str();
  };
  std::string const plain = text(composite("CuZn"));
  config.Directory = scratch.path().string();
  EXPECT_EQ(text(composite("CuZn")), plain);
}

TEST(ElamDatabase, LoadsTheElementsUpToScandium) {
  PHOTARIUM_NEEDS_DATA();
  for (unsigned int z = 1; z <= 21; ++z) {
    Material<double> material(z);
    material.readDB(elamFile(), "", Unknown);
    EXPECT_EQ(material.Z, z);
    EXPECT_GT(material.Absorption(10., false), 0) << material.Name;
  }
}

TEST(ElamDatabase, RefusesGroupsOfLinesWithTheNameOfTheFile) {
  PHOTARIUM_NEEDS_DATA();
  for (unsigned int z = 22; z <= 98; ++z) {
    Material<double> material(z);
    std::string const text = thrown<std::runtime_error>(
        [&] { material.readDB(elamFile(), "", Unknown); });
    EXPECT_TRUE(text.starts_with("Unknown subshell ")) << text;
    EXPECT_TRUE(text.ends_with(" while reading " + elamFile())) << text;
  }
}

TEST(ElamDatabase, StopsAtTitaniumWhenReadWhole) {
  PHOTARIUM_NEEDS_DATA();
  std::map<std::string, Material<double>> elements;
  EXPECT_EQ(
      thrown<warning>([&] { Material<double>::readDB(elements, elamFile()); }),
      "Unknown subshell M4,5");
  EXPECT_EQ(elements.size(), 22U);
}

TEST(ElamDatabase, GivesTheSameElementsFromAPackedCopy) {
  PHOTARIUM_NEEDS_DATA();
  ScratchFolder const scratch;
  std::string const path = scratch.write("elam.phc", "");
  {
    PHMCStream packed(path, /*plain=*/false, std::ios::out | std::ios::binary);
    packed << fileText(elamFile());
  }
  Material<double> plain(13.);
  Material<double> unpacked(13.);
  plain.readDB(elamFile(), "", Unknown);
  unpacked.readDB(path, "", Unknown);
  for (double const energy : {1., 1.56, 5., 50.})
    EXPECT_EQ(plain.Absorption(energy, false),
              unpacked.Absorption(energy, false));
}
