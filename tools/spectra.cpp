#include "tools/spectra.h"

#include <cmath>
#include <sstream>
#include <stdexcept>

#include "photarium/material/Material.h"
#include "photarium/streams/PHMCStream.h"
#include "tools/Input.h"
#include "tools/report.h"

namespace Tool {
namespace {

// A name in a comment line must not end the line.
std::string oneLine(std::string text) {
  for (char& c : text)
    if (c == '\n' || c == '\r') c = ' ';
  return text;
}

// Returns the name of the file as messages have it.
std::string read(std::string const& file, Config<double>& settings,
                 std::map<double const, double>& grid, LabelMap<double>& labels,
                 bool energiesOnly) {
  Input input(file);
  std::ostringstream nothing;
  PHMCStream text(input.stream(), nothing, /*plain=*/false);
  text.limitText(file);               // a hostile one must come to an end
  text.exceptions(std::ios::badbit);  // a broken packed file is no short one
  try {
    Grid::ReadGrid(text, grid, labels, settings, energiesOnly);
  } catch (std::runtime_error const& error) {
    throw std::runtime_error(error.what() + (" while reading " + input.name()));
  }
  input.finish();
  return input.name();
}

}  // namespace

std::string readSpectrum(std::string const& file, Config<double>& settings,
                         std::map<double const, double>& grid,
                         LabelMap<double>& labels) {
  std::string const name =
      read(file, settings, grid, labels, /*energiesOnly=*/false);
  if (grid.empty()) throw std::runtime_error("No spectrum in " + name);
  return name;
}

void energyNodes(GridConfig<double>& settings,
                 std::map<double const, double>& grid,
                 LabelMap<double>& labels) {
  if (settings.GridFile.empty()) {
    Grid::GenGrid(settings, Material<double>(), grid, labels,
                  /*energiesOnly=*/true);
    return;
  }
  std::string const name =
      read(settings.GridFile, settings, grid, labels, /*energiesOnly=*/true);
  if (grid.empty())
    throw std::runtime_error("No energies in grid file " + name);
}

std::string describeSpectrum(std::string const& label, std::string const& name,
                             std::size_t nodes, bool isBinned) {
  return "# " + label + ": " + oneLine(name) + " (" + std::to_string(nodes) +
         " nodes, " + (isBinned ? "contents of bins" : "densities") + ")\n";
}

void reportInfinite(std::map<double const, double> const& grid) {
  std::size_t count = 0;
  for (auto const& [energy, value] : grid) count += std::isinf(value);
  if (count != 0) report(std::to_string(count) + " infinite values left out");
}

}  // namespace Tool
