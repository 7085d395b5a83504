#include "tests/tools/Program.h"

namespace {

bool has(std::string const& text, std::string const& line) {
  return text.find("\n" + line + "\n") != std::string::npos;
}

}  // namespace

TEST(DetectorCommand, PrintsItsSettingsAsHelp) {
  Outcome const outcome = Program().run({"detector", "--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out.starts_with("photarium detector [OPTIONS]: "));
  EXPECT_TRUE(has(outcome.out, "--Fano: 0.1500\t# [1]"));
  EXPECT_TRUE(has(outcome.out, "--check\t# check and correct the settings"));
}

TEST(DetectorCommand, PrintsSettingsAsTheyStand) {
  Outcome const outcome =
      Program().run({"detector", "--count=-2", "--steps=0;3"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_TRUE(has(outcome.out, "Steps: 0, 3\t# [1]"));
  EXPECT_TRUE(has(outcome.out, "Inverse: true"));
  EXPECT_TRUE(has(outcome.out, "Density: -1.0000e+00\t# [g/cm^3]"));
}

TEST(DetectorCommand, PrintsWhatTheCheckCorrected) {
  Outcome const outcome = Program().run(
      {"detector", "--check", "--material=Si", "--count=2", "--steps=0;3"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_TRUE(has(outcome.out, "Steps: 1, 3\t# [1]"));
  EXPECT_FALSE(has(outcome.out, "Density: -1.0000e+00\t# [g/cm^3]"));
}

TEST(DetectorCommand, WarnsOfWhatIsNotUsed) {
  Outcome const outcome =
      Program().run({"detector", "--check", "--material=Si", "--min-energy=-1",
                     "--no-do-threshold"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "photarium: Invalid energy threshold.\n");
  EXPECT_TRUE(has(outcome.out, "Min-Energy: -1.0000\t# [keV]"));
}

TEST(DetectorCommand, RefusesSettingsThatFailTheirCheck) {
  Outcome const outcome = Program().run({"detector", "--check", "--material=Si",
                                         "--angle-in=0", "--thickness=0"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "photarium: Incoming angle must be between 1 and 90 deg.\n"
            "photarium: Non-positive detector element thickness "
            "configured!\n");
}
