#pragma once

#include <ostream>

#include "photarium/config/DistributionConfig.h"
#include "photarium/config/SpectConfig.h"
#include "photarium/foundation/export.h"
#include "photarium/material/Material.h"

/// Writes the table with which a Monte Carlo program samples bremsstrahlung.
///
/// Three header lines (see TableHeader) are followed by one row for each
/// electron energy, the multiples of `EBin` up to `kVp` (both of `spect`) or
/// just above. A row has the cross section for a photon above a small cut-off
/// energy [1/cm], and then the photon energy as a fraction of the electron's at
/// `Steps` equidistant cumulative probabilities: all tab-separated. The cut-off
/// is the least of 1 keV, `EBin` and a hundredth of the electron energy.
///
/// With `Pratt` of `spect` the spectra are those of `BremsSigma`, else those of
/// `TabSigma`; Material::update(SpectConfig&) fills what the flag asks for. The
/// inverse is cubic or linear in between, after `Cubic` of `dist`. An empty
/// surface gives cross sections of 0 and fractions that are not numbers.
///
///     tungsten.update(spect);
///     std::ofstream out("W.brems");
///     BremsTable(out, spect, dist, tungsten);
///
/// Throws std::runtime_error "Unreasonable value for maximum kVp.\n" if `EBin`
/// reaches `kVp`, "Unreasonable value for number of steps.\n" if `Steps` is
/// below 2, what TableRows throws, and "More than 100000 steps requested.\n",
/// all ahead of the first byte.
///
/// A team of OpenMP threads works; the bytes do not depend on their number.
/// Rows leave in order while the next ones are computed, so that memory does
/// not grow with the table. The caller's thread alone writes `out` and,
/// whenever another percent is done, a line "Progress: " and the percentage to
/// `IPC` of `spect`.
template <class T>
void BremsTable(std::ostream& out, SpectConfig<T> const& spect,
                DistributionConfig<T> const& dist, Material<T> const& material);

extern template PHOTARIUM_EXPORT void BremsTable(
    std::ostream&, SpectConfig<double> const&,
    DistributionConfig<double> const&, Material<double> const&);
