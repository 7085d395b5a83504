#include <clocale>
#include <locale>
#include <random>
#include <sstream>

#include "tests/config/open.h"

namespace {

// A locale in which one and a half thousand reads "1.500,00" and true "ja".
class German : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
  std::string do_truename() const override { return "ja"; }
  std::string do_falsename() const override { return "nein"; }
};

class GermanLocale {
 public:
  GermanLocale()
      : former_(std::locale::global(
            std::locale(std::locale::classic(), new German))) {}
  GermanLocale(GermanLocale const&) = delete;
  GermanLocale& operator=(GermanLocale const&) = delete;
  ~GermanLocale() { std::locale::global(former_); }

 private:
  std::locale former_;
};

// The value of a setting that is like the one that was printed.
std::string randomValue(Setting const& setting, std::mt19937& random) {
  static char const* const words[] = {"Cu", "x y", "A/b.c", "-", "7"};
  if (setting.value == "true" || setting.value == "false")
    return random() % 2 == 0 ? "TRUE" : "false";
  if (setting.key == "datatype") return "endf";
  if (setting.key == "geometry") return "circularaperture";
  if (setting.key == "operation") return "/";
  if (setting.key == "bsmodel") return "hunger";
  if (setting.key == "charmodel") return "phmcascade";
  if (setting.key == "count") return "3";
  if (setting.value.empty() || setting.key == "material" ||
      setting.key == "corrfile")
    return words[random() % 5];
  return std::to_string(random() % 1000) + (random() % 2 == 0 ? "" : ".25");
}

// Printed settings as a command line. Lists have blanks behind their commas.
std::vector<std::string> asArguments(std::string const& printed) {
  std::vector<std::string> out;
  for (auto line : split<std::string>(printed, "\n", /*keepEmpty=*/false)) {
    line.resize(std::min(line.find('\t'), line.size()));
    std::size_t const colon = line.find(": ");
    out.push_back("--" + line.substr(0, colon) + ":" + line.substr(colon + 2));
  }
  return out;
}

// Parsing what a class prints gives the same print; text that was empty and
// lines that no key reads are left out.
template <class C>
void expectRoundTrip() {
  std::mt19937 random(5);
  for (int round = 0; round < 50; ++round) {
    Open<C> settings;
    OptionMap options;
    for (auto const& setting : settings.settings(true))
      if (!setting.label.empty() && setting.key != "config" &&
          setting.key != "sections" && random() % 3 != 0)
        options[setting.key] = randomValue(setting, random);
    settings.apply(options);
    std::vector<std::string> arguments;
    for (auto const& argument : asArguments(settings.write("", true)))
      if (argument.back() != ':' && argument != "--Operation:none")
        arguments.push_back(argument);
    Open<C> copy;
    copy.config(arguments, "");
    std::string printed = copy.write("", true);
    printed.replace(printed.find("CmdLine"), 7, "");
    ASSERT_EQ(printed, settings.write("", true)) << "round " << round;
  }
}

// Without its bases a class applies `key` alone, one of its own, which its
// lines then show as `line`.
template <class C>
void expectOwnKeysAlone(std::string const& key, std::string const& line) {
  Open<C> settings;
  settings.parse(OptionMap{{"time", "7"}, {key, "true"}}, /*chain=*/false);
  EXPECT_EQ(settings.Time, 1) << key;
  EXPECT_NE(settings.write("", false).find(line + ": true\n"),
            std::string::npos)
      << key;
}

}  // namespace

TEST(Settings, LeaveTheirBasesAloneUnlessChained) {
  expectOwnKeysAlone<MathConfig<double>>("cubic", "Cubic");
  expectOwnKeysAlone<PlotConfig<double>>("coherent", "Coherent");
  expectOwnKeysAlone<SpectConfig<double>>("pratt", "Pratt");
  expectOwnKeysAlone<FilterConfig<double>>("inverse", "Inverse");
  expectOwnKeysAlone<DetectorConfig<double>>("inverse", "Inverse");
  expectOwnKeysAlone<DistributionConfig<double>>("cubic", "Cubic");
}

TEST(RoundTrip, OfWhatIsPrintedGivesTheSameSettings) {
  expectRoundTrip<GridConfig<double>>();
  expectRoundTrip<MathConfig<double>>();
  expectRoundTrip<ScalingConfig<double>>();
  expectRoundTrip<GeometryConfig<double>>();
  expectRoundTrip<MaterialConfig<double>>();
  expectRoundTrip<PlotConfig<double>>();
  expectRoundTrip<SpectConfig<double>>();
  expectRoundTrip<FilterConfig<double>>();
  expectRoundTrip<DetectorConfig<double>>();
  expectRoundTrip<DistributionConfig<double>>();
}

TEST(Locale, HasNoInfluenceOnWhatIsPrinted) {
  Open<SpectConfig<double>> spect;
  spect.kVp = 1234567.25;
  spect.Thickness = 1234.5;
  spect.nPhi = 4567;
  spect.BSModel = static_cast<Backscattering::Model>(12345);
  spect.Density = 1;
  DetectorConfig<double> const detector;
  auto const print = [&] {
    return Header("x", spect) + detector.write("", true) + corrections(spect);
  };
  std::string const expected = print();
  GermanLocale const german;
  EXPECT_EQ(print(), expected);
}

TEST(Locale, HasNoInfluenceOnWhatIsRead) {
  GermanLocale const german;
  ScratchFolder const folder;
  std::string const file = folder.write(
      "a.cfg", "kVp = 1234.5\n[a]\ncount = 2000\nlambdaE = 0.5;1.5\n");
  Open<DetectorConfig<double>> settings;
  settings.ConfigFile = file;
  settings.config("--section a --max-energy=1.5 --bin true --pce 4.5", "");
  EXPECT_EQ(settings.Count, 2000U);
  EXPECT_EQ(settings.lambdaE[1], 1.5);
  EXPECT_EQ(settings.MaxEnergy, 1.5);
  EXPECT_TRUE(settings.Bin);
  EXPECT_EQ(settings.PCE, 0.0045);
}
