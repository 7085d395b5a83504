#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "photarium/config/GridConfig.h"
#include "photarium/config/MaterialConfig.h"

/// Settings for tables of distributions.
///
/// check() calls those of GridConfig and MaterialConfig, warns below 1001 steps
/// and raises `Steps` to 11 at least.
template <class T>
class DistributionConfig : public GridConfig<T>, public MaterialConfig<T> {
 public:
  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  bool estar = false;          // a switch for programs; not read here
  bool Cubic = true;           // cubic instead of linear interpolation
  std::uint64_t Steps = 1001;  // number of steps

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT DistributionConfig<double>;
