#pragma once

#include <vector>

#include "photarium/foundation/export.h"
#include "photarium/material/Line.h"
#include "photarium/material/SubshellID.h"

/// An absorption edge: the level that can be ionized, from which energy on, and
/// what fills the vacancy.
template <class T>
class PHOTARIUM_EXPORT Edge {
 public:
  /// No level, energy and yield 0, jump ratio 1.
  Edge();

  /// An edge without transitions.
  Edge(SubshellID id, T energy, T yield, T jump);

  SubshellID ID;               // the level that is ionized
  T Energy;                    // [keV]
  T Yield;                     // fluorescence yield of the level
  T Jump;                      // photoabsorption just above / just below
  std::vector<Line<T>> Lines;  // transitions, in the order of the database
};

extern template class PHOTARIUM_EXPORT Edge<double>;
