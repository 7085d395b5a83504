#pragma once

#include <string>
#include <vector>

#include "photarium/config/Config.h"

/// What turns a spectrum per steradian into counts at a detector: a factor and
/// the solid angle under which the detector is seen.
///
///     ScalingConfig<double> detector;
///     detector.Area = 1e-4;        // [m^2]
///     detector.Distance = 2;       // [m]
///     detector.ScalingFactor();    // 2.5e-5 sr
///
/// check() demands a positive area, distance and scaling. It does not call
/// Config::check.
template <class T>
class ScalingConfig : public virtual Config<T> {
 public:
  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  /// `SolidAngle()` times `Norm`.
  virtual T ScalingFactor() const;

  /// Solid angle of the detector [sr]. `SphericalCap` takes `Area` as a part of
  /// a sphere around the source: area / distance^2. `CircularAperture` takes it
  /// as a flat disc of radius r facing the source: 4 pi sin^2(theta / 2) with
  /// tan(theta) = r / distance. Throws std::runtime_error for any other
  /// `Geometry`.
  T SolidAngle() const;

  T Norm = 1;                                // factor
  T Area = 1;                                // of the detector [m^2]
  T Distance = 1;                            // to the detector [m]
  SolidAngleConfig Geometry = SphericalCap;  // how the solid angle follows

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT ScalingConfig<double>;
