#include "tests/config/open.h"

namespace {

using Words = std::vector<std::string>;

// What a command line without a file leaves as options.
OptionMap optionsOf(Words const& arguments) {
  Recorder settings;
  EXPECT_TRUE(settings.config(arguments, ""));
  return settings.applied.empty() ? OptionMap() : settings.applied.back();
}

// The options of a command line in one text.
OptionMap optionsOf(std::string const& line) {
  Recorder settings;
  EXPECT_TRUE(settings.config(line, ""));
  return settings.applied.empty() ? OptionMap() : settings.applied.back();
}

std::string failureOf(Words const& arguments) {
  Open<Recorder> settings;
  return thrown<std::runtime_error>([&] { settings.config(arguments, ""); });
}

}  // namespace

TEST(CommandLine, AppliesNothingWithoutArguments) {
  Recorder settings;
  EXPECT_TRUE(settings.config(Words(), "Tube"));
  EXPECT_TRUE(settings.applied.empty());
  EXPECT_TRUE(settings.Sections.empty());
}

TEST(CommandLine, IgnoresTheProgramName) {
  char program[] = "--time=7";
  char option[] = "--time=2";
  char* arguments[] = {program, option};
  Recorder settings;
  EXPECT_TRUE(settings.config(2, arguments, ""));
  EXPECT_EQ(settings.applied, (std::vector<OptionMap>{{{"time", "2"}}}));
}

TEST(CommandLine, TakesACountBelowOneAsNoArguments) {
  Recorder settings;
  EXPECT_TRUE(settings.config(0, nullptr, ""));
  EXPECT_TRUE(settings.config(-5, nullptr, ""));
  EXPECT_TRUE(settings.applied.empty());
}

TEST(CommandLine, MakesASwitchOfALastOption) {
  EXPECT_EQ(optionsOf(Words{"--foo"}), (OptionMap{{"foo", "True"}}));
  EXPECT_EQ(optionsOf(Words{"--no-foo"}), (OptionMap{{"foo", "False"}}));
}

TEST(CommandLine, KeepsTheNegationOfANameThatHasAValue) {
  EXPECT_EQ(optionsOf(Words{"--no-foo", "x"}), (OptionMap{{"no-foo", "x"}}));
  EXPECT_EQ(optionsOf(Words{"no-foo=x"}), (OptionMap{{"no-foo", "x"}}));
}

TEST(CommandLine, TakesANegativeNumberAsValue) {
  EXPECT_EQ(optionsOf(Words{"--foo", "-5"}), (OptionMap{{"foo", "-5"}}));
}

TEST(CommandLine, MakesSwitchesOfTwoOptions) {
  EXPECT_EQ(optionsOf(Words{"--foo", "--bar"}),
            (OptionMap{{"foo", "True"}, {"bar", "True"}}));
}

TEST(CommandLine, EndsTheNameAtTheFirstColonOrEqualSign) {
  EXPECT_EQ(optionsOf(Words{"--Kvp:100"}), (OptionMap{{"kvp", "100"}}));
  EXPECT_EQ(optionsOf(Words{"--IPC=host:1234"}),
            (OptionMap{{"ipc", "host:1234"}}));
  EXPECT_EQ(optionsOf(Words{"--a:b=c"}), (OptionMap{{"a", "b=c"}}));
}

TEST(CommandLine, AcceptsAPairWithoutDashes) {
  EXPECT_EQ(optionsOf(Words{"kVp=100"}), (OptionMap{{"kvp", "100"}}));
}

TEST(CommandLine, CutsOnlyTwoDashes) {
  EXPECT_EQ(optionsOf(Words{"---kVp=1"}), (OptionMap{{"-kvp", "1"}}));
  EXPECT_EQ(optionsOf(Words{"-kVp=1"}), (OptionMap{{"-kvp", "1"}}));
}

TEST(CommandLine, KeepsAPathBehindABlankWhole) {
  EXPECT_EQ(optionsOf(Words{"--foo", "C:\\x"}), (OptionMap{{"foo", "C:\\x"}}));
  EXPECT_EQ(optionsOf(Words{"C:\\x"}), (OptionMap{{"c", "\\x"}}));
}

TEST(CommandLine, TakesTheNextArgumentForAnEmptyValue) {
  EXPECT_EQ(optionsOf(Words{"--foo=", "x"}), (OptionMap{{"foo", "x"}}));
  EXPECT_EQ(optionsOf(Words{"--foo="}), (OptionMap{{"foo", "True"}}));
  EXPECT_EQ(optionsOf(Words{"--foo", ""}), (OptionMap{{"foo", ""}}));
}

TEST(CommandLine, AcceptsEmptyNames) {
  EXPECT_EQ(optionsOf(Words{"--"}), (OptionMap{{"", "True"}}));
  EXPECT_EQ(optionsOf(Words{"=5"}), (OptionMap{{"", "5"}}));
}

TEST(CommandLine, LetsTheLastOfEqualOptionsWin) {
  EXPECT_EQ(optionsOf(Words{"--foo=1", "--FOO=2"}), (OptionMap{{"foo", "2"}}));
}

TEST(CommandLine, ReportsEveryBadArgumentAndTheUsageOnce) {
  Open<Recorder> settings;
  std::string const text = thrown<std::runtime_error>([&] {
    settings.config(Words{"foo", "-x", "--directory"}, "");
  });
  EXPECT_EQ(text,
            "foo not understood.\n-x not understood.\n"
            "Argument expected for: directory\n\n" +
                settings.usage());
}

TEST(CommandLine, ThrowsTheUsageOnHelp) {
  Open<Recorder> settings;
  for (std::string const argument : {"--help", "--HELP", "help=x", "--help:"})
    EXPECT_EQ(thrown<std::runtime_error>(
                  [&] { settings.config(Words{argument}, ""); }),
              "\n" + settings.usage());
}

TEST(CommandLine, CombinesHelpWithABadArgument) {
  EXPECT_EQ(failureOf({"--help", "foo"}),
            "foo not understood.\n\n" + Open<Recorder>().usage());
}

TEST(CommandLine, DemandsTheValueOfFileOptions) {
  for (std::string const key : {"section", "config", "directory"}) {
    std::string const line = "Argument expected for: " + key + "\n\n";
    EXPECT_TRUE(failureOf({"--" + key}).starts_with(line));
    EXPECT_TRUE(failureOf({"--" + key, ""}).starts_with(line));
    EXPECT_TRUE(failureOf({key + "="}).starts_with(line));
  }
}

TEST(CommandLine, TakesAnythingAsTheNameOfASection) {
  Recorder settings;
  settings.ConfigFile = "nowhere/nothing.cfg";
  EXPECT_EQ(thrown<std::runtime_error>([&] {
              settings.config(Words{"--section", "--x"}, "");
            }),
            "Could not open config file: nothing.cfg\n");
  EXPECT_EQ(settings.Sections, Words{"--x"});
}

TEST(CommandLine, NeedsAFileForSections) {
  EXPECT_EQ(failureOf({"--section", "a"}), "No file given");
  EXPECT_EQ(failureOf({"--sections", "a"}), "No file given");
}

TEST(CommandLine, SetsDirectoryAndConfigEvenWhereItFails) {
  Recorder settings;
  std::string const ignored = thrown<std::runtime_error>([&] {
    settings.config(Words{"--directory=D", "--config", "C", "bad"}, "");
  });
  EXPECT_EQ(settings.Directory, "D");
  EXPECT_EQ(settings.ConfigFile, "C");
  EXPECT_TRUE(settings.applied.empty());
}

TEST(CommandLine, SplitsATextAtBlanksAndLineEnds) {
  EXPECT_EQ(optionsOf("--a 1\t--b=2\r\n\n  --c  \r"),
            (OptionMap{{"a", "1"}, {"b", "2"}, {"c", "True"}}));
  EXPECT_EQ(optionsOf(""), OptionMap());
  EXPECT_EQ(optionsOf(" \t\r\n"), OptionMap());
}

TEST(CommandLine, HoldsQuotedTextTogether) {
  EXPECT_EQ(optionsOf("--a \"b c\" --d='e f'"),
            (OptionMap{{"a", "b c"}, {"d", "e f"}}));
  EXPECT_EQ(optionsOf("--a='say \"x\"' --b=\"it's\""),
            (OptionMap{{"a", "say \"x\""}, {"b", "it's"}}));
}

TEST(CommandLine, EndsAnArgumentAtTheClosingQuote) {
  EXPECT_EQ(OptionKeys({"--a=b c"}), Words{"a"});
  Open<Recorder> settings;
  std::string const text =
      thrown<std::runtime_error>([&] { settings.config("--a=\"b c\"d", ""); });
  EXPECT_EQ(text, "d not understood.\n\n" + settings.usage());
}

TEST(CommandLine, MakesAnEmptyArgumentOfEmptyQuotes) {
  EXPECT_EQ(optionsOf("--a \"\" --b ''"), (OptionMap{{"a", ""}, {"b", ""}}));
  EXPECT_EQ(optionsOf("--a=\"\""), (OptionMap{{"a", "True"}}));
}

TEST(CommandLine, RefusesAnOpenQuotation) {
  Recorder settings;
  EXPECT_EQ(thrown<std::runtime_error>(
                [&] { settings.config("--a=1\n--b \"c d", ""); }),
            "Quotation not closed while parsing: --b \"c d\n");
  EXPECT_EQ(thrown<std::runtime_error>(
                [&] { settings.config("--a=1 'x\n' --b", ""); }),
            "Quotation not closed while parsing: --a=1 'x\n");
}

TEST(CommandLine, KeepsBytesThatAreNoText) {
  std::string const value("\xff\0\x80", 3);
  EXPECT_EQ(optionsOf(Words{"--a=" + value}), (OptionMap{{"a", value}}));
  EXPECT_EQ(optionsOf("--a=" + value), (OptionMap{{"a", value}}));
}

TEST(CommandLine, PassesOverOptionsThatNoClassKnows) {
  Root settings;
  EXPECT_TRUE(settings.config("--nonsense=1 --time=2", ""));
  EXPECT_EQ(settings.Time, 2);
}

TEST(OptionKeys, NamesOptionsInOrderWithoutValues) {
  EXPECT_EQ(OptionKeys({"--kVp", "100", "no-x=1", "--no-Lines", "--section",
                        "a", "help=", "bad", "--config=c"}),
            (Words{"kvp", "no-x", "lines", "section", "help", "config"}));
}
