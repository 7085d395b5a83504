#include "photarium/config/GridConfig.h"

#include "photarium/config/table.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Format;
using Settings::Row;

template <class T>
constexpr Row<GridConfig, T> Rows[] = {
    {"GridFile", &GridConfig<T>::GridFile,
     "file of the energy grid; empty: the grid follows from kVp and EBin"},
    {"kVp", &GridConfig<T>::kVp, "tube voltage, upper end of the grid", "kV"},
    {"EBin", &GridConfig<T>::EBin, "bin width", "keV"},
    {"spectrum", &GridConfig<T>::spectrum, "the grid is one of a spectrum", "",
     Format::NoLine},
};

template <class T>
using Ahead = Bases<Config<T>>;

}  // namespace

template <class T>
void GridConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
  }
  parseRows(Rows<T>, *this, options, findings);
  findings.report();
}

template <class T>
std::string GridConfig<T>::write(std::string const& prefix, bool chain) const {
  return Ahead<T>::write(*this, prefix, chain) +
         writeRows(Rows<T>, *this, prefix);
}

template <class T>
std::vector<Setting> GridConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void GridConfig<T>::check() {
  Findings findings;
  if (GridFile.empty()) {
    findings.require(EBin > 0, "Unreasonable value for energy resolution.\n");
    findings.require(EBin < kVp, "Unreasonable value for maximum kVp.\n");
  }
  findings.report();
}

template class GridConfig<double>;
