#include "photarium/config/FilterConfig.h"

#include "tests/config/open.h"

namespace {

using Filter = Open<FilterConfig<double>>;

Filter with(OptionMap const& options) {
  Filter settings;
  settings.Density = 1;
  settings.apply(options);
  return settings;
}

}  // namespace

TEST(FilterConfig, PrintsItsBasesInOrder) {
  EXPECT_EQ(Filter().write("", true),
            Root().write("", false) + ScalingConfig<double>().write("", false) +
                GeometryConfig<double>().write("", false) +
                "CorrFile: data/ELossCorrections.txt\nMaterial: Be\n"
                "Density: -1.0000e+00\t# [g/cm^3]\n"
                "MeanExcitationPotential: -1.0000e+00\t# [keV]\n"
                "Steps: 1\t# [1]\nCoverage: 1.0000\t# [1]\nInverse: false\n"
                "Coherent: false\nIncoherent: false\nPair: false\n"
                "Fluorescence: false\nScatterAngle: 90.0000\t# [degrees]\n");
}

TEST(FilterConfig, ReadsEveryKey) {
  Filter settings;
  settings.apply({{"steps", "3"},
                  {"coverage", "0.25"},
                  {"scatterangle", "45"},
                  {"inverse", "true"},
                  {"coherent", "true"},
                  {"incoherent", "true"},
                  {"pair", "true"},
                  {"fluorescence", "true"},
                  {"thickness", "2"},
                  {"material", "Al"},
                  {"norm", "4"},
                  {"time", "5"}});
  EXPECT_EQ(settings.write("", false),
            "Steps: 3\t# [1]\nCoverage: 0.2500\t# [1]\nInverse: true\n"
            "Coherent: true\nIncoherent: true\nPair: true\n"
            "Fluorescence: true\nScatterAngle: 45.0000\t# [degrees]\n");
  EXPECT_EQ(settings.Thickness, 2);
  EXPECT_EQ(settings.Material, "Al");
  EXPECT_EQ(settings.Norm, 4);
  EXPECT_EQ(settings.Time, 5);
}

TEST(FilterConfig, ReportsFindingsOfItsBasesInOrder) {
  Filter settings;
  EXPECT_EQ(findings(settings, {{"angle-in", "x"},
                                {"coverage", "x"},
                                {"density", "x"},
                                {"norm", "x"},
                                {"time", "x"}}),
            "Problem parsing: time=x\n"
            "Problem parsing: norm=x\n"
            "Problem parsing: angle-in=x\n"
            "Problem parsing: density=x\n"
            "Problem parsing: coverage=x\n");
}

TEST(FilterConfig, KnowsComptonAsIncoherent) {
  Filter settings;
  settings.apply({{"compton", "true"}});
  EXPECT_NE(settings.write("", false).find("\nIncoherent: true\n"),
            std::string::npos);
  settings.apply({{"compton", "true"}, {"incoherent", "false"}});
  EXPECT_FALSE(settings.Incoherent);
}

TEST(FilterConfig, TurnsANegativeThicknessIntoTheInverse) {
  Filter settings = with({{"thickness", "-0.1"}});
  settings.check();
  EXPECT_EQ(settings.Thickness, 0.1);
  EXPECT_TRUE(settings.Inverse);
}

TEST(FilterConfig, HasOneStepAtLeast) {
  Filter settings = with({{"steps", "0"}});
  settings.check();
  EXPECT_EQ(settings.Steps, 1U);
}

TEST(FilterConfig, TakesMoreStepsWhereRadiationIsFollowed) {
  for (std::string const key : {"incoherent", "pair", "fluorescence"})
    for (std::string const steps : {"0", "1", "2"}) {
      Filter settings = with({{key, "true"}, {"steps", steps}});
      settings.check();
      EXPECT_EQ(settings.Steps, steps == "2" ? 2U : 10U);
    }
  Filter settings = with({{"coherent", "true"}});
  settings.check();
  EXPECT_EQ(settings.Steps, 1U);
}

TEST(FilterConfig, ChecksTheCoverage) {
  Filter settings = with({{"coverage", "0"}});
  EXPECT_EQ(refusal(settings), "Area coverage (0) not >0 and <=1!\n");
  settings.Coverage = 1.00001;
  EXPECT_EQ(refusal(settings), "Area coverage (1.00001) not >0 and <=1!\n");
  settings.Coverage = 1;
  settings.check();
}

TEST(FilterConfig, CorrectsALargeScatterAngle) {
  Filter settings = with({{"scatterangle", "200"}, {"incoherent", "true"}});
  EXPECT_EQ(corrections(settings),
            "Scatter angle (200) not >0 and <=180 degrees!\n");
  EXPECT_EQ(settings.ScatterAngle, 180);
}

TEST(FilterConfig, RefusesAScatterAngleThatIsNotPositive) {
  Filter settings = with({{"scatterangle", "-0.5"}, {"incoherent", "true"}});
  EXPECT_EQ(refusal(settings),
            "Scatter angle (-0.5) not >0 and <=180 degrees!\n");
  EXPECT_EQ(settings.ScatterAngle, -0.5);
}

TEST(FilterConfig, TestsNoScatterAngleWithoutIncoherentScattering) {
  Filter settings = with({{"scatterangle", "200"}});
  settings.check();
  EXPECT_EQ(settings.ScatterAngle, 200);
}

TEST(FilterConfig, ChecksItsBasesButTheScaling) {
  Filter settings;
  settings.apply({{"time", "0"},
                  {"angle-in", "0"},
                  {"thickness", "0"},
                  {"area", "0"},
                  {"coverage", "2"}});
  EXPECT_EQ(refusal(settings),
            "Measurement time not larger than zero!\n"
            "Incoming angle must be between 1 and 90 deg.\n"
            "Zero thickness given!\n"
            "Density not larger than zero!\n"
            "Area coverage (2) not >0 and <=1!\n");
}
