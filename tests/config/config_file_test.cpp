#include <fstream>

#include "tests/config/open.h"
#include "tests/support/memory.h"

namespace {

using Words = std::vector<std::string>;

// The sections of a file with this text.
SectionMap dataOf(std::string const& text) {
  ScratchFolder const folder;
  Open<Recorder> settings;
  settings.ConfigFile = folder.write("a.cfg", text);
  SectionMap data;
  settings.read(data, /*optional=*/false);
  return data;
}

OptionMap generalOf(std::string const& text) {
  return dataOf(text)["General"];
}

std::string failureOf(std::string const& directory, std::string const& file) {
  Open<Recorder> settings;
  settings.Directory = directory;
  settings.ConfigFile = file;
  SectionMap data;
  return thrown<std::runtime_error>([&] { settings.read(data, false); });
}

}  // namespace

TEST(ConfigFile, ReadsEntriesAheadOfAnyHeaderIntoGeneral) {
  EXPECT_EQ(dataOf("kVp = 100\n[Tube]\nMaterial = W\n"),
            (SectionMap{{"General", {{"kvp", "100"}}},
                        {"Tube", {{"[tube]", ""}, {"material", "W"}}}}));
}

TEST(ConfigFile, ReadsTheLastLineWithoutItsEnd) {
  EXPECT_EQ(generalOf("a = 1\nb = 2"), (OptionMap{{"a", "1"}, {"b", "2"}}));
}

TEST(ConfigFile, ReadsWindowsLineEnds) {
  EXPECT_EQ(generalOf("a = 1\r\n\r\nb = 2\r\n"),
            (OptionMap{{"a", "1"}, {"b", "2"}}));
}

TEST(ConfigFile, DropsComments) {
  EXPECT_EQ(generalOf("# kVp = 1\na = 1 # 2\nb = \"x # y\"\n  # z\n"),
            (OptionMap{{"a", "1"}, {"b", "x"}}));
}

TEST(ConfigFile, TrimsBlanksAndThenQuotes) {
  EXPECT_EQ(generalOf("a = \" x \" \nb = \"\"y\"\nc =  \" \"  \n"),
            (OptionMap{{"a", " x "}, {"b", "y"}, {"c", " "}}));
}

TEST(ConfigFile, NeedsTheEqualSignApart) {
  EXPECT_EQ(generalOf("kvp=100\nEBin 5\ntime = 3\na =b\nd c e f\n"),
            (OptionMap{{"kvp=100", ""},
                       {"ebin", ""},
                       {"time", "3"},
                       {"a", ""},
                       {"d", "e f"}}));
}

TEST(ConfigFile, LetsTheLastOfEqualKeysWin) {
  EXPECT_EQ(generalOf("a = 1\nA = 2\n"), (OptionMap{{"a", "2"}}));
}

TEST(ConfigFile, ContinuesASectionThatComesTwice) {
  EXPECT_EQ(dataOf("[a]\nx = 1\n[b]\n[a]\ny = 2\nx = 3\n")["a"],
            (OptionMap{{"[a]", ""}, {"x", "3"}, {"y", "2"}}));
}

TEST(ConfigFile, KeepsCaseAndBlanksOfASectionName) {
  EXPECT_TRUE(dataOf("[ My Tube ]\n").contains(" My Tube "));
  EXPECT_TRUE(dataOf("[]\n").contains(""));
}

TEST(ConfigFile, IgnoresTextBehindTheBracket) {
  EXPECT_EQ(dataOf("[Tube] kvp = 5\n")["Tube"], (OptionMap{{"[tube]", "= 5"}}));
  EXPECT_TRUE(dataOf("[a]b]\n").contains("a"));
}

TEST(ConfigFile, RefusesASectionNameWithoutItsBracket) {
  ScratchFolder const folder;
  std::string const path = folder.write("a.cfg", "a = 1\n[Tube\n");
  EXPECT_EQ(failureOf("", path),
            "Error parsing section name while reading a.cfg\n");
}

TEST(ConfigFile, SplitsItsNameAtTheLastSlash) {
  ScratchFolder const folder;
  Open<Recorder> settings;
  settings.ConfigFile = folder.write("d/a.cfg", "a = 1\n");
  SectionMap data;
  settings.read(data, false);
  EXPECT_EQ(settings.Directory, (folder.path() / "d").string());
  EXPECT_EQ(settings.ConfigFile, "a.cfg");
}

TEST(ConfigFile, LosesTheRootOfItsName) {
  Open<Recorder> settings;
  settings.ConfigFile = "/a.cfg";
  SectionMap data;
  settings.read(data, /*optional=*/true);
  EXPECT_EQ(settings.Directory, "");
  EXPECT_EQ(settings.ConfigFile, "a.cfg");
}

TEST(ConfigFile, SplitsItsNameAtABackslash) {
  Open<Recorder> settings;
  settings.ConfigFile = "nowhere\\a.cfg";
  SectionMap data;
  settings.read(data, /*optional=*/true);
  EXPECT_EQ(settings.Directory, "nowhere");
  EXPECT_EQ(settings.ConfigFile, "a.cfg");
}

TEST(ConfigFile, StandsBelowTheDirectory) {
  ScratchFolder const folder;
  folder.write("d/a.cfg", "a = 1\n");
  Open<Recorder> settings;
  settings.Directory = folder.path().string();
  settings.ConfigFile = "d/a.cfg";
  SectionMap data;
  settings.read(data, false);
  EXPECT_EQ(data["General"], (OptionMap{{"a", "1"}}));
  EXPECT_EQ(settings.ConfigFile, "d/a.cfg");
}

TEST(ConfigFile, IsDemandedUnlessOptional) {
  EXPECT_EQ(failureOf("", ""), "No file given");
  Open<Recorder> settings;
  SectionMap data;
  settings.read(data, /*optional=*/true);
  EXPECT_TRUE(data.empty());
}

TEST(ConfigFile, LeavesAnEmptySectionWhereAnOptionalOneIsMissing) {
  Open<Recorder> settings;
  settings.ConfigFile = "nothing.cfg";
  SectionMap data;
  settings.read(data, /*optional=*/true);
  EXPECT_EQ(data, (SectionMap{{"General", {}}}));
}

TEST(ConfigFile, MustNotBeMissingOrADirectory) {
  ScratchFolder const folder;
  std::string const path = folder.path().string();
  folder.write("sub/x", "");
  EXPECT_EQ(failureOf(path, "none"), "Could not open config file: none\n");
  EXPECT_EQ(failureOf(path, "sub"), "Could not open config file: sub\n");
}

TEST(ConfigFile, MustBeReadable) {
  ScratchFolder const folder;
  std::string const path = folder.write("a.cfg", "a = 1\n");
  std::filesystem::permissions(path, std::filesystem::perms::none);
  if (std::ifstream(path)) GTEST_SKIP() << "root and Windows read everything";
  EXPECT_EQ(failureOf("", path), "Could not open config file: a.cfg\n");
}

TEST(ConfigFile, HasNoNulInItsName) {
  ScratchFolder const folder;
  folder.write("a", "x = 1\n");
  std::string const name("a\0b", 3);
  Open<Recorder> settings;
  settings.Directory = folder.path().string();
  settings.ConfigFile = name;
  SectionMap data;
  try {
    settings.read(data, false);
    ADD_FAILURE() << "another file was read";
  } catch (std::runtime_error const& failure) {
    EXPECT_STREQ(failure.what(), "Could not open config file: a");
  }
}

TEST(ConfigFile, KeepsBytesThatAreNoText) {
  std::string const bytes("\xff\0\x80", 3);
  EXPECT_EQ(generalOf("a = " + bytes + "\n"), (OptionMap{{"a", bytes}}));
  EXPECT_EQ(generalOf(bytes + " = b"), (OptionMap{{bytes, "b"}}));
  EXPECT_EQ(generalOf("\v\n"), (OptionMap{{"", ""}}));
}

TEST(ConfigFile, ReadsALineOf100Megabytes) {
  ScratchFolder const folder;
  std::size_t const length = 100'000'000;
  std::string text = "datafile = ";
  text.append(length, 'x') += '\n';
  Root settings;
  settings.ConfigFile = folder.write("a.cfg", text);
  EXPECT_TRUE(settings.config(Words(), ""));
  EXPECT_EQ(settings.DataFile.size(), length);
}

TEST(ConfigFile, HasALargestSize) {
  ScratchFolder const folder;
  std::string const path = folder.write("a.cfg", "");
  std::filesystem::resize_file(path, Config<double>::MaxFileSize + 1);
  EXPECT_EQ(failureOf("", path), "Config file too large: a.cfg\n");
}

TEST(ConfigFile, HasALargestNumberOfEntries) {
  ScratchFolder const folder;
  std::size_t const most = Config<double>::MaxEntries;
  std::string text = "a = 1\n";
  for (std::size_t i = 1; i < most; ++i) text += std::to_string(i) + '\n';
  std::string const path = folder.write("a.cfg", text + "a = 2\n1\n");
  Open<Recorder> settings;
  settings.ConfigFile = path;
  SectionMap data;
  settings.read(data, /*optional=*/false);
  EXPECT_EQ(data["General"].size(), most);
  folder.write("a.cfg", text + "[x]\n");
  EXPECT_EQ(failureOf("", path),
            "More than 1000000 entries while reading a.cfg\n");
}

TEST(ConfigFile, OfManyShortEntriesTakesLittleMemory) {
  ScratchFolder const folder;
  std::string text;
  for (int i = 0; i < 3'000'000; ++i) text += std::to_string(i) + '\n';
  std::string const path = folder.write("a.cfg", text);
  long const before = peakMemory();
  EXPECT_EQ(failureOf("", path),
            "More than 1000000 entries while reading a.cfg\n");
  EXPECT_LT(peakMemory() - before, 300 * 1024);
}

TEST(ConfigFile, MayBePresetAndMissing) {
  Recorder settings;
  settings.ConfigFile = "nothing.cfg";
  EXPECT_TRUE(settings.config(Words(), "Tube"));
  EXPECT_EQ(settings.Sections, Words{"General"});
  EXPECT_EQ(settings.applied, std::vector<OptionMap>{{}});
}

TEST(ConfigFile, MustOpenWhereTheCommandLineNamesIt) {
  Recorder settings;
  EXPECT_EQ(thrown<std::runtime_error>(
                [&] { settings.config("--config none.cfg", ""); }),
            "Could not open config file: none.cfg\n");
}

TEST(ConfigFile, MustOpenWhereASectionIsNamed) {
  Recorder settings;
  settings.ConfigFile = "none.cfg";
  EXPECT_EQ(
      thrown<std::runtime_error>([&] { settings.config("--sections=a", ""); }),
      "Could not open config file: none.cfg\n");
}
