#include <cmath>
#include <cstdio>
#include <random>

#include "tests/material/PlainAceReader.h"
#include "tests/material/fingerprint.h"
#include "tests/support/paths.h"

namespace {

// A table of element 26 with energies from 1 keV to 100 MeV.
struct AceTable {
  unsigned int z = 26;
  double weight = 55.366;
  std::vector<double> energies{1e-3, .00711, .00712, .1, 1, 2, 10, 100};
  std::vector<double> fluorescence;  // four numbers an entry, block by block
  std::vector<double> pair{0, 0, 0, 0, 0, -1, 1, 2};
  std::string name;  // of the table, by default made from z

  std::string str() const {
    std::size_t const nflo = fluorescence.size() / 4;
    char line[120];
    std::snprintf(line, sizeof(line), "%6u.04p%12.6f  0.0000E+00   11/12/21\n",
                  z * 1000, weight);
    std::string text = name.empty() ? line : name;
    for (int i = 0; i < 5; ++i) text += "some head\n";
    std::snprintf(line, sizeof(line), "%9d%9u%9zu%9zu%9d%9d\n", 999, z,
                  energies.size(), nflo, 2, 0);
    text += line;
    for (int i = 0; i < 5; ++i) text += "        0        0\n";
    std::vector<double> numbers;
    for (double const e : energies) numbers.push_back(std::log(e));
    for (double const e : energies) numbers.push_back(-e);
    for (double const e : energies) numbers.push_back(-2 * e);
    for (double const e : energies) numbers.push_back(3 - e);
    numbers.insert(numbers.end(), pair.begin(), pair.end());
    for (int i = 0; i < 21; ++i) numbers.push_back(i * 1.25);
    for (int i = 0; i < 55; ++i) numbers.push_back(77);
    for (int i = 0; i < 55; ++i) numbers.push_back(26. / (1 + i));
    numbers.insert(numbers.end(), fluorescence.begin(), fluorescence.end());
    for (int i = 0; i < 14; ++i) numbers.push_back(.5);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      std::snprintf(line, sizeof(line), "%20.11E%s", numbers[i],
                    i % 4 == 3 ? "\n" : "");
      text += line;
    }
    return text + "\n";
  }
};

// Fluorescence blocks of n entries with telling numbers.
std::vector<double> blocks(std::size_t n) {
  std::vector<double> all;
  for (double const scale : {1e-3, .1, .01, 2e-3})
    for (std::size_t i = 0; i < n; ++i)
      all.push_back(scale * static_cast<double>(1 + i * i));
  return all;
}

std::string readOutcome(std::string const& text, std::string const& name) {
  return outcome(name, [&text](Material<double>& material) {
    std::istringstream in(text);
    material.readMCNP(in);
  });
}

std::string plainOutcome(std::string const& text, std::string const& name) {
  return outcome(name, [&text](Material<double>& material) {
    std::istringstream in(text);
    PlainAceReader(material).read(in);
  });
}

std::string failureOf(std::string const& text) {
  std::string const all = readOutcome(text, "Fe");
  return all.substr(0, all.find('\n'));
}

Material<double> readIron(AceTable const& table) {
  Material<double> iron("Fe", 0, 0, 0);
  std::istringstream in(table.str());
  iron.readMCNP(in);
  return iron;
}

}  // namespace

TEST(AceReader, EqualsThePlainReaderForAnyFluorescence) {
  for (std::size_t const n : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u}) {
    AceTable table;
    table.fluorescence = blocks(n);
    EXPECT_EQ(readOutcome(table.str(), "Fe"), plainOutcome(table.str(), "Fe"))
        << n;
  }
}

TEST(AceReader, EqualsThePlainReaderOnAnyByteChanged) {
  AceTable table;
  table.fluorescence = blocks(6);
  std::string const text = table.str();
  std::mt19937 random(1);
  std::string const likely = "0123456789 +-.\nEp";
  for (int i = 0; i < 1200; ++i) {
    std::string changed = text;
    changed[random() % changed.size()] = likely[random() % likely.size()];
    ASSERT_EQ(readOutcome(changed, "Fe"), plainOutcome(changed, "Fe")) << i;
  }
}

TEST(AceReader, EqualsThePlainReaderOnTextCutShort) {
  AceTable table;
  table.fluorescence = blocks(5);
  std::string const text = table.str();
  for (std::size_t end = 0; end < text.size(); end += 11)
    ASSERT_EQ(readOutcome(text.substr(0, end), "Fe"),
              plainOutcome(text.substr(0, end), "Fe"))
        << end;
}

TEST(AceReader, EqualsThePlainReaderOnEnergiesInAnyOrder) {
  AceTable table;
  table.energies = {1, .1, .1, 10, 1e-3, 100, 2, .1};
  EXPECT_EQ(readOutcome(table.str(), "Fe"), plainOutcome(table.str(), "Fe"));
}

TEST(AceReader, ReadsLogarithmsOfCrossSections) {
  Material<double> const iron = readIron({});
  double const factor = 0.6022140857 / iron.A;
  EXPECT_DOUBLE_EQ(iron.A, 55.366 * 1.0086649158215515);
  EXPECT_NEAR(iron.Incoherent(100, true), factor * std::exp(-.1), 1e-12);
  EXPECT_NEAR(iron.Coherent(100, true), factor * std::exp(-.2), 1e-12);
  EXPECT_NEAR(iron.Absorption(100, true), factor * std::exp(2.9), 1e-9);
  EXPECT_NEAR(iron.Pair(1e5, true), factor * std::exp(2), 1e-9);
  EXPECT_EQ(iron.Pair(1000, true), 0);
}

TEST(AceReader, ReadsScatteringOnTheGridsOfTheFormat) {
  Material<double> const iron = readIron({});
  EXPECT_NEAR(iron.ScatterFunction(8, false), 25, 1e-12);
  EXPECT_NEAR(iron.ScatterFunction(.1, false), 5, 1e-12);
  EXPECT_NEAR(iron.FormFactor(6, false), 26. / 55, 1e-12);
  EXPECT_NEAR(iron.FormFactor(.01, false), 13, 1e-12);
}

TEST(AceReader, LeavesEdgesAloneWithoutFluorescence) {
  Material<double> iron("Fe", 0, 0, 0);
  iron.Edges.emplace_back(SubshellID(26, K1), 7., .3, 8.);
  std::istringstream in(AceTable().str());
  iron.readMCNP(in);
  EXPECT_EQ(iron.Edges.size(), 1U);
}

TEST(AceReader, MakesOneLineOfTwoEntries) {
  AceTable table;
  table.fluorescence = {5e-3, 7.12e-3, .8, 1, 0, .06, 0, 6.4e-3};
  Material<double> const iron = readIron(table);
  ASSERT_EQ(iron.Edges.size(), 1U);
  Edge<double> const& K = iron.Edges[0];
  EXPECT_EQ(K.ID, SubshellID(26, K1));
  EXPECT_DOUBLE_EQ(K.Energy, 7.12);
  EXPECT_DOUBLE_EQ(K.Yield, .06 / (1 - .8));
  EXPECT_DOUBLE_EQ(K.Jump, 1.25);
  ASSERT_EQ(K.Lines.size(), 1U);
  EXPECT_EQ(K.Lines[0].Label, "K");
  EXPECT_DOUBLE_EQ(K.Lines[0].Energy, 6.4);
  EXPECT_EQ(K.Lines[0].From, SubshellID());
}

TEST(AceReader, MakesThreeLinesOfFourEntries) {
  AceTable table;
  table.fluorescence = {5e-3, 6e-3, 7e-3, 8e-3, .2,   .4,   .5,   .6,
                        .01,  .05,  .07,  .08,  1e-3, 2e-3, 3e-3, 4e-3};
  Material<double> const iron = readIron(table);
  ASSERT_EQ(iron.Edges.size(), 1U);
  Edge<double> const& K = iron.Edges[0];
  double const D = .6 - .2;
  EXPECT_EQ(K.ID, SubshellID(26, K1));
  EXPECT_DOUBLE_EQ(K.Energy, 8);
  EXPECT_DOUBLE_EQ(K.Yield, (.08 - .01) / D);
  EXPECT_DOUBLE_EQ(K.Jump, 1 / .2);
  ASSERT_EQ(K.Lines.size(), 3U);
  EXPECT_EQ(K.Lines[0].Label, "K-L3");
  EXPECT_EQ(K.Lines[0].From, SubshellID(26, L3));
  EXPECT_DOUBLE_EQ(K.Lines[0].Energy, 2);
  EXPECT_DOUBLE_EQ(K.Lines[0].Intensity, (.05 - .01) / D);
  EXPECT_EQ(K.Lines[1].Label, "K-L2");
  EXPECT_EQ(K.Lines[1].From, SubshellID(26, L2));
  EXPECT_DOUBLE_EQ(K.Lines[1].Intensity, (.07 - .05) / D);
  EXPECT_EQ(K.Lines[2].Label, "K-M3");
  EXPECT_EQ(K.Lines[2].From, SubshellID(26, M3));
  EXPECT_DOUBLE_EQ(K.Lines[2].Energy, 4);
  EXPECT_DOUBLE_EQ(K.Lines[2].Intensity, (.08 - .07) / D);
}

TEST(AceReader, MakesTwoEdgesOfFiveEntries) {
  AceTable table;
  table.fluorescence = {1e-3, 2e-3, 6e-3, 7e-3, 8e-3, .1,  .2,
                        .4,   .5,   .6,   .01,  .02,  .06, .08,
                        .09,  1e-3, 2e-3, 3e-3, 4e-3, 5e-3};
  Material<double> const iron = readIron(table);
  ASSERT_EQ(iron.Edges.size(), 2U);
  Edge<double> const& K = iron.Edges[0];
  double const D = .6 - .2;
  EXPECT_EQ(K.ID, SubshellID(26, K1));
  EXPECT_DOUBLE_EQ(K.Energy, 8);
  EXPECT_DOUBLE_EQ(K.Yield, (.09 - .02) / D);
  EXPECT_DOUBLE_EQ(K.Jump, .6);
  ASSERT_EQ(K.Lines.size(), 3U);
  EXPECT_EQ(K.Lines[0].Label, "K-L3");
  EXPECT_DOUBLE_EQ(K.Lines[0].Energy, 3);
  EXPECT_DOUBLE_EQ(K.Lines[0].Intensity, (.06 - .02) / D);
  EXPECT_EQ(K.Lines[1].Label, "K-L2");
  EXPECT_DOUBLE_EQ(K.Lines[1].Intensity, (.08 - .06) / D);
  EXPECT_EQ(K.Lines[2].Label, "K-M3");
  EXPECT_DOUBLE_EQ(K.Lines[2].Intensity, (.09 - .08) / D);
  Edge<double> const& L = iron.Edges[1];
  EXPECT_EQ(L.ID, SubshellID(26, L3));
  EXPECT_DOUBLE_EQ(L.Energy, 2);
  EXPECT_DOUBLE_EQ(L.Yield, (.02 - .01) / (.2 - .1));
  EXPECT_DOUBLE_EQ(L.Jump, 1 / .1);
  ASSERT_EQ(L.Lines.size(), 1U);
  EXPECT_DOUBLE_EQ(L.Lines[0].Energy, 2);
  EXPECT_DOUBLE_EQ(L.Lines[0].Intensity, L.Yield);
}

TEST(AceReader, MakesTwoEdgesOfSixEntries) {
  AceTable table;
  table.fluorescence = blocks(6);
  Material<double> const iron = readIron(table);
  ASSERT_EQ(iron.Edges.size(), 2U);
  Edge<double> const& K = iron.Edges[0];
  EXPECT_DOUBLE_EQ(K.Energy, 26);  // .026 MeV
  EXPECT_DOUBLE_EQ(K.Jump, 2.6);
  ASSERT_EQ(K.Lines.size(), 4U);
  EXPECT_EQ(K.Lines[0].Label, "K-L3");
  EXPECT_EQ(K.Lines[0].From, SubshellID(26, L3));
  EXPECT_DOUBLE_EQ(K.Lines[0].Intensity, (.05 - .02) / (2.6 - .2));
  EXPECT_EQ(K.Lines[3].Label, "K-N2,3");
  EXPECT_EQ(K.Lines[3].From, SubshellID());
  EXPECT_DOUBLE_EQ(K.Lines[3].Energy, 52);
  EXPECT_EQ(iron.Edges[1].ID, SubshellID(26, L3));
  EXPECT_DOUBLE_EQ(iron.Edges[1].Jump, 10);
  EXPECT_EQ(iron.Edges[1].Lines[0].Label, "L");
}

TEST(AceReader, RefusesAnotherNumberOfEntries) {
  for (std::size_t const n : {1u, 3u, 7u}) {
    AceTable table;
    table.fluorescence = blocks(n);
    EXPECT_EQ(failureOf(table.str()),
              "runtime_error Unexpected fluorescence data parsing MCNP");
  }
}

TEST(AceReader, NamesTheElementThatIsNotThere) {
  AceTable table;
  table.z = 29;
  EXPECT_EQ(failureOf(table.str()), "runtime_error Element Fe not found");
  EXPECT_EQ(readOutcome(table.str(), "CdTe").substr(0, 37),
            "runtime_error Element CdTe not found\n");
}

TEST(AceReader, TakesNoLinesWithoutANumberForATable) {
  std::string preamble;
  for (int i = 0; i < 12; ++i) preamble += "some remark\n";
  std::string const text = preamble + AceTable().str();
  EXPECT_EQ(readOutcome(text, "CdTe").substr(0, 37),
            "runtime_error Element CdTe not found\n");
  AceTable blank;
  std::string noNumber = blank.str();
  noNumber.replace(noNumber.find("      999       26"), 18, 18, ' ');
  EXPECT_EQ(readOutcome(noNumber, "CdTe").substr(0, 37),
            "runtime_error Element CdTe not found\n");
}

TEST(AceReader, TakesTheFirstTableOfItsElement) {
  AceTable copper;
  copper.z = 29;
  copper.weight = 63;
  AceTable second;
  second.weight = 1;
  std::string const text = copper.str() + AceTable().str() + second.str();
  EXPECT_EQ(readOutcome(text, "Fe"), readOutcome(AceTable().str(), "Fe"));
}

TEST(AceReader, TakesATableNameInEitherCase) {
  AceTable table;
  table.name = " 26000.04P   55.366000  0.0\n";
  EXPECT_EQ(failureOf(table.str()), "good");
}

TEST(AceReader, DropsTheFirstPairValueWithoutAnyZero) {
  AceTable table;
  table.pair = {-7, -6, -5, -4, -3, -1, 1, 2};
  Material<double> const iron = readIron(table);
  double const factor = 0.6022140857 / iron.A;
  EXPECT_NEAR(iron.Pair(7.11, true), factor * std::exp(-6), 1e-12);
  std::ostringstream nodes;
  nodes << iron.Pair;
  EXPECT_NE(nodes.str().find("# 7 nodes LogLog"), std::string::npos)
      << nodes.str();
}

TEST(AceReader, HasAFindingWithoutAnyPairValue) {
  AceTable table;
  table.pair.assign(8, 0);
  EXPECT_EQ(failureOf(table.str()), "warning No datapoints for interpolation!");
  Material<double> iron("Fe", 0, 0, 0);
  std::istringstream in(table.str());
  EXPECT_THROW(iron.readMCNP(in), warning);
  EXPECT_FALSE(iron.Absorption.empty());
}

TEST(AceReader, HasAFindingWithoutEnergies) {
  AceTable table;
  table.energies.clear();
  table.pair.clear();
  EXPECT_EQ(readOutcome(table.str(), "Fe"), plainOutcome(table.str(), "Fe"));
  EXPECT_EQ(failureOf(table.str()), "warning No datapoints for interpolation!");
}

TEST(AceReader, ReadsAFileThatTheDatabaseRecognises) {
  ScratchFolder const scratch;
  Material<double> iron("Fe", 0, 0, 0);
  iron.readDB(scratch.write("a.txt", AceTable().str()), "", Unknown);
  EXPECT_EQ(Fingerprint(iron).str(), Fingerprint(readIron({})).str());
}

TEST(AceReader, BeginsAtMinusInfinityOnTheLogarithmicGrids) {
  Material<double> const iron = readIron({});
  std::ostringstream nodes;
  nodes << iron.FormFactor;
  EXPECT_TRUE(nodes.str().starts_with(
      "# 1 edges\n# 55 nodes LogLog\n0.000000e+00\t2.600000e+01\n"))
      << nodes.str();
}

TEST(AceReader, DoesNotTrustSizes) {
  std::string text = AceTable().str();
  text.replace(text.find("        8        0"), 9, "999999999");
  EXPECT_NE(failureOf(text), "good");
}
