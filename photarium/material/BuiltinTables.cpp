#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "photarium/config/SpectConfig.h"
#include "photarium/foundation/bremsstrahlung_tables.h"
#include "photarium/foundation/constants.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/parallel.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "photarium/spline/BiCSpline.h"
#include "photarium/spline/CSpline.h"
#include "photarium/spline/TriCSpline.h"

namespace {

// A block of values over atomic number, energy of the electron [keV] and photon
// energy as a fraction of it, the last one running fastest.
struct Block {
  std::span<unsigned int const> numbers;
  std::span<double const> energies;
  std::span<double const> fractions;
  double const* values;

  std::size_t size() const { return numbers.size() * surfaceSize(); }
  std::size_t surfaceSize() const { return energies.size() * fractions.size(); }

  // The index of `Z`, the count of numbers if it is none of them.
  template <class T>
  std::size_t find(T Z) const {
    return static_cast<std::size_t>(
        std::ranges::find(numbers, static_cast<double>(Z)) - numbers.begin());
  }
};

Block crossSection() {
  return {ZXSpec, EXSpec, TransXSpec, XSpecValues};
}

Block shapeCoefficient(std::size_t c) {
  Block block{ZShape, EShape, TransShape, ShapeValues};
  block.values += c * block.size();
  return block;
}

// The values of the element at index `z` over beta and the fraction.
template <class T>
BiCSpline<T, T> surface(Block const& block, std::size_t z) {
  std::vector<T> const fractions(block.fractions.begin(),
                                 block.fractions.end());
  std::vector<T> velocities;
  std::vector<CSpline<T, T>> curves;
  double const* row = block.values + z * block.surfaceSize();
  for (double const energy : block.energies) {
    std::vector<T> const values(row, row + fractions.size());
    velocities.push_back(beta(T(energy)));
    curves.emplace_back(fractions, values);
    row += fractions.size();
  }
  return {velocities, curves};
}

// The surface at a `Z` between or beyond the tabulated ones, from those.
template <class T>
BiCSpline<T, T> interpolated(Block const& block, T Z,
                             std::vector<BiCSpline<T, T>> const& surfaces) {
  std::vector<T> const numbers(block.numbers.begin(), block.numbers.end());
  TriCSpline<T, T> const family(numbers, surfaces);
  return family(Z, /*sequential=*/false, /*extrapolate=*/true);
}

// What the user must know of data that no table has for this material.
template <class T>
warning interpolation(char const* what, T Z, std::string const& name) {
  std::string text = what;
  text += " interpolated for Z=";
  appendGeneral(text, static_cast<double>(Z));
  if (!name.empty()) text += " (" + name + ")";
  return warning(text);
}

// Appends the warning of `step` to `findings`.
template <class Step>
void gather(std::string& findings, Step const& step) {
  try {
    step();
  } catch (warning const& finding) {
    findings += finding.what();
    findings += '\n';
  }
}

}  // namespace

template <class T>
void Material<T>::readSigma() {
  Block const block = crossSection();
  std::size_t const count = block.numbers.size();
  if (std::size_t const z = block.find(Z); z < count) {
    BremsSigma = surface<T>(block, z);
    return;
  }
  if (!BremsSigma.empty()) return;
  std::vector<BiCSpline<T, T>> surfaces(count);
  forEachIndex(count,
               [&](std::size_t z) { surfaces[z] = surface<T>(block, z); });
  BremsSigma = interpolated(block, Z, surfaces);
  throw interpolation("Bremsstrahlung cross sections", Z, Name);
}

template <class T>
void Material<T>::readShape() {
  std::size_t const z = shapeCoefficient(0).find(Z);
  if (z < std::size(ZShape)) {
    forEachIndex(Shape.size(), [&](std::size_t c) {
      Shape[c] = surface<T>(shapeCoefficient(c), z);
    });
    return;
  }
  if (!Shape[0].empty()) return;
  forEachIndex(Shape.size(), [&](std::size_t c) {
    Block const block = shapeCoefficient(c);
    std::vector<BiCSpline<T, T>> surfaces;
    for (std::size_t i = 0; i < block.numbers.size(); ++i)
      surfaces.push_back(surface<T>(block, i));
    Shape[c] = interpolated(block, Z, surfaces);
  });
  throw interpolation("Bremsstrahlung shape functions", Z, Name);
}

template <class T>
void Material<T>::update(SpectConfig<T>& config) {
  std::string findings;
  gather(findings, [&] { update(static_cast<MaterialConfig<T>&>(config)); });
  if (!config.Pratt && TabSigma.empty()) {
    findings +=
        "No tabulated bremsstrahlung cross section found, switching to builtin "
        "one.\n";
    config.Pratt = true;
  }
  if (config.Pratt) gather(findings, [&] { readSigma(); });
  if (config.ShapeFct) gather(findings, [&] { readShape(); });
  if (!findings.empty()) throw warning(findings);
}

template void Material<double>::readSigma();
template void Material<double>::readShape();
template void Material<double>::update(SpectConfig<double>&);
