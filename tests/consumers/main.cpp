// What a program of a user does with the library: includes everything, prints
// the version, catches a warning thrown inside the library by its type.
#include <photarium/photarium.h>

#include <iostream>
#include <map>

int main() {
  VersionInfo(std::cout) << '\n';
  Material<double> const iron("26", 0, 0, 0);
  std::map<double const, double> const points{{0., 1.}, {2., 3.}};
  LSpline<double, double> const line(points);
  if (iron.Name != "Fe" || line(1., false, false) != 2.) return 1;
  DistributionConfig<double> settings;
  settings.Density = 1;
  settings.Steps = 100;
  try {
    settings.check();
  } catch (warning const&) {
    return 0;
  }
  return 1;
}
