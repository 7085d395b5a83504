#include "photarium/config/ScalingConfig.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include "photarium/config/table.h"
#include "photarium/foundation/constants.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Format;
using Settings::Row;

template <class T>
constexpr Row<ScalingConfig, T> Rows[] = {
    {"Norm", &ScalingConfig<T>::Norm, "factor on the solid angle", "?",
     Format::Scientific},
    {"Area", &ScalingConfig<T>::Area, "area of the detector", "m^2",
     Format::Scientific},
    {"Distance", &ScalingConfig<T>::Distance, "distance to the detector", "m",
     Format::Scientific},
    {"Geometry", &ScalingConfig<T>::Geometry,
     "solid angle of the area: sphericalcap or circularaperture"},
};

template <class T>
using Ahead = Bases<Config<T>>;

// The solid angle, not a number where the geometry has none.
template <class T>
T printedSolidAngle(ScalingConfig<T> const& config) {
  bool const isKnown =
      config.Geometry == SphericalCap || config.Geometry == CircularAperture;
  return isKnown ? config.SolidAngle() : std::numeric_limits<T>::quiet_NaN();
}

}  // namespace

template <class T>
void ScalingConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
  }
  parseRows(Rows<T>, *this, options, findings);
  findings.report();
}

template <class T>
std::string ScalingConfig<T>::write(std::string const& prefix,
                                    bool chain) const {
  std::string out =
      Ahead<T>::write(*this, prefix, chain) + writeRows(Rows<T>, *this, prefix);
  out += prefix + "SolidAngle: ";
  Settings::appendValue(out, printedSolidAngle(*this), Format::Scientific);
  Settings::appendLineEnd(out, "sr");
  return out;
}

template <class T>
std::vector<Setting> ScalingConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void ScalingConfig<T>::check() {
  Findings findings;
  bool const isReasonable = Distance > 0 && Area > 0 && SolidAngle() * Norm > 0;
  findings.require(isReasonable, "Unreasonable scaling configured.\n");
  findings.report();
}

template <class T>
T ScalingConfig<T>::ScalingFactor() const {
  return SolidAngle() * Norm;
}

template <class T>
T ScalingConfig<T>::SolidAngle() const {
  if (Geometry == SphericalCap) return Area / (Distance * Distance);
  if (Geometry != CircularAperture)
    throw std::runtime_error("Unknown solid angle geometric configuration");
  T const radius = std::sqrt(Area / T(Constants::PI));
  T const sine = std::sin(std::atan2(radius, Distance) / 2);
  return 4 * T(Constants::PI) * (sine * sine);
}

template class ScalingConfig<double>;
