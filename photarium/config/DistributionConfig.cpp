#include "photarium/config/DistributionConfig.h"

#include <algorithm>

#include "photarium/config/table.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Format;
using Settings::Row;

template <class T>
constexpr Row<DistributionConfig, T> Rows[] = {
    {"Cubic", &DistributionConfig<T>::Cubic,
     "cubic instead of linear interpolation"},
    {"Steps", &DistributionConfig<T>::Steps, "number of steps"},
    {"estar", &DistributionConfig<T>::estar, "a switch for programs", "",
     Format::NoLine},
};

template <class T>
using Ahead = Bases<Config<T>, GridConfig<T>, MaterialConfig<T>>;

}  // namespace

template <class T>
void DistributionConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
    findings.gather([&] { GridConfig<T>::parse(options, false); });
    findings.gather([&] { MaterialConfig<T>::parse(options, false); });
  }
  parseRows(Rows<T>, *this, options, findings);
  findings.report();
}

template <class T>
std::string DistributionConfig<T>::write(std::string const& prefix,
                                         bool chain) const {
  return Ahead<T>::write(*this, prefix, chain) +
         writeRows(Rows<T>, *this, prefix);
}

template <class T>
std::vector<Setting> DistributionConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void DistributionConfig<T>::check() {
  Findings findings;
  Bases<GridConfig<T>, MaterialConfig<T>>::check(*this, findings);
  if (Steps < 1001)
    findings.soft("Unusually small number of steps configured.\n");
  Steps = std::max(Steps, std::uint64_t{11});
  findings.report();
}

template class DistributionConfig<double>;
