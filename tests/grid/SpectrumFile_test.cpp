#include "photarium/grid/SpectrumFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/config/GridConfig.h"
#include "photarium/material/Material.h"
#include "photarium/streams/PHMCStream.h"
#include "tests/support/memory.h"
#include "tests/support/messages.h"
#include "tests/support/packed_bits.h"
#include "tests/support/paths.h"

namespace {

using Energies = std::map<double const, double>;
using Labels = LabelMap<double>;

// What a plot of a stream gives.
struct Plot {
  explicit Plot(std::istream& in, bool energiesOnly = false) {
    comments = Grid::ReadGrid(in, grid, labels, config, energiesOnly);
  }

  GridConfig<double> config;
  Energies grid;
  Labels labels;
  std::string comments;
};

Plot read(std::string const& text, bool energiesOnly = false) {
  std::istringstream in(text);
  return Plot(in, energiesOnly);
}

std::string messageOfReading(std::string const& text) {
  return messageOf<std::runtime_error>([&] { read(text); });
}

std::string const example =
    "#Bin: True\n"
    "#Time: 100.000000\t# [s]\n"
    "; free comment\n"
    "\n"
    "5.000000e-01\t1.000000e+02\n"
    "1.500000e+00\t2.000000e+02 Cu K-alpha\n"
    "#EOF\n"
    "5.000000e-01\t3.000000e+02\n";

TEST(ReadGrid, TakesLinesLongerThanAnyPiece) {
  for (std::size_t size = 4090; size < 4100; ++size) {
    std::string const label(size, 'x');
    Plot const plot = read("1 2" + label + "\n2 3" + label);
    EXPECT_EQ(plot.labels, (Labels{{1, label}, {2, label}}));
  }
}

TEST(ReadGrid, RefusesALineWithoutAnEnd) {
  EXPECT_EQ(messageOfReading("1 2 " + std::string(17 << 20, 'x')),
            "Line too long");
}

TEST(ReadGrid, ReadsNodesLabelsAndSettings) {
  Plot const plot = read(example);
  EXPECT_EQ(plot.grid, (Energies{{0.5, 100}, {1.5, 200}}));
  EXPECT_EQ(plot.labels, (Labels{{0.5, ""}, {1.5, " Cu K-alpha"}}));
  EXPECT_TRUE(plot.config.Bin);
  EXPECT_EQ(plot.config.Time, 100);
  EXPECT_EQ(plot.comments,
            "#Bin: True\n#Time: 100.000000\t# [s]\n; free comment\n");
}

TEST(ReadGrid, LeavesTheStreamBehindTheSeparator) {
  std::istringstream in(example);
  Plot const first(in);
  EXPECT_EQ(in.tellg(), static_cast<std::streamoff>(example.rfind("5.0000")));
  Plot const second(in);
  EXPECT_EQ(second.grid, (Energies{{0.5, 300}}));
  Plot const third(in);
  EXPECT_TRUE(third.grid.empty());
}

TEST(ReadGrid, ClearsWhatTheMapsHeld) {
  std::istringstream in("1 2\n");
  Energies grid{{7, 7}};
  Labels labels{{7, "x"}};
  GridConfig<double> config;
  Grid::ReadGrid<double>(in, grid, labels, config, false);
  EXPECT_EQ(grid, (Energies{{1, 2}}));
  EXPECT_EQ(labels, (Labels{{1, ""}}));
}

TEST(ReadGrid, TakesAnEmptyStream) {
  Plot const plot = read("");
  EXPECT_TRUE(plot.grid.empty());
  EXPECT_EQ(plot.comments, "");
}

TEST(ReadGrid, TakesALastLineWithoutItsEnd) {
  EXPECT_EQ(read("1 2\n3 4").grid, (Energies{{1, 2}, {3, 4}}));
}

TEST(ReadGrid, DropsNegativeEnergies) {
  EXPECT_EQ(read("-1 5\n-0.5 6 x\n2 7\n").grid, (Energies{{2, 7}}));
}

TEST(ReadGrid, TakesZeroEnergyWithEitherSign) {
  EXPECT_EQ(read("-0 5\n").grid.size(), 1U);
}

TEST(ReadGrid, KeepsTheFirstLineOfAnEnergy) {
  Plot const plot = read("1 5 a\n1 6 b\n");
  EXPECT_EQ(plot.grid, (Energies{{1, 5}}));
  EXPECT_EQ(plot.labels, (Labels{{1, " a"}}));
}

TEST(ReadGrid, SortsLines) {
  EXPECT_EQ(read("3 1\n1 2\n2 3\n").grid, (Energies{{1, 2}, {2, 3}, {3, 1}}));
}

TEST(ReadGrid, TakesLeadingBlanks) {
  EXPECT_EQ(read(" \t 1e1 \t +2\n").grid, (Energies{{10, 2}}));
}

TEST(ReadGrid, RejectsTheHeadingOfTheSpectrum) {
  EXPECT_EQ(messageOfReading("[Spectrum]\n1 2\n"),
            "Error parsing energy: [Spectrum]");
}

TEST(ReadGrid, RejectsTheHeadingBehindAnotherSection) {
  EXPECT_EQ(messageOfReading("1 2\n[Other]\nx\n[Spectrum] y\n1 2\n"),
            "Error parsing energy: [Spectrum] y");
}

TEST(ReadGrid, SkipsTheDataOfOtherSections) {
  Plot const plot = read("1 2\n[Other]\nword\n3 4\n# comment\n#EOF\n5 6\n");
  EXPECT_EQ(plot.grid, (Energies{{1, 2}}));
  EXPECT_EQ(plot.comments, "# comment\n");
}

TEST(ReadGrid, EndsAtASeparatorInTheFirstLine) {
  std::istringstream in("#EOF\n1 2\n");
  EXPECT_TRUE(Plot(in).grid.empty());
  EXPECT_EQ(Plot(in).grid, (Energies{{1, 2}}));
}

TEST(ReadGrid, ComparesFourBytesOfTheSeparator) {
  EXPECT_TRUE(read("#EOFX\n1 2\n").grid.empty());
  EXPECT_EQ(read("#EO\n1 2\n").grid.size(), 1U);
  EXPECT_EQ(Grid::PlotSeparator, "#EOF");
}

TEST(ReadGrid, KnowsTheWordsAndNumbersOfBin) {
  for (char const* text : {"#Bin: True", "#Bin: true", "#Bin: 1", "; Bin: 7",
                           "#Bin: trueish", "# \tBin: -1 "})
    EXPECT_TRUE(read(text).config.Bin) << text;
  for (char const* text : {"#Bin: False", "#Bin: false", "#Bin: 0",
                           "#Bin: TRUE", "#Bin:", "#Bin: ", "##Bin: True"})
    EXPECT_FALSE(read(text).config.Bin) << text;
}

TEST(ReadGrid, SetsBinBackToFalse) {
  EXPECT_FALSE(read("#Bin: True\n#Bin: 0\n").config.Bin);
}

TEST(ReadGrid, LeavesTimeAtZeroForAText) {
  EXPECT_EQ(read("#Time: soon").config.Time, 0);
}

TEST(ReadGrid, ReadsSettingsInSkippedSections) {
  EXPECT_EQ(read("[Other]\n;Time: 5\n").config.Time, 5);
}

TEST(ReadGrid, NeedsAnEnergy) {
  EXPECT_EQ(messageOfReading("1 2\nkeV 3\n"), "Error parsing energy: keV 3");
  EXPECT_EQ(messageOfReading(" \n"), "Error parsing energy:  ");
  EXPECT_EQ(messageOfReading("nan 3\n"), "Error parsing energy: nan 3");
  EXPECT_EQ(messageOfReading("inf 3\n"), "Error parsing energy: inf 3");
  EXPECT_EQ(messageOfReading("1e999 3\n"), "Error parsing energy: 1e999 3");
}

TEST(ReadGrid, NeedsAValue) {
  EXPECT_EQ(messageOfReading("1\n"), "Error parsing intensity: 1");
  EXPECT_EQ(messageOfReading("-1 x\n"), "Error parsing intensity: -1 x");
  EXPECT_EQ(messageOfReading("1,5 2\n"), "Error parsing intensity: 1,5 2");
}

TEST(ReadGrid, KeepsTheNodesAheadOfAFailure) {
  std::istringstream in("1 2 a\n3 4\nx\n5 6\n");
  Energies grid;
  Labels labels;
  GridConfig<double> config;
  EXPECT_THROW(Grid::ReadGrid<double>(in, grid, labels, config, false),
               std::runtime_error);
  EXPECT_EQ(grid, (Energies{{1, 2}, {3, 4}}));
  EXPECT_EQ(labels, (Labels{{1, " a"}, {3, ""}}));
}

TEST(ReadGrid, NeedsNoValuesForEnergiesAlone) {
  Plot const plot = read("1\n2 5 label\n3 word\n", /*energiesOnly=*/true);
  EXPECT_EQ(plot.grid, (Energies{{1, 0}, {2, 0}, {3, 0}}));
  EXPECT_EQ(plot.labels, (Labels{{1, ""}, {2, " label"}, {3, ""}}));
}

TEST(ReadGrid, KeepsCarriageReturnsWithTheLine) {
  Plot const plot = read("#Bin: True\r\n1 2\r\n3 4 x\r\n");
  EXPECT_TRUE(plot.config.Bin);
  EXPECT_EQ(plot.comments, "#Bin: True\r\n");
  EXPECT_EQ(plot.labels, (Labels{{1, "\r"}, {3, " x\r"}}));
}

TEST(ReadGrid, TakesALineOfAMillionBytes) {
  std::string const label(1 << 20, 'x');
  EXPECT_EQ(read("1 2 " + label + "\n").labels, (Labels{{1, " " + label}}));
}

// The nodes that a generator makes of its settings.
struct Generated {
  Generated(double kVp, double EBin, bool spectrum) {
    config.kVp = kVp;
    config.EBin = EBin;
    config.spectrum = spectrum;
    generate();
  }
  explicit Generated(std::string const& file) {
    config.GridFile = file;
    config.kVp = 2;
    config.EBin = 1;
    config.spectrum = false;
    generate();
  }

  void generate() {
    comments = Grid::GenGrid(config, Material<double>(), grid, labels, false);
  }

  GridConfig<double> config;
  Energies grid{{77, 7}};
  Labels labels{{77, "old"}};
  std::string comments;
};

TEST(GenGrid, StepsUpToTheVoltage) {
  Generated const result(1, 0.5, /*spectrum=*/false);
  EXPECT_EQ(result.grid, (Energies{{0.5, 0}, {1, 0}}));
  EXPECT_EQ(result.labels, (Labels{{0.5, ""}, {1, ""}}));
  EXPECT_EQ(result.comments, "");
}

TEST(GenGrid, PutsTheNodesOfASpectrumAtBinCentres) {
  Generated const result(2, 1, /*spectrum=*/true);
  // Up to the one whose lower neighbour lies below 2.4.
  EXPECT_EQ(result.grid, (Energies{{0.5, 0}, {1.5, 0}, {2.5, 0}}));
}

TEST(GenGrid, ReachesAFifthAboveTheVoltageInSinglePrecision) {
  // 1.2F times 5 is just above the 6 from which the last node is one step away;
  // 1.2 times 5 is not.
  Generated const result(5, 4, /*spectrum=*/true);
  EXPECT_EQ(result.grid, (Energies{{2, 0}, {6, 0}, {10, 0}}));
}

TEST(GenGrid, ComputesEachNodeAfresh) {
  Generated const result(100, 0.1, /*spectrum=*/false);
  std::size_t i = 0;
  for (auto const& [energy, value] : result.grid)
    EXPECT_EQ(energy, static_cast<double>(i++) * 0.1 + 0.1);
}

TEST(GenGrid, MayMakeNoNodeAtAll) {
  EXPECT_TRUE(Generated(-1, 0.5, false).grid.empty());
}

TEST(GenGrid, RefusesAStepOfZeroOrLess) {
  for (double step : {0., -1., -std::numeric_limits<double>::infinity()})
    EXPECT_EQ(
        messageOf<std::runtime_error>([&] { Generated(100, step, false); }),
        "Unreasonable energy resolution.\n");
}

TEST(GenGrid, MakesNoNodeOfAStepThatIsNoNumber) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(Generated(100, nan, false).grid.empty());
  EXPECT_TRUE(Generated(nan, 1, false).grid.empty());
}

TEST(GenGrid, RefusesHugeGridsAtOnce) {
  double const infinity = std::numeric_limits<double>::infinity();
  std::string const refusal =
      "Energy grid of more than 10000000 nodes requested.\n";
  auto const message = [](double kVp, double EBin) {
    return messageOf<std::runtime_error>([&] { Generated(kVp, EBin, false); });
  };
  EXPECT_EQ(message(1e9, 1), refusal);
  EXPECT_EQ(message(infinity, 1), refusal);
  EXPECT_EQ(message(100, 1e-300), refusal);
  EXPECT_EQ(message(100, std::numeric_limits<double>::denorm_min()), refusal);
  EXPECT_EQ(message(10000001, 1), refusal);
}

TEST(GenGrid, ReadsAFile) {
  ScratchFolder const folder;
  std::string const file = folder.write("grid.txt", example);
  Generated const result(file);
  EXPECT_EQ(result.config.GridFile, file);
  EXPECT_EQ(result.grid, (Energies{{0.5, 100}, {1.5, 200}}));
  EXPECT_EQ(result.comments, read(example).comments);
  EXPECT_TRUE(result.config.Bin);
}

TEST(GenGrid, ReadsAPackedFile) {
  ScratchFolder const folder;
  std::string const file = folder.write("grid.phc", "");
  PHMCStream packed(file, /*plain=*/false,
                    std::ios_base::out | std::ios_base::binary);
  packed << example;
  packed.close();
  EXPECT_EQ(fileText(file).substr(0, 4), "PHMC");
  EXPECT_EQ(Generated(file).grid, (Energies{{0.5, 100}, {1.5, 200}}));
}

TEST(GenGrid, RefusesAShortFileThatUnpacksWithoutEnd) {
  ScratchFolder const folder;
  long const before = peakMemory();
  for (auto const& bytes : Endless::All) {
    std::string const file = folder.write("grid.phc", bytes);
    EXPECT_EQ(
        messageOf<std::runtime_error>([&] { Generated const result(file); }),
        "Packed text is too long: " + file);
  }
  EXPECT_LT(peakMemory() - before, 1L << 20);
}

TEST(GenGrid, TakesADamagedPackedFileForAShortOne) {
  ScratchFolder const folder;
  std::string const bits = "0001 1001100 0010 " + Bits::Above;
  EXPECT_EQ(Generated(folder.write("grid.phc", stream(bits + Bits::End))).grid,
            (Energies{{1, 2}}));
  EXPECT_EQ(Generated(folder.write("grid.phc", stream(bits))).grid,
            (Energies{{1, 0}, {2, 0}}));
}

TEST(GenGrid, GeneratesWhereTheFileHoldsCommentsOnly) {
  ScratchFolder const folder;
  Generated const result(folder.write("grid.txt", "# only\n; comments\n"));
  EXPECT_EQ(result.grid, (Energies{{1, 0}, {2, 0}}));
  EXPECT_EQ(result.config.GridFile, "");
  EXPECT_EQ(result.comments, "# only\n; comments\n");
}

TEST(GenGrid, GeneratesWhereThereIsNoFile) {
  ScratchFolder const folder;
  Generated const result((folder.path() / "none").string());
  EXPECT_EQ(result.grid, (Energies{{1, 0}, {2, 0}}));
  EXPECT_EQ(result.config.GridFile, "");
}

TEST(GenGrid, GeneratesForAFolder) {
  ScratchFolder const folder;
  Generated const result(folder.path().string());
  EXPECT_EQ(result.grid, (Energies{{1, 0}, {2, 0}}));
  EXPECT_EQ(result.config.GridFile, "");
}

TEST(GenGrid, ReadsStandardInput) {
  std::istringstream in(example);
  std::streambuf* const usual = std::cin.rdbuf(in.rdbuf());
  Generated const result("-");
  std::cin.rdbuf(usual);
  EXPECT_EQ(result.grid, (Energies{{0.5, 100}, {1.5, 200}}));
}

// What WriteGrid makes of a grid.
struct Written {
  Written(Energies const& grid, bool inBinned, bool outBinned, double scale = 1,
          bool dropTiny = false, Labels const& labels = {}) {
    Grid::WriteGrid(out, grid, labels, inBinned, outBinned, avg, flux, scale,
                    dropTiny);
    text = out.str();
  }

  std::ostringstream out;
  std::string text;
  double avg = -1;
  double flux = -1;
};

Energies const threeNodes{{1, 10}, {2, 20}, {4, 30}};  // widths 1, 1.5, 2

TEST(WriteGrid, WritesContentsAsTheyStand) {
  Written const result(threeNodes, /*inBinned=*/true, /*outBinned=*/true);
  EXPECT_EQ(result.text,
            "1.000000e+00\t1.000000e+01\n"
            "2.000000e+00\t2.000000e+01\n"
            "4.000000e+00\t3.000000e+01\n");
  EXPECT_EQ(result.flux, 60);
  EXPECT_DOUBLE_EQ(result.avg, (10 + 40 + 120) / 60.);
}

TEST(WriteGrid, DividesContentsByTheWidth) {
  Written const result(threeNodes, /*inBinned=*/true, /*outBinned=*/false);
  EXPECT_EQ(result.text,
            "1.000000e+00\t1.000000e+01\n"
            "2.000000e+00\t1.333333e+01\n"
            "4.000000e+00\t1.500000e+01\n");
  EXPECT_EQ(result.flux, 60);
}

TEST(WriteGrid, MultipliesDensitiesByTheWidth) {
  Written const result(threeNodes, /*inBinned=*/false, /*outBinned=*/true);
  EXPECT_EQ(result.text,
            "1.000000e+00\t1.000000e+01\n"
            "2.000000e+00\t3.000000e+01\n"
            "4.000000e+00\t6.000000e+01\n");
  EXPECT_EQ(result.flux, 100);
  EXPECT_DOUBLE_EQ(result.avg, (10 + 60 + 240) / 100.);
}

TEST(WriteGrid, SumsDensitiesOverTheirBins) {
  Written const result(threeNodes, /*inBinned=*/false, /*outBinned=*/false);
  EXPECT_EQ(result.text,
            "1.000000e+00\t1.000000e+01\n"
            "2.000000e+00\t2.000000e+01\n"
            "4.000000e+00\t3.000000e+01\n");
  EXPECT_EQ(result.flux, 100);
}

TEST(WriteGrid, GivesOneNodeTheWidthOne) {
  Written const result({{3, 7}}, /*inBinned=*/false, /*outBinned=*/true);
  EXPECT_EQ(result.text, "3.000000e+00\t7.000000e+00\n");
}

TEST(WriteGrid, ScalesValues) {
  EXPECT_EQ(Written({{1, 10}}, true, true, 0.5).text,
            "1.000000e+00\t5.000000e+00\n");
}

TEST(WriteGrid, WritesZeroForWhatIsNoNumber) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Written({{1, nan}}, true, true).text,
            "1.000000e+00\t0.000000e+00\n");
}

TEST(WriteGrid, LeavesInfiniteNodesOut) {
  double const infinity = std::numeric_limits<double>::infinity();
  Written const result({{1, infinity}, {2, 5}, {3, -infinity}}, true, true, 1,
                       false, {{1, " a"}, {2, " b"}, {3, " c"}});
  EXPECT_EQ(result.text, "2.000000e+00\t5.000000e+00 b\n");
  EXPECT_EQ(result.flux, 5);
  EXPECT_EQ(result.avg, 2);
}

TEST(WriteGrid, DropsTinyAndNegativeValuesIfAsked) {
  double const tiny = std::numeric_limits<double>::min();
  Written const result({{1, -4}, {2, tiny / 2}, {3, tiny}}, true, true, 1,
                       /*dropTiny=*/true);
  EXPECT_EQ(result.text,
            "1.000000e+00\t0.000000e+00\n"
            "2.000000e+00\t0.000000e+00\n"
            "3.000000e+00\t2.225074e-308\n");
}

TEST(WriteGrid, KeepsNegativeValuesOtherwise) {
  Written const result({{1, -4}}, true, true);
  EXPECT_EQ(result.text, "1.000000e+00\t-4.000000e+00\n");
  EXPECT_EQ(result.flux, -4);
  EXPECT_EQ(result.avg, -4);  // not divided by a flux that is not positive
}

TEST(WriteGrid, PutsLabelsBehindTheValue) {
  EXPECT_EQ(
      Written({{1, 4}, {2, 5}}, true, true, 1, false, {{1, " K-L3"}, {2, ""}})
          .text,
      "1.000000e+00\t4.000000e+00 K-L3\n2.000000e+00\t5.000000e+00\n");
}

TEST(WriteGrid, TakesFewerLabelsThanNodes) {
  EXPECT_EQ(Written({{1, 4}, {2, 5}}, true, true, 1, false, {{1, "!"}}).text,
            "1.000000e+00\t4.000000e+00!\n2.000000e+00\t5.000000e+00\n");
}

TEST(WriteGrid, WritesNothingForAnEmptyGrid) {
  Written const result({}, true, true);
  EXPECT_EQ(result.text, "");
  EXPECT_EQ(result.avg, 0);
  EXPECT_EQ(result.flux, 0);
}

TEST(WriteGrid, LeavesTheStreamScientific) {
  Written result({}, true, true);
  result.out << 0.5;
  EXPECT_EQ(result.out.str(), "5.000000e-01");
}

TEST(WriteGrid, ShowsSignsIfTheStreamDoes) {
  std::ostringstream out;
  out << std::showpos;
  Grid::WriteGrid<double>(out, {{1, 4}}, {}, 1, false);
  EXPECT_EQ(out.str(), "+1.000000e+00\t+4.000000e+00\n");
}

TEST(WriteGrid, HasAShortFormForContents) {
  std::ostringstream out;
  Grid::WriteGrid<double>(out, threeNodes, {}, 2, true);
  EXPECT_EQ(out.str(), Written(threeNodes, true, true, 2, true).text);
}

TEST(WriteGrid, WritesLongGridsLineByLine) {
  Energies grid;
  std::string expected;
  for (int i = 1; i <= 10000; ++i) {
    grid[i] = 1. / i;
    char line[60];
    std::snprintf(line, sizeof(line), "%.6e\t%.6e\n", 1. * i, 1. / i);
    expected += line;
  }
  EXPECT_EQ(Written(grid, true, true).text == expected, true);
}

TEST(WriteGrid, IsReadBackToSevenDigits) {
  std::mt19937_64 random(21);
  std::uniform_real_distribution<double> exponent(-12, 12);
  Energies grid;
  Labels labels;
  for (double E = 0.7; E < 500; E *= 1.01) {
    grid[E] = std::pow(10, exponent(random));
    labels.emplace(E, E > 100 ? "\t line " + std::to_string(E) : "");
  }
  Plot const plot = read(Written(grid, true, true, 1, false, labels).text);
  ASSERT_EQ(plot.grid.size(), grid.size());
  auto label = labels.begin();
  auto readLabel = plot.labels.begin();
  for (auto node = grid.cbegin(), back = plot.grid.cbegin();
       node != grid.cend(); ++node, ++back, ++label, ++readLabel) {
    EXPECT_NEAR(back->first / node->first, 1, 5e-7);  // seven digits
    EXPECT_NEAR(back->second / node->second, 1, 5e-7);
    EXPECT_EQ(readLabel->second, label->second);
  }
}

}  // namespace
