#include "photarium/config/GridConfig.h"

#include "tests/config/open.h"

namespace {

using Grids = Open<GridConfig<double>>;

}  // namespace

TEST(GridConfig, HasDefaults) {
  GridConfig<double> const settings;
  EXPECT_EQ(settings.write("--", false),
            "--GridFile: \n--kVp: 100.0000\t# [kV]\n--EBin: 0.1000\t# [keV]\n");
  EXPECT_TRUE(settings.spectrum);
}

TEST(GridConfig, PrintsTheRootFirst) {
  GridConfig<double> const settings;
  EXPECT_EQ(settings.write("x", true),
            Root().write("x", false) + settings.write("x", false));
}

TEST(GridConfig, ReadsEveryKey) {
  Grids settings;
  settings.apply({{"gridfile", "A b"},
                  {"kvp", "1E2"},
                  {"ebin", "0.5"},
                  {"spectrum", "false"},
                  {"time", "9"}});
  EXPECT_EQ(settings.GridFile, "A b");
  EXPECT_EQ(settings.kVp, 100);
  EXPECT_EQ(settings.EBin, 0.5);
  EXPECT_FALSE(settings.spectrum);
  EXPECT_EQ(settings.Time, 9);
}

TEST(GridConfig, ReadsOnlyItsOwnKeysOutsideAChain) {
  Grids settings;
  settings.parse({{"kvp", "50"}, {"time", "9"}}, /*chain=*/false);
  EXPECT_EQ(settings.kVp, 50);
  EXPECT_EQ(settings.Time, 1);
}

TEST(GridConfig, GathersFindingsInTheOrderOfTheCalls) {
  Grids settings;
  EXPECT_EQ(findings(settings, {{"ebin", "x"}, {"kvp", ""}, {"time", "y"}}),
            "Problem parsing: time=y\nProblem parsing: ebin=x\n"
            "Problem parsing: kvp=\n");
}

TEST(GridConfig, ChecksTheBinWidth) {
  Grids settings;
  settings.check();
  settings.apply({{"ebin", "0"}});
  EXPECT_EQ(refusal(settings), "Unreasonable value for energy resolution.\n");
}

TEST(GridConfig, ChecksTheVoltage) {
  Grids settings;
  settings.apply({{"ebin", "200"}});
  EXPECT_EQ(refusal(settings), "Unreasonable value for maximum kVp.\n");
  settings.apply({{"ebin", "100"}});
  EXPECT_EQ(refusal(settings), "Unreasonable value for maximum kVp.\n");
}

TEST(GridConfig, ReportsBothFindingsTogether) {
  Grids settings;
  settings.apply({{"ebin", "-1"}, {"kvp", "-2"}});
  EXPECT_EQ(refusal(settings),
            "Unreasonable value for energy resolution.\n"
            "Unreasonable value for maximum kVp.\n");
}

TEST(GridConfig, TestsNeitherValueWithAGridFile) {
  Grids settings;
  settings.apply({{"gridfile", "f"}, {"kvp", "-1"}, {"ebin", "0"}});
  settings.Time = 0;  // not tested here either
  settings.check();
}

TEST(GridConfig, CopiesAllFields) {
  Grids settings;
  settings.apply({{"gridfile", "f"}, {"kvp", "7"}, {"spectrum", "false"}});
  Grids const copy(settings);
  EXPECT_EQ(copy.write("", true), settings.write("", true));
  EXPECT_FALSE(copy.spectrum);
}
