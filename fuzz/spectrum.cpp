// A stream of spectra, as plain and as packed text. Each plot is compared with
// a line-wise reading by stream extraction, written, and read once more.
//
// The first byte chooses: whether values are needed, and what grid is made of
// the first two numbers of the text.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <locale>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

#include "photarium/config/GridConfig.h"
#include "photarium/grid/Grid.h"
#include "photarium/grid/SpectrumFile.h"
#include "photarium/material/Material.h"
#include "photarium/streams/PHMCStream.h"
#include "tests/support/plain_grid.h"

namespace {

using Labels = LabelMap<double>;

void require(bool condition) {
  if (!condition) std::abort();
}

struct Plot {
  plain::Grid grid;
  Labels labels;
  bool failed = false;
};

Plot read(std::istream& in, bool energiesOnly) {
  GridConfig<double> config;
  Plot plot;
  try {
    Grid::ReadGrid<double>(in, plot.grid, plot.labels, config, energiesOnly);
  } catch (std::runtime_error const&) {
    plot.failed = true;
  }
  return plot;
}

// The same through a stream for each line.
Plot plainRead(std::istream& in, bool energiesOnly) {
  Plot plot;
  bool skipping = false;
  for (std::string line; std::getline(in, line);) {
    if (line.substr(0, 4) == "#EOF") break;
    if (line.empty() || line[0] == '#' || line[0] == ';') continue;
    if (line[0] == '[') skipping = line.substr(0, 10) != "[Spectrum]";
    if (skipping) continue;
    std::istringstream fields(line);
    fields.imbue(std::locale::classic());
    double energy = 0, value = 0;
    bool const hasEnergy = bool(fields >> energy);
    bool const hasValue = hasEnergy && fields >> value;
    if (!hasEnergy || (!hasValue && !energiesOnly)) {
      plot.failed = true;
      return plot;
    }
    std::string rest;
    std::getline(fields, rest);
    if (!(energy >= 0)) continue;
    plot.grid.insert({energy, energiesOnly ? 0 : value});
    plot.labels.insert({energy, rest});
  }
  return plot;
}

void writeAndRead(Plot const& plot) {
  std::stringstream text;
  Grid::WriteGrid<double>(text, plot.grid, plot.labels, 1, false);
  Plot const again = read(text, false);
  require(!again.failed && again.grid.size() <= plot.grid.size());
}

// A grid of odd settings: made or refused, and rebinned like the plain form.
void generate(Plot const& plot, bool spectrum) {
  if (plot.grid.size() < 2 || plot.grid.size() > 200) return;
  GridConfig<double> config;
  config.kVp = plot.grid.begin()->second;
  config.EBin = std::next(plot.grid.begin())->second;
  config.spectrum = spectrum;
  if (config.kVp / config.EBin > 1000 && config.kVp / config.EBin < 1e8) return;
  plain::Grid grid;
  Labels labels;
  try {
    Grid::GenGrid(config, Material<double>(), grid, labels, true);
  } catch (std::runtime_error const&) {
    return;
  }
  plain::Grid expected = grid;
  plain::rebin(plot.grid, expected);
  Grid::ConvGrid(plot.grid, grid, false, false, false, false, false);
  for (auto a = grid.begin(), b = expected.begin(); a != grid.end(); ++a, ++b)
    require(a->second == b->second ||
            (std::isnan(a->second) && std::isnan(b->second)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  if (size == 0) return 0;
  bool const energiesOnly = data[0] & 1;
  std::string const text(reinterpret_cast<char const*>(data) + 1, size - 1);
  std::istringstream in(text), plainIn(text);
  while (in) {
    Plot const plot = read(in, energiesOnly);
    Plot const expected = plainRead(plainIn, energiesOnly);
    require(plot.failed == expected.failed && plot.grid == expected.grid &&
            plot.labels == expected.labels && in.good() == plainIn.good());
    writeAndRead(plot);
    generate(plot, data[0] & 2);
  }
  std::istringstream packed(text);
  std::ostringstream unused;
  PHMCStream unpacked(packed, unused, /*plain=*/true);
  read(unpacked, energiesOnly);
  return 0;
}
