#include "tests/tools/Program.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "photarium/config/PlotConfig.h"
#include "photarium/foundation/console.h"

TEST(ProgramOverview, GoesToStandardOutputWhenAskedFor) {
  Outcome const outcome = Program().run({"help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.out.find("  mu "), std::string::npos);
  EXPECT_EQ(outcome.err, "");
}

TEST(ProgramOverview, NamesEveryCommandWithoutAnArgument) {
  Outcome const outcome = Program().run({});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("photarium COMMAND"), std::string::npos);
}

TEST(ProgramOverview, IsTheSameForBothDashedForms) {
  Program const program;
  EXPECT_EQ(program.run({"--help"}).out, program.run({"-h"}).out);
  EXPECT_EQ(program.run({"--help"}).out, program.run({"help"}).out);
}

TEST(ProgramVersion, IsThatOfTheLibrary) {
  std::ostringstream expected;
  expected << VersionInfo << '\n';
  EXPECT_EQ(Program().run({"version"}).out, expected.str());
  EXPECT_EQ(Program().run({"--version"}).out, expected.str());
}

TEST(ProgramCommand, IsNamedWithItsNearestWhenUnknown) {
  Outcome const outcome = Program().run({"materiel"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err,
            "photarium: Unknown command 'materiel', nearest known name: "
            "'material'\n");
}

TEST(ProgramHelp, IsTheWholeUsageOfTheSettingsClass) {
  std::string usage;
  try {
    PlotConfig<double>().config("--help", "");
  } catch (std::runtime_error const& help) {
    usage = help.what();
  }
  Outcome const outcome = Program().run({"mu", "--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out.substr(0, usage.size() - 1), usage.substr(1));
  EXPECT_NE(outcome.out.find("\n--plot: FILE\t# "), std::string::npos);
}

TEST(ProgramHelp, IsTheSameThroughTheCommandHelp) {
  Program const program;
  for (std::string const command :
       {"mu", "material", "math", "pack", "unpack", "version"})
    EXPECT_EQ(program.run({"help", command}).out,
              program.run({command, "--help"}).out)
        << command;
}

TEST(ProgramOption, UnknownIsNamedWithItsNearestAndPassedOver) {
  Program const program;
  Outcome const outcome =
      program.run({"mu", "--material", "Cu", "--kVq", "20", "--jso"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err,
            "photarium: Unknown option 'kvq', nearest known name: 'kvp'\n"
            "photarium: Unknown option 'jso', nearest known name: 'json'\n");
  EXPECT_EQ(rowsOf(outcome.out).size(), 1000u);
}

TEST(ProgramOption, ThatLacksItsValueIsWrongUsage) {
  for (std::vector<std::string> const& arguments :
       std::vector<std::vector<std::string>>{{"mu", "--output"},
                                             {"mu", "--output", "--json"},
                                             {"mu", "--plot="},
                                             {"mu", "--config"}}) {
    Outcome const outcome = Program().run(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err.substr(0, 31), "photarium: Argument expected fo");
  }
}

TEST(ProgramOption, MayBeWrittenInEveryFormOfTheSettings) {
  Program const program;
  std::string const expected =
      program.run({"mu", "--material", "Cu", "--kvp", "20"}).out;
  ASSERT_FALSE(expected.empty());
  for (std::string const form :
       {"--output=a", "output=a", "--output:a", "--OUTPUT=a"}) {
    Outcome const outcome = program.run({"mu", "material=Cu", "kvp=20", form});
    EXPECT_EQ(outcome.out, "") << form;
    EXPECT_EQ(program.text("a"), expected) << form;
    std::filesystem::remove(program.folder() / "a");
  }
}

TEST(ProgramOption, WithABadNumberIsWrongUsage) {
  Outcome const outcome = Program().run({"mu", "--kvp", "abc"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "photarium: Problem parsing: kvp=abc\n");
}

TEST(ProgramOption, WithAnImpossibleNumberIsWrongUsage) {
  Outcome const outcome =
      Program().run({"mu", "--material", "Cu", "--ebin", "-1"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "photarium: Unreasonable value for energy resolution.\n");
}

TEST(ProgramArgument, ThatIsNoOptionIsWrongUsage) {
  Outcome const outcome = Program().run({"mu", "Cu"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "photarium: Cu not understood.\n");
}

TEST(ProgramOutput, IsTheSameInAFileAsOnStandardOutput) {
  Program const program;
  std::vector<std::string> arguments{"mu", "--material", "Cu", "--acrp"};
  std::string const expected = program.run(arguments).out;
  arguments.insert(arguments.end(), {"--output", "cu.txt"});
  Outcome const outcome = program.run(arguments);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(program.text("cu.txt"), expected);
}

TEST(ProgramOutput, OnAFullDiskIsAFailureWithAMessage) {
  PHOTARIUM_NEEDS_POSIX();
  Program const program;
  Outcome const toFile = program.run({"mu", "--output", "/dev/full"});
  EXPECT_EQ(toFile.status, 1);
  EXPECT_EQ(toFile.err,
            "photarium: Could not write /dev/full: No space left on device\n");
  Outcome const toStandardOutput = program.shell("photarium mu >/dev/full");
  EXPECT_EQ(toStandardOutput.status, 1);
  EXPECT_EQ(toStandardOutput.err,
            "photarium: Could not write standard output: No space left on "
            "device\n");
}

TEST(ProgramOutput, ThatEndsHalfWayIsAFailureAndNoFile) {
  PHOTARIUM_NEEDS_POSIX();
  Outcome const outcome = Program().shell(
      "ulimit -f 8; photarium mu --material Cu --ebin 0.01 --output cu.txt; "
      "echo $?; ls");
  EXPECT_EQ(outcome.out, "1\n");
  EXPECT_NE(outcome.err.find("Could not write cu.txt: File too large\n"),
            std::string::npos);
}

TEST(ProgramOutput, InAFolderThatIsNotThereIsAFailureWithAMessage) {
  Outcome const outcome = Program().run({"mu", "--output", "none/cu.txt"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "photarium: Could not write none/cu.txt: No such file or "
            "directory\n");
}

TEST(ProgramOutput, InAFolderThatCannotBeWrittenIsAFailureWithAMessage) {
  // Root may write everywhere but below /proc.
  Outcome const outcome = Program().run({"mu", "--output", "/proc/cu.txt"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err.substr(0, 45),
            "photarium: Could not write /proc/cu.txt: No s");
}

TEST(ProgramOutput, ThatIsAFolderIsAFailureWithAMessage) {
  Outcome const outcome = Program().run({"mu", "--output", "."});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "photarium: Could not write .: Is a directory\n");
}

TEST(ProgramOutput, LeavesNothingBehindAFailure) {
  Program const program;
  program.write("cu.txt", "old\n");
  Outcome const outcome = program.run(
      {"mu", "--material", "Cu", "--output", "cu.txt", "--plot", "no/cu.svg"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(program.text("cu.txt"), "old\n");
  EXPECT_EQ(program.files(), std::vector<std::string>{"cu.txt"});
}

TEST(ProgramOutput, KeepsThePermissionsOfTheFileThatItReplaces) {
  PHOTARIUM_NEEDS_POSIX();
  Program const program;
  std::filesystem::permissions(program.write("cu.txt", "old\n"),
                               std::filesystem::perms(0640));
  program.run({"mu", "--material", "Cu", "--output", "cu.txt"});
  EXPECT_EQ(std::filesystem::status(program.folder() / "cu.txt").permissions(),
            std::filesystem::perms(0640));
}

TEST(ProgramOutput, GoesWhereASymbolicLinkPoints) {
  PHOTARIUM_NEEDS_POSIX();
  Program const program;
  program.write("target.txt", "old\n");
  std::filesystem::create_symlink("target.txt", program.folder() / "link.txt");
  program.run({"version", "--help"});
  program.run({"mu", "--material", "Cu", "--output", "link.txt"});
  EXPECT_TRUE(std::filesystem::is_symlink(program.folder() / "link.txt"));
  EXPECT_NE(program.text("target.txt"), "old\n");
}

TEST(ProgramOutput, EndsQuietlyWhenNobodyReadsOn) {
  PHOTARIUM_NEEDS_POSIX();
  Outcome const outcome = Program().shell(
      "(photarium mu --ebin 0.001 --extrapolate; echo $? >&2) | head -n 1");
  EXPECT_EQ(outcome.out, "#\n");
  EXPECT_EQ(outcome.err, "0\n");
}

TEST(ProgramOutput, LeavesNothingBehindASignal) {
  PHOTARIUM_NEEDS_POSIX();
  Outcome const outcome = Program().shell(
      "mkfifo pipe; photarium pack --output text.phc <pipe & child=$!; "
      "exec 3>pipe; sleep 0.1; kill -9 $child; wait $child; ls text* | wc -l");
  EXPECT_EQ(outcome.out, "0\n");
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// The sanitizers take more address space than any limit leaves.
TEST(ProgramMemory, ThatRunsOutIsAFailureWithAMessage) {
  PHOTARIUM_NEEDS_POSIX();
  Outcome const outcome = Program().shell(
      "ulimit -v 300000; photarium mu --material Cu --ebin 0.00002");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "photarium: Not enough memory\n");
}

// From where the program just starts to where it has what it needs.
TEST(ProgramMemory, GivesTheWholeResultOrNone) {
  PHOTARIUM_NEEDS_POSIX();
  Program const program;
  program.write("text", fileText(sourceDir() / "data/ElamDB12.txt"));
  for (std::string const command :
       {"mu --material Cu --acrp", "material --material CuO --json",
        "pack text"}) {
    std::string const run = "photarium " + command;
    std::string const whole = program.shell(run).out;
    bool isWhole = false;
    for (int limit = 8000; limit <= 24000; limit += 500) {
      Outcome const outcome =
          program.shell("ulimit -v " + std::to_string(limit) + "; " + run);
      isWhole = outcome.status == 0 && outcome.out == whole;
      // 127 without room for the libraries that the program loads.
      bool const isNone = (outcome.status == 1 || outcome.status == 127) &&
                          !outcome.err.empty();
      EXPECT_TRUE(isWhole || isNone)
          << run << " with " << limit << " kB: " << outcome.status
          << outcome.err;
    }
    EXPECT_TRUE(isWhole) << run;
  }
}
#endif
