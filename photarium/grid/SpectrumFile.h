#pragma once

#include <cstdint>
#include <istream>
#include <map>
#include <ostream>
#include <string>

#include "photarium/config/Config.h"
#include "photarium/config/GridConfig.h"
#include "photarium/foundation/export.h"
#include "photarium/material/Material.h"

/// The rest of each line of a spectrum file behind its two numbers, with its
/// leading blanks, by the energy [keV] of the line.
template <class T>
using LabelMap = std::map<T const, std::string const>;

/// Spectrum files: text with one node a line.
///
///     #Bin: True
///     #Time: 100.000000	# [s]
///     5.000000e-01	1.000000e+02
///     1.500000e+00	2.000000e+02 Cu K-alpha
///     #EOF
///
/// A line that begins with "#" or ";" is a comment. In it "Bin: " says whether
/// the values are contents of bins or densities, "Time: " gives the time of
/// measurement [s], and "#EOF" ends a plot, so that one stream may hold
/// several. A section ("[Name]") hides the data lines behind it. Any other line
/// that is not empty holds an energy [keV], a value and perhaps a label.
///
/// Nothing here keeps state; any number of threads may work, each on a stream
/// and a grid of its own.
namespace Grid {

/// The line, or the beginning of it, that ends a plot: "#EOF".
extern PHOTARIUM_EXPORT std::string const PlotSeparator;

/// The most nodes that GenGrid makes.
inline constexpr std::uint64_t MaxNodes = 10'000'000;

/// Reads the next plot of `in` into `grid` and `labels`, which are cleared
/// first, and sets `Bin` and `Time` of `config` where comments name them.
///
/// Returns the comment lines as they stand, each with a line feed. `in` is left
/// behind the "#EOF" line, or at its end. Lines of negative energy are dropped;
/// of several lines of one energy the first counts. With `energiesOnly` a line
/// needs no value, and all values are 0.
///
/// Throws std::runtime_error "Error parsing energy: " or "Error parsing
/// intensity: " and the line; `grid` and `labels` then hold the nodes ahead of
/// it. A "[Spectrum]" line is such a line: data stand ahead of all sections.
template <class T>
std::string ReadGrid(std::istream& in, std::map<T const, T>& grid,
                     LabelMap<T>& labels, Config<T>& config, bool energiesOnly);

/// Loads the grid that `config.GridFile` names, packed or plain, "-" being the
/// standard input, and returns its comment lines.
///
/// If that leaves no node, for whatever reason, `GridFile` is cleared and the
/// grid is generated with value 0 and empty labels: nodes in steps of `EBin`,
/// from `EBin` up to `kVp`, or, for a `spectrum`, from half of `EBin` up to a
/// fifth above `kVp`. `material` is not used.
///
/// Throws what ReadGrid throws, std::runtime_error "Packed text is too long: "
/// and the file's name for packed text beyond PHMCBuffer::plausibleText(),
/// which for a pipe is 64 MiB, and std::runtime_error "Unreasonable energy
/// resolution.\n" if `EBin` is not above 0, or "Energy grid of more than
/// 10000000 nodes requested.\n" ahead of any allocation.
template <class T>
std::string GenGrid(GridConfig<T>& config, Material<T> const& material,
                    std::map<T const, T>& grid, LabelMap<T>& labels,
                    bool energiesOnly);

/// Writes the data lines of `grid`: energy, tab, value times `scale`, label.
///
/// `inBinned` says that `grid` holds contents of bins and not densities,
/// `outBinned` asks for them in the file. `flux` becomes the sum over the bins
/// and `avg` the mean energy [keV]. A value that is not a number is written
/// as 0, and with `dropTiny` any below the smallest normal number too. A node
/// of infinite value has no line and does not count. `labels` go with the nodes
/// by position. Comments and "#EOF" are the caller's.
///
/// Numbers are in the classic locale, with a sign ahead of all if `out` shows
/// it. `out` is left in scientific notation of precision 6.
template <class T>
void WriteGrid(std::ostream& out, std::map<T const, T> const& grid,
               LabelMap<T> const& labels, bool inBinned, bool outBinned, T& avg,
               T& flux, T const& scale, bool dropTiny);

/// The same for contents of bins that are written as such.
template <class T>
void WriteGrid(std::ostream& out, std::map<T const, T> const& grid,
               LabelMap<T> const& labels, T const& scale, bool dropTiny);

extern template PHOTARIUM_EXPORT std::string ReadGrid(
    std::istream&, std::map<double const, double>&, LabelMap<double>&,
    Config<double>&, bool);
extern template PHOTARIUM_EXPORT std::string GenGrid(
    GridConfig<double>&, Material<double> const&,
    std::map<double const, double>&, LabelMap<double>&, bool);
extern template PHOTARIUM_EXPORT void WriteGrid(
    std::ostream&, std::map<double const, double> const&,
    LabelMap<double> const&, bool, bool, double&, double&, double const&, bool);
extern template PHOTARIUM_EXPORT void WriteGrid(
    std::ostream&, std::map<double const, double> const&,
    LabelMap<double> const&, double const&, bool);

}  // namespace Grid
