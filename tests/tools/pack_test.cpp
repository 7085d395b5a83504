#include "tests/tools/Program.h"

TEST(PackCommand, IsUndoneByUnpack) {
  Program const program;
  std::string const text = fileText(sourceDir() / "data/ElamDB12.txt");
  program.write("text", text);
  EXPECT_EQ(program.run({"pack", "text", "--output", "packed"}).err, "");
  EXPECT_EQ(program.run({"unpack", "packed", "--output", "back"}).err, "");
  EXPECT_LT(program.text("packed").size(), text.size() / 2);
  EXPECT_EQ(program.text("packed").substr(0, 4), "PHMC");
  EXPECT_EQ(program.text("back"), text);
}

TEST(PackCommand, IsAPipe) {
  Program const program;
  program.write("text", "1.5 2\n1.5 3\n");
  EXPECT_EQ(program.shell("photarium pack <text | photarium unpack").out,
            "1.5 2\n1.5 3\n");
}

TEST(PackCommand, OfNothingIsNothing) {
  Outcome const outcome = Program().run({"pack"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
}

TEST(PackCommand, LeavesPackedTextAsItIs) {
  Program const program;
  program.write("text", "1.5 2\n");
  std::string const once = program.run({"pack", "text"}).out;
  program.write("once", once);
  EXPECT_EQ(program.run({"pack", "once"}).out, once);
}

TEST(PackCommand, RefusesTheOneByteThatCannotBePacked) {
  Program const program;
  program.write("text", "1\n\x1a\n");
  Outcome const outcome = program.run({"pack", "text", "--output", "packed"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "photarium: Input contains special value -- cannot be "
            "compressed!\n");
  EXPECT_FALSE(program.has("packed"));
}

TEST(UnpackCommand, LeavesPlainTextAsItIs) {
  Program const program;
  program.write("text", "plain\r\ntext");
  EXPECT_EQ(program.run({"unpack", "text"}).out, "plain\r\ntext");
}

TEST(UnpackCommand, RefusesATruncatedFileAndWritesNone) {
  Program const program;
  program.write("text", "1.5 2\n1.5 3\n");
  program.write("cut", program.run({"pack", "text"}).out.substr(0, 9));
  Outcome const outcome = program.run({"unpack", "cut", "--output", "back"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "photarium: Not enough bits in input!\n");
  EXPECT_FALSE(program.has("back"));
}

TEST(UnpackCommand, RefusesAFolder) {
  Outcome const outcome = Program().run({"unpack", "."});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "photarium: Could not open .: Is a directory\n");
}

TEST(UnpackCommand, TakesOneFile) {
  Outcome const outcome = Program().run({"unpack", "a", "b"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "photarium: One file at a time: b not understood.\n");
}
