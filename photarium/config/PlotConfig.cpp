#include "photarium/config/PlotConfig.h"

#include "photarium/config/table.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Format;
using Settings::Row;

template <class T>
constexpr Row<PlotConfig, T> Rows[] = {
    {"PCE", &PlotConfig<T>::PCE, "pair creation energy", "eV", Format::Fixed,
     1000},
    {"Absorption", &PlotConfig<T>::Absorption, "photoelectric absorption"},
    {"Coherent", &PlotConfig<T>::Coherent, "coherent scattering"},
    {"Incoherent", &PlotConfig<T>::Incoherent, "incoherent scattering"},
    {"Pair", &PlotConfig<T>::Pair, "pair production"},
    {"Efficiency", &PlotConfig<T>::Efficiency, "print efficiency"},
    {"Extrapolate", &PlotConfig<T>::Extrapolate,
     "continue curves beyond their nodes"},
    {"FormFactor", &PlotConfig<T>::FormFactor, "form factor"},
    {"ScatFunc", &PlotConfig<T>::ScatFunc, "incoherent scattering function"},
    {"ImagFactor", &PlotConfig<T>::ImagFactor,
     "imaginary anomalous scattering factor"},
    {"RealFactor", &PlotConfig<T>::RealFactor,
     "real anomalous scattering factor"},
    {"eElScatter", &PlotConfig<T>::eElScatter,
     "elastic scattering of electrons"},
    {"ACRP", &PlotConfig<T>::ACRP, "table of all four cross sections", "",
     Format::NoLine},
};

template <class T>
using Ahead =
    Bases<Config<T>, GridConfig<T>, GeometryConfig<T>, MaterialConfig<T>>;

// Keeps the strongest of what is no cross section, and drops these.
template <class T>
void keepSpecial(PlotConfig<T>& c, Findings& findings) {
  if (c.eElScatter) {
    c.FormFactor = c.ScatFunc = c.ImagFactor = c.RealFactor = false;
  } else {
    if (c.FormFactor) c.ScatFunc = false;
    if (c.FormFactor || c.ScatFunc) c.RealFactor = false;
    if (c.FormFactor || c.ScatFunc || c.RealFactor) c.ImagFactor = false;
    char const* const kept = c.FormFactor ? "form factor"
                             : c.ScatFunc ? "scattering function"
                                          : "anomalous scattering factor";
    if (c.Efficiency)
      findings.soft(std::string("Efficiency doesn't make sense for ") + kept +
                    "!\n");
    c.Efficiency = false;
  }
  c.Absorption = c.Coherent = c.Incoherent = c.Pair = false;
}

}  // namespace

template <class T>
PlotConfig<T>::PlotConfig() {
  this->spectrum = false;
}

template <class T>
void PlotConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
    findings.gather([&] { GridConfig<T>::parse(options, false); });
    findings.gather([&] { GeometryConfig<T>::parse(options, false); });
    findings.gather([&] { MaterialConfig<T>::parse(options, false); });
  }
  parseRows(Rows<T>, *this, options, findings);
  findings.report();
}

template <class T>
std::string PlotConfig<T>::write(std::string const& prefix, bool chain) const {
  return Ahead<T>::write(*this, prefix, chain) +
         writeRows(Rows<T>, *this, prefix);
}

template <class T>
std::vector<Setting> PlotConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void PlotConfig<T>::check() {
  Findings findings;
  Bases<Config<T>, GridConfig<T>, MaterialConfig<T>>::check(*this, findings);
  bool const isCrossSection =
      Absorption || Coherent || Incoherent || Pair || ACRP;
  int const special =
      FormFactor + ScatFunc + ImagFactor + RealFactor + eElScatter;
  int const kinds = special + isCrossSection;
  if (kinds > 1) findings.soft("Different types of data cannot be combined!\n");
  findings.require(kinds > 0, "Nothing to plot!\n");
  if (special > 0) keepSpecial(*this, findings);
  findings.report();
}

template class PlotConfig<double>;
