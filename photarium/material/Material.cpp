#include "photarium/material/Material.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "photarium/foundation/elements.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/material/readers.h"

namespace {

// The atomic number of a symbol, 0 if it is none.
std::size_t numberOf(std::string const& symbol) {
  for (std::size_t z = 1; z < ElementsCount; ++z)
    if (symbol == Elements[z]) return z;
  return 0;
}

}  // namespace

template <class T>
Material<T>::Material(T z, T a, T density) : Z(z), A(a), Density(density) {
  search();
}

template <class T>
Material<T>::Material(std::string name, T z, T a, T density)
    : Name(std::move(name)), Z(z), A(a), Density(density) {
  search();
}

template <class T>
void Material<T>::search() {
  bool nameless = Name.empty();
  std::vector<std::string> const words =
      split<std::string>(Name, Blanks, /*keepEmpty=*/false);
  std::uint32_t number = 0;
  std::string_view word = words.size() == 1 ? words[0] : std::string_view();
  if (extractNumber(word, number) && number != 0) {
    Z = T(number);
    nameless = true;
  } else if (std::size_t const z = numberOf(Name)) {
    Z = T(z);
  }
  if (Z > 0 && Z < T(ElementsCount)) {
    auto const row = static_cast<std::size_t>(Z);  // Z need not be whole
    if (nameless) Name = Elements[row];
    if (Density <= 0) Density = T(Densities[row]);
    if (A <= 0) A = T(MassNumbers[row]);
  }
  if (EnergyLoss.empty()) EnergyLoss[EnergyLossConstants<T>(Z, T(0))] = 1;
}

template <class T>
void Material<T>::initDataVec(std::vector<Stretch>& data, T const& threshold) {
  data.push_back(zeroUpTo<Stretch>(threshold));
}

template <class T>
void Material<T>::initPairData(std::vector<Stretch>& data) {
  initDataVec(data, T(PairThreshold));
}

template class Material<double>;
