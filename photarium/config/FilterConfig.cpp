#include "photarium/config/FilterConfig.h"

#include <cmath>

#include "photarium/config/table.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Format;
using Settings::Row;

template <class T>
constexpr Row<FilterConfig, T> Rows[] = {
    {"Steps", &FilterConfig<T>::Steps, "steps through the thickness", "1"},
    {"Coverage", &FilterConfig<T>::Coverage,
     "covered fraction of the area, above 0 to 1", "1"},
    {"Inverse", &FilterConfig<T>::Inverse, "undo the filter"},
    {"Coherent", &FilterConfig<T>::Coherent, "follow coherent scattering"},
    {"Incoherent", &FilterConfig<T>::Incoherent,
     "follow incoherent scattering"},
    {"Pair", &FilterConfig<T>::Pair, "follow pair production"},
    {"Fluorescence", &FilterConfig<T>::Fluorescence, "follow fluorescence"},
    {"ScatterAngle", &FilterConfig<T>::ScatterAngle,
     "scattering angle, above 0 to 180", "degrees"},
    {"compton", &FilterConfig<T>::Incoherent, "another name of incoherent", "",
     Format::NoLine},
};

template <class T>
using Ahead =
    Bases<Config<T>, ScalingConfig<T>, GeometryConfig<T>, MaterialConfig<T>>;

template <class T>
void checkScatterAngle(T& angle, Findings& findings) {
  std::string const line = "Scatter angle (" + Settings::generalText(angle) +
                           ") not >0 and <=180 degrees!\n";
  findings.require(angle > 0, line);
  if (angle > 180) {
    findings.soft(line);
    angle = 180;
  }
}

}  // namespace

template <class T>
FilterConfig<T>::FilterConfig() {
  this->Material = "Be";
}

template <class T>
void FilterConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
    findings.gather([&] { ScalingConfig<T>::parse(options, false); });
    findings.gather([&] { GeometryConfig<T>::parse(options, false); });
    findings.gather([&] { MaterialConfig<T>::parse(options, false); });
  }
  parseRows(Rows<T>, *this, options, findings);
  findings.report();
}

template <class T>
std::string FilterConfig<T>::write(std::string const& prefix,
                                   bool chain) const {
  return Ahead<T>::write(*this, prefix, chain) +
         writeRows(Rows<T>, *this, prefix);
}

template <class T>
std::vector<Setting> FilterConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void FilterConfig<T>::check() {
  Findings findings;
  Bases<Config<T>, GeometryConfig<T>, MaterialConfig<T>>::check(*this,
                                                                findings);
  if (this->Thickness < 0) {
    Inverse = true;
    this->Thickness = std::abs(this->Thickness);
  }
  if (Steps == 0) Steps = 1;
  if ((Incoherent || Pair || Fluorescence) && Steps < 2) Steps = 10;
  if (!(Coverage > 0) || Coverage > 1)
    findings.hard("Area coverage (" + Settings::generalText(Coverage) +
                  ") not >0 and <=1!\n");
  if (Incoherent) checkScatterAngle(ScatterAngle, findings);
  findings.report();
}

template class FilterConfig<double>;
