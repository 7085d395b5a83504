#include "photarium/config/Config.h"

#include <limits>
#include <locale>
#include <sstream>

#include "tests/config/open.h"

namespace {

double const Infinity = std::numeric_limits<double>::infinity();

// Settings after one section with this time.
Open<Root> withTime(std::string const& value, std::string const& expected) {
  Open<Root> settings;
  EXPECT_EQ(findings(settings, {{"time", value}}), expected);
  return settings;
}

// What the reader that admits infinities makes of a text.
double limitOf(std::string const& text, bool expected = true) {
  std::istringstream in(text);
  double value = -7;
  Open<Root>().parse(in, value);
  EXPECT_EQ(!in.fail(), expected) << text;
  return value;
}

}  // namespace

TEST(Config, HasDefaults) {
  EXPECT_EQ(Root().write("", false),
            "Directory: \nConfig: \nSections: \nDataFile: \n"
            "DataType: Unknown\nBin: false\nTime: 1.0000\t# [s]\n"
            "Interpolation: true\n");
}

TEST(Config, NamesTheDefaultSection) {
  EXPECT_EQ(Open<Root>::DefaultSection, "General");
}

TEST(Config, PrintsEverySettingBehindThePrefix) {
  Open<Root> settings;
  settings.apply({{"directory", "D/"},
                  {"datafile", "Data File"},
                  {"datatype", "ENDF"},
                  {"bin", "TRUE"},
                  {"time", "2.5e3"},
                  {"interpolation", "False"}});
  settings.ConfigFile = "c.cfg";
  settings.Sections = {"a", "B"};
  EXPECT_EQ(settings.write("# ", true),
            "# Directory: D/\n# Config: c.cfg\n# Sections: a, B\n"
            "# DataFile: Data File\n# DataType: ENDF\n# Bin: true\n"
            "# Time: 2500.0000\t# [s]\n# Interpolation: false\n");
}

TEST(Config, CopiesNeitherSectionsNorConnection) {
  Open<Root> settings;
  settings.apply({{"directory", "D"},
                  {"datafile", "F"},
                  {"datatype", "mcnp"},
                  {"bin", "true"},
                  {"time", "3"},
                  {"interpolation", "false"}});
  settings.ConfigFile = "c";
  settings.Sections = {"a"};
  Open<Root> const copy(settings);
  EXPECT_TRUE(copy.Sections.empty());
  EXPECT_FALSE(copy.IPC.isConnected());
  settings.Sections.clear();
  EXPECT_EQ(copy.write("", true), settings.write("", true));
}

TEST(Config, PassesOverKeysThatItDoesNotKnow) {
  Open<Root> settings;
  std::string const before = settings.write("", true);
  settings.apply({{"nonsense", "1"},
                  {"config", "x"},
                  {"section", "x"},
                  {"sections", "x"},
                  {"help", "x"},
                  {"", "x"},
                  {"Time", "5"}});
  EXPECT_EQ(settings.write("", true), before);
}

TEST(Config, ReportsAValueThatDoesNotParse) {
  Open<Root> settings;
  EXPECT_EQ(
      findings(settings,
               {{"bin", "true"}, {"interpolation", "No"}, {"time", "ABC"}}),
      "Problem parsing: interpolation=No\nProblem parsing: time=ABC\n");
  EXPECT_TRUE(settings.Bin);
}

TEST(Config, LeavesWhatAFailedExtractionLeaves) {
  double const most = std::numeric_limits<double>::max();
  EXPECT_EQ(withTime("abc", "Problem parsing: time=abc\n").Time, 0);
  EXPECT_EQ(withTime("nan", "Problem parsing: time=nan\n").Time, 0);
  EXPECT_EQ(withTime("inf", "Problem parsing: time=inf\n").Time, 0);
  EXPECT_EQ(withTime("1e999", "Problem parsing: time=1e999\n").Time, most);
  EXPECT_EQ(withTime("-1e999", "Problem parsing: time=-1e999\n").Time, -most);
  EXPECT_EQ(withTime("", "Problem parsing: time=\n").Time, 1);
  EXPECT_EQ(withTime(" \t", "Problem parsing: time= \t\n").Time, 1);
}

TEST(Config, IgnoresTextBehindAValue) {
  Open<Root> settings;
  settings.apply({{"time", " 1.5s"}, {"bin", "trueish"}});
  EXPECT_EQ(settings.Time, 1.5);
  EXPECT_TRUE(settings.Bin);
}

TEST(Config, ReadsBoolWordsAsAStreamDoes) {
  for (std::string const text :
       {"true", "TRUE", " True ", "false", "FALSE x", "falsetrue", "1", "0",
        "tru", "yes", "t", "truefalse", "", " ", "\ttrue", "-true"}) {
    std::istringstream in(tolower(text));
    in.imbue(std::locale::classic());
    bool expected = true;
    bool const parses = !(in >> std::boolalpha >> expected).fail();
    Open<Root> settings;
    settings.Bin = true;
    if (parses)
      settings.apply({{"bin", text}});
    else
      EXPECT_EQ(findings(settings, {{"bin", text}}),
                "Problem parsing: bin=" + text + "\n");
    EXPECT_EQ(settings.Bin, expected) << text;
  }
}

TEST(Config, ThrowsOnAnUnknownDatabaseType) {
  Open<Root> settings;
  for (std::string const text : {"foo", "end", "", "1", "unknown2"})
    EXPECT_EQ(thrown<std::runtime_error>([&] {
                settings.apply({{"datatype", text}});
              }),
              "Unknown database type!");
  settings.apply({{"datatype", "ElamDB behind"}});
  EXPECT_EQ(settings.DataType, ElamDB);
}

TEST(Config, DropsAConnectionThatCannotBeOpened) {
  Open<Root> settings;
  settings.apply({{"ipc", "127.0.0.1:no such port"}, {"time", "2"}});
  EXPECT_FALSE(settings.IPC.isConnected());
  EXPECT_EQ(settings.Time, 2);
}

TEST(Config, ReadsNumbersAndInfinities) {
  EXPECT_EQ(limitOf("1.5"), 1.5);
  EXPECT_EQ(limitOf(" -2e3 x"), -2000);
  EXPECT_EQ(limitOf("12x"), 12);
  for (std::string const text : {"inf", "INFI", "infin", "Infinity"})
    EXPECT_EQ(limitOf(text), Infinity) << text;
  for (std::string const text : {"-inf", "-INFINIT", "-infinity"})
    EXPECT_EQ(limitOf(text), -Infinity) << text;
}

TEST(Config, RefusesOtherWordsAsNumbers) {
  for (std::string const text :
       {"in", "i", "-in", "-i", "infinityx", "+inf", "nan", "x", "1e999"})
    limitOf(text, false);
  EXPECT_EQ(limitOf("", false), -7);
  EXPECT_EQ(limitOf(" \n", false), -7);
  EXPECT_EQ(limitOf("x", false), 0);
}

TEST(Config, ChecksTheTime) {
  Root settings;
  settings.check();
  for (double const time :
       {0., -1., std::numeric_limits<double>::quiet_NaN()}) {
    settings.Time = time;
    EXPECT_EQ(refusal(settings), "Measurement time not larger than zero!\n");
  }
}

TEST(Config, TellsHowItIsUsed) {
  Open<MaterialConfig<double>> settings;
  EXPECT_EQ(
      settings.usage(),
      "The following options will be accepted. The values shown separated by "
      "a colon are default values, except for the config file and section if "
      "specified by you. A negative density implies lookup of a value in the "
      "database or an internal table if possible.\n"
      "Parsing of names is case insensitive, of values case sensitive. All "
      "options can also be written to a config file removing the leading "
      "dashes and separating name and value by an equal sign (=).\n"
      "The section [General] will always be parsed additionally.\n"
      "\n"
      "--Directory: \n"
      "--Config: \n"
      "--Sections: \n"
      "--DataFile: \n"
      "--DataType: Unknown\n"
      "--Bin: false\n"
      "--Time: 1.0000\t# [s]\n"
      "--Interpolation: true\n"
      "--CorrFile: data/ELossCorrections.txt\n"
      "--Material: W\n"
      "--Density: -1.0000e+00\t# [g/cm^3]\n"
      "--MeanExcitationPotential: -1.0000e+00\t# [keV]\n"
      "\n"
      "In addition progress information can be requested via:\n"
      "--IPC: (hostname|IP):port\n");
}

TEST(Config, ShowsInItsHelpWhatTheCommandLineSet) {
  Open<Root> settings;
  std::string const text = thrown<std::runtime_error>([&] {
    settings.config("--section a --help --config=c --directory=D", "");
  });
  EXPECT_NE(text.find("\n--Directory: D\n--Config: c\n--Sections: a\n"),
            std::string::npos);
}

TEST(Config, PrintsNumbersThatAreNone) {
  Root settings;
  settings.Time = Infinity;
  EXPECT_NE(settings.write("", true).find("Time: inf\t"), std::string::npos);
  settings.Time = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NE(settings.write("", true).find("Time: nan\t"), std::string::npos);
}

TEST(Config, PrintsAsAStreamDoes) {
  for (double const value :
       {0.1, 1e-7, 123456789.123456, 1e300, -0.0, 0.00005, 2.5e-5, -3.14}) {
    std::ostringstream fixed;
    fixed.imbue(std::locale::classic());
    fixed.precision(4);
    fixed << std::fixed << "Time: " << value << "\t";
    Root settings;
    settings.Time = value;
    EXPECT_NE(settings.write("", true).find(fixed.str()), std::string::npos);
  }
}

TEST(Config, ListsTheKeysThatItKnows) {
  EXPECT_EQ(Root().knownKeys(),
            (std::vector<std::string>{"bin", "config", "datafile", "datatype",
                                      "directory", "help", "interpolation",
                                      "ipc", "section", "sections", "time"}));
}

TEST(Config, DescribesItsKeys) {
  auto const settings = Root().settings(true);
  EXPECT_EQ(settings[6].key, "time");
  EXPECT_EQ(settings[6].label, "Time");
  EXPECT_EQ(settings[6].value, "1.0000");
  EXPECT_EQ(settings[6].unit, "s");
  EXPECT_EQ(settings[6].meaning, "measurement time");
  EXPECT_EQ(settings[8].key, "section");
  EXPECT_EQ(settings[8].label, "");
}
