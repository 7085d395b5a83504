#include "photarium/config/MathConfig.h"

#include "photarium/config/table.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Row;

template <class T>
constexpr Row<MathConfig, T> Rows[] = {
    {"Operation", &MathConfig<T>::Operation,
     "+ or add, - or subtract, * or multiply, / or divide, rebin"},
    {"Extrapolate", &MathConfig<T>::Extrapolate,
     "continue spectra beyond their nodes"},
    {"Cubic", &MathConfig<T>::Cubic, "cubic instead of linear interpolation"},
};

template <class T>
using Ahead = Bases<Config<T>, GridConfig<T>>;

}  // namespace

template <class T>
void MathConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
    findings.gather([&] { GridConfig<T>::parse(options, false); });
  }
  parseRows(Rows<T>, *this, options, findings);
  findings.report();
}

template <class T>
std::string MathConfig<T>::write(std::string const& prefix, bool chain) const {
  return Ahead<T>::write(*this, prefix, chain) +
         writeRows(Rows<T>, *this, prefix);
}

template <class T>
std::vector<Setting> MathConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void MathConfig<T>::check() {
  Findings findings;
  Ahead<T>::check(*this, findings);
  findings.report();
}

template class MathConfig<double>;
