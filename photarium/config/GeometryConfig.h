#pragma once

#include <string>
#include <vector>

#include "photarium/config/Config.h"

/// Angles and thickness of a target or a filter.
///
/// The key "thickness" takes a list, one value for each of as many layers as
/// the key "count" says, and `Thickness` is their sum; a shorter list repeats
/// its last value, a longer one is cut. "count" alone multiplies the present
/// thickness. At most Config::MaxCount layers are accepted.
///
/// "transmission=true" turns each angle that the same section does not give
/// back to 90 deg.
///
/// check() tests the angles and warns of a zero thickness. It does not call
/// Config::check.
template <class T>
class GeometryConfig : public virtual Config<T> {
 public:
  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  T AngleIn = 90;            // incoming angle to the surface [deg], 1 to 90
  T AngleOut = 90;           // outgoing angle [deg], 1 to 179
  T AngleSide = 0;           // off-axis angle [deg], 0 up to below 90
  T Thickness = T(0.1);      // total thickness [cm]
  bool Transmission = true;  // transmission, not reflection, geometry

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT GeometryConfig<double>;
