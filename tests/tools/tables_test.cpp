// The commands brems, angle and fluo.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#include "photarium/config/DistributionConfig.h"
#include "photarium/grid/AngleDist.h"
#include "photarium/grid/FluoTable.h"
#include "tests/support/Listener.h"
#include "tests/support/table_materials.h"
#include "tests/tools/Program.h"

namespace {

std::vector<std::string> brems(std::vector<std::string> const& more) {
  std::vector<std::string> arguments{"brems", "--kvp",   "10", "--ebin",
                                     "2",     "--steps", "11"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

bool hasGnuplot(Program const& program) {
  return program.shell("command -v gnuplot").status == 0;
}

std::string database(std::string const& folder, std::string const& file) {
  return (testData() / folder / file).string();
}

}  // namespace

TEST(BremsCommand, WritesTheTableOfTheBuiltinData) {
  Outcome const outcome = Program().run(brems({"--material", "Cu"}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out.substr(0, outcome.out.find('\n')),
            "#Tramo\t0\tCu\tBrems\t12\t5\t2\t2");
  auto const rows = rowsOf(outcome.out);
  ASSERT_EQ(rows.size(), 5U);
  for (auto const& row : rows) {
    EXPECT_EQ(row.size(), 12U);
    EXPECT_GT(row.front(), 0);
    EXPECT_NEAR(row.back(), 1, 1e-6);
  }
}

TEST(BremsCommand, TellsWhatItCorrects) {
  Outcome const outcome = Program().run(brems({}));
  EXPECT_EQ(outcome.err,
            "photarium: No tabulated bremsstrahlung cross section found, "
            "switching to builtin one.\n"
            "photarium: Unusually small number of steps configured.\n");
}

TEST(BremsCommand, KnowsTheOptionsOfBothClasses) {
  Outcome const outcome = Program().run({"brems", "--help"});
  EXPECT_EQ(outcome.status, 0);
  for (char const* option : {"\n--kVp: ", "\n--Material: ", "\n--Pratt: ",
                             "\n--Cubic: true\n", "\n--Steps: 1001\n"})
    EXPECT_NE(outcome.out.find(option), std::string::npos) << option;
  EXPECT_EQ(Program().run(brems({"--cubic", "--pratt"})).err.find("Unknown"),
            std::string::npos);
}

TEST(BremsCommand, InterpolatesAsAsked) {
  Program const program;
  EXPECT_NE(program.run(brems({"--no-cubic"})).out, program.run(brems({})).out);
}

TEST(BremsCommand, RefusesSettings) {
  Outcome const outcome = Program().run({"brems", "--ebin", "200"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.err.find("Unreasonable value for maximum kVp.\n"),
            std::string::npos);
  EXPECT_EQ(outcome.out, "");
}

TEST(BremsCommand, RefusesHugeTables) {
  Outcome const outcome =
      Program().run({"brems", "--kvp", "1e9", "--ebin", "1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("Unreasonable number of energies.\n"),
            std::string::npos);
  EXPECT_EQ(outcome.out, "");
}

TEST(BremsCommand, ReportsProgressOverTheSocket) {
  ProgressListener listener;
  Outcome const outcome = Program().run(brems({"--ipc", listener.address()}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(listener.lines().back(), "Progress: 100");
}

TEST(BremsCommand, DoesNotNeedAProgressPeer) {
  Outcome const outcome = Program().run(brems({"--ipc", "localhost:1"}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(rowsOf(outcome.out).size(), 5U);
}

TEST(BremsCommand, GoesOnWithoutAPeerThatClosesAtOnce) {
  Listener listener;
  std::thread peer([&] { listener.accept().close(); });
  Outcome const outcome = Program().run(brems({"--ipc", listener.address()}));
  peer.join();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(rowsOf(outcome.out).size(), 5U);
}

TEST(BremsCommand, DoesNotWaitForAPeerThatNeverReads) {
  Listener const silent;
  auto const start = std::chrono::steady_clock::now();
  Outcome const outcome = Program().run(brems({"--ipc", silent.address()}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(rowsOf(outcome.out).size(), 5U);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
}

TEST(BremsCommand, DoesNotNeedAPeerWhoseNameResolves) {
  // No label of a host's name is longer than 63 (RFC 1035), so no server is
  // asked for this one.
  std::string const unknown = std::string(64, 'x') + ":1";
  Outcome const outcome = Program().run(brems({"--ipc", unknown}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(rowsOf(outcome.out).size(), 5U);
}

TEST(BremsCommand, ShowsABarOnATerminalWithoutItsPeer) {
  Program const program;
  if (program.shell("script -qec true /dev/null").status != 0)
    GTEST_SKIP() << "script(1) is not installed or has no terminal";
  Listener listener;
  std::thread peer([&] { listener.accept().close(); });
  // The table waits for its reader, so that it takes longer than a second.
  Outcome const outcome = program.shell(
      "script -qec 'photarium brems --kvp 100 --ebin 0.1 --steps 101 --ipc " +
      listener.address() + " | (sleep 1.1; cat >table)' /dev/null");
  peer.join();
  EXPECT_EQ(rowsOf(program.text("table")).size(), 1000U);
  EXPECT_NE(outcome.out.find("brems [" + std::string(40, '#') + "] 100 %"),
            std::string::npos)
      << outcome.out;
  EXPECT_TRUE(outcome.out.ends_with("\r\033[K")) << outcome.out;
}

TEST(BremsCommand, RaisesFewStepsToEleven) {
  Program const program;
  std::string const eleven = program.run(brems({})).out;
  for (std::string const steps : {"0", "1"}) {
    Outcome const outcome = program.run(brems({"--steps", steps}));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, eleven) << steps;
    EXPECT_NE(outcome.err.find("Unusually small number of steps configured."),
              std::string::npos);
  }
}

TEST(BremsCommand, SaysThatTheShapeFunctionHasNoEffect) {
  Outcome const outcome = Program().run(brems({"--shapefct"}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.err.find("photarium: --shapefct has no effect: the table "
                             "has no angles\n"),
            std::string::npos);
  EXPECT_EQ(Program().run(brems({})).err.find("shapefct"), std::string::npos);
}

TEST(BremsCommand, DrawsCrossSectionAndSamplingCurves) {
  Program const program;
  if (!hasGnuplot(program)) GTEST_SKIP() << "gnuplot is not installed";
  Outcome const outcome =
      program.run(brems({"--plot", "b.svg", "--output", "b.txt"}));
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  std::string const picture = program.text("b.svg");
  EXPECT_NE(picture.find("total cross section [1/cm]"), std::string::npos);
  EXPECT_NE(picture.find("10 keV"), std::string::npos);
  EXPECT_EQ(program.text("b.txt"), program.run(brems({})).out);
}

TEST(AngleCommand, SaysWhichFileToImport) {
  Outcome const outcome = Program().run({"angle", "--material", "Cu"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("data/ENDF-VII0/029_Cu_000.endf"),
            std::string::npos);
  EXPECT_NE(outcome.err.find("photarium import-endf"), std::string::npos);
}

TEST(AngleCommand, LeavesNoFileWithoutData) {
  Program const program;
  EXPECT_EQ(program.run({"angle", "--output", "a.txt"}).status, 1);
  EXPECT_FALSE(program.has("a.txt"));
}

TEST(AngleCommand, WritesTheTableOfTungsten) {
  PHOTARIUM_NEEDS_DATA();
  Program const program;
  if (!hasGnuplot(program)) GTEST_SKIP() << "gnuplot is not installed";
  Outcome const outcome = program.run(
      {"angle", "--kvp", "150", "--ebin", "10", "--datafile",
       database("endf_mt526", "074_W_000.endf"), "--plot", "a.png"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(rowsOf(outcome.out).size(), 15U);
}

TEST(FluoCommand, SaysWhichFileToImport) {
  Outcome const outcome = Program().run({"fluo", "--material", "CuZn"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("data/ENDF-VII0/ZZZ_Symbol_000.endf"),
            std::string::npos);
}

TEST(FluoCommand, WritesTheTableOfCopperAndShortensItsWarning) {
  PHOTARIUM_NEEDS_DATA();
  Program const program;
  if (!hasGnuplot(program)) GTEST_SKIP() << "gnuplot is not installed";
  Outcome const outcome = program.run(
      {"fluo", "--kvp", "30", "--ebin", "0.1", "--material", "Cu", "--datafile",
       database("endf", "029_Cu_000.endf"), "--plot", "f.svg"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(rowsOf(outcome.out).size(), 10U + 300U);  // edges and energies
  EXPECT_NE(outcome.err.find(" lines more\n"), std::string::npos);
  EXPECT_LT(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 16);
}

TEST(TablesPage, ShowsTheReaderThatStandsWithTheExamples) {
  std::string const page = fileText(sourceDir() / "docs/tables.md");
  std::string const reader = fileText(sourceDir() / "examples/read_table.py");
  EXPECT_NE(page.find("```python\n" + reader + "```\n"), std::string::npos);
}

namespace {

// What the reader prints of a file in the folder of `program`.
std::string readerOutput(Program const& program, std::string const& file) {
  Outcome const outcome = program.shell(
      "python3 -B '" + (sourceDir() / "examples/read_table.py").string() +
      "' " + file);
  return outcome.out + outcome.err;
}

}  // namespace

TEST(TablesPage, HasAReaderOfBremsTables) {
  PHOTARIUM_NEEDS_POSIX();
  Program const program;
  program.run(brems({"--output", "table"}));
  EXPECT_EQ(readerOutput(program, "table"),
            "Brems of W, 19.3 g/cm^3\n5 rows of 11 numbers from 2 to 10 keV\n");
}

TEST(TablesPage, HasAReaderOfAttenuationTables) {
  PHOTARIUM_NEEDS_POSIX();
  Program const program;
  program.run({"mu", "--material", "CuZn", "--acrp", "--kvp", "100", "--ebin",
               "1", "--output", "table"});
  EXPECT_EQ(readerOutput(program, "table"),
            "ACRP of CuZn, 8.03402 g/cm^3\n"
            "100 rows of 4 numbers from 1 to 100 keV\n");
}

TEST(TablesPage, HasAReaderOfAngleTables) {
  PHOTARIUM_NEEDS_POSIX();
  DistributionConfig<double> dist;
  dist.kVp = 20;
  dist.EBin = 0.5;
  std::ostringstream table;
  AngleDist(table, dist, angleMaterial(50));
  Program const program;
  program.write("table", table.str());
  EXPECT_EQ(readerOutput(program, "table"),
            "Angle of W, 19.3 g/cm^3\n"
            "40 rows of 1001 numbers from 0.5 to 20 keV\n");
}

TEST(TablesPage, HasAReaderOfFluoTables) {
  PHOTARIUM_NEEDS_POSIX();
  DistributionConfig<double> dist;
  dist.kVp = 20;
  dist.EBin = 0.5;
  Material<double> material = photonMaterial();
  SubshellID const level(29, K1);
  material.Edges = {Edge<double>(level, 8.979, 0.44, 7.2)};
  material.Edges[0].Lines = {Line<double>(8.05, 0.3, "K-L3", true)};
  material.PhotoIonization[level] =
      AttenuationCoeff<double>(material.Absorption, 0.8);
  material.ElectronIonization[level] = material.Incoherent;
  std::ostringstream table;
  FluoTable<double>(table, dist, material);
  Program const program;
  program.write("table", table.str());
  EXPECT_EQ(readerOutput(program, "table"),
            "Fluo of Cu, 8.96 g/cm^3\n"
            "40 rows of 2 numbers from 0.5 to 20 keV\n");
}
