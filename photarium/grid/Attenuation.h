#pragma once

#include <map>
#include <ostream>
#include <string>

#include "photarium/config/PlotConfig.h"
#include "photarium/foundation/export.h"
#include "photarium/grid/SpectrumFile.h"
#include "photarium/material/AttenuationCoeff.h"
#include "photarium/material/Material.h"

/// Attenuation curves on energy grids. Any number of threads may call these
/// functions, each with a grid and a stream of its own.

/// Adds `factor` times `coeff` at its energy to every node of `grid`, so that
/// several calls sum up. Nodes for which `coeff` has no value are removed; with
/// `extrapolate` it has one everywhere.
///
/// Any other failure of the curve throws std::runtime_error with `name`, ": "
/// (both only if `name` is not empty) and the text of the failure.
template <class T>
void interpolate(AttenuationCoeff<T> const& coeff, std::map<T const, T>& grid,
                 T factor, std::string name, bool extrapolate);

/// Adds the photoabsorption of `material` [1/cm], extrapolated where needed.
template <class T>
void muGen(Material<T> const& material, std::map<T const, T>& grid);

/// Writes the attenuation data of `material` that `plot` selects, at the
/// energies of `grid`, whose values are rewritten.
///
/// With `ACRP` that is the table of a Monte Carlo program: three header lines
/// (see TableHeader), a line that names the columns, and for each energy the
/// photoabsorption, incoherent, coherent and pair coefficients [1/cm]. Energies
/// that one of the curves does not cover are named on the standard error stream
/// with the number of curves that do, and left out; the row count of the header
/// counts them nevertheless.
///
/// Otherwise it is a comment block with the settings, and then either the nodes
/// of the form factor, the scattering function or an anomalous factor, or a
/// spectrum file of the electron scattering, of the sum of the selected photon
/// curves [1/cm], or of the efficiency of a layer of them.
///
/// Throws std::runtime_error "No energies given" or "Not a regular energy grid"
/// ahead of the first byte of a table, and `warning` "Not enough data for
/// requested energy values\n" behind the last. Numbers are in the classic
/// locale; `out` is left in scientific notation of precision 6.
template <class T>
void muPlot(std::ostream& out, PlotConfig<T> const& plot,
            Material<T> const& material, std::map<T const, T>& grid,
            LabelMap<T>& labels);

extern template PHOTARIUM_EXPORT void interpolate(
    AttenuationCoeff<double> const&, std::map<double const, double>&, double,
    std::string, bool);
extern template PHOTARIUM_EXPORT void muGen(Material<double> const&,
                                            std::map<double const, double>&);
extern template PHOTARIUM_EXPORT void muPlot(std::ostream&,
                                             PlotConfig<double> const&,
                                             Material<double> const&,
                                             std::map<double const, double>&,
                                             LabelMap<double>&);
