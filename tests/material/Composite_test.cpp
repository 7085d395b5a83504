#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/constants.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/material/elam_text.h"
#include "tests/support/paths.h"
#include "tests/support/thrown.h"

namespace {

constexpr double H = 1.008;
constexpr double O = 15.999;

class Composite : public testing::Test {
 protected:
  Composite() {
    scratch.write("db.txt", database({hydrogen(), oxygen(), copper()}));
    scratch.write("corrections.txt", "# none\n");
    config.Directory = scratch.path().string();
    config.DataFile = "db.txt";
    config.CorrFile = "corrections.txt";
  }

  // Loads a composite, which warns as there are no electron data.
  Material<double> load(std::string const& text) {
    config.Material = text;
    Material<double> material;
    findings = thrown<warning>([&] { material.update(config); });
    return material;
  }

  std::string failure(std::string const& text) {
    config.Material = text;
    return thrown<std::runtime_error>(
        [&] { Material<double> const material(config); });
  }

  // Share by mass of hydrogen: H has 10 cm^2/g at 1 keV, O 4000 at the same
  // slope.
  static double hydrogenShare(Material<double> const& mixture) {
    return (4000 - mixture.Absorption(1., true)) / (4000 - 10);
  }

  ScratchFolder scratch;
  MaterialConfig<double> config;
  std::string findings;
};

}  // namespace

TEST_F(Composite, CountsAtomsInAFormula) {
  Material<double> const water = load("H2O");
  double const share = 2 * H / (2 * H + O);
  EXPECT_NEAR(hydrogenShare(water), share, 1e-12);
  EXPECT_NEAR(water.Z, share * 1 + (1 - share) * 8, 1e-12);
  EXPECT_NEAR(water.A, share * H + (1 - share) * O, 1e-12);
  EXPECT_NEAR(water.Density, share * 8e-5 + (1 - share) * 1.3e-3, 1e-15);
}

TEST_F(Composite, SumsEveryPhotonCurveByMass) {
  Material<double> const water = load("H2O");
  double const share = 2 * H / (2 * H + O);
  for (double const energy : {1.5, 8., 60.}) {
    auto const mean = [&](PowerLaw const& first, PowerLaw const& second) {
      return share * first(energy) + (1 - share) * second(energy);
    };
    // The nodes of the sum are exact; between them a sum of powers is none.
    EXPECT_NEAR(water.Absorption(energy, false) /
                    mean(hydrogen().photo, oxygen().photo),
                1, 1e-9);
    EXPECT_NEAR(water.Coherent(energy, false) /
                    mean(hydrogen().coherent, oxygen().coherent),
                1, 1e-9);
    EXPECT_NEAR(water.Incoherent(energy, false) /
                    mean(hydrogen().incoherent, oxygen().incoherent),
                1, 1e-9);
  }
  EXPECT_EQ(water.Pair(100, false), 0);
}

TEST_F(Composite, ReportsThatElectronDataAreMissing) {
  load("H2O");
  EXPECT_EQ(findings, "Empty spline (elastic electron scattering of H2O)\n");
}

TEST_F(Composite, TakesNumbersForMassPartsIfOneHasAPoint) {
  EXPECT_NEAR(hydrogenShare(load("H0.25O0.75")), 0.25, 1e-12);
  EXPECT_NEAR(hydrogenShare(load("H1O3.0")), 0.25, 1e-12);
  EXPECT_NEAR(hydrogenShare(load("HO1.")), 0.5, 1e-12);
}

TEST_F(Composite, CountsWholeNumbersAsAtoms) {
  EXPECT_NEAR(hydrogenShare(load("H1O1")), H / (H + O), 1e-12);
}

TEST_F(Composite, ReadsACommaAsTheEndOfANumberThatIsAMassPart) {
  EXPECT_NEAR(hydrogenShare(load("H1,9O3")), 0.25, 1e-12);
}

TEST_F(Composite, WeighsFormulasByTheNumbersBehindThem) {
  double const share = 0.6 * 2 * H / (2 * H + O);
  EXPECT_NEAR(hydrogenShare(load("H2O 0.6 O 0.4")), share, 1e-12);
  EXPECT_NEAR(hydrogenShare(load("H2O\t6\r\n O 4")), share, 1e-12);
}

TEST_F(Composite, WeighsAFormulaWithoutANumberAsOne) {
  EXPECT_NEAR(hydrogenShare(load("H O")), 0.5, 1e-12);
  EXPECT_NEAR(hydrogenShare(load("H 3 O")), 0.75, 1e-12);
}

TEST_F(Composite, AddsAnElementThatOccursTwice) {
  EXPECT_NEAR(hydrogenShare(load("HOH")), 2 * H / (2 * H + O), 1e-12);
  EXPECT_NEAR(hydrogenShare(load("H 1 O 2 H 1")), 0.5, 1e-12);
}

TEST_F(Composite, TakesNumbersOfElementsForPieces) {
  Material<double> const mixture = load("1 1 8 3");
  EXPECT_NEAR(hydrogenShare(mixture), 0.25, 1e-12);
  EXPECT_EQ(mixture.Name, "O0.75H0.25");
  EXPECT_NEAR(hydrogenShare(load(mixture.Name)), 0.25, 1e-12);
}

TEST_F(Composite, NamesAnElementTwiceThatIsGivenBySymbolAndByNumber) {
  Material<double> const mixture = load("H 1 1 1 O 2");
  EXPECT_EQ(mixture.Name, "O0.5H0.25H0.25");
  EXPECT_NEAR(hydrogenShare(load(mixture.Name)), 0.5, 1e-12);
}

TEST_F(Composite, BeginsAPieceAtALetterBehindANumber) {
  EXPECT_EQ(failure("H2o"),
            "Error loading material data for H2o:\nElement o not found while "
            "reading db.txt from " +
                config.Directory);
}

TEST_F(Composite, IgnoresBrackets) {
  EXPECT_NEAR(hydrogenShare(load("O(H)")), H / (H + O), 1e-12);
}

TEST_F(Composite, KeepsTheTextOfASingleFormula) {
  EXPECT_EQ(load("H2O").Name, "H2O");
  EXPECT_EQ(config.Material, "H2O");
}

TEST_F(Composite, NamesAMixtureByItsSharesInDescendingOrder) {
  EXPECT_EQ(load("H 1 O 3").Name, "O0.75H0.25");
  EXPECT_EQ(config.Material, "O0.75H0.25");
}

TEST_F(Composite, NamesTheHeavierOfTwoEqualSharesFirst) {
  EXPECT_EQ(load("H 1 Cu 1").Name, "Cu0.5H0.5");
}

TEST_F(Composite, CanBeLoadedByItsCanonicalName) {
  Material<double> const first = load("H 1 O 3");
  Material<double> const second = load(first.Name);
  EXPECT_EQ(second.Name, "O0.75H0.25");
  EXPECT_NEAR(hydrogenShare(second), 0.25, 1e-12);
}

TEST_F(Composite, ListsTheEdgesOfItsElementsUnchanged) {
  Material<double> const oxide = load("CuO");
  ASSERT_EQ(oxide.Edges.size(), 2U);
  EXPECT_EQ(oxide.Edges[0].ID, SubshellID(29, K1));
  EXPECT_EQ(oxide.Edges[0].Yield, 0.44);
  EXPECT_DOUBLE_EQ(oxide.Edges[0].Lines[0].Intensity, 0.22);
}

TEST_F(Composite, WeighsTheStoppingConstantsOfItsElements) {
  Material<double> const water = load("H1O3.0");
  ASSERT_EQ(water.EnergyLoss.size(), 2U);
  auto const first = water.EnergyLoss.begin();
  EXPECT_EQ(first->first.J, 0.0136);
  EXPECT_NEAR(first->second, 0.25, 1e-15);
  EXPECT_EQ(std::next(first)->first.J, 8 * 0.0136);
  EXPECT_NEAR(std::next(first)->second, 0.75, 1e-15);
}

TEST_F(Composite, MergesStoppingConstantsOfEqualExcitationEnergy) {
  scratch.write("corrections.txt",
                "H 1 0 50 0 0 0 1 1 1 1 1 1 0 1\n"
                "O 8 0 50 0 0 0 1 1 1 1 1 1 0 1\n");
  Material<double> const water = load("H2O");
  ASSERT_EQ(water.EnergyLoss.size(), 1U);
  EXPECT_NEAR(water.EnergyLoss.begin()->second, 1, 1e-15);
}

TEST_F(Composite, IsOneSubstanceIfTheCorrectionFileNamesIt) {
  scratch.write("corrections.txt", "H2O 0 0 75 0 0 0 3 0 2 0.1 3 0 0 0\n");
  Material<double> const water = load("H2O");
  ASSERT_EQ(water.EnergyLoss.size(), 1U);
  EXPECT_EQ(water.EnergyLoss.begin()->first.J, 0.075);
  EXPECT_EQ(water.EnergyLoss.begin()->second, 1);
}

TEST_F(Composite, ReportsAMissingCorrectionFileForEachElementAndTheWhole) {
  config.CorrFile = "none.txt";
  load("H2O");
  std::string const line =
      "Could not open file while reading " + config.Directory + "/none.txt\n";
  EXPECT_EQ(findings,
            line + line +
                "Empty spline (elastic electron scattering of H2O)\n" + line);
}

TEST_F(Composite, TakesAConfiguredDensityAndWritesTheMeanBack) {
  config.Density = 1;
  EXPECT_EQ(load("H2O").Density, 1);
  config.Density = -1;
  Material<double> const water = load("H2O");
  EXPECT_EQ(config.Density, water.Density);
}

TEST_F(Composite, WritesTheFilesOfItsElementsBack) {
  scratch.write("data/LocalDB.txt", database({hydrogen()}));
  scratch.write("data/ElamDB12.txt", database({oxygen(), copper()}));
  config.DataFile = "";
  load("H2O1Cu");
  std::string const data = config.Directory + "/data/";
  EXPECT_EQ(config.DataFile, data + "LocalDB.txt;" + data + "ElamDB12.txt;" +
                                 data + "ElamDB12.txt");
  EXPECT_EQ(config.DataType, ElamDB);
}

TEST_F(Composite, LeavesANamedDatabaseAlone) {
  load("H2O");
  EXPECT_EQ(config.DataFile, "db.txt");
  EXPECT_EQ(config.DataType, ElamDB);
}

TEST_F(Composite, NamesThePieceThatIsNoElement) {
  EXPECT_EQ(failure("H2O 1 Air"),
            "Error loading material data for H2O 1 Air:\nElement Air not found "
            "while reading db.txt from " +
                config.Directory);
}

TEST_F(Composite, EndsInAResultWhereSharesAreNotNumbers) {
  EXPECT_TRUE(std::isnan(load("H0").Z));
  EXPECT_TRUE(std::isnan(load("H 0").Z));
  EXPECT_TRUE(std::isnan(load("H0O0").A));
  EXPECT_TRUE(std::isnan(load("H 1 O -1").Z));
  EXPECT_TRUE(std::isnan(load("H,O").Z) || load("H,O").Z > 0);
}

TEST_F(Composite, EndsInAResultForNumbersBeyondAllMeasure) {
  EXPECT_EQ(load("H1" + std::string(400, '0') + "O").A, load("HO").A);
  EXPECT_NEAR(load("H0." + std::string(100000, '0') + "O").A, O, 1e-9);
  load("H 1" + std::string(308, '0') + " O 1" + std::string(308, '0'));
}

TEST_F(Composite, EndsInAFailureForTextsWithoutElements) {
  for (std::string const text :
       {"()", "0.5", ".", ",", "-", "\x01", "\xff\xfe", "Cu;O"})
    EXPECT_NE(failure(text), "nothing thrown") << text;
}

TEST_F(Composite, IsEmptyForATextOfBlanks) {
  Material<double> const nothing = load(" \t ");
  EXPECT_EQ(nothing.Name, " \t ");
  EXPECT_EQ(nothing.Z, 0);
  EXPECT_TRUE(nothing.Absorption.empty());
  EXPECT_EQ(findings, "Density effect coefficients incomplete.\n");
}

TEST_F(Composite, TakesATextOfAMillionCharacters) {
  std::string formula;
  while (formula.size() < 1'000'000) formula += "H2O";
  EXPECT_NEAR(hydrogenShare(load(formula)), 2 * H / (2 * H + O), 1e-9);
}

TEST_F(Composite, RefusesANameOfAMillionCharacters) {
  std::string const name = "H" + std::string(1'000'000, 'x');
  EXPECT_NE(failure(name).find("not found"), std::string::npos);
}

TEST_F(Composite, EndsInAResultOrAFailureForAnyText) {
  std::mt19937 random(7);
  std::string const alphabet = "HOCu019.,- ;()e+Z\t#";
  for (int i = 0; i < 300; ++i) {
    std::string text;
    for (std::size_t n = random() % 12; n > 0; --n)
      text += alphabet[random() % alphabet.size()];
    config.Material = text;
    config.Density = -1;
    try {
      Material<double> const material(config);
    } catch (std::exception const& outcome) {
      EXPECT_NE(std::string(outcome.what()), "") << text;
    }
  }
}
