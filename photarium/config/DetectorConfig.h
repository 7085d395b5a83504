#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "photarium/config/MaterialConfig.h"
#include "photarium/config/ScalingConfig.h"

/// Settings of a detector of one or more stacked elements.
///
/// "count" sets the number of elements, at most Config::MaxCount, a negative
/// one with `Inverse`; the values of the first element spread over new ones.
/// The lists then keep that size: a shorter one repeats its last value, a
/// longer one is cut.
///
/// check() calls those of Config and MaterialConfig; the scaling is not tested.
template <class T>
class DetectorConfig : public MaterialConfig<T>, public ScalingConfig<T> {
 public:
  /// Sets `Material` to "CdTe".
  DetectorConfig();

  std::string write(std::string const& prefix, bool chain) const override;
  void check() override;
  std::vector<Setting> settings(bool chain) const override;

  std::string TransFile;    // file named by the users of a tool
  std::string KernelFile;   // file of the kernel
  bool TransCErr = false;   // cleared by check() with `Inverse`
  bool DumpKernel = false;  // write out the kernel; implies `Inverse`
  bool Inverse = false;     // inverse operation of the detector model
  std::uint64_t Count = 1;  // detector elements
  std::vector<T> Thickness{T(0.225)};  // of each element [cm]
  std::vector<T> lambdaE{T(100000)};   // length for electrons [cm]
  std::vector<T> lambdaH{T(100000)};   // length for holes [cm]
  std::vector<unsigned int> Steps{1};  // in each element
  T DeadTime = 0;                      // [s]
  T Fano = T(0.15);                    // Fano factor
  T PCE = T(0.00443);  // pair creation energy [keV], in texts [eV]
  T ENC = 1;           // equivalent noise charge [e-]
  T AngleIn = 90;      // incoming angle [deg], 1 to 90
  T AngleSide = 0;     // off-axis angle [deg], 0 up to below 90
  T MinEnergy = 0;     // lower threshold [keV]
  T MaxEnergy = std::numeric_limits<T>::infinity();  // upper threshold [keV]
  bool DoCTE = true;        // model charge transport efficiency
  bool DoCompton = true;    // model Compton scattering
  bool DoEscape = true;     // model escape
  bool DoFano = true;       // model Fano noise
  bool DoENC = true;        // model electronic noise
  bool DoPileUp = true;     // model pile-up
  bool DoThreshold = true;  // apply the energy thresholds

 protected:
  using Config<T>::parse;
  void parse(OptionMap const& options, bool chain) override;
};

extern template class PHOTARIUM_EXPORT DetectorConfig<double>;
