#pragma once

#include <ostream>

#include "photarium/config/GridConfig.h"
#include "photarium/foundation/export.h"
#include "photarium/material/Material.h"

/// Writes the table with which a Monte Carlo program treats the ionization of
/// inner shells.
///
/// Three header lines (see TableHeader) are followed by one line for each edge:
/// its energy [keV], the number of its transitions, and for each of those the
/// energy [keV], the probability, and 0 for a photon or 1 for an electron. Then
/// come a row for each energy, the multiples of `EBin` up to `kVp` or just
/// above: the share of photoabsorption that excites each edge, and the cross
/// section of each edge for electron impact [1/cm]. Below an edge both are 0.
///
///     std::ofstream out("Cu.fluo");
///     FluoTable(out, settings, copper);
///
/// Throws std::runtime_error "Unreasonable maximum energy!\n" if `EBin` reaches
/// `kVp` and what TableRows throws, ahead of the first byte. Behind the whole
/// table throws `warning` with a line for each level that `material` has no
/// curve for, whose columns are 0 ("No photoionization data for level: " or "No
/// electron ionization data for level: " and its name), and for each row whose
/// shares sum to more than 1 ("Probability greater than one: " energy, sum).
///
/// One thread works, the caller's. Numbers are in the classic locale; `out` is
/// left in scientific notation of precision 6.
template <class T>
void FluoTable(std::ostream& out, GridConfig<T> const& grid,
               Material<T> const& material);

extern template PHOTARIUM_EXPORT void FluoTable(std::ostream&,
                                                GridConfig<double> const&,
                                                Material<double> const&);
