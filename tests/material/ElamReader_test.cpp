#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <ios>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

#include "photarium/foundation/constants.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/material/elam_text.h"
#include "tests/support/thrown.h"

namespace {

using Elements = std::map<std::string, Material<double>>;

Material<double> read(std::string const& name, std::string const& text) {
  Material<double> material(name, 0, 0, 0);
  std::istringstream in(text);
  material.readElam(in);
  return material;
}

Elements readAll(std::string const& text) {
  Elements elements;
  std::istringstream in(text);
  Material<double>::readElam(elements, in);
  return elements;
}

template <class E>
std::string failure(std::string const& name, std::string const& text) {
  return thrown<E>([&] { read(name, text); });
}

template <class E>
std::string failureOfAll(std::string const& text) {
  return thrown<E>([&] { readAll(text); });
}

// The element Cu of Z = 29 with these sections and curves.
std::string withSections(std::string const& sections) {
  ElamElement element = copper();
  element.edges = sections;
  return database({element});
}

std::string const headOnly = "Element Cu 29 63.546 8.96\n";

}  // namespace

TEST(ElamReader, FindsNoElementsInBlanks) {
  EXPECT_TRUE(readAll(" \n\t\n").empty());
}

TEST(ElamReader, MissesNoElementForAMaterialWithoutAName) {
  EXPECT_TRUE(read("", "End\n//\n").Absorption.empty());
}

TEST(ElamReader, FillsTheFieldsOfAnElement) {
  Material<double> const element = read("Cu", database({copper()}));
  EXPECT_EQ(element.Z, 29);
  EXPECT_EQ(element.A, 63.546);
  EXPECT_EQ(element.Density, 8.96);
  ASSERT_EQ(element.Edges.size(), 2U);
  EXPECT_TRUE(element.PhotoIonization.empty());
  EXPECT_TRUE(element.FormFactor.empty());
}

TEST(ElamReader, ConvertsEdgeEnergiesToKeV) {
  Edge<double> const edge = read("Cu", database({copper()})).Edges[0];
  EXPECT_EQ(edge.ID, SubshellID(29, K1));
  EXPECT_EQ(edge.Energy, 8.979);
  EXPECT_EQ(edge.Yield, 0.44);
  EXPECT_EQ(edge.Jump, 7.9);
}

TEST(ElamReader, MultipliesLineIntensitiesByTheYield) {
  Edge<double> const edge = read("Cu", database({copper()})).Edges[0];
  ASSERT_EQ(edge.Lines.size(), 2U);
  Line<double> const& line = edge.Lines[0];
  EXPECT_EQ(line.Label, "K-L3");
  EXPECT_DOUBLE_EQ(line.Energy, 8.04778);
  EXPECT_DOUBLE_EQ(line.Intensity, 0.5 * 0.44);
  EXPECT_TRUE(line.Radiative);
  EXPECT_EQ(line.From, SubshellID(29, L3));
  EXPECT_EQ(line.To, SubshellID());
}

TEST(ElamReader, GivesAnEdgeWithoutLines) {
  Edge<double> const edge = read("Cu", database({copper()})).Edges[1];
  EXPECT_EQ(edge.ID, SubshellID(29, L3));
  EXPECT_TRUE(edge.Lines.empty());
}

TEST(ElamReader, InterpolatesCubicallyBetweenLogarithms) {
  Material<double> const element = read("Cu", database({copper()}));
  for (double const energy : {1., 2., 8., 50., 100.}) {
    EXPECT_NEAR(element.Absorption(energy, true) / copper().photo(energy), 1,
                1e-12);
    EXPECT_NEAR(element.Coherent(energy, true) / copper().coherent(energy), 1,
                1e-12);
    EXPECT_NEAR(element.Incoherent(energy, true) / copper().incoherent(energy),
                1, 1e-12);
  }
  std::ostringstream text;
  text << element.Absorption;
  EXPECT_EQ(text.str().substr(0, text.str().find('\n', 11)),
            "# 1 edges\n# 5 nodes LogLog");
}

TEST(ElamReader, TurnsTheFilesLogarithmOfEVByTheLogarithmOfAThousand) {
  Material<double> const element =
      read("Cu", headOnly +
                     "Photo\n 6.907755278982137 0 0\n 9.210340371976184 1 0\n"
                     "Scatter\n 7 0 0 0 0\n 8 0 0 0 0\nEndElement\nEnd\n");
  double const volatile thousand = 1000;
  double const x = 9.210340371976184 - std::log(thousand);
  EXPECT_EQ(element.Absorption.Discontinuities().begin()->first,
            std::exp(6.907755278982137 - std::log(thousand)));
  EXPECT_EQ(element.Absorption(std::exp(x), true), std::exp(1.));
}

TEST(ElamReader, SeparatesRangesAtEqualEnergies) {
  Material<double> const element =
      read("Cu", headOnly + "Photo\n" + photoLine(5, 20) + photoLine(9, 10) +
                     photoLine(9, 70) + photoLine(20, 8) +
                     "Scatter\n 7 0 0 0 0\n 8 0 0 0 0\nEndElement\nEnd\n");
  auto const jumps = element.Absorption.Discontinuities();
  ASSERT_EQ(jumps.size(), 2U);
  EXPECT_NEAR(jumps.rbegin()->first, 9, 1e-12);
  EXPECT_NEAR(jumps.rbegin()->second, 7, 1e-12);
}

TEST(ElamReader, MergesSectionsOfTheSameKindInAnyOrderOfEnergy) {
  std::string const halves = headOnly + "Photo\n" + photoLine(10, 5) +
                             "Scatter\n" + scatterLine(10, 1, 1) +
                             "// between\nPhoto of the rest\n" +
                             photoLine(1, 50) + "Scatter\n" +
                             scatterLine(1, 1, 1) + "EndElement\nEnd\n";
  Material<double> const element = read("Cu", halves);
  EXPECT_NEAR(element.Absorption(1, true), 50, 1e-12);
  EXPECT_NEAR(element.Absorption(10, true), 5, 1e-12);
}

TEST(ElamReader, HasNoPairProductionUpToTheThresholdAndNoCurveBeyond) {
  Material<double> const element = read("Cu", database({copper()}));
  double const threshold = 2.2 * Constants::XME;
  EXPECT_EQ(element.Pair(0, false), 0);
  EXPECT_EQ(element.Pair(threshold, false), 0);
  EXPECT_THROW(element.Pair(threshold + 1, false), std::out_of_range);
  EXPECT_EQ(element.Pair(threshold + 1, true), 0);
}

TEST(ElamReader, TakesASecondEdgeStraightBehindAnEdge) {
  Material<double> const element =
      read("Cu", withSections("Edge K 8979 0.4 8\nEdge L1 1096 0.1 1\n"));
  ASSERT_EQ(element.Edges.size(), 2U);
  EXPECT_EQ(element.Edges[1].ID.Shell, L1);
}

TEST(ElamReader, TakesALabelWithoutADashForALevel) {
  Material<double> const element = read(
      "Cu", withSections("Edge K 8979 0.4 8\n  Lines\n    L3 Ka 8048 0.5\n"));
  EXPECT_EQ(element.Edges[0].Lines[0].From.Shell, L3);
  EXPECT_EQ(element.Edges[0].Lines[0].Label, "L3");
}

TEST(ElamReader, RefusesALabelOfNoLevel) {
  EXPECT_EQ(failure<warning>("Cu", withSections("Edge K 8979 0.4 8\n Lines\n"
                                                " KA1 Ka 8048 0.5\n")),
            "Unknown subshell KA1");
  EXPECT_EQ(failure<warning>("Cu", withSections("Edge K 8979 0.4 8\n Lines\n"
                                                " K-M4,5 Kb 8970 0.5\n")),
            "Unknown subshell M4,5");
}

TEST(ElamReader, RefusesAnEdgeOfNoLevel) {
  EXPECT_EQ(failure<warning>("Cu", withSections("Edge K3 8979 0.4 8\n")),
            "Unknown subshell K3");
}

TEST(ElamReader, RefusesARecordAheadOfLines) {
  EXPECT_EQ(failure<std::runtime_error>(
                "Cu", withSections("Edge K 8979 0.4 8\n K-L3 Ka 8048 0.5\n")),
            "Unexpected keyword Edge parsing ElamDB");
}

TEST(ElamReader, EndsASectionAtATab) {
  EXPECT_EQ(
      failure<std::runtime_error>(
          "Cu", withSections("Edge K 8979 0.4 8\n Lines\n\tK-L3 Ka 8 1\n")),
      "Unexpected keyword K-L3 parsing ElamDB");
}

TEST(ElamReader, IgnoresCosterKronigDataAheadOfLinesAndBehind) {
  Material<double> const element = read(
      "Cu", withSections("Edge L1 1096 0.4 1\n  CK L2 0.3 L3 0.5\n"
                         "  CKtotal L2 0.3\n  Lines\n  L1-M3 Lb3 1022 0.5\n"
                         "  CK L3 0.1\n  L1-M2 Lb4 1019 0.4\n"));
  EXPECT_EQ(element.Edges[0].Lines.size(), 2U);
}

TEST(ElamReader, RefusesAnEdgeForAFractionalNumber) {
  std::string const text =
      "Element Xx 29.5 63 8\nEdge K 8979 0.4 8\nEndElement\nEnd\n";
  EXPECT_EQ(failure<std::runtime_error>("Xx", text),
            "Edge data for non-integer Z not accepted.");
}

TEST(ElamReader, RefusesAnEdgeForANumberThatNoLevelCanHold) {
  for (std::string const number : {"-1", "1e300", "4294967296"}) {
    EXPECT_EQ(failure<std::runtime_error>(
                  "Xx", "Element Xx " + number + " 63 8\nEdge K 1 1 1\n\n"),
              "Edge data for non-integer Z not accepted.");
  }
}

TEST(ElamReader, RefusesAnUnknownKeyword) {
  EXPECT_EQ(failure<std::runtime_error>(
                "Cu", headOnly + "Foto\n 1 2 3\nEndElement\nEnd\n"),
            "Unexpected keyword Foto parsing ElamDB");
  EXPECT_EQ(
      failure<std::runtime_error>("Cu", headOnly + "End\nEndElement\nEnd\n"),
      "Unexpected keyword End parsing ElamDB");
}

TEST(ElamReader, PassesOverCommentsAndWhatStandsAheadOfTheElement) {
  std::string const text = "Version 1.3\nEdges Element Cu\n\n 1 2 3\n" +
                           withSections("// a comment\n//another\n");
  EXPECT_EQ(read("Cu", text).A, 63.546);
}

TEST(ElamReader, FindsAnElementBehindOthersAndBehindBlanks) {
  std::string const whole = copper().text();
  std::string const text = hydrogen().text() + "  " + oxygen().text() +
                           "  Element\n  Cu\n29 63.5\n 9 rest\n" +
                           whole.substr(whole.find('\n') + 1) + "End\n";
  EXPECT_EQ(read("O", text).Z, 8);
  Material<double> const element = read("Cu", text);
  EXPECT_EQ(element.Z, 29);
  EXPECT_EQ(element.A, 63.5);
  EXPECT_EQ(element.Edges.size(), 2U);
}

TEST(ElamReader, ReadsTheFirstOfTwoElementsOfOneName) {
  ElamElement second = copper();
  second.A = 1;
  EXPECT_EQ(read("Cu", database({copper(), second})).A, 63.546);
}

TEST(ElamReader, DoublesTheEdgesOfAnElementThatIsReadTwice) {
  Material<double> material("Cu", 0, 0, 0);
  for (int i = 0; i < 2; ++i) {
    std::istringstream in(database({copper()}));
    material.readElam(in);
  }
  EXPECT_EQ(material.Edges.size(), 4U);
}

TEST(ElamReader, DoesNotFindWhatStandsBehindTheEnd) {
  EXPECT_EQ(failure<std::runtime_error>(
                "Cu", database({hydrogen()}) + database({copper()})),
            "Element Cu not found");
  EXPECT_EQ(failure<std::runtime_error>("Cu", "End\n"), "Element Cu not found");
  EXPECT_EQ(failure<std::runtime_error>("29", database({hydrogen()})),
            "Element Cu not found");  // the number became the symbol
}

TEST(ElamReader, FindsNothingForNoNameAmongElements) {
  Material<double> nameless;
  std::istringstream in(database({hydrogen()}));
  EXPECT_EQ(thrown<std::runtime_error>([&] { nameless.readElam(in); }),
            "Element  not found");
}

TEST(ElamReader, FailsAsAStreamWhereTheTextEndsTooEarly) {
  std::string const text = "Unexpected end of text: iostream error";
  EXPECT_EQ(failure<std::ios_base::failure>("Cu", ""), text);
  EXPECT_EQ(failure<std::ios_base::failure>("Cu", "\n \n"), text);
  EXPECT_EQ(failure<std::ios_base::failure>("Cu", hydrogen().text()), text);
  EXPECT_EQ(failure<std::ios_base::failure>("Cu", headOnly), text);
  EXPECT_EQ(failure<std::ios_base::failure>("Cu", headOnly + "Photo\n 1 2"),
            text);
}

TEST(ElamReader, LeavesNumbersAsTheyWereBehindTheEndOfTheText) {
  for (std::string const numbers : {"", "1 ", "1 2 "}) {
    Material<double> material("Cu", 0, 0, 0);
    material.Z = material.A = material.Density = 7;
    std::istringstream in("Element Cu " + numbers + "\n");
    EXPECT_THROW(material.readElam(in), std::ios_base::failure);
    EXPECT_EQ(material.Z, numbers.empty() ? 7 : 1);
    EXPECT_EQ(material.A, numbers.size() < 4 ? 7 : 2);
    EXPECT_EQ(material.Density, 7);
  }
}

TEST(ElamReader, CountsAWordThatMeetsTheEndOfTheTextAsAFailure) {
  EXPECT_EQ(failure<std::ios_base::failure>("Cu", "End"),
            "Unexpected end of text: iostream error");
}

TEST(ElamReader, FailsAsAStreamWhereANumberIsMissing) {
  std::string const text = "Number expected: iostream error";
  EXPECT_EQ(failure<std::ios_base::failure>("Cu", "Element Cu x 1 1\nEnd\n"),
            text);
  EXPECT_EQ(
      failure<std::ios_base::failure>("Cu", withSections("Edge K x 0.4 8\n")),
      text);
  EXPECT_EQ(failure<std::ios_base::failure>(
                "Cu", headOnly + "Photo\n 1.0 abc 0\nEndElement\nEnd\n"),
            text);
  EXPECT_EQ(failure<std::ios_base::failure>(
                "Cu", headOnly + "Photo\n 1e999 1 0\nEndElement\nEnd\n"),
            text);
}

TEST(ElamReader, LeavesTheExceptionMaskOfTheStreamFull) {
  Material<double> material("H", 0, 0, 0);
  std::istringstream in(database({hydrogen()}));
  material.readElam(in);
  EXPECT_EQ(in.exceptions(),
            std::ios::badbit | std::ios::failbit | std::ios::eofbit);
}

TEST(ElamReader, RefusesAStreamThatHasFailed) {
  Material<double> material("H", 0, 0, 0);
  std::istringstream in(database({hydrogen()}));
  in.setstate(std::ios::failbit);
  EXPECT_THROW(material.readElam(in), std::ios_base::failure);
}

TEST(ElamReader, WarnsOfASectionWithoutPoints) {
  EXPECT_EQ(failure<warning>("Cu", headOnly + "EndElement\nEnd\n"),
            "No datapoints for interpolation!\n");
}

TEST(ElamReader, KeepsWhatItHasReadWhenItFails) {
  Material<double> material("Cu", 0, 0, 0);
  std::istringstream in(headOnly + "Edge K 8979 0.4 8\nFoto\n");
  EXPECT_THROW(material.readElam(in), std::runtime_error);
  EXPECT_EQ(material.A, 63.546);
  EXPECT_EQ(material.Edges.size(), 1U);
}

TEST(ElamReader, EndsEveryTextThatIsCutShortInItsStatedFailure) {
  std::string const whole = database({hydrogen(), copper()});
  std::size_t const lastLine = whole.size() - 4;  // "End\n"
  for (std::size_t length = 0; length < lastLine - 1; ++length) {
    EXPECT_THROW(read("Cu", whole.substr(0, length)), std::runtime_error)
        << length;
  }
  EXPECT_EQ(read("Cu", whole.substr(0, lastLine)).Z, 29);
}

TEST(ElamReader, ReadsEveryElementIntoAMap) {
  Elements elements = readAll(database({hydrogen(), copper()}));
  ASSERT_EQ(elements.size(), 2U);
  EXPECT_EQ(elements["Cu"].Name, "Cu");
  EXPECT_EQ(elements["Cu"].Z, 29);
  EXPECT_EQ(elements["Cu"].Edges.size(), 2U);
  EXPECT_NEAR(elements["H"].Absorption(2., false), hydrogen().photo(2), 1e-12);
}

TEST(ElamReader, ReadsIntoEntriesThatTheMapHolds) {
  Elements elements;
  elements["H"].PhotoIonization[SubshellID(1, K1)];
  std::istringstream in(database({hydrogen()}));
  Material<double>::readElam(elements, in);
  EXPECT_EQ(elements["H"].PhotoIonization.size(), 1U);
  EXPECT_EQ(elements["H"].Z, 1);
}

TEST(ElamReader, TakesTheEndOfTheTextForTheEndOfTheElements) {
  EXPECT_EQ(readAll(hydrogen().text()).size(), 1U);
  EXPECT_EQ(readAll("").size(), 0U);
  EXPECT_EQ(readAll("// nothing").size(), 0U);
  EXPECT_EQ(readAll("End").size(), 0U);
}

TEST(ElamReader, ReadsNoElementBehindTheEndIntoAMap) {
  EXPECT_EQ(readAll(database({hydrogen()}) + "any text").size(), 1U);
}

TEST(ElamReader, SkipsCommentsAloneBetweenTheElementsOfAMap) {
  EXPECT_EQ(readAll("//a\n // b\n\n" + database({hydrogen()})).size(), 1U);
  EXPECT_EQ(failureOfAll<std::runtime_error>("Version 1\n"),
            "Unexpected keyword Version parsing ElamDB");
}

TEST(ElamReader, EndsAMapInAnEmptyKeywordWhereAnElementIsCutShort) {
  std::string const text = "Unexpected keyword  parsing ElamDB";
  EXPECT_EQ(failureOfAll<std::runtime_error>("Element"), text);
  EXPECT_EQ(failureOfAll<std::runtime_error>(headOnly), text);
  EXPECT_EQ(failureOfAll<std::runtime_error>(headOnly + "Photo\n 1 2"), text);
  EXPECT_EQ(failureOfAll<std::runtime_error>(headOnly + "Photo\n 1 x 2\n"),
            text);
  EXPECT_EQ(failureOfAll<std::runtime_error>("Element Cu x 1 1\n"), text);
}

TEST(ElamReader, EndsEveryMapOfATextCutShort) {
  std::string const whole = database({hydrogen(), copper()});
  for (std::size_t length = 0; length < whole.size(); ++length) {
    try {
      EXPECT_LE(readAll(whole.substr(0, length)).size(), 2U);
    } catch (std::runtime_error const& failure) {
      EXPECT_NE(std::string(failure.what()), "") << length;
    }
  }
}

TEST(ElamReader, ReadsTenThousandEdges) {
  std::string edges;
  for (int i = 0; i < 10000; ++i)
    edges += "Edge K " + std::to_string(10000 + i) +
             " 0.4 8\n Lines\n  K-L3 Ka 8000 1\n";
  EXPECT_EQ(read("Cu", withSections(edges)).Edges.size(), 10000U);
}

TEST(ElamReader, ReadsALineOfAHundredMegabytes) {
  std::string const text =
      "//" + std::string(100'000'000, 'x') + "\n" + database({hydrogen()});
  EXPECT_EQ(read("H", text).Z, 1);
}
