#include "photarium/config/MathConfig.h"

#include "tests/config/open.h"

namespace {

using Arithmetic = Open<MathConfig<double>>;

}  // namespace

TEST(MathConfig, PrintsEachClassOnce) {
  MathConfig<double> const settings;
  EXPECT_EQ(settings.write("", true),
            Root().write("", false) + GridConfig<double>().write("", false) +
                "Operation: none\nExtrapolate: false\nCubic: false\n");
}

TEST(MathConfig, ReadsEveryKey) {
  Arithmetic settings;
  settings.apply({{"operation", "Multiplication"},
                  {"extrapolate", "true"},
                  {"cubic", "true"},
                  {"kvp", "5"},
                  {"time", "6"}});
  EXPECT_EQ(settings.write("", false),
            "Operation: *\nExtrapolate: true\nCubic: true\n");
  EXPECT_EQ(settings.kVp, 5);
  EXPECT_EQ(settings.Time, 6);
}

TEST(MathConfig, ReportsFindingsOfItsBasesInOrder) {
  Arithmetic settings;
  EXPECT_EQ(findings(settings, {{"cubic", "x"}, {"kvp", "x"}, {"time", "x"}}),
            "Problem parsing: time=x\n"
            "Problem parsing: kvp=x\n"
            "Problem parsing: cubic=x\n");
}

TEST(MathConfig, ThrowsOnAnUnknownOperation) {
  Arithmetic settings;
  for (std::string const text : {"none", "", "plus"})
    EXPECT_EQ(thrown<std::runtime_error>([&] {
                settings.apply({{"operation", text}});
              }),
              "Unknown math operation!");
}

TEST(MathConfig, ChecksItsBasesInOrder) {
  Arithmetic settings;
  settings.check();
  settings.apply({{"time", "0"}, {"ebin", "0"}});
  EXPECT_EQ(refusal(settings),
            "Measurement time not larger than zero!\n"
            "Unreasonable value for energy resolution.\n");
}
