#pragma once

#include <cstdint>
#include <string>

#include "photarium/foundation/export.h"

/// The three lines with which the tables for Monte Carlo programs begin.
///
///     #Tramo	0	Cu	ACRP	4	100	1	1
///     # Density: 8.96	# [g/cm^3]
///     # energy steps of 1 keV, from 1 keV to 100 keV
///
/// Numbers have six significant digits at most, in the classic locale.
template <class T>
struct TableHeader {
  std::string Program = "Tramo";  ///< word behind the "#" of the first line
  std::string Name;               ///< of the material
  std::string Kind;               ///< of table
  std::uint64_t Columns = 0;      ///< first number of the kind
  std::uint64_t Rows = 0;         ///< energies
  T First = 0;                    ///< lowest energy [keV]
  T Step = 0;                     ///< between energies [keV]
  T Last = 0;                     ///< highest energy [keV]
  T Density = 0;                  ///< of the material [g/cm^3]

  /// The lines, each with its line feed.
  std::string text() const;
};

/// The most rows that a table of electron energies may have.
inline constexpr std::uint64_t MaxTableRows = 1'000'000;

/// The most steps that a table of distributions may have.
inline constexpr std::uint64_t MaxTableSteps = 100'000;

/// Number of energies in steps of `EBin` that reach `kVp`: the ratio, rounded
/// up. Throws std::runtime_error "Unreasonable number of energies.\n" if that
/// is no number from 1 to MaxTableRows.
template <class T>
std::uint64_t TableRows(T kVp, T EBin);

/// Throws std::runtime_error "More than 100000 steps requested.\n" above
/// MaxTableSteps.
PHOTARIUM_EXPORT void LimitTableSteps(std::uint64_t steps);

extern template struct PHOTARIUM_EXPORT TableHeader<double>;
extern template PHOTARIUM_EXPORT std::uint64_t TableRows(double, double);
