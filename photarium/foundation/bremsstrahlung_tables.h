#pragma once

#include "photarium/foundation/export.h"

/// Tabulated electron bremsstrahlung of neutral atoms: the energy spectrum and
/// the shape of the angular distribution.
///
/// Both blocks are made from the files in data/tables, and the README there
/// says how far each value can be trusted: a few rows are those of the
/// publications, the rest is reconstructed. Constant, for any thread.

inline constexpr int SIZENRGXSPEC = 20;
inline constexpr int SIZETRANSXSPEC = 12;
inline constexpr int SIZEMATXSPEC = 11;

/// Kinetic energies of the electron [keV] in `XSpecValues`.
inline constexpr double EXSpec[SIZENRGXSPEC] = {
    1,   2.5, 5,   10,  25,   50,   75,   100,  200,  300,
    400, 500, 600, 800, 1000, 1200, 1400, 1600, 1800, 2000};
/// Photon energies in `XSpecValues` as fractions of the electron's.
inline constexpr double TransXSpec[SIZETRANSXSPEC] = {
    0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 0.95, 1};
/// Atomic numbers in `XSpecValues`.
inline constexpr unsigned int ZXSpec[SIZEMATXSPEC] = {2,  8,  13, 26, 29, 42,
                                                      47, 61, 74, 79, 92};

/// Scaled energy spectrum beta^2 / Z^2 * k * dsigma/dk [mb], all directions of
/// the photon, in the field of the nucleus. After R. H. Pratt et al., At. Data
/// Nucl. Data Tables 20 (1977) 175.
///
/// The value for ZXSpec[z], EXSpec[e], TransXSpec[t] stands at index
/// (z * SIZENRGXSPEC + e) * SIZETRANSXSPEC + t.
extern PHOTARIUM_EXPORT double const
    XSpecValues[SIZEMATXSPEC * SIZENRGXSPEC * SIZETRANSXSPEC];

inline constexpr int SIZENRGSHAPE = 6;
inline constexpr int SIZETRANSSHAPE = 4;
inline constexpr int SIZEMATSHAPE = 6;
inline constexpr int SIZECOEFFSHAPE = 6;

/// Kinetic energies of the electron [keV] in `ShapeValues`.
inline constexpr double EShape[SIZENRGSHAPE] = {1, 5, 10, 50, 100, 500};
/// Photon energies in `ShapeValues` as fractions of the electron's.
inline constexpr double TransShape[SIZETRANSSHAPE] = {0, 0.6, 0.8, 0.95};
/// Atomic numbers in `ShapeValues`.
inline constexpr unsigned int ZShape[SIZEMATSHAPE] = {2, 8, 13, 47, 79, 92};

/// Coefficients c0 to c5 of the angular shape S of the photons, after
/// L. Kissel, C. A. Quarles, R. H. Pratt, At. Data Nucl. Data Tables 28 (1983)
/// 381:
///
///     4 pi S(theta) = c0 (1 + sum(c_n P_n(cos(theta)), n = 1 .. 5))
///                     / (1 - beta cos(theta))^(9/2)
///
/// with the Legendre polynomials P_n and the velocity of the incident
/// electron. The value of coefficient c for ZShape[z], EShape[e],
/// TransShape[t] stands at index
/// ((c * SIZEMATSHAPE + z) * SIZENRGSHAPE + e) * SIZETRANSSHAPE + t.
extern PHOTARIUM_EXPORT double const
    ShapeValues[SIZECOEFFSHAPE * SIZEMATSHAPE * SIZENRGSHAPE * SIZETRANSSHAPE];
