#pragma once

#include <ostream>
#include <string>

#include "photarium/foundation/export.h"

/// Level of an atom: principal shell and subshell. The values are the subshell
/// designators of the ENDF-6 format; 0 means that no level is set.
enum subshell : int {
  K1 = 1,
  L1,
  L2,
  L3,
  M1,
  M2,
  M3,
  M4,
  M5,
  N1,
  N2,
  N3,
  N4,
  N5,
  N6,
  N7,
  O1,
  O2,
  O3,
  O4,
  O5,
  O6,
  O7,
  O8,
  O9,
  P1,
  P2,
  P3,
  P4,
  P5,
  P6,
  P7,
  P8,
  P9,
  P10,
  P11,
  Q1,
  Q2,
  Q3
};

/// A level of an element.
///
///     SubshellID const level(26, K1);  // the K shell of iron
class PHOTARIUM_EXPORT SubshellID {
 public:
  /// Level `shell` of the element with atomic number `z`.
  SubshellID(unsigned int z = 0, subshell shell = subshell(0))
      : Z(z), Shell(shell) {}

  bool operator==(SubshellID const& other) const {
    return Z == other.Z && Shell == other.Shell;
  }

  /// The heavier element sorts first, so that tables list its levels first;
  /// within an element the inner level does.
  bool operator<(SubshellID const& other) const {
    return Z != other.Z ? Z > other.Z : Shell < other.Shell;
  }

  unsigned int Z;  // atomic number, 0 if unset
  subshell Shell;  // level, 0 if unset
};

/// The level of a text: one of "K1" to "Q3", exactly as the enumerators are
/// named, or "K", which is K1. Throws a warning "Unknown subshell " and the
/// text for any other.
PHOTARIUM_EXPORT subshell StringToSubshell(std::string text);

/// Writes the name of a level, or its number if it is none of K1 to Q3.
PHOTARIUM_EXPORT std::ostream& SubshellToString(std::ostream& out,
                                                subshell shell);
