#pragma once

#include <cstdint>
#include <istream>
#include <ostream>

#include "photarium/foundation/export.h"

/// Choices that a user makes by word and that the tools print back.
///
/// The readers take one blank-delimited word in upper or lower case. It must be
/// one of the accepted words in full: on any other, or on none, they throw
/// std::runtime_error with the message named at the enumeration and leave the
/// target alone. The printers insert the enumerator's name unless said
/// otherwise, and the number of a value that has none.
///
///     std::istringstream in("EBEL");
///     Backscattering::Model model{};
///     in >> model;  // Backscattering::Ebel

namespace Backscattering {

/// Model of the electrons that leave the target again. Accepted are the names;
/// else "Unknown backscattering model!".
enum Model : std::uint32_t {
  Photarium,
  PHMModel,
  PHMFast,
  Ebel,
  Hunger,
  Storm,
  Edtf
};

PHOTARIUM_EXPORT std::istream& operator>>(std::istream& in, Model& model);
PHOTARIUM_EXPORT std::ostream& operator<<(std::ostream& out, Model model);

}  // namespace Backscattering

namespace Characteristic {

/// Model of the characteristic radiation. Accepted are the names, and
/// "photarium" for `PHMFull`; else "Unknown characteristic radiation model!".
enum Model : std::uint32_t { None, Ebel, PHMSimple, PHMFull, PHMCascade };

PHOTARIUM_EXPORT std::istream& operator>>(std::istream& in, Model& model);
PHOTARIUM_EXPORT std::ostream& operator<<(std::ostream& out, Model model);

}  // namespace Characteristic

namespace Math {

/// Arithmetic on two spectra. Accepted are the sign, the name and the noun
/// ("+", "add", "addition"), and "rebin"; else "Unknown math operation!".
/// Printed are the sign, "rebin", and "none" for the default, which no word
/// selects.
enum Operations : std::uint32_t {
  None,
  Add,
  Subtract,
  Multiply,
  Divide,
  Rebin
};

PHOTARIUM_EXPORT std::istream& operator>>(std::istream& in,
                                          Operations& operation);
PHOTARIUM_EXPORT std::ostream& operator<<(std::ostream& out,
                                          Operations operation);

}  // namespace Math

/// Shape of the area that a source is seen through. Accepted are the names;
/// else "Unknown solid angle geometric configuration!".
enum SolidAngleConfig : std::uint32_t { SphericalCap, CircularAperture };

PHOTARIUM_EXPORT std::istream& operator>>(std::istream& in,
                                          SolidAngleConfig& config);
PHOTARIUM_EXPORT std::ostream& operator<<(std::ostream& out,
                                          SolidAngleConfig config);

/// Format of a database of photon and electron data. Accepted are the names;
/// else "Unknown database type!".
enum DBType : std::uint32_t { Unknown, ElamDB, ENDF, MCNP };

PHOTARIUM_EXPORT std::istream& operator>>(std::istream& in, DBType& type);
PHOTARIUM_EXPORT std::ostream& operator<<(std::ostream& out, DBType type);
