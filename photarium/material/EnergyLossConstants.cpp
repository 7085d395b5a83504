#include "photarium/material/EnergyLossConstants.h"

#include <cmath>
#include <cstddef>
#include <iterator>

#include "photarium/material/radiative_loss_table.h"

namespace {

// What the printed columns are divided by.
constexpr double PrintedScale[] = {1, 10, 10, 100, 1000, 10, 10, 100, 1000};

}  // namespace

template <class T>
void EnergyLossConstants<T>::init(T Z, T mean) {
  J = C = x0 = x1 = m = a = delta0 = Ef = RL[0] = 0;
  if (Z > 0) {
    if (Z < T(std::size(RadiativeLoss)))
      initRL(RadiativeLoss[static_cast<std::size_t>(Z)]);
    // [keV]; the fit of M. J. Berger, S. M. Seltzer, NASA SP-3012 (1964), and
    // 13.6 eV a charge for the light elements, where it does not hold.
    J = Z < 10 ? Z * T(0.0136)
               : std::pow(Z, T(-0.19)) * T(0.05882) + Z * T(0.00976);
  }
  if (mean > 0) J = mean;
}

template <class T>
void EnergyLossConstants<T>::initRL(T const* const row) {
  for (std::size_t i = 0; i < RL.size(); ++i) RL[i] = row[i] / PrintedScale[i];
}

template class EnergyLossConstants<double>;
