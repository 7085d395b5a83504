#include "photarium/config/ScalingConfig.h"

#include <cmath>
#include <limits>

#include "tests/config/open.h"

namespace {

using Scaling = Open<ScalingConfig<double>>;

}  // namespace

TEST(ScalingConfig, HasDefaults) {
  EXPECT_EQ(Scaling().write("", false),
            "Norm: 1.0000e+00\t# [?]\nArea: 1.0000e+00\t# [m^2]\n"
            "Distance: 1.0000e+00\t# [m]\nGeometry: SphericalCap\n"
            "SolidAngle: 1.0000e+00\t# [sr]\n");
}

TEST(ScalingConfig, ReadsEveryKey) {
  Scaling settings;
  settings.apply({{"norm", "2"},
                  {"area", "1e-4"},
                  {"distance", "0.5"},
                  {"geometry", "CircularAperture"},
                  {"time", "4"}});
  EXPECT_EQ(settings.write("--", true),
            std::string("--Directory: \n--Config: \n--Sections: \n"
                        "--DataFile: \n--DataType: Unknown\n--Bin: false\n"
                        "--Time: 4.0000\t# [s]\n--Interpolation: true\n"
                        "--Norm: 2.0000e+00\t# [?]\n"
                        "--Area: 1.0000e-04\t# [m^2]\n"
                        "--Distance: 5.0000e-01\t# [m]\n"
                        "--Geometry: CircularAperture\n"
                        "--SolidAngle: 3.9996e-04\t# [sr]\n"));
}

TEST(ScalingConfig, ThrowsOnAnUnknownGeometry) {
  Scaling settings;
  for (std::string const text : {"sphere", ""})
    EXPECT_EQ(thrown<std::runtime_error>([&] {
                settings.apply({{"geometry", text}});
              }),
              "Unknown solid angle geometric configuration!");
}

TEST(ScalingConfig, SeesACapAsAreaOverSquaredDistance) {
  Scaling settings;
  settings.apply({{"norm", "3"}, {"area", "2"}, {"distance", "4"}});
  EXPECT_DOUBLE_EQ(settings.SolidAngle(), 0.125);
  EXPECT_DOUBLE_EQ(settings.ScalingFactor(), 0.375);
}

// The cone of half angle theta spans 2 pi (1 - cos(theta)).
TEST(ScalingConfig, SeesAnApertureAsACone) {
  Scaling settings;
  settings.apply({{"geometry", "circularaperture"}, {"distance", "2"}});
  for (double const theta : {0.01, 0.3, 1.0, 1.5}) {
    double const radius = 2 * std::tan(theta);
    settings.Area = Constants::PI * radius * radius;
    EXPECT_NEAR(settings.SolidAngle(),
                2 * Constants::PI * (1 - std::cos(theta)), 1e-14);
  }
}

TEST(ScalingConfig, ApproachesTheHalfSpaceAtZeroDistance) {
  Scaling settings;
  settings.apply({{"geometry", "circularaperture"}, {"distance", "0"}});
  EXPECT_DOUBLE_EQ(settings.SolidAngle(), 2 * Constants::PI);
}

TEST(ScalingConfig, HasNoSolidAngleForOtherGeometries) {
  Scaling settings;
  settings.Geometry = static_cast<SolidAngleConfig>(7);
  EXPECT_EQ(thrown<std::runtime_error>([&] { settings.SolidAngle(); }),
            "Unknown solid angle geometric configuration");
  EXPECT_TRUE(settings.write("", false).ends_with(
      "Geometry: 7\nSolidAngle: nan\t# [sr]\n"));
}

TEST(ScalingConfig, ChecksThatAllIsPositive) {
  Scaling settings;
  settings.check();
  for (std::string const key : {"norm", "area", "distance"})
    for (std::string const value : {"0", "-1"}) {
      Scaling wrong;
      wrong.apply({{key, value}});
      EXPECT_EQ(refusal(wrong), "Unreasonable scaling configured.\n")
          << key << value;
    }
  settings.Norm = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(refusal(settings), "Unreasonable scaling configured.\n");
}

TEST(ScalingConfig, EvaluatesNoUnknownGeometryForAWrongDistance) {
  Scaling settings;
  settings.Geometry = static_cast<SolidAngleConfig>(7);
  settings.Distance = 0;
  EXPECT_EQ(refusal(settings), "Unreasonable scaling configured.\n");
}
