#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "photarium/config/Config.h"
#include "photarium/config/GridConfig.h"
#include "photarium/grid/SpectrumFile.h"

namespace Tool {

/// Reads the spectrum of a file, packed or plain, or of standard input for "-",
/// and sets `Bin` and `Time` of `settings` where the file names them. Returns
/// the name of the file as messages have it. Throws std::runtime_error with the
/// name if there is none.
std::string readSpectrum(std::string const& file, Config<double>& settings,
                         std::map<double const, double>& grid,
                         LabelMap<double>& labels);

/// The energies that `settings` describe: generated ones, or those of their
/// `GridFile`, packed or plain, which sets `Bin` and `Time` where it names
/// them. Throws std::runtime_error with the name of the file if it has none.
void energyNodes(GridConfig<double>& settings,
                 std::map<double const, double>& grid,
                 LabelMap<double>& labels);

/// A comment line on a spectrum: "# First: a.txt (3 nodes, densities)".
std::string describeSpectrum(std::string const& label, std::string const& name,
                             std::size_t nodes, bool isBinned);

/// Names the number of infinite values on standard error, as a spectrum file
/// has no line for them.
void reportInfinite(std::map<double const, double> const& grid);

}  // namespace Tool
