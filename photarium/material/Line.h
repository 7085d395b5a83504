#pragma once

#include <string>

#include "photarium/foundation/export.h"
#include "photarium/material/SubshellID.h"

/// A transition that fills a vacancy: a photon, or the electron of an Auger or
/// Coster-Kronig process. The vacancy is the level of the Edge that holds it.
///
///     Line<double> const kAlpha1(8.04783, 0.29, "K-L3",
///                                SubshellID(29, L3), /*radiative=*/true);
template <class T>
class PHOTARIUM_EXPORT Line {
 public:
  /// A photon of energy and intensity 0 between unknown levels.
  Line();

  /// A transition of which only energy and label are known.
  Line(T energy, T intensity, std::string label, bool radiative);

  /// A radiative transition: the electron comes from the level `from`.
  Line(T energy, T intensity, std::string label, SubshellID from,
       bool radiative);

  /// A non-radiative transition: the electron of `from` fills the vacancy, a
  /// second one leaves the level `to`.
  Line(T energy, T intensity, std::string label, SubshellID from, SubshellID to,
       bool radiative);

  T Energy;           // [keV]
  T Intensity;        // probability per vacancy in the level of the edge
  std::string Label;  // as the database names it, such as "K-L3"
  bool Radiative;     // a photon; else an Auger or Coster-Kronig electron
  SubshellID From;    // where the electron comes from, zero if unknown
  SubshellID To;      // non-radiative: where the second electron leaves
};

extern template class PHOTARIUM_EXPORT Line<double>;
