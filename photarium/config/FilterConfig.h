#pragma once

#include <string>
#include <vector>

#include "photarium/config/GeometryConfig.h"
#include "photarium/config/MaterialConfig.h"
#include "photarium/config/ScalingConfig.h"

/// Settings of a filter that a spectrum passes.
///
/// A negative thickness asks for the inverse filter: check() turns it into its
/// absolute value and sets `Inverse`. check() calls those of Config,
/// GeometryConfig and MaterialConfig; the scaling is not tested.
template <class T>
class FilterConfig : public GeometryConfig<T>,
                     public MaterialConfig<T>,
                     public ScalingConfig<T> {
 public:
  /// Sets `Material` to "Be".
  FilterConfig();

  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  unsigned int Steps = 1;     // steps through the thickness
  T Coverage = 1;             // covered fraction of the area, above 0 to 1
  T ScatterAngle = 90;        // scattering angle [deg], above 0 to 180
  bool Inverse = false;       // undo the filter
  bool Coherent = false;      // follow coherent scattering
  bool Incoherent = false;    // follow incoherent scattering
  bool Pair = false;          // follow pair production
  bool Fluorescence = false;  // follow fluorescence

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT FilterConfig<double>;
