#include <gtest/gtest.h>

#include <locale>
#include <stdexcept>
#include <string>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/elements.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/material/EndfText.h"
#include "tests/material/elam_text.h"
#include "tests/support/paths.h"
#include "tests/support/thrown.h"

namespace {

std::string const copperRecord =
    "Cu 29 0.4 322.0 8.96 58 2.6 4.4 -0.02 3.2 0.14 2.9 0.08 0.02 15.5\n";

std::string const hydrogenRecord =
    "H 1 0.99 19.2 8e-5 0.26 1.4 9.58 1.86 3.27 0.14 5.72 0 0.02 14.5\n";

// Copper with a jump by 7 at an energy [keV] and sections of edges.
std::string jumpingCopper(double energy, std::string const& edges) {
  return "Element Cu 29 63.546 8.96\n" + edges + "Photo\n" + photoLine(1, 40) +
         photoLine(energy, 10) + photoLine(energy, 70) + photoLine(100, 2) +
         "Scatter\n" + scatterLine(1, 1, 1) + scatterLine(100, 1, 1) +
         "EndElement\nEnd\n";
}

class Update : public testing::Test {
 protected:
  Update() {
    scratch.write("db.txt", database({hydrogen(), oxygen(), copper()}));
    scratch.write("corrections.txt", copperRecord + hydrogenRecord);
    config.Directory = scratch.path().string();
    config.DataFile = "db.txt";
    config.CorrFile = "corrections.txt";
    config.Material = "H";
  }

  // Asks for an element of that number, without a density.
  void chooseNumber(int Z) {
    scratch.write("odd.txt", "Element Xx " + std::to_string(Z) +
                                 " 1 0\nPhoto\n 1 1 1\nScatter\n 1 1 1 "
                                 "1 1\nEndElement\nEnd\n");
    config.DataFile = "odd.txt";
    config.Material = "Xx";
  }

  std::string findings() {
    return thrown<warning>([&] { material.update(config); });
  }

  std::string failure() {
    return thrown<std::runtime_error>([&] { material.update(config); });
  }

  ScratchFolder scratch;
  MaterialConfig<double> config;
  Material<double> material;
};

}  // namespace

TEST_F(Update, FillsAnElement) {
  material.update(config);
  EXPECT_EQ(material.Name, "H");
  EXPECT_EQ(material.A, 1.008);
  EXPECT_NEAR(material.Absorption(2, false), hydrogen().photo(2), 1e-12);
}

TEST_F(Update, IsWhatTheConstructorFromSettingsDoes) {
  Material<double> const made(config);
  EXPECT_EQ(made.A, 1.008);
  EXPECT_EQ(config.DataType, ElamDB);
}

TEST_F(Update, WritesTheNameBackThatANumberStandsFor) {
  config.Material = "1";
  material.update(config);
  EXPECT_EQ(material.Name, "H");
  EXPECT_EQ(config.Material, "H");
}

TEST_F(Update, WritesBackTheTypeThatItFound) {
  config.DataType = MCNP;
  material.update(config);
  EXPECT_EQ(config.DataType, ElamDB);
}

TEST_F(Update, LeavesANamedDatabaseAlone) {
  material.update(config);
  EXPECT_EQ(config.DataFile, "db.txt");
}

TEST_F(Update, WritesBackTheDatabaseThatTheSearchFound) {
  scratch.write("data/ElamDB12.txt", database({hydrogen()}));
  config.DataFile = "";
  material.update(config);
  EXPECT_EQ(config.DataFile, config.Directory + "/data/ElamDB12.txt");
  EXPECT_EQ(config.DataType, ElamDB);
}

TEST_F(Update, RefusesAnEmptyMaterial) {
  config.Material = "";
  EXPECT_EQ(thrown<std::invalid_argument>([&] { material.update(config); }),
            "Empty material given!");
  EXPECT_EQ(config.DataType, Unknown);
}

TEST_F(Update, TakesTheNumberOfAMaterialWithoutATextForIt) {
  config.Material = "";
  material.Z = 1;
  material.update(config);
  EXPECT_EQ(material.Name, "H");
  EXPECT_EQ(config.Material, "H");
}

TEST_F(Update, PutsTheConfiguredDensityFirst) {
  config.Density = 5;
  material.update(config);
  EXPECT_EQ(material.Density, 5);
  EXPECT_EQ(config.Density, 5);
}

TEST_F(Update, WritesTheDensityOfTheDatabaseBack) {
  material.update(config);
  EXPECT_EQ(material.Density, 8e-5);
  EXPECT_EQ(config.Density, 8e-5);
}

TEST_F(Update, LooksADensityUpThatTheDatabaseLacks) {
  ElamElement element = hydrogen();
  element.density = 0;
  scratch.write("thin.txt", database({element}));
  config.DataFile = "thin.txt";
  material.update(config);
  EXPECT_EQ(material.Density, Densities[1]);
  EXPECT_EQ(config.Density, Densities[1]);
}

TEST_F(Update, LooksUpNoDensityForANumberOffTheTable) {
  chooseNumber(-3);
  EXPECT_EQ(findings(), "Density effect coefficients incomplete.\n");
  EXPECT_EQ(config.Density, 0);
}

TEST_F(Update, LooksUpNoDensityBehindTheTable) {
  chooseNumber(300);
  material.update(config);
  EXPECT_EQ(config.Density, 0);
}

TEST_F(Update, ReportsAnEdgeOfACurveWithoutJumps) {
  EndfText text(26, "Fe");
  text.head(6, 55).section(28, 533).control(26000, 55, 0, 0, 1, 0);
  text.numbers({1, 0, 0, 0, 12, 1, 7112, 2, 0, 0, 0, 0});
  text.numbers({3, 0, 6390, .1, 0, 0}).end().tapeEnd();
  scratch.write("relaxation.endf", text.str());
  config.DataFile = "relaxation.endf";
  config.Material = "Fe";
  EXPECT_EQ(findings(), "Didn't find jump ratio for edge at 7.112 keV.\n");
}

TEST_F(Update, TakesStoppingConstantsFromTheCorrectionFile) {
  material.update(config);
  ASSERT_EQ(material.EnergyLoss.size(), 1U);
  EXPECT_EQ(material.EnergyLoss.begin()->first.J, 19.2 / 1000);
}

TEST_F(Update, TakesTheConfiguredExcitationEnergyWithoutARecord) {
  config.Material = "O";
  config.MeanExcitationPotential = 0.095;
  material.update(config);
  EXPECT_EQ(material.EnergyLoss.begin()->first.J, 0.095);
}

TEST_F(Update, TakesTheFormulaWithoutEither) {
  config.Material = "O";
  material.update(config);
  EXPECT_EQ(material.EnergyLoss.begin()->first.J, 8 * 0.0136);
}

TEST_F(Update, GoesOnWithoutACorrectionFile) {
  config.CorrFile = "none.txt";
  EXPECT_EQ(findings(), "Could not open file while reading " +
                            config.Directory + "/none.txt\n");
  EXPECT_EQ(material.A, 1.008);
  EXPECT_EQ(config.Density, 8e-5);
}

TEST_F(Update, ReportsAFaultyRecord) {
  scratch.write("corrections.txt", "H 1 0.99\n");
  EXPECT_EQ(findings(), "Error parsing data for H while reading " +
                            config.Directory + "/corrections.txt\n");
}

TEST_F(Update, ReportsExcitationEnergiesThatAreNotPositive) {
  scratch.write("corrections.txt", "H 1 0 0 0 0 0 1 1 1 1 1 1 0 1\n");
  EXPECT_EQ(findings(), "Density effect coefficients incomplete.\n");
}

TEST_F(Update, GathersItsFindingsInOrder) {
  config.Material = "Cu";
  scratch.write("corrections.txt", "Cu 29 0 -1 0 0 0 1 1 1 1 1 1 0 1\n");
  scratch.write("db.txt", jumpingCopper(9,
                                        "Edge K 9018 0.4 8\n Lines\n"
                                        "  K-L3 Ka1 8048 1\n"));
  EXPECT_EQ(findings(),
            "Density effect coefficients incomplete.\n"
            "Didn't find jump ratio for edge at 9.018 keV.\n");
}

TEST_F(Update, TakesTheJumpRatioFromTheCurve) {
  config.Material = "Cu";
  scratch.write("db.txt", jumpingCopper(8.979,
                                        "Edge K 8979 0.4 8\n Lines\n"
                                        "  K-L3 Ka1 8048 1\n"));
  material.update(config);
  EXPECT_NEAR(material.Edges[0].Jump, 7, 1e-9);
}

TEST_F(Update, KeepsTheNearestRatioOfAnEdgeThatHasNone) {
  config.Material = "Cu";
  // 0.2 % away from the only discontinuity.
  scratch.write("db.txt", jumpingCopper(9,
                                        "Edge K 9018 0.4 8\n Lines\n"
                                        "  K-L3 Ka1 8048 1\n"));
  EXPECT_EQ(findings(), "Didn't find jump ratio for edge at 9.018 keV.\n");
  EXPECT_NEAR(material.Edges[0].Jump, 7, 1e-9);
}

TEST_F(Update, DoesNotMissTheRatioOfAnEdgeWithoutLines) {
  config.Material = "Cu";
  scratch.write("db.txt", jumpingCopper(9, "Edge K 9018 0.4 8\n"));
  material.update(config);
  EXPECT_NEAR(material.Edges[0].Jump, 7, 1e-9);
}

TEST_F(Update, GivesAnEdgeBelowTheCurveTheRatioOfItsFirstPoint) {
  config.Material = "Cu";
  scratch.write("db.txt", jumpingCopper(9, "Edge L3 933 0.4 8\n"));
  material.update(config);
  EXPECT_EQ(material.Edges[0].Jump, 0);
}

TEST_F(Update, GivesEachOfManyEdgesItsNearestJump) {
  std::string edges;
  for (int i = 0; i < 10000; ++i)
    edges += "Edge L3 " + std::to_string(1000 + i) + " 0.4 8\n";
  config.Material = "Cu";
  scratch.write("db.txt", jumpingCopper(9, edges));
  material.update(config);
  // Halfway between the first point at 1 keV and the jump at 9 keV.
  EXPECT_EQ(material.Edges[3999].Jump, 0);
  EXPECT_NEAR(material.Edges[4001].Jump, 7, 1e-9);
}

TEST_F(Update, ClearsTheStoppingConstantsOfTheLastMaterial) {
  material.update(config);
  config.Material = "O";
  config.Density = -1;
  material.update(config);
  ASSERT_EQ(material.EnergyLoss.size(), 1U);
  EXPECT_EQ(material.EnergyLoss.begin()->first.J, 8 * 0.0136);
}

TEST_F(Update, DoesNotDependOnTheLocaleOfTheProcess) {
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  std::locale const before =
      std::locale::global(std::locale(std::locale::classic(), new Comma));
  config.Material = "H 1 O 3";
  std::string const found = findings();
  std::locale::global(before);
  EXPECT_EQ(found,
            "Empty spline (elastic electron scattering of O0.75H0.25)\n");
  EXPECT_NEAR(material.A, 0.25 * 1.008 + 0.75 * 15.999, 1e-12);
  EXPECT_EQ(material.EnergyLoss.begin()->first.J, 19.2 / 1000);
}

TEST_F(Update, NamesTheMaterialAndThePieceThatCannotBeLoaded) {
  config.Material = "Xx";
  EXPECT_EQ(failure(),
            "Error loading material data for Xx:\nElement Xx not found while "
            "reading db.txt from " +
                config.Directory);
}

TEST_F(Update, SaysWhichDatabaseIsMissing) {
  config.DataFile = "none.txt";
  EXPECT_EQ(failure(),
            "Error loading material data for H:\nCould not open file while "
            "reading none.txt from " +
                config.Directory);
}
