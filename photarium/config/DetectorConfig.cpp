#include "photarium/config/DetectorConfig.h"

#include <algorithm>

#include "photarium/config/angles.h"
#include "photarium/config/table.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Format;
using Settings::Row;
using Settings::Value;

template <class T>
constexpr Row<DetectorConfig, T> Rows[] = {
    {"TransFile", &DetectorConfig<T>::TransFile,
     "file for the users of a program"},
    {"Angle-In", &DetectorConfig<T>::AngleIn,
     "incoming angle to the surface, 1 to 90", "deg"},
    {"Angle-Side", &DetectorConfig<T>::AngleSide,
     "off-axis angle, 0 up to below 90", "deg"},
    {"DeadTime", &DetectorConfig<T>::DeadTime, "dead time", "s",
     Format::Scientific},
    {"Fano", &DetectorConfig<T>::Fano, "Fano factor", "1"},
    {"PCE", &DetectorConfig<T>::PCE, "pair creation energy", "eV",
     Format::Fixed, 1000},
    {"ENC", &DetectorConfig<T>::ENC, "equivalent noise charge", "e-"},
    {"Count", &DetectorConfig<T>::Count,
     "number of elements, at most 10000; negative: inverse", "1"},
    {"Thickness", &DetectorConfig<T>::Thickness, "thickness of each element",
     "cm"},
    {"lambdaE", &DetectorConfig<T>::lambdaE,
     "length for electrons in each element", "cm"},
    {"lambdaH", &DetectorConfig<T>::lambdaH, "length for holes in each element",
     "cm"},
    {"Steps", &DetectorConfig<T>::Steps, "steps of each element", "1"},
    {"Min-Energy", &DetectorConfig<T>::MinEnergy, "lower threshold, may be inf",
     "keV"},
    {"Max-Energy", &DetectorConfig<T>::MaxEnergy, "upper threshold, may be inf",
     "keV"},
    {"Do-CTE", &DetectorConfig<T>::DoCTE, "model charge transport efficiency"},
    {"Do-Compton", &DetectorConfig<T>::DoCompton, "model Compton scattering"},
    {"Do-Escape", &DetectorConfig<T>::DoEscape, "model escape"},
    {"Do-Fano", &DetectorConfig<T>::DoFano, "model Fano noise"},
    {"Do-ENC", &DetectorConfig<T>::DoENC, "model electronic noise"},
    {"Do-PileUp", &DetectorConfig<T>::DoPileUp, "model pile-up"},
    {"Do-Threshold", &DetectorConfig<T>::DoThreshold,
     "apply the energy thresholds"},
    {"Inverse", &DetectorConfig<T>::Inverse,
     "inverse operation of the detector model"},
    {"KernelFile", &DetectorConfig<T>::KernelFile, "file of the kernel", "",
     Format::NoLine},
    {"TransCErr", &DetectorConfig<T>::TransCErr, "a switch that inverse clears",
     "", Format::NoLine},
    {"DumpKernel", &DetectorConfig<T>::DumpKernel,
     "write out the kernel; implies inverse", "", Format::NoLine},
};

template <class T>
using Ahead = Bases<Config<T>, ScalingConfig<T>, MaterialConfig<T>>;

// Sets the size; new elements are like the first.
template <class V>
void spread(std::vector<V>& values, std::size_t size) {
  V const first = values.empty() ? V() : values[0];
  values.resize(size, first);
}

template <class T>
void resize(DetectorConfig<T>& config, std::size_t count) {
  config.Count = count;
  spread(config.Thickness, count);
  spread(config.lambdaE, count);
  spread(config.lambdaH, count);
  spread(config.Steps, count);
}

}  // namespace

template <class T>
DetectorConfig<T>::DetectorConfig() {
  this->Material = "CdTe";
}

template <class T>
void DetectorConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
    findings.gather([&] { ScalingConfig<T>::parse(options, false); });
    findings.gather([&] { MaterialConfig<T>::parse(options, false); });
  }
  auto const limit = [&](Value& value, T& field) {
    value.through([&](std::istream& in) { Config<T>::parse(in, field); });
  };
  auto const special = [&](std::string const& key, Value& value) {
    if (key == "count")
      parseCount(value, "detector elements", findings,
                 [&](std::size_t count, bool isNegative) {
                   Inverse = isNegative;
                   resize(*this, count);
                 });
    else if (key == "min-energy")
      limit(value, MinEnergy);
    else if (key == "max-energy")
      limit(value, MaxEnergy);
    else
      return false;
    return true;
  };
  parseRows(Rows<T>, *this, options, findings, special);
  findings.report();
}

template <class T>
std::string DetectorConfig<T>::write(std::string const& prefix,
                                     bool chain) const {
  return Ahead<T>::write(*this, prefix, chain) +
         writeRows(Rows<T>, *this, prefix);
}

template <class T>
std::vector<Setting> DetectorConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void DetectorConfig<T>::check() {
  Findings findings;
  Bases<Config<T>, MaterialConfig<T>>::check(*this, findings);
  findings.require(Count != 0, "Zero detector elements configured!\n");
  Settings::checkAngleIn(AngleIn, findings);
  Settings::checkAngleSide(AngleSide, findings);
  if (MinEnergy < 0 || MaxEnergy < 0 || MaxEnergy < MinEnergy) {
    char const* const line = "Invalid energy threshold.\n";
    if (DoThreshold)
      findings.hard(line);
    else
      findings.soft(line);
  }
  bool const isThick = std::all_of(Thickness.begin(), Thickness.end(),
                                   [](T t) { return t > 0; });
  findings.require(isThick,
                   "Non-positive detector element thickness configured!\n");
  if (DumpKernel) Inverse = true;
  if (Inverse) TransCErr = false;
  for (auto& steps : Steps) steps = std::max(steps, 1U);
  findings.report();
}

template class DetectorConfig<double>;
