// What goes wrong around the program: streams that are closed, signals, files
// that are none.

#include <filesystem>

#include "tests/tools/Program.h"

namespace {

// Packs from a pipe to a file until `signal` comes; what is left of the files.
std::string filesAfter(std::string const& signal, int& status) {
  Program const program;
  Outcome const outcome = program.shell(
      "mkfifo pipe; exec 3<>pipe; echo 1 2 >pipe; timeout --preserve-status "
      "-s " +
      signal + " 0.2 photarium pack pipe --output text.phc; echo $?; ls");
  std::size_t const end = outcome.out.find('\n');
  status = std::stoi(outcome.out.substr(0, end));
  return outcome.out.substr(end + 1);
}

}  // namespace

TEST(ProgramSignal, EndsWithItsStatusAndNoFile) {
  int status = 0;
  EXPECT_EQ(filesAfter("TERM", status), "pipe\n");
  EXPECT_EQ(status, 128 + 15);
  EXPECT_EQ(filesAfter("INT", status), "pipe\n");
  EXPECT_EQ(status, 128 + 2);
}

TEST(ProgramSignal, LeavesTheFileThatWasThere) {
  Program const program;
  program.write("text.phc", "old\n");
  program.shell(
      "mkfifo pipe; exec 3<>pipe; echo 1 2 >pipe; timeout 0.2 photarium pack "
      "pipe --output text.phc");
  EXPECT_EQ(program.text("text.phc"), "old\n");
}

TEST(ProgramStream, ThatIsClosedIsAFailureWithAMessage) {
  Program const program;
  Outcome const outcome = program.shell("photarium mu >&-");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "photarium: Could not write standard output: Bad file "
            "descriptor\n");
  EXPECT_EQ(program.shell("photarium pack <&-").status, 1);
}

TEST(ProgramStream, ThatIsClosedDoesNotGetTheTextOfAnother) {
  Program const program;
  Outcome const messages =
      program.shell("photarium mu --material CuZn --kvp 3 --output table 2>&-");
  EXPECT_EQ(messages.status, 0);
  Outcome const table =
      program.shell("photarium mu --material CuZn --kvp 3 2>/dev/null");
  EXPECT_EQ(program.text("table"), table.out);
  program.write("text", "1 2\n");
  program.shell(
      "photarium pack text --output a; photarium pack text "
      "--output b <&- >&- 2>&-");
  EXPECT_EQ(program.text("a"), program.text("b"));
}

TEST(ProgramStream, ThatNobodyReadsEndsEachCommandQuietly) {
  Program const program;
  program.write("spectrum", "1 2\n2 3\n3 4\n");
  program.write("long", fileText(sourceDir() / "data/ElamDB12.txt"));
  for (std::string const command :
       {"mu --ebin 0.01", "material --material Cu", "brems --kvp 30", "help",
        "version", "math spectrum spectrum --operation add",
        "filter spectrum --thickness 0.1", "detector", "pack long",
        "unpack long"}) {
    Outcome const outcome = program.shell(
        "(photarium " + command + " 2>/dev/null; echo $? >&2) | head -c 1");
    EXPECT_EQ(outcome.err, "0\n") << command;
  }
}

TEST(ProgramStream, ThatIsFullFailsEachCommand) {
  Program const program;
  program.write("spectrum", "1 2\n2 3\n3 4\n");
  for (std::string const command :
       {"mu", "material --material Cu", "brems --kvp 30 --ebin 1", "help",
        "version", "math spectrum spectrum --operation add",
        "filter spectrum --thickness 0.1", "detector", "pack spectrum",
        "unpack spectrum"}) {
    Outcome const outcome =
        program.shell("photarium " + command + " >/dev/full");
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_NE(outcome.err.find("photarium: Could not write standard output: "
                               "No space left on device\n"),
              std::string::npos)
        << command;
  }
}

TEST(ProgramInput, MayBeAPipeInPlaceOfAFile) {
  Program const program;
  program.write("corrections", "# none\n");
  std::string const options =
      " --material Cu --kvp 3 --ebin 1 --corrfile corrections --datafile ";
  std::string const database = (sourceDir() / "data/ElamDB12.txt").string();
  Outcome const outcome =
      program.shell("mkfifo pipe; cat '" + database + "' >pipe & photarium mu" +
                    options + "pipe --acrp");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(rowsOf(outcome.out).size(), 3u);
}

TEST(ProgramInput, ThatEndsHalfWayIsAFailureWithAMessage) {
  Program const program;
  std::string const database = (sourceDir() / "data/ElamDB12.txt").string();
  Outcome const outcome = program.shell(
      "head -c 1000 '" + database +
      "' >half; photarium mu --material Cu --datafile half --output cu.txt; "
      "echo $?; ls");
  EXPECT_EQ(outcome.out, "1\nhalf\n");
  EXPECT_NE(outcome.err.find("Error loading material data for Cu"),
            std::string::npos);
}

TEST(ProgramInput, WithoutAnEndIsRefused) {
  Outcome const outcome = Program().run({"filter", "/dev/zero"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "photarium: Line too long while reading /dev/zero\n");
}

// Neither its size nor its kind tells that this file has no end to speak of.
TEST(ProgramInput, WithoutASizeIsRefused) {
  if (!std::filesystem::exists("/proc/self/pagemap"))
    GTEST_SKIP() << "no /proc/self/pagemap";
  Outcome const outcome = Program().run(
      {"mu", "--material", "Cu", "--datafile", "/proc/self/pagemap"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("Could not read file while reading "
                             "/proc/self/pagemap"),
            std::string::npos);
}

TEST(ProgramOutput, OfManyAtOnceIsThatOfOneOfThem) {
  Program const program;
  Outcome const outcome = program.shell(
      "for kvp in 31 32 33 34 35 36 37 38; do\n"
      "  photarium mu --material Cu --kvp $kvp --acrp >$kvp.txt\n"
      "  photarium mu --material Cu --kvp $kvp --acrp --output cu.dat &\n"
      "done; wait\n"
      "for one in *.txt; do cmp -s $one cu.dat && echo same; done; ls | wc -l");
  EXPECT_EQ(outcome.out, "same\n9\n");
}
