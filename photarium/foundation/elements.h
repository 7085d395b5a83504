#pragma once

#include <cstdint>
#include <string>

#include "photarium/foundation/export.h"

/// The chemical elements, indexed by atomic number. Row 0 is a placeholder
/// without a name.
///
///     Elements[74];     // "W"
///     Densities[74];    // 19.3
///     MassNumbers[74];  // 183.851
///
/// The rows are made from data/tables/elements.csv; the README there says what
/// they are. Constant, for any thread; the names are strings that exist once
/// the library's static objects do.

/// Rows of each table: Z from 0 to 118.
inline constexpr std::uint64_t ElementsCount = 119;

/// Chemical symbols. 113, 115, 117 and 118 keep their provisional ones.
extern PHOTARIUM_EXPORT std::string const Elements[ElementsCount];

/// Densities [g/cm^3], of gases at normal conditions. 0 where none is known,
/// which is so from Z = 100 on.
extern PHOTARIUM_EXPORT double const Densities[ElementsCount];

/// Relative atomic masses [g/mol]. Elements that have no stable isotope have
/// the mass of one of theirs.
extern PHOTARIUM_EXPORT double const MassNumbers[ElementsCount];
