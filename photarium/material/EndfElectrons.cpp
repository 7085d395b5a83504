#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "photarium/foundation/constants.h"
#include "photarium/material/EndfReader.h"
#include "photarium/material/readers.h"

// What the ENDF reader does with the spectra of bremsstrahlung and the angular
// distribution of elastic scattering.

namespace {

// Nodes of a bremsstrahlung row between 0 and the energy of the electron.
constexpr int FractionCount = 100;

}  // namespace

// Bremsstrahlung spectra: a table of yields, which is passed over, then the
// number of records, then a record for each energy of the electron.

template <class T>
void EndfReader<T>::readSpectra() {
  if (isSpectrumLine() && readData()) readSpectrum();
}

template <class T>
bool EndfReader<T>::isSpectrumLine() {
  if (ns_ == 1) {
    beginSpectra();
    return false;
  }
  if (ns_ == 2) {
    if (number(33) != 1)
      throw std::runtime_error("Non-conforming ENDF database!");
    size_ = 0;
    inYields_ = true;
  } else if (count_ < size_) {
    return true;
  } else if (size_ != 0 && !inYields_) {
    return false;
  } else {
    inYields_ = false;
  }
  recordLaw_ = Law(static_cast<int>(whole(33)));
  beginRanges();
  recordSize_ = recordCount_ = 0;
  return false;
}

template <class T>
void EndfReader<T>::beginSpectra() {
  if (bremsstrahlung_.empty())
    throw std::runtime_error(
        "Found bremsstrahlung spectra, but no cross section!");
  if (bremsSize_ == bremsstrahlung_.size()) return;
  bremsSize_ = bremsstrahlung_.size();
  for (auto const& stretch : bremsstrahlung_)
    countStored(1 + stretch.first.size());
  bremsCurve_ = Curve::fromSorted(bremsstrahlung_, T(1000000), /*linear=*/true);
}

template <class T>
void EndfReader<T>::readSpectrum() {
  if (inYields_) {
    count_ += 3;
    return;
  }
  if (recordCount_ >= recordSize_) return beginSpectrum();
  for (std::size_t i = 0; i < fields_.size(); i += 2) {
    fields_[i] /= 1000;            // eV to keV
    fields_[i + 1] *= fields_[i];  // number of photons to their energy
  }
  addPoints(recordCount_, recordSize_);
  if (recordCount_ >= recordSize_) storeSpectrum();
}

template <class T>
void EndfReader<T>::beginSpectrum() {
  energy_ = number(11) / 1000;
  bool const isPlain = whole(22) == 0 && whole(33) == 0;
  recordSize_ = whole(55);
  if (!isPlain || whole(44) != 2 * recordSize_)
    throw std::runtime_error("Unable to parse:\n" + std::string(line_));
  recordCount_ = 0;
  clearPoints();
}

// The spectrum on fractions of the electron's energy: beta k dsigma/dk [mb].
template <class T>
void EndfReader<T>::storeSpectrum() {
  ++count_;
  if (spectra_.size() >= LargestTable / FractionCount)
    throw std::runtime_error("Bremsstrahlung table is too large");
  sortPoints();
  Curve const spectrum = Curve::fromSorted(
      {{points_, recordLaw_, /*cubic=*/false}}, T(1), /*linear=*/true);
  T const scale = bremsCurve_(energy_, /*extrapolate=*/true) * beta(energy_);
  std::map<T const, T> row;
  for (int i = 1; i <= FractionCount; ++i) {
    T const fraction = T(i) / FractionCount;
    row.emplace_hint(
        row.end(), fraction,
        spectrum(fraction * energy_, /*extrapolate=*/true) * scale);
  }
  spectra_.insert_or_assign(beta(energy_), LSpline<T, T>(row));
}

// Angular distribution: a record for each energy of the electron.

template <class T>
void EndfReader<T>::readAngles() {
  if (ns_ == 5) beginAngles();
  if (ns_ >= 7 && readData()) readAngle();
}

template <class T>
void EndfReader<T>::beginAngles() {
  size_ = whole(55);
  count_ = 0;
  recordSize_ = recordCount_ = 0;
  inRanges_ = false;
  cosines_.clear();
}

template <class T>
void EndfReader<T>::readAngle() {
  if (recordCount_ < recordSize_) {
    addPoints(recordCount_, recordSize_);
    if (recordCount_ >= recordSize_) storeAngles();
    return;
  }
  energy_ = number(11) / 1000;
  recordSize_ = whole(55);
  recordCount_ = 0;
  clearPoints();
}

// Integrates the density to the cumulative distribution.
template <class T>
void EndfReader<T>::storeAngles() {
  ++count_;
  sortPoints();
  T before = -1;
  T densityBefore = 0;
  T sum = 0;
  std::vector<T> cosines;
  std::vector<T> values;
  for (auto const& [cosine, density] : points_) {
    if (cosine < before || cosine > 1 || density <= 0)
      throw std::runtime_error("Impossible angle distribution value: " +
                               std::string(line_));
    sum += (density + densityBefore) * T(0.5) * (cosine - before);
    if (cosines.empty() || cosines.back() != cosine) {
      cosines.push_back(cosine);
      values.push_back(0);
    }
    values.back() = std::min(sum, T(1));
    before = cosine;
    densityBefore = density;
  }
  cosines_.insert(cosines_.end(), cosines.begin(), cosines.end());
  if (cosines.back() != 1) {
    cosines.push_back(1);
    values.push_back(1);
  }
  angles_.insert_or_assign(std::log10(energy_), LSpline<T, T>(cosines, values));
}

// The rows on the cosines of all of them.
template <class T>
BiLSpline<T, T> EndfReader<T>::angleTable() {
  if (angles_.empty()) return {};
  std::stable_sort(cosines_.begin(), cosines_.end());
  cosines_.erase(std::unique(cosines_.begin(), cosines_.end()), cosines_.end());
  if (cosines_.size() > LargestTable / angles_.size())
    throw std::runtime_error("Angular distribution is too large");
  std::vector<T> values(cosines_.size());
  for (auto& [energy, row] : angles_) {
    for (std::size_t i = 0; i < values.size(); ++i)
      values[i] = row.template at<true, true>(cosines_[i]);
    row = LSpline<T, T>(cosines_, values);
  }
  BiLSpline<T, T> table(angles_);
  angles_.clear();
  return table;
}

template void EndfReader<double>::readSpectra();
template void EndfReader<double>::readAngles();
template BiLSpline<double, double> EndfReader<double>::angleTable();
