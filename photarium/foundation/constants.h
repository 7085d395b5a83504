#pragma once

#include <cmath>

/// Physical and mathematical constants.
///
/// They are constant expressions, so they are there before any initialiser
/// runs. The measured ones are the recommended values of CODATA 2014 (Mohr,
/// Newell, Taylor, Rev. Mod. Phys. 88 (2016) 035009); what follows from them is
/// computed from left to right as written, which fixes its last bit.
namespace Constants {

inline constexpr double Na = 6.022140857e23;   // [1/mol], Avogadro
inline constexpr double mn = 1.674927471e-27;  // [kg], mass of the neutron
inline constexpr double u = 1.66053904e-27;    // [kg], atomic mass unit
inline constexpr double h = 6.62607004e-34;    // [J s], Planck
inline constexpr double c = 299792458.0;       // [m/s], light in vacuum, exact
inline constexpr double me = 9.10938356e-31;   // [kg], mass of the electron
inline constexpr double e = 1.6021766208e-19;  // [C], elementary charge
inline constexpr double XME = me * c * c / e / 1000;  // [keV], electron at rest

inline constexpr double PI = 3.141592653589793;  // nearest double
inline constexpr double InvPI = 1 / PI;
inline constexpr double TwoPI = PI * 2;
inline constexpr double HalfPI = PI * 0.5;
inline constexpr double DegRad = PI / 180;  // [rad/deg]

inline constexpr double u0 = PI * 4e-7;       // [N/A^2], magnetic constant
inline constexpr double e0 = 1 / u0 / c / c;  // [F/m], electric constant
inline constexpr double a = (e * e / h) / e0 * 0.5 / c;  // fine structure
// Classical electron radius; [cm], as cross sections are in cm^2.
inline constexpr double r0 = u0 * (e * e / me) * 0.25 / PI * 100;
inline constexpr double r02 = r0 * r0;  // [cm^2]

}  // namespace Constants

/// Squared velocity of an electron of kinetic energy `E` [keV] relative to the
/// velocity of light: 1 - 1 / g^2 with g = E / (m c^2) + 1.
template <class T>
T beta2(T E) {
  T const g = E / T(Constants::XME) + 1;
  return 1 - 1 / (g * g);
}

/// Velocity of an electron of kinetic energy `E` [keV] relative to the velocity
/// of light.
template <class T>
T beta(T E) {
  return std::sqrt(beta2(E));
}
