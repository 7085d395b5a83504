#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>

#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/support/paths.h"
#include "tests/support/thrown.h"

namespace {

using Constants = EnergyLossConstants<double>;
using Elements = std::map<std::string, Material<double>>;

std::string const copperRecord =
    "Cu 29 0.45636 322.0 8.96 58.27 2.613 4.4190 -0.0254 3.2792 0.14339 2.9044 "
    "0.08 0.019 15.5";

class Corrections : public testing::Test {
 protected:
  std::string file(std::string const& text) const {
    return scratch.write("corrections.txt", text);
  }

  Constants only(Material<double> const& material) const {
    EXPECT_EQ(material.EnergyLoss.size(), 1U);
    EXPECT_EQ(material.EnergyLoss.begin()->second, 1);
    return material.EnergyLoss.begin()->first;
  }

  Constants correctedCopper(std::string const& text, double J = 0) {
    copper.readCorr(file(text), J);
    return only(copper);
  }

  std::string failure(std::string const& name) {
    return thrown<std::runtime_error>([&] { copper.readCorr(name, 0); });
  }

  ScratchFolder scratch;
  Material<double> copper{"Cu", 0, 0, 0};
};

}  // namespace

TEST_F(Corrections, ReplaceTheStoppingConstants) {
  Constants const found = correctedCopper(copperRecord + "\n");
  EXPECT_EQ(found.J, 0.322);
  EXPECT_EQ(found.C, -4.4190);
  EXPECT_EQ(found.x0, -0.0254);
  EXPECT_EQ(found.x1, 3.2792);
  EXPECT_EQ(found.a, 0.14339);
  EXPECT_EQ(found.m, 2.9044);
  EXPECT_EQ(found.delta0, 0.08);
  EXPECT_EQ(found.Ef, 15.5 / 1000);
}

TEST_F(Corrections, KeepTheBuiltInCoefficientsOfTheElement) {
  EXPECT_EQ(correctedCopper(copperRecord).RL, Constants(29.).RL);
}

TEST_F(Corrections, GoBeforeTheConfiguredExcitationEnergy) {
  EXPECT_EQ(correctedCopper(copperRecord, 0.5).J, 0.322);
}

TEST_F(Corrections, LeaveAMaterialAloneThatTheyDoNotName) {
  double const before = only(copper).J;
  EXPECT_EQ(correctedCopper("Zn" + copperRecord.substr(2)).J, before);
  EXPECT_EQ(correctedCopper("cu" + copperRecord.substr(2)).J, before);
  EXPECT_EQ(correctedCopper("").J, before);
}

TEST_F(Corrections, MayHaveBlanksAndCommentsAndAnyLineEnd) {
  EXPECT_EQ(correctedCopper("# head\r\n\r\n   # more\r\n\t " + copperRecord +
                            "# behind\r\nZn 30 x\r\n")
                .J,
            0.322);
}

TEST_F(Corrections, MayHaveWordsInTheColumnsThatAreSkipped) {
  EXPECT_EQ(correctedCopper("Cu ? ? 322 ? ? ? 4 0 3 0.1 3 0 ? 15").J, 0.322);
}

TEST_F(Corrections, TakeTheFirstOfTwoRecords) {
  EXPECT_EQ(
      correctedCopper(copperRecord + "\nCu 29 0 1 0 0 0 1 1 1 1 1 1 0 1").J,
      0.322);
}

TEST_F(Corrections, FailAtAFileThatCannotBeOpened) {
  std::string const missing = (scratch.path() / "none").string();
  EXPECT_EQ(failure(missing), "Could not open file while reading " + missing);
  std::string const folder = scratch.path().string();
  EXPECT_EQ(failure(folder), "Could not open file while reading " + folder);
}

TEST_F(Corrections, FailAtARecordThatIsShort) {
  for (std::size_t length = 2; length + 5 < copperRecord.size(); ++length) {
    std::string const name = file(copperRecord.substr(0, length));
    EXPECT_EQ(failure(name), "Error parsing data for Cu while reading " + name)
        << length;
  }
}

TEST_F(Corrections, FailAtARecordCutByAComment) {
  std::string const name = file("Cu 29 0.45636 322.0 # 8.96 58.27\n");
  EXPECT_EQ(failure(name), "Error parsing data for Cu while reading " + name);
}

TEST_F(Corrections, FailAtAWordInPlaceOfANumber) {
  std::string const name = file("Cu 29 0.4 x 9 58 2.6 4 0 3 0.1 3 0 0 15");
  double const before = only(copper).J;
  EXPECT_EQ(failure(name), "Error parsing data for Cu while reading " + name);
  EXPECT_EQ(only(copper).J, before);
}

TEST_F(Corrections, AreReadIntoAMapWhole) {
  Elements elements;
  Material<double>::readCorr(elements, file("# all\n" + copperRecord +
                                            "\nH2O 0 0.5 75 1 21 2 3.5 0.24 "
                                            "2.8 0.09 3.5 0 0.1 0\n"));
  ASSERT_EQ(elements.size(), 2U);
  EXPECT_EQ(elements["Cu"].Name, "Cu");
  EXPECT_EQ(only(elements["Cu"]).J, 0.322);
  EXPECT_EQ(only(elements["Cu"]).RL, Constants(29.).RL);
  EXPECT_EQ(only(elements["H2O"]).J, 0.075);
  EXPECT_EQ(elements["Cu"].Z, 0);
}

TEST_F(Corrections, KeepTheLastOfTwoRecordsInAMap) {
  Elements elements;
  Material<double>::readCorr(
      elements, file(copperRecord + "\nCu 29 0 1 0 0 0 1 1 1 1 1 1 0 1"));
  EXPECT_EQ(only(elements["Cu"]).J, 0.001);
}

TEST_F(Corrections, ReportFaultyRecordsOfAMapAtTheEndAndStoreThem) {
  Elements elements;
  std::string const name =
      file("Al x\n" + copperRecord + "\nZn 30 0.4 330 7 52\n");
  EXPECT_EQ(
      thrown<warning>([&] { Material<double>::readCorr(elements, name); }),
      "While reading " + name +
          ":\nError parsing data for Al\nError parsing data for Zn\n");
  ASSERT_EQ(elements.size(), 3U);
  EXPECT_EQ(only(elements["Cu"]).J, 0.322);
  EXPECT_EQ(only(elements["Zn"]).J, 0.33);
  EXPECT_EQ(only(elements["Zn"]).C, 0);
  EXPECT_EQ(only(elements["Al"]).J, 0);
}

TEST_F(Corrections, FailForAMapAtAFileThatCannotBeOpened) {
  Elements elements;
  EXPECT_EQ(thrown<std::runtime_error>(
                [&] { Material<double>::readCorr(elements, "none"); }),
            "Could not open file while reading none");
}

TEST_F(Corrections, TakeTheShippedFileWhole) {
  Elements elements;
  Material<double>::readCorr(
      elements, (sourceDir() / "data/ELossCorrections.txt").string());
  EXPECT_EQ(elements.size(), 278U);  // 95 elements, 183 other substances
  EXPECT_EQ(only(elements["Cu"]).J, 0.322);
}
