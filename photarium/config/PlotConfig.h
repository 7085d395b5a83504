#pragma once

#include <string>
#include <vector>

#include "photarium/config/GeometryConfig.h"
#include "photarium/config/GridConfig.h"
#include "photarium/config/MaterialConfig.h"

/// Selects which attenuation data are sampled and printed.
///
/// check() keeps one kind of data: electron scattering, else form factor,
/// scattering function, real and imaginary anomalous factor in this order, else
/// the cross sections. It calls the checks of Config, GridConfig and
/// MaterialConfig; the angles of GeometryConfig do not matter here.
template <class T>
class PlotConfig : public GridConfig<T>,
                   public GeometryConfig<T>,
                   public MaterialConfig<T> {
 public:
  /// Sets the inherited `spectrum` to false.
  PlotConfig();

  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  T PCE = T(0.00443);        // pair creation energy [keV], in texts [eV]
  bool Absorption = true;    // photoelectric absorption
  bool Coherent = false;     // coherent scattering
  bool Incoherent = false;   // incoherent scattering
  bool Pair = false;         // pair production
  bool Efficiency = false;   // print efficiency
  bool Extrapolate = false;  // continue beyond the nodes
  bool FormFactor = false;   // form factor
  bool ScatFunc = false;     // incoherent scattering function
  bool ImagFactor = false;   // imaginary anomalous scattering factor
  bool RealFactor = false;   // real anomalous scattering factor
  bool eElScatter = false;   // elastic scattering of electrons
  bool ACRP = false;         // all four cross sections as a table

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT PlotConfig<double>;
