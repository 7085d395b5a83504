#pragma once

#include <string>
#include <vector>

#include "photarium/config/GeometryConfig.h"
#include "photarium/config/GridConfig.h"
#include "photarium/config/MaterialConfig.h"
#include "photarium/config/ScalingConfig.h"

/// Settings of a tube spectrum: which radiation, by which models, and the tube
/// current.
///
/// `Pratt` and `ShapeFct` return to their defaults in each section that is
/// applied, so the last section decides. "mono=true" asks for neither continuum
/// nor lines. An unknown model is a warning here.
///
/// check() calls those of Config, GeometryConfig, GridConfig, MaterialConfig
/// and ScalingConfig.
template <class T>
class SpectConfig : public GridConfig<T>,
                    public GeometryConfig<T>,
                    public MaterialConfig<T>,
                    public ScalingConfig<T> {
 public:
  /// Sets `AngleIn` to 70, `AngleOut` to 20 and `Transmission` to false.
  SpectConfig();

  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  /// (`Time` * `Current`) * (`SolidAngle()` * `Norm`).
  T ScalingFactor() const override;

  bool Attenuation = true;  // apply attenuation in the target
  bool Continuum = true;    // compute bremsstrahlung
  bool Lines = true;        // compute characteristic radiation
  bool Pratt = false;       // use the built-in cross sections
  bool ShapeFct = true;     // use the partial wave shape functions
  T Current = 1;            // tube current [mA]
  Backscattering::Model BSModel = Backscattering::Photarium;
  Characteristic::Model CharModel = Characteristic::PHMFull;
  unsigned int nDepth = 0;  // depth steps, 0: the model's own
  unsigned int nTheta = 0;  // polar steps, 0: the model's own
  unsigned int nPhi = 0;    // azimuth steps, 0: the model's own
  std::string EdtfFile;     // file of the model `Edtf`

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT SpectConfig<double>;
