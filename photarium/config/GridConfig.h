#pragma once

#include <string>
#include <vector>

#include "photarium/config/Config.h"

/// What defines an energy grid: a grid file, or the tube voltage and the bin
/// width from which a grid is generated.
///
/// check() without a `GridFile` demands 0 < `EBin` < `kVp`. It does not call
/// Config::check.
template <class T>
class GridConfig : public virtual Config<T> {
 public:
  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  std::string GridFile;  // file of the grid; empty: `kVp` and `EBin` hold
  T kVp = 100;           // tube voltage, upper end of the grid [kV]
  T EBin = T(0.1);       // bin width [keV]
  bool spectrum = true;  // the grid is one of a spectrum

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT GridConfig<double>;
