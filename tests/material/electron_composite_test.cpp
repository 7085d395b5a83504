#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/config/MaterialConfig.h"
#include "photarium/config/SpectConfig.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/material/EndfText.h"
#include "tests/support/paths.h"
#include "tests/support/thrown.h"

namespace {

// An element with data of electrons and of its atom. Values are multiples of
// `size`; the angles of electrons at the energies [eV] have the density `p` at
// the cosines -1, 0 and 1.
std::string element(int z, std::string const& symbol, double size,
                    std::vector<double> const& energies,
                    EndfText::Points const& angles) {
  EndfText text(z, symbol);
  text.head(3, 55);
  for (int const section : {502, 504, 522})
    text.table(23, section, {{1e3, 5e3 * size}, {1e5, 3 * size}}, 5);
  text.table(23, 534, {{7e3, 3e4 * size}, {1e5, 16 * size}}, 5);
  text.table(27, 502, {{.1, 25 * size}, {1, 4 * size}});
  text.table(27, 504, {{.1, 2 * size}, {1, 20 * size}});
  text.head(113, 55);
  text.table(23, 526, {{10, 3e8 * size}, {1e11, size}}, 5);
  text.table(23, 527, {{10, 9e3 * size}, {1e11, 1e3 * size}}, 5);
  text.table(23, 534, {{7e3, 50 * size}, {1e5, 300 * size}});
  long const count = static_cast<long>(angles.size());
  long const rows = static_cast<long>(energies.size());
  text.section(26, 526).control(0, 55, 0, 0, 1, 0);
  text.control(11, 5.4e-4, 0, 2, 1, 2).wholes({2, 2});
  text.points({{10, 1}, {1e11, 1}}).control(0, 0, 0, 0, 1, rows);
  text.wholes({rows, 2});
  for (double const energy : energies)
    text.control(0, energy, 12, 0, 2 * count, count).points(angles);
  text.end().section(26, 527).control(0, 55, 0, 0, 2, 0);
  text.control(0, 5.4e-4, 0, 1, 1, 2).wholes({2, 2});
  text.points({{10, 1}, {1e11, 1}}).control(0, 0, 1, 2, 1, rows);
  text.wholes({rows, 2});
  for (double const energy : energies)
    text.control(0, energy, 0, 0, 4, 2).points({{.1, 2}, {energy, 1e-3}});
  std::string tape = text.end().str();
  tape.append(66, ' ');
  return tape.append("  -1 0  0    0\n");
}

class ElectronComposite : public testing::Test {
 protected:
  ElectronComposite() {
    std::string const folder = "data/ENDF-VII0/";
    scratch.write(folder + "026_Fe_000.endf",
                  element(26, "Fe", 1, {1e3, 1e6}, {{-1, .5}, {1, .5}}));
    scratch.write(
        folder + "029_Cu_000.endf",
        element(29, "Cu", 3, {1e4, 1e5}, {{-1, .1}, {0, .5}, {1, .9}}));
    scratch.write("corrections.txt", "# none\n");
    config.Directory = scratch.path().string();
    config.CorrFile = "corrections.txt";
    iron.readDB("", config.Directory, ENDF);
    copper.readDB("", config.Directory, ENDF);
  }

  Material<double> load(std::string const& text) {
    config.Material = text;
    return Material<double>(config);
  }

  ScratchFolder scratch;
  MaterialConfig<double> config;
  Material<double> iron{"Fe", 0, 0, 0};
  Material<double> copper{"Cu", 0, 0, 0};
};

double value(BiLSpline<double, double> const& surface, double u, double v) {
  return surface(u, false, true)(v, false, true);
}

}  // namespace

TEST_F(ElectronComposite, AddsFormFactorsAsSquares) {
  Material<double> const alloy = load("Fe0.25Cu0.75");
  EXPECT_NEAR(alloy.FormFactor(.1, false),
              std::sqrt(.25 * 25 * 25 + .75 * 75 * 75), 1e-9);
  EXPECT_NEAR(alloy.FormFactor(1, false),
              std::sqrt(.25 * 4 * 4 + .75 * 12 * 12), 1e-9);
}

TEST_F(ElectronComposite, AddsScatteringFunctionsByMass) {
  Material<double> const alloy = load("Fe0.25Cu0.75");
  EXPECT_NEAR(alloy.ScatterFunction(.1, false), .25 * 2 + .75 * 6, 1e-9);
}

TEST_F(ElectronComposite, AddsElectronCurvesByMass) {
  Material<double> const alloy = load("Fe0.25Cu0.75");
  EXPECT_NEAR(alloy.ElectronElastic(5., false) /
                  (.25 * iron.ElectronElastic(5., false) +
                   .75 * copper.ElectronElastic(5., false)),
              1, 1e-9);
}

TEST_F(ElectronComposite, AddsBremsstrahlungOnCommonNodes) {
  Material<double> const alloy = load("Fe0.25Cu0.75");
  for (double const electron : {.1, .4, .8})
    EXPECT_NEAR(value(alloy.TabSigma, electron, .5) /
                    (.25 * value(iron.TabSigma, electron, .5) +
                     .75 * value(copper.TabSigma, electron, .5)),
                1, 1e-9);
}

TEST_F(ElectronComposite, NeedsNoBuiltinBremsstrahlungBesideItsOwn) {
  SpectConfig<double> spect;
  spect.Directory = config.Directory;
  spect.CorrFile = config.CorrFile;
  spect.Material = "Fe";
  spect.ShapeFct = false;
  Material<double> material;
  EXPECT_NO_THROW(material.update(spect));
  EXPECT_FALSE(spect.Pratt);
  EXPECT_FALSE(material.TabSigma.empty());
  EXPECT_TRUE(material.BremsSigma.empty());
}

TEST_F(ElectronComposite, MergesAnglesOnTheEnergiesOfAll) {
  Material<double> const alloy = load("Fe0.25Cu0.75");
  EXPECT_EQ(alloy.ElasticAngle.nodes(), (std::set<double>{0, 1, 2, 3}));
  for (double const logEnergy : {0., .5, 2.}) {
    EXPECT_NEAR(value(alloy.ElasticAngle, logEnergy, -1), 0, 1e-12);
    EXPECT_NEAR(value(alloy.ElasticAngle, logEnergy, 0), .25 * .5 + .75 * .3,
                1e-12);
    EXPECT_NEAR(value(alloy.ElasticAngle, logEnergy, 1), 1, 1e-12);
  }
}

TEST_F(ElectronComposite, HasNoCumulativeProbabilityAboveOne) {
  Material<double> const alloy = load("Fe 1 Cu 1");
  EXPECT_LE(value(alloy.ElasticAngle, 1, 1), 1);
}

TEST_F(ElectronComposite, RefusesAGridOfAnglesThatFillsTheMemory) {
  std::vector<double> energies;
  for (int i = 1; i <= 1100; ++i) energies.push_back(i * 1e3);
  EndfText::Points angles;
  for (int i = 0; i <= 1000; ++i) angles.emplace_back(i * 1e-3, .5);
  std::string const folder = "data/ENDF-VII0/";
  scratch.write(folder + "030_Zn_000.endf",
                element(30, "Zn", 1, energies, {{-1, .5}, {1, .5}}));
  scratch.write(folder + "031_Ga_000.endf",
                element(31, "Ga", 1, {1e3, 1e6}, angles));
  config.Material = "ZnGa";
  EXPECT_EQ(
      thrown<std::runtime_error>([&] { Material<double> const alloy(config); }),
      "Error loading material data for ZnGa:\n"
      "Angular distribution is too large");
}

TEST_F(ElectronComposite, ScalesTheLevelsOfItsElements) {
  Material<double> const alloy = load("Fe0.25Cu0.75");
  ASSERT_EQ(alloy.PhotoIonization.size(), 2U);
  EXPECT_EQ(alloy.PhotoIonization.begin()->first, SubshellID(29, K1));
  SubshellID const level(26, K1);
  EXPECT_NEAR(alloy.PhotoIonization.at(level)(20., false) /
                  iron.PhotoIonization.at(level)(20., false),
              .25, 1e-12);
  EXPECT_NEAR(alloy.ElectronIonization.at(level)(20., false) /
                  iron.ElectronIonization.at(level)(20., false),
              .25, 1e-12);
}

TEST_F(ElectronComposite, AddsTheLevelsOfAnElementGivenTwice) {
  Material<double> const alloy = load("Fe 1 26 3");
  ASSERT_EQ(alloy.PhotoIonization.size(), 1U);
  SubshellID const level(26, K1);
  EXPECT_NEAR(alloy.PhotoIonization.at(level)(20., false) /
                  iron.PhotoIonization.at(level)(20., false),
              1, 1e-9);
}

TEST_F(ElectronComposite, LeavesAnomalousFactorsOut) {
  EXPECT_TRUE(load("FeCu").AnomalousReal.empty());
  EXPECT_TRUE(load("FeCu").AnomalousImag.empty());
}

TEST_F(ElectronComposite, NamesTheFilesOfItsElements) {
  load("CuFe");
  std::string const folder = config.Directory + "/data/ENDF-VII0/";
  EXPECT_EQ(config.DataFile,
            folder + "029_Cu_000.endf;" + folder + "026_Fe_000.endf");
  EXPECT_EQ(config.DataType, ENDF);
}

TEST_F(ElectronComposite, LoadsAgainFromTheFilesThatItNames) {
  Material<double> const first = load("CuFe");
  Material<double> const second = load("CuFe");
  EXPECT_EQ(first.Absorption(20., false), second.Absorption(20., false));
}

TEST(EndfComposite, SumsAnglesAndFormFactorsOfRealElements) {
  PHOTARIUM_NEEDS_DATA();
  MaterialConfig<double> config;
  config.Directory = (testData() / "endf_mt526").string();
  config.DataFile = "026_Fe_000.endf;029_Cu_000.endf";
  config.CorrFile = (sourceDir() / "data/ELossCorrections.txt").string();
  config.Material = "Fe0.3Cu0.7";
  Material<double> alloy;
  EXPECT_EQ(thrown<warning>([&] { alloy.update(config); }).find("Empty"),
            std::string::npos);
  Material<double> iron("Fe", 0, 0, 0);
  Material<double> copper("Cu", 0, 0, 0);
  iron.readDB("026_Fe_000.endf", config.Directory, Unknown);
  copper.readDB("029_Cu_000.endf", config.Directory, Unknown);
  for (double const energy : {1., 10., 100.}) {
    EXPECT_NEAR(alloy.Incoherent(energy, false) /
                    (.3 * iron.Incoherent(energy, false) +
                     .7 * copper.Incoherent(energy, false)),
                1, 1e-3);
    EXPECT_NEAR(value(alloy.ElasticAngle, std::log10(energy), .5),
                .3 * value(iron.ElasticAngle, std::log10(energy), .5) +
                    .7 * value(copper.ElasticAngle, std::log10(energy), .5),
                1e-3);
  }
  double const x = 1e-2;
  EXPECT_NEAR(alloy.FormFactor(x, true),
              std::sqrt(.3 * std::pow(iron.FormFactor(x, true), 2) +
                        .7 * std::pow(copper.FormFactor(x, true), 2)),
              1e-2);
}
