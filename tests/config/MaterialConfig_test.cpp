#include "photarium/config/MaterialConfig.h"

#include <limits>

#include "tests/config/open.h"

namespace {

using Materials = Open<MaterialConfig<double>>;

}  // namespace

TEST(MaterialConfig, HasDefaults) {
  EXPECT_EQ(Materials().write("", false),
            "CorrFile: data/ELossCorrections.txt\nMaterial: W\n"
            "Density: -1.0000e+00\t# [g/cm^3]\n"
            "MeanExcitationPotential: -1.0000e+00\t# [keV]\n");
}

TEST(MaterialConfig, ReadsEveryKeyAndKeepsTheCaseOfText) {
  Materials settings;
  settings.apply({{"corrfile", "C.txt"},
                  {"material", "CuZn"},
                  {"density", "8.4"},
                  {"meanexcitationpotential", "0.322E0"}});
  EXPECT_EQ(settings.write("", true),
            Root().write("", false) +
                "CorrFile: C.txt\nMaterial: CuZn\n"
                "Density: 8.4000e+00\t# [g/cm^3]\n"
                "MeanExcitationPotential: 3.2200e-01\t# [keV]\n");
}

TEST(MaterialConfig, DemandsADensity) {
  Materials settings;
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (double const density : {-1., 0., nan}) {
    settings.Density = density;
    EXPECT_EQ(refusal(settings), "Density not larger than zero!\n");
  }
  settings.Density = 1;
  settings.Time = 0;  // not tested here
  settings.check();
}
