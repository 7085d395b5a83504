#include "tests/tools/Program.h"

namespace {

// Two spectra of densities on different nodes.
struct Spectra : testing::Test {
  Spectra() {
    program.write("a.txt", "1 10\n2 20 Cu\n3 30\n");
    program.write("b.txt", "0 1\n4 5\n");
  }

  Outcome math(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "math");
    return program.run(arguments);
  }

  using Rows = std::vector<std::vector<double>>;

  Program program;
};

using MathCommand = Spectra;

}  // namespace

TEST_F(MathCommand, BringsTheSecondOntoTheNodesOfTheFirst) {
  // The second is 1 + E there.
  std::vector<std::pair<std::string, Rows>> const expected{
      {"add", {{1, 12}, {2, 23}, {3, 34}}},
      {"subtract", {{1, 8}, {2, 17}, {3, 26}}},
      {"multiply", {{1, 20}, {2, 60}, {3, 120}}},
      {"divide", {{1, 5}, {2, 6.666667}, {3, 7.5}}},
      {"rebin", {{1, 2}, {2, 3}, {3, 4}}}};
  for (auto const& [operation, rows] : expected) {
    Outcome const outcome = math({"a.txt", "b.txt", "--operation", operation});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(rowsOf(outcome.out), rows) << operation;
  }
}

TEST_F(MathCommand, KeepsTheLabelsOfTheFirst) {
  Outcome const outcome = math({"a.txt", "b.txt", "--operation=+"});
  EXPECT_NE(outcome.out.find("2.000000e+00\t2.300000e+01 Cu\n"),
            std::string::npos);
}

TEST_F(MathCommand, SaysInItsCommentsWhatWasDone) {
  Outcome const outcome = math({"a.txt", "b.txt", "--operation", "subtract"});
  for (std::string const line :
       {"#math\n", "# Operation: -\n", "# First: a.txt (3 nodes, densities)\n",
        "# Second: b.txt (2 nodes, densities)\n",
        "# Result: first - second; linear interpolation, 0 beyond the "
        "second\n"})
    EXPECT_NE(outcome.out.find(line), std::string::npos) << line;
}

TEST_F(MathCommand, AddsContentsOfBinsAsSuch) {
  // Densities of b are 2 at 1, 3 at 2 and 4 at 3; the bins of c are 1 wide.
  program.write("c.txt", "# Bin: true\n# Time: 5\n1 10\n2 20\n3 30\n");
  // As contents of bins, 4 wide: densities 1 and 2.
  program.write("d.txt", "# Bin: true\n0 4\n4 8\n");
  Outcome const first = math({"c.txt", "b.txt", "--operation", "add"});
  EXPECT_EQ(rowsOf(first.out), (Rows{{1, 12}, {2, 23}, {3, 34}}));
  EXPECT_NE(first.out.find("# Bin: true\n# Time: 5.0000"), std::string::npos);
  Outcome const second = math({"c.txt", "d.txt", "--operation", "add"});
  EXPECT_EQ(rowsOf(second.out), (Rows{{1, 11.25}, {2, 21.5}, {3, 31.75}}));
}

TEST_F(MathCommand, MultipliesContentsOfWideBinsByAPlainFactor) {
  program.write("wide.txt", "# Bin: true\n0 10\n2 20\n4 30\n");
  Outcome const outcome = math({"wide.txt", "b.txt", "--operation", "*"});
  EXPECT_EQ(rowsOf(outcome.out), (Rows{{0, 10}, {2, 60}, {4, 150}}));
}

TEST_F(MathCommand, RebinsByOverlapWithoutInterpolation) {
  program.write("fine.txt", "1 1\n2 2\n3 3\n4 4\n");
  program.write("coarse.txt", "1.5 0\n3.5 0\n");
  Outcome const outcome = math(
      {"coarse.txt", "fine.txt", "--operation", "rebin", "--no-interpolation"});
  EXPECT_EQ(rowsOf(outcome.out), (Rows{{1.5, 1.5}, {3.5, 3.5}}));
}

TEST_F(MathCommand, RebinsOneFileOntoGeneratedNodes) {
  Outcome const outcome =
      math({"b.txt", "--operation", "rebin", "--kvp", "2", "--ebin", "1"});
  // Bin centres up to a fifth above 2 keV.
  EXPECT_EQ(rowsOf(outcome.out), (Rows{{0.5, 1.5}, {1.5, 2.5}, {2.5, 3.5}}));
}

TEST_F(MathCommand, ReadsPackedFilesAndStandardInput) {
  Outcome const outcome = program.shell(
      "photarium pack b.txt --output b.phc && "
      "photarium math - b.phc --operation add <a.txt");
  EXPECT_EQ(rowsOf(outcome.out), (Rows{{1, 12}, {2, 23}, {3, 34}}));
}

TEST_F(MathCommand, TakesNamesFromTheRoot) {
  std::string const first = (program.folder() / "a.txt").string();
  Outcome const outcome = math({first, "b.txt", "--operation", "add"});
  EXPECT_EQ(rowsOf(outcome.out), (Rows{{1, 12}, {2, 23}, {3, 34}}));
}

TEST_F(MathCommand, TakesNamesWithAColonBehindADot) {
  PHOTARIUM_NEEDS_POSIX();
  program.write("a:b=c", "1 1\n2 1\n");
  Outcome const outcome = math({"a.txt", "./a:b=c", "--operation", "add"});
  EXPECT_EQ(rowsOf(outcome.out).size(), 3u);
}

TEST_F(MathCommand, LeavesInfiniteValuesOutAndSaysSo) {
  program.write("zero.txt", "1 1\n2 0\n3 1\n");
  Outcome const outcome = math({"a.txt", "zero.txt", "--operation", "/"});
  EXPECT_EQ(rowsOf(outcome.out), (Rows{{1, 10}, {3, 30}}));
  EXPECT_EQ(outcome.err, "photarium: 1 infinite values left out\n");
}

TEST_F(MathCommand, WithoutAnOperationIsWrongUsage) {
  Outcome const outcome = math({"a.txt", "b.txt"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err.substr(0, 30), "photarium: No operation given:");
}

TEST_F(MathCommand, WithAnUnknownOperationIsWrongUsage) {
  Outcome const outcome = math({"a.txt", "b.txt", "--operation", "none"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "photarium: Unknown math operation!\n");
}

TEST_F(MathCommand, WithOneFileIsWrongUsage) {
  EXPECT_EQ(math({"a.txt", "--operation", "add"}).status, 2);
}

TEST_F(MathCommand, NamesAFileThatIsNotThere) {
  Outcome const outcome = math({"a.txt", "none.txt", "--operation", "add"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "photarium: Could not open none.txt: No such file or directory\n");
}

TEST_F(MathCommand, NamesTheFileAndTheLineThatItCannotRead) {
  program.write("bad.txt", "1 10\n2\n");
  Outcome const outcome = math({"a.txt", "bad.txt", "--operation", "add"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "photarium: Error parsing intensity: 2 while reading bad.txt\n");
}

TEST_F(MathCommand, RefusesABrokenPackedFile) {
  program.write("cut.phc", program.run({"pack", "a.txt"}).out.substr(0, 8));
  Outcome const outcome = math({"b.txt", "cut.phc", "--operation", "add"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "photarium: Not enough bits in input! while reading cut.phc\n");
}

TEST_F(MathCommand, RefusesABrokenPackedGridFile) {
  program.write("cut.phc", program.run({"pack", "a.txt"}).out.substr(0, 8));
  Outcome const outcome =
      math({"b.txt", "--operation", "rebin", "--gridfile", "cut.phc"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "photarium: Not enough bits in input! while reading cut.phc\n");
}

TEST_F(MathCommand, ReadsTheFirstPlotOfAFileWithEverythingInIt) {
  program.write("mixed.txt",
                "; comment\r\n\n-1 5\n1 10 Cu K-L3\n2 20\n1 99\n"
                "[Other]\n3 30\n#EOF\n1 7\n");
  Outcome const outcome =
      math({"mixed.txt", "b.txt", "--operation", "subtract"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.out.find("\n1.000000e+00\t8.000000e+00 Cu K-L3\n"
                             "2.000000e+00\t1.700000e+01\n"),
            std::string::npos)
      << outcome.out;
}

TEST_F(MathCommand, NamesAnEmptySpectrum) {
  program.write("empty.txt", "# nothing\n");
  Outcome const outcome = math({"a.txt", "empty.txt", "--operation", "add"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "photarium: No spectrum in empty.txt\n");
}
