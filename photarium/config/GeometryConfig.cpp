#include "photarium/config/GeometryConfig.h"

#include <cstddef>
#include <numeric>

#include "photarium/config/angles.h"
#include "photarium/config/table.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Format;
using Settings::Row;
using Settings::Value;

template <class T>
constexpr Row<GeometryConfig, T> Rows[] = {
    {"Angle-In", &GeometryConfig<T>::AngleIn,
     "incoming angle to the surface, 1 to 90", "deg"},
    {"Angle-Out", &GeometryConfig<T>::AngleOut, "outgoing angle, 1 to 179",
     "deg"},
    {"Angle-Side", &GeometryConfig<T>::AngleSide,
     "off-axis angle, 0 up to below 90", "deg"},
    {"Thickness", &GeometryConfig<T>::Thickness,
     "total thickness, or a list of layers", "cm", Format::General},
    {"Transmission", &GeometryConfig<T>::Transmission,
     "transmission geometry; angles not given become 90"},
    {"count", Settings::NoField, "number of layers, at most 10000", "",
     Format::NoLine},
};

template <class T>
using Ahead = Bases<Config<T>>;

// Transmission is straight through unless the same section says otherwise.
template <class T>
void parseTransmission(Value& value, OptionMap const& options,
                       GeometryConfig<T>& config) {
  value.extract(config.Transmission);
  if (!config.Transmission) return;
  if (!options.contains("angle-in")) config.AngleIn = 90;
  if (!options.contains("angle-out")) config.AngleOut = 90;
}

}  // namespace

template <class T>
void GeometryConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
  }
  // Layers of the thickness: "count" sets how many, "thickness" their values.
  std::vector<T> layers{Thickness};
  auto const special = [&](std::string const& key, Value& value) {
    if (key == "count")
      parseCount(value, "layers", findings, [&](std::size_t count, bool) {
        layers.resize(count, layers[0]);
      });
    else if (key == "thickness")
      value.extract(layers);
    else if (key == "transmission")
      parseTransmission(value, options, *this);
    else
      return false;
    return true;
  };
  parseRows(Rows<T>, *this, options, findings, special);
  Thickness = std::accumulate(layers.begin(), layers.end(), T(0));
  findings.report();
}

template <class T>
std::string GeometryConfig<T>::write(std::string const& prefix,
                                     bool chain) const {
  return Ahead<T>::write(*this, prefix, chain) +
         writeRows(Rows<T>, *this, prefix);
}

template <class T>
std::vector<Setting> GeometryConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void GeometryConfig<T>::check() {
  Findings findings;
  Settings::checkAngleIn(AngleIn, findings);
  if (AngleOut < 1 || AngleOut > 179)
    findings.hard("Outgoing angle must be between 1 and 179 deg.\n");
  Settings::checkAngleSide(AngleSide, findings);
  if (Thickness == 0) findings.soft("Zero thickness given!\n");
  findings.report();
}

template class GeometryConfig<double>;
