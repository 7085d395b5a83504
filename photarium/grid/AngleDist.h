#pragma once

#include <ostream>

#include "photarium/config/DistributionConfig.h"
#include "photarium/foundation/export.h"
#include "photarium/material/Material.h"

/// Writes the table with which a Monte Carlo program samples the direction of
/// an electron behind an elastic collision.
///
/// Three header lines (see TableHeader) are followed by one row for each
/// electron energy, the multiples of `EBin` up to `kVp` or just above. A row
/// has `Steps` cosines of the scattering angle, each with a blank ahead and its
/// sign: the inverse of the cumulative distribution at equidistant
/// probabilities, linear between the nodes of `ElasticAngle`. Where `material`
/// has none, all cosines are 0.
///
///     std::ofstream out("W.angle");
///     AngleDist(out, dist, tungsten);
///
/// Throws std::runtime_error "Unreasonable value for maximum kVp\n" if `EBin`
/// reaches `kVp`, what TableRows throws, and "More than 100000 steps
/// requested.\n" for too large a table, all ahead of the first byte. Behind the
/// whole table throws `warning` with a line for each node where the
/// distribution falls ("Probability function not monotonous at: " energy,
/// cosine, probability), for each cosine out of range and for each row that
/// does not begin with -1 ("Something wrong at: (" row, column ") == (" energy,
/// probability, cosine ")").
///
/// One thread works, the caller's. Numbers are in the classic locale; `out` is
/// left in scientific notation of precision 6 with signs shown. `Cubic` plays
/// no part.
template <class T>
void AngleDist(std::ostream& out, DistributionConfig<T> const& dist,
               Material<T> const& material);

extern template PHOTARIUM_EXPORT void AngleDist(
    std::ostream&, DistributionConfig<double> const&, Material<double> const&);
