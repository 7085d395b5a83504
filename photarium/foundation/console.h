#pragma once

#include <ostream>
#include <string>

#include "photarium/foundation/export.h"

/// What a tool prints about itself and about a spectrum.

/// Sets the number format of the standard streams; called once at start-up,
/// ahead of any other thread.
///
/// The standard output prints words for bools and numbers of `precision`
/// digits in scientific or in fixed notation, the standard error stream words
/// for bools and fixed numbers without decimals. Flags are added, none is
/// cleared.
///
///     initStreams(/*scientific=*/true, 3);
///     std::cout << 0.5 << ' ' << true;  // 5.000e-01 true
PHOTARIUM_EXPORT void initStreams(bool scientific, int precision);

/// Prints name, version, word width and parallel runtime of the library in one
/// line without its end. Has the form of a stream manipulator:
///
///     std::cout << VersionInfo << '\n';  // Photarium 0.1.0 64bit OpenMP
PHOTARIUM_EXPORT std::ostream& VersionInfo(std::ostream& out);

/// The summary of a spectrum in one line without its end: mean energy `avg`
/// [keV], `flux` and, where it is greater than 0, `kerma`, both in the units
/// of the caller.
///
///     SpectInfo(32.5, 1e10, 0.);  // "Avg:   32.500 Flux:   1.00000e+10"
template <class T>
std::string SpectInfo(T const& avg, T const& flux, T const& kerma);

extern template PHOTARIUM_EXPORT std::string SpectInfo(double const&,
                                                       double const&,
                                                       double const&);
