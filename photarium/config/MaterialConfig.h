#pragma once

#include <string>
#include <vector>

#include "photarium/config/Config.h"

/// Names a material and the values that override those of the database.
///
/// check() demands a positive density, so it belongs behind the step in which
/// `Material` has written the looked-up one into the settings. It does not call
/// Config::check.
template <class T>
class MaterialConfig : public virtual Config<T> {
 public:
  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  std::string CorrFile = "data/ELossCorrections.txt";  // correction file
  std::string Material = "W";      // name or formula, its case kept
  T Density = -1;                  // [g/cm^3], negative: looked up
  T MeanExcitationPotential = -1;  // [keV], negative: looked up

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT MaterialConfig<double>;
