#include "photarium/config/PlotConfig.h"

#include "tests/config/open.h"

namespace {

using Plot = Open<PlotConfig<double>>;

char const* const Combined = "Different types of data cannot be combined!\n";

// Settings that pass but for what the options ask.
Plot with(OptionMap const& options) {
  Plot settings;
  settings.Density = 1;
  settings.apply(options);
  return settings;
}

}  // namespace

TEST(PlotConfig, PrintsItsBasesInOrder) {
  Plot const settings;
  EXPECT_EQ(settings.write("", true),
            Root().write("", false) + GridConfig<double>().write("", false) +
                GeometryConfig<double>().write("", false) +
                MaterialConfig<double>().write("", false) +
                "PCE: 4.4300\t# [eV]\nAbsorption: true\nCoherent: false\n"
                "Incoherent: false\nPair: false\nEfficiency: false\n"
                "Extrapolate: false\nFormFactor: false\nScatFunc: false\n"
                "ImagFactor: false\nRealFactor: false\neElScatter: false\n");
  EXPECT_FALSE(settings.spectrum);
  EXPECT_FALSE(settings.ACRP);
}

TEST(PlotConfig, ReadsEveryKey) {
  Plot settings;
  settings.apply({{"pce", "5.5"},
                  {"absorption", "false"},
                  {"coherent", "true"},
                  {"incoherent", "true"},
                  {"pair", "true"},
                  {"efficiency", "true"},
                  {"extrapolate", "true"},
                  {"formfactor", "true"},
                  {"scatfunc", "true"},
                  {"imagfactor", "true"},
                  {"realfactor", "true"},
                  {"eelscatter", "true"},
                  {"acrp", "true"},
                  {"kvp", "7"},
                  {"material", "Cu"},
                  {"thickness", "3"},
                  {"time", "2"}});
  EXPECT_EQ(settings.write("", false),
            "PCE: 5.5000\t# [eV]\nAbsorption: false\nCoherent: true\n"
            "Incoherent: true\nPair: true\nEfficiency: true\n"
            "Extrapolate: true\nFormFactor: true\nScatFunc: true\n"
            "ImagFactor: true\nRealFactor: true\neElScatter: true\n");
  EXPECT_TRUE(settings.ACRP);
  EXPECT_EQ(settings.kVp, 7);
  EXPECT_EQ(settings.Material, "Cu");
  EXPECT_EQ(settings.Thickness, 3);
  EXPECT_EQ(settings.Time, 2);
}

TEST(PlotConfig, ReportsFindingsOfItsBasesInOrder) {
  Plot settings;
  EXPECT_EQ(findings(settings, {{"angle-in", "x"},
                                {"density", "x"},
                                {"kvp", "x"},
                                {"pce", "x"},
                                {"time", "x"}}),
            "Problem parsing: time=x\n"
            "Problem parsing: kvp=x\n"
            "Problem parsing: angle-in=x\n"
            "Problem parsing: density=x\n"
            "Problem parsing: pce=x\n");
}

TEST(PlotConfig, HoldsThePairCreationEnergyInKiloelectronvolts) {
  Plot settings;
  settings.apply({{"pce", "4.43"}});
  EXPECT_DOUBLE_EQ(settings.PCE, 0.00443);
  EXPECT_NE(settings.write("", false).find("PCE: 4.4300\t# [eV]\n"),
            std::string::npos);
}

TEST(PlotConfig, LeavesThePairCreationEnergyAtAnEmptyValue) {
  Plot settings;
  EXPECT_EQ(findings(settings, {{"pce", ""}}), "Problem parsing: pce=\n");
  EXPECT_EQ(settings.PCE, 0.00443);
}

TEST(PlotConfig, PassesWithAbsorptionAlone) {
  Plot settings = with({});
  settings.check();
  EXPECT_TRUE(settings.Absorption);
}

TEST(PlotConfig, ChecksItsBasesButTheGeometry) {
  Plot settings;
  settings.apply({{"time", "0"}, {"ebin", "0"}, {"angle-in", "0"}});
  EXPECT_EQ(refusal(settings),
            "Measurement time not larger than zero!\n"
            "Unreasonable value for energy resolution.\n"
            "Density not larger than zero!\n");
}

TEST(PlotConfig, HasSomethingToPlot) {
  Plot settings = with({{"absorption", "false"},
                        {"efficiency", "true"},
                        {"extrapolate", "true"}});
  EXPECT_EQ(refusal(settings), "Nothing to plot!\n");
  settings.ACRP = true;
  settings.check();
}

TEST(PlotConfig, PassesWithAnyOneKindOfData) {
  for (char const* const key :
       {"coherent", "incoherent", "pair", "eelscatter"}) {
    Plot settings = with({{"absorption", "false"}, {key, "true"}});
    EXPECT_NO_THROW(settings.check()) << key;
  }
}

TEST(PlotConfig, KeepsTheFormFactorAheadOfCrossSections) {
  Plot settings = with({{"formfactor", "true"}, {"acrp", "true"}});
  EXPECT_EQ(corrections(settings), Combined);
  EXPECT_FALSE(settings.Absorption);
  EXPECT_TRUE(settings.FormFactor);
  EXPECT_TRUE(settings.ACRP);
}

TEST(PlotConfig, KeepsTheStrongestFactor) {
  char const* const keys[] = {"formfactor", "scatfunc", "realfactor",
                              "imagfactor"};
  for (int first = 0; first < 4; ++first) {
    OptionMap options{{"absorption", "false"}};
    for (int i = first; i < 4; ++i) options[keys[i]] = "true";
    Plot settings = with(options);
    if (first == 3)
      settings.check();
    else
      EXPECT_EQ(corrections(settings), Combined);
    EXPECT_EQ(settings.FormFactor, first == 0);
    EXPECT_EQ(settings.ScatFunc, first == 1);
    EXPECT_EQ(settings.RealFactor, first == 2);
    EXPECT_EQ(settings.ImagFactor, first == 3);
  }
}

TEST(PlotConfig, KeepsElectronScatteringAheadOfAll) {
  Plot settings = with({{"eelscatter", "true"},
                        {"efficiency", "true"},
                        {"formfactor", "true"},
                        {"scatfunc", "true"},
                        {"imagfactor", "true"},
                        {"realfactor", "true"},
                        {"coherent", "true"},
                        {"incoherent", "true"},
                        {"pair", "true"}});
  EXPECT_EQ(corrections(settings), Combined);
  EXPECT_EQ(settings.write("", false),
            "PCE: 4.4300\t# [eV]\nAbsorption: false\nCoherent: false\n"
            "Incoherent: false\nPair: false\nEfficiency: true\n"
            "Extrapolate: false\nFormFactor: false\nScatFunc: false\n"
            "ImagFactor: false\nRealFactor: false\neElScatter: true\n");
}

TEST(PlotConfig, HasNoEfficiencyOfFactors) {
  std::pair<char const*, char const*> const names[] = {
      {"formfactor", "form factor"},
      {"scatfunc", "scattering function"},
      {"realfactor", "anomalous scattering factor"},
      {"imagfactor", "anomalous scattering factor"}};
  for (auto const& [key, name] : names) {
    Plot settings =
        with({{"absorption", "false"}, {"efficiency", "true"}, {key, "true"}});
    EXPECT_EQ(corrections(settings),
              std::string("Efficiency doesn't make sense for ") + name + "!\n");
    EXPECT_FALSE(settings.Efficiency);
  }
}
