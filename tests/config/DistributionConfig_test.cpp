#include "photarium/config/DistributionConfig.h"

#include "tests/config/open.h"

namespace {

using Distribution = Open<DistributionConfig<double>>;

Distribution with(OptionMap const& options) {
  Distribution settings;
  settings.Density = 1;
  settings.apply(options);
  return settings;
}

}  // namespace

TEST(DistributionConfig, PrintsItsBasesInOrder) {
  EXPECT_EQ(Distribution().write("", true),
            Root().write("", false) + GridConfig<double>().write("", false) +
                MaterialConfig<double>().write("", false) +
                "Cubic: true\nSteps: 1001\n");
}

TEST(DistributionConfig, ReadsEveryKey) {
  Distribution settings;
  settings.apply({{"estar", "true"},
                  {"cubic", "false"},
                  {"steps", "18446744073709551615"},
                  {"ebin", "2"},
                  {"material", "Cu"},
                  {"time", "3"}});
  EXPECT_EQ(settings.write("", false),
            "Cubic: false\nSteps: 18446744073709551615\n");
  EXPECT_TRUE(settings.estar);
  EXPECT_EQ(settings.EBin, 2);
  EXPECT_EQ(settings.Material, "Cu");
  EXPECT_EQ(settings.Time, 3);
}

TEST(DistributionConfig, ReportsFindingsOfItsBasesInOrder) {
  Distribution settings;
  EXPECT_EQ(
      findings(settings,
               {{"cubic", "x"}, {"density", "x"}, {"kvp", "x"}, {"time", "x"}}),
      "Problem parsing: time=x\n"
      "Problem parsing: kvp=x\n"
      "Problem parsing: density=x\n"
      "Problem parsing: cubic=x\n");
}

TEST(DistributionConfig, WarnsOfFewStepsAndHas11AtLeast) {
  Distribution settings = with({{"steps", "5"}});
  EXPECT_EQ(corrections(settings),
            "Unusually small number of steps configured.\n");
  EXPECT_EQ(settings.Steps, 11U);
  settings.apply({{"steps", "100"}});
  EXPECT_EQ(corrections(settings),
            "Unusually small number of steps configured.\n");
  EXPECT_EQ(settings.Steps, 100U);
  settings.apply({{"steps", "1001"}});
  settings.check();
}

TEST(DistributionConfig, ChecksItsBasesButTheTime) {
  Distribution settings;
  settings.apply({{"time", "0"}, {"ebin", "0"}});
  EXPECT_EQ(refusal(settings),
            "Unreasonable value for energy resolution.\n"
            "Density not larger than zero!\n");
}
