#pragma once

#include <string>
#include <vector>

#include "photarium/config/GridConfig.h"

/// Settings for arithmetic on spectra. check() calls those of Config and
/// GridConfig.
template <class T>
class MathConfig : public GridConfig<T> {
 public:
  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  Math::Operations Operation = Math::None;  // what is done
  bool Extrapolate = false;                 // continue beyond the nodes
  bool Cubic = false;  // cubic instead of linear interpolation

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT MathConfig<double>;
