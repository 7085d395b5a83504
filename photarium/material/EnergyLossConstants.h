#pragma once

#include <array>

#include "photarium/foundation/export.h"

/// What electron transport needs to know about stopping in an element.
///
/// A record starts from a formula and a built-in table; a correction file may
/// replace its values.
///
///     EnergyLossConstants<double> const iron(26.);
///     iron.J;      // 0.28543
///     iron.RL[0];  // 6.5278
///
/// Records are ordered by `J` alone: two of equal `J` are one key of a set.
template <class T>
class EnergyLossConstants {
 public:
  T J;       // [keV], mean excitation energy
  T C;       // density effect: -C, x0, x1, m, a, delta0 as in
  T x0;      // R. M. Sternheimer, M. J. Berger, S. M. Seltzer,
  T x1;      // At. Data Nucl. Data Tables 30 (1984) 261
  T m;       //
  T a;       //
  T delta0;  //
  T Ef;      // [keV], last value of a record of the correction file

  /// Coefficients of the radiative energy loss: with L = ln(T / 1 MeV) of the
  /// kinetic energy T, the scaled cross section is RL0 (1 + RL1 L + RL2 L^2 +
  /// RL3 L^3 + RL4 L^4) / (1 + RL5 L + RL6 L^2 + RL7 L^3 + RL8 L^4). The form
  /// is inferred from the numbers, the library evaluates it nowhere.
  std::array<T, 9> RL{};

  /// The record of init(). A lone literal 0 would be a null pointer as well:
  /// write `0.`.
  EnergyLossConstants(T Z = 0, T mean = 0) { init(Z, mean); }

  /// A record of zeros with the coefficients of initRL().
  EnergyLossConstants(T const* const row) {
    init(0, 0);
    initRL(row);
  }

  /// Sets all fields for the atomic number `Z`, which may be the mean of a
  /// composite: `RL` from the built-in row of its whole part, up to 100, and
  /// `J` from a formula. A `mean` above 0 [keV] replaces the formula. For a `Z`
  /// that has no row only the first of `RL` is cleared.
  void init(T Z, T mean);

  /// Sets `RL` from nine values as the tables print them: r0, 10 r1, 10 r2,
  /// 100 r3, 1000 r4, 10 r5, 10 r6, 100 r7, 1000 r8.
  void initRL(T const* const row);

  bool operator<(EnergyLossConstants const& other) const { return J < other.J; }
};

extern template class PHOTARIUM_EXPORT EnergyLossConstants<double>;
