#include "photarium/config/MaterialConfig.h"

#include "photarium/config/table.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Format;
using Settings::Row;

template <class T>
constexpr Row<MaterialConfig, T> Rows[] = {
    {"CorrFile", &MaterialConfig<T>::CorrFile,
     "corrections of stopping constants"},
    {"Material", &MaterialConfig<T>::Material,
     "name or formula, its case kept"},
    {"Density", &MaterialConfig<T>::Density, "density; negative: looked up",
     "g/cm^3", Format::Scientific},
    {"MeanExcitationPotential", &MaterialConfig<T>::MeanExcitationPotential,
     "mean excitation potential; negative: looked up", "keV",
     Format::Scientific},
};

template <class T>
using Ahead = Bases<Config<T>>;

}  // namespace

template <class T>
void MaterialConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
  }
  parseRows(Rows<T>, *this, options, findings);
  findings.report();
}

template <class T>
std::string MaterialConfig<T>::write(std::string const& prefix,
                                     bool chain) const {
  return Ahead<T>::write(*this, prefix, chain) +
         writeRows(Rows<T>, *this, prefix);
}

template <class T>
std::vector<Setting> MaterialConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void MaterialConfig<T>::check() {
  Findings findings;
  findings.require(Density > 0, "Density not larger than zero!\n");
  findings.report();
}

template class MaterialConfig<double>;
