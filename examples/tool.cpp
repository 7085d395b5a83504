// A whole tool: settings from the command line and a config file, a material,
// an energy grid, a table.

#include <photarium/photarium.h>

#include <exception>
#include <iostream>
#include <map>

int main(int argc, char** argv) {
  PlotConfig<double> settings;
  settings.ACRP = true;  // what the tool presets, its users may change
  settings.kVp = 5;      // [kV]
  settings.EBin = 1;     // [keV]
  Material<double> material;
  try {
    settings.config(argc, argv, "tool");  // section [tool] of a config file
    material.update(settings);
  } catch (warning const& findings) {  // the data stand; tell the user
    std::cerr << findings.what();
  } catch (std::exception const& failure) {  // or the help that was asked for
    std::cerr << failure.what() << '\n';
    return 1;
  }
  try {
    settings.check();  // behind update(), which looks the density up
    std::map<double const, double> grid;
    LabelMap<double> labels;
    Grid::GenGrid(settings, material, grid, labels, /*energiesOnly=*/true);
    muPlot(std::cout, settings, material, grid, labels);
  } catch (std::exception const& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
  }
}
