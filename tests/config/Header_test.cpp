#include "photarium/config/Header.h"

#include <sstream>

#include "tests/config/open.h"

namespace {

std::string version() {
  std::ostringstream out;
  out << VersionInfo;
  return out.str();
}

}  // namespace

TEST(Header, BeginsWithVersionAndTitle) {
  EXPECT_EQ(Header("A spectrum", MaterialConfig<double>()),
            "#\n#" + version() + "\n#A spectrum\n" +
                MaterialConfig<double>().write("# ", true));
}

TEST(Header, MayHaveAnEmptyTitle) {
  EXPECT_TRUE(Header("", Root())
                  .starts_with("#\n#" + version() + "\n#\n# Directory: \n"));
}

TEST(Header, ListsTheMostDerivedClass) {
  SpectConfig<double> const spect;
  Config<double> const& settings = spect;
  GeometryConfig<double> geometry;
  geometry.AngleIn = 70;
  geometry.AngleOut = 20;
  geometry.Transmission = false;
  EXPECT_EQ(Header("x", settings),
            "#\n#" + version() + "\n#x\n" + Root().write("# ", false) +
                GridConfig<double>().write("# ", false) +
                ScalingConfig<double>().write("# ", false) +
                geometry.write("# ", false) +
                MaterialConfig<double>().write("# ", false) +
                spect.write("# ", false));
}
