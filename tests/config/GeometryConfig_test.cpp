#include "photarium/config/GeometryConfig.h"

#include <limits>

#include "tests/config/open.h"

namespace {

using Geometry = Open<GeometryConfig<double>>;

double thicknessOf(OptionMap const& options) {
  Geometry settings;
  settings.apply(options);
  return settings.Thickness;
}

// The refusal of a setting, empty if it passes.
std::string refusalOf(std::string const& key, std::string const& value) {
  Geometry settings;
  settings.apply({{key, value}});
  try {
    settings.check();
    return "";
  } catch (std::invalid_argument const& failure) {
    return failure.what();
  }
}

}  // namespace

TEST(GeometryConfig, HasDefaults) {
  EXPECT_EQ(Geometry().write("", false),
            "Angle-In: 90.0000\t# [deg]\nAngle-Out: 90.0000\t# [deg]\n"
            "Angle-Side: 0.0000\t# [deg]\nThickness: 0.1\t# [cm]\n"
            "Transmission: true\n");
}

TEST(GeometryConfig, ReadsEveryKey) {
  Geometry settings;
  settings.apply({{"angle-in", "10"},
                  {"angle-out", "20"},
                  {"angle-side", "5.5"},
                  {"thickness", "1.234567e-5"},
                  {"transmission", "false"}});
  EXPECT_EQ(settings.write("#", true),
            Root().write("#", false) +
                "#Angle-In: 10.0000\t# [deg]\n#Angle-Out: 20.0000\t# [deg]\n"
                "#Angle-Side: 5.5000\t# [deg]\n"
                "#Thickness: 1.235e-05\t# [cm]\n#Transmission: false\n");
}

TEST(GeometryConfig, MultipliesTheThicknessByTheCount) {
  Geometry settings;
  settings.apply({{"count", "3"}});
  EXPECT_EQ(settings.Thickness, 0.1 + 0.1 + 0.1);
  settings.apply({{"count", "3"}});
  EXPECT_DOUBLE_EQ(settings.Thickness, 0.9);
}

TEST(GeometryConfig, SumsLayers) {
  EXPECT_EQ(thicknessOf({{"count", "3"}, {"thickness", "0.1"}}),
            0.1 + 0.1 + 0.1);
  EXPECT_EQ(thicknessOf({{"count", "2"}, {"thickness", "0.1;0.2"}}), 0.1 + 0.2);
  EXPECT_EQ(thicknessOf({{"count", "3"}, {"thickness", "1,2"}}), 5);
}

TEST(GeometryConfig, CutsTheListToTheCount) {
  EXPECT_EQ(thicknessOf({{"thickness", "0.1;0.2"}}), 0.1);
  EXPECT_EQ(thicknessOf({{"count", "2"}, {"thickness", "1;2;x"}}), 3);
  EXPECT_EQ(thicknessOf({{"thickness", "2\nx"}}), 2);
}

TEST(GeometryConfig, HasOneLayerAtLeast) {
  EXPECT_EQ(thicknessOf({{"count", "0"}}), 0.1);
  EXPECT_EQ(thicknessOf({{"count", "-3"}, {"thickness", "2"}}), 6);
}

TEST(GeometryConfig, RefusesAThicknessThatIsNoNumber) {
  for (std::string const text : {"Abc", "", "1;", "nan", "1e999"})
    EXPECT_EQ(thrown<std::runtime_error>([&] {
                thicknessOf({{"count", "2"}, {"thickness", text}});
              }),
              "Couldn't parse " + (text == "1;" ? "" : tolower(text)));
}

TEST(GeometryConfig, RefusesACountThatIsNoNumber) {
  for (std::string const text : {"x", "", "99999999999999999999"}) {
    Geometry settings;
    EXPECT_EQ(findings(settings, {{"count", text}}),
              "Problem parsing: count=" + text + "\n");
    EXPECT_EQ(settings.Thickness, 0.1);
  }
}

TEST(GeometryConfig, HasALargestCount) {
  for (std::string const text :
       {"10001", "-10001", "99999999999", "-9223372036854775808",
        "9223372036854775807"}) {
    Geometry settings;
    EXPECT_EQ(findings(settings, {{"count", text}, {"thickness", "3"}}),
              "More than 10000 layers: count=" + text + "\n");
    EXPECT_EQ(settings.Thickness, 3);
  }
  EXPECT_EQ(thicknessOf({{"count", "-10000"}, {"thickness", "2"}}), 20000);
}

TEST(GeometryConfig, TurnsAnglesStraightForTransmission) {
  Geometry settings;
  settings.apply({{"angle-in", "10"}, {"angle-out", "20"}});
  EXPECT_EQ(settings.AngleIn, 10);
  settings.apply({{"transmission", "false"}});
  EXPECT_EQ(settings.AngleIn, 10);
  settings.apply({{"angle-in", "30"}, {"transmission", "True"}});
  EXPECT_EQ(settings.AngleIn, 30);
  EXPECT_EQ(settings.AngleOut, 90);
}

TEST(GeometryConfig, ChecksAngles) {
  std::string const in = "Incoming angle must be between 1 and 90 deg.\n";
  std::string const out = "Outgoing angle must be between 1 and 179 deg.\n";
  std::string const side = "Off-axis angle must be between 0 and 90 deg.\n";
  for (std::string const pass : {"1", "90"})
    EXPECT_EQ(refusalOf("angle-in", pass), "");
  for (std::string const fail : {"0.999", "90.001"})
    EXPECT_EQ(refusalOf("angle-in", fail), in);
  for (std::string const pass : {"1", "179"})
    EXPECT_EQ(refusalOf("angle-out", pass), "");
  for (std::string const fail : {"0.999", "179.001"})
    EXPECT_EQ(refusalOf("angle-out", fail), out);
  for (std::string const pass : {"0", "89.999"})
    EXPECT_EQ(refusalOf("angle-side", pass), "");
  for (std::string const fail : {"-0.001", "90"})
    EXPECT_EQ(refusalOf("angle-side", fail), side);
}

TEST(GeometryConfig, WarnsOfZeroThickness) {
  Geometry settings;
  settings.Thickness = 0;
  EXPECT_EQ(corrections(settings), "Zero thickness given!\n");
  settings.Thickness = -1;
  settings.check();
}

TEST(GeometryConfig, ReportsAllFindingsInOrder) {
  Geometry settings;
  settings.AngleIn = settings.AngleOut = settings.Thickness = 0;
  settings.AngleSide = -1;
  settings.Time = 0;  // not tested here
  EXPECT_EQ(refusal(settings),
            "Incoming angle must be between 1 and 90 deg.\n"
            "Outgoing angle must be between 1 and 179 deg.\n"
            "Off-axis angle must be between 0 and 90 deg.\n"
            "Zero thickness given!\n");
}
