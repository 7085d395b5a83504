#include "photarium/material/EndfReader.h"

#include <algorithm>
#include <cstring>
#include <istream>
#include <sstream>
#include <stdexcept>

#include "photarium/foundation/constants.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/material/readers.h"

namespace {

// Sublibraries by their number NSUB.
constexpr std::uint32_t PhotoAtomic = 3;
constexpr std::uint32_t AtomicRelaxation = 6;
constexpr std::uint32_t ElectroAtomic = 113;

constexpr std::size_t ColumnsPerPoint = 2 * EndfFieldWidth;
constexpr std::size_t ColumnsPerLine = 80;

// How often the points of a text may be stored, see countStored().
constexpr std::size_t MostCopies = 4;

// Room for `count` items of `columns` each, or for as many as `text` can hold:
// the counts of a file are not to be trusted.
std::size_t plausible(std::uint32_t count, std::string_view text,
                      std::size_t columns) {
  return std::min<std::size_t>(count, text.size() / columns + 1);
}

// The part of `text` from `offset` on, empty if it is shorter.
std::string_view from(std::string_view text, std::size_t offset) {
  return text.substr(std::min(text.size(), offset));
}

}  // namespace

template <class T>
void EndfReader<T>::read(std::string_view text) {
  using M = Material<T>;
  rest_ = text;
  storable_ = MostCopies * (text.size() / ColumnsPerPoint);
  results_ = {{&M::Absorption, {}, true},       {&M::Coherent, {}, true},
              {&M::Incoherent, {}, true},       {&M::Pair, {}, true},
              {&M::ElectronElastic, {}, true},  {&M::FormFactor, {}, false},
              {&M::ScatterFunction, {}, false}, {&M::AnomalousImag, {}, false},
              {&M::AnomalousReal, {}, false}};
  results_[Pair].data.push_back(
      zeroUpTo<typename Curve::Stretch>(T(PairThreshold)));
  if (material_.Z <= 99) {
    appendGeneral(targetMat_, material_.Z * 100);
    if (targetMat_.size() < 4) targetMat_.insert(0, 4 - targetMat_.size(), ' ');
  }
  while (nextLine()) {
    readControl();
    if (isEnd()) break;
    readLine();
  }
  finish();
}

// Lines.

template <class T>
bool EndfReader<T>::nextLine() {
  if (rest_.empty()) return false;
  std::size_t const end = rest_.find('\n');
  line_ = rest_.substr(0, end);
  rest_.remove_prefix(end == rest_.npos ? rest_.size() : end + 1);
  return true;
}

// Missing control columns count as blank.
template <class T>
void EndfReader<T>::readControl() {
  constexpr std::size_t sectionWidth = 9;
  if (line_.size() < EndfControlColumn)
    throw std::out_of_range("invalid string position");
  std::string_view const control = line_.substr(EndfControlColumn);
  std::string_view const text = control.substr(0, sectionWidth);
  ns_ = endfControl(from(control, sectionWidth).substr(0, 5));
  bool const isSame =
      text.size() == sectionWidth && sectionText_.size() == sectionWidth &&
      std::memcmp(text.data(), sectionText_.data(), sectionWidth) == 0;
  if (isSame) return;
  sectionText_ = text;
  mat_ = text.substr(0, 4);
  z_ = endfControl(text.substr(0, 2));
  mf_ = endfControl(from(text, 4).substr(0, 2));
  mt_ = endfControl(from(text, 6));
  enterSection();
}

template <class T>
bool EndfReader<T>::isEnd() const {
  return mat_ == "  -1" && mf_ == 0 && mt_ == 0 && ns_ == 0;
}

template <class T>
void EndfReader<T>::enterSection() {
  section_ = isWanted() ? section() : Skipped;
  if (section_ == Skipped) return;
  material_.A = weight_;
  factor_ = Constants::Na / material_.A * 1e-24;
  target_ = target();
}

template <class T>
bool EndfReader<T>::isWanted() const {
  if (isHead()) return false;  // for any material, see readLine()
  if (sublibrary_ != PhotoAtomic && sublibrary_ != AtomicRelaxation &&
      sublibrary_ != ElectroAtomic)
    return false;
  return mat_ == targetMat_ || mat_ == material_.Name;
}

template <class T>
typename EndfReader<T>::Section EndfReader<T>::section() const {
  if (mf_ == 28 && sublibrary_ == AtomicRelaxation) return Transitions;
  if (mf_ == 23 || mf_ == 27) return Tables;
  if (mf_ != 26 || sublibrary_ != ElectroAtomic) return Other;
  return mt_ == 527 ? Spectra : mt_ == 526 ? Angles : Other;
}

template <class T>
void EndfReader<T>::readLine() {
  if (isHead()) return readHead();
  switch (section_) {
    case Skipped:
      return;
    case Transitions:
      return readTransitions();
    case Tables:
      return readTable();
    case Spectra:
      return readSpectra();
    case Angles:
      return readAngles();
    case Other:
      return readOther();
  }
}

template <class T>
std::string_view EndfReader<T>::field(std::size_t offset) const {
  return line_.substr(offset, EndfFieldWidth);
}

template <class T>
T EndfReader<T>::number(std::size_t offset) const {
  double value = 0;
  if (!endfNumber(field(offset), value))
    throw std::runtime_error(endfError(field(offset)));
  return T(value);
}

template <class T>
std::uint32_t EndfReader<T>::whole(std::size_t offset) const {
  std::uint32_t value = 0;
  if (!endfNumber(field(offset), value))
    throw std::runtime_error(endfError(field(offset)));
  return value;
}

// A line with a field that is no number is dropped.
template <class T>
bool EndfReader<T>::readFields() {
  if (endfFields(line_, fields_) != EndfNoField) return false;
  isFound_ = true;
  return true;
}

// What sections share.

// True if the line holds data of its section.
template <class T>
bool EndfReader<T>::readData() {
  if (ns_ < 2 || !readFields()) return false;
  if (!inRanges_) return true;
  readRanges();
  return false;
}

template <class T>
void EndfReader<T>::readRanges() {
  for (std::uint32_t i = 0; i < 3; ++i)
    if (count_ + i < rangeCount_)
      ranges_.emplace_back(wholeNumber<unsigned int>(fields_[2 * i]),
                           Law(wholeNumber<int>(fields_[2 * i + 1])));
  isStored_.reset();
  count_ += 3;
  if (count_ < rangeCount_) return;
  inRanges_ = false;
  count_ = 0;
}

template <class T>
void EndfReader<T>::beginRanges() {
  rangeCount_ = whole(44);
  size_ = whole(55);
  inRanges_ = rangeCount_ > 0;
  ranges_.clear();
  isStored_.reset();
  count_ = 0;
}

template <class T>
void EndfReader<T>::clearPoints() {
  points_.clear();
  isStored_.reset();
}

template <class T>
void EndfReader<T>::addPoints(std::uint32_t& count, std::uint32_t limit) {
  for (std::size_t i = 0; i < fields_.size() && count < limit; i += 2, ++count)
    points_.emplace_back(fields_[i], fields_[i + 1]);
}

// Points of equal abscissa stay in the order of the text.
template <class T>
void EndfReader<T>::sortPoints() {
  auto const isBelow = [](auto const& a, auto const& b) {
    return a.first < b.first;
  };
  if (!std::is_sorted(points_.begin(), points_.end(), isBelow))
    std::stable_sort(points_.begin(), points_.end(), isBelow);
}

// A database stores each of its points once. Sections without their heads may
// store those of others again and again: that must not fill the memory.
template <class T>
void EndfReader<T>::countStored(std::size_t count) {
  if (count > storable_) throw std::runtime_error("Tables are too large");
  storable_ -= count;
}

template <class T>
void EndfReader<T>::readOther() {
  if (inRanges_ || !isFound_) readData();
}

// File head.

template <class T>
void EndfReader<T>::readHead() {
  if (ns_ == 1) weight_ = number(11) * T(NeutronWeight);
  if (ns_ == 3) sublibrary_ = whole(44);
  if (ns_ != 5 || trimmed(line_.substr(4, 2)) != material_.Name) return;
  material_.Z = T(z_);
  targetMat_ = mat_;
}

// Atomic relaxation: for each level its energy, then its transitions.

template <class T>
void EndfReader<T>::readTransitions() {
  if (ns_ == 1) {
    levelCount_ = whole(44);
    blockSize_ = blockCount_ = 0;
    level_ = 0;
    yield_ = 0;
    material_.Edges.clear();
  }
  if (ns_ < 2 || !readFields()) return;
  if (blockCount_ >= blockSize_) {
    endLevel();
    if (material_.Edges.size() < levelCount_) {
      level_ = wholeNumber<int>(fields_[0]);
      blockSize_ = wholeNumber<std::uint32_t>(fields_[5] + 1);
      blockCount_ = 0;
      return;
    }
  } else if (blockCount_ == 0) {
    return addLevel();
  }
  if (mt_ != 533) return;
  ++blockCount_;
  if (!material_.Edges.empty()) addTransition();
}

template <class T>
void EndfReader<T>::endLevel() {
  if (!material_.Edges.empty() && yield_ > 0)
    material_.Edges.back().Yield = yield_;
}

template <class T>
void EndfReader<T>::addLevel() {
  blockCount_ = 1;
  yield_ = 0;
  material_.Edges.emplace_back(SubshellID(z_, subshell(level_)),
                               T(fields_[0]) / 1000, T(0), T(0));
  material_.Edges.back().Lines.reserve(
      plausible(blockSize_, rest_, ColumnsPerLine));
}

template <class T>
void EndfReader<T>::addTransition() {
  auto& lines = material_.Edges.back().Lines;
  int const from = wholeNumber<int>(fields_[0]);
  int const to = wholeNumber<int>(fields_[1]);
  T const energy = T(fields_[2]) / 1000;
  T const intensity = T(fields_[3]);
  std::string label = levelText(level_);
  label.append("-").append(levelText(from));
  SubshellID const origin(z_, subshell(from));
  if (to == 0) {
    lines.emplace_back(energy, intensity, std::move(label), origin,
                       /*radiative=*/true);
    yield_ += intensity;
    return;
  }
  label.append("-").append(levelText(to));
  lines.emplace_back(energy, intensity, std::move(label), origin,
                     SubshellID(z_, subshell(to)), /*radiative=*/false);
}

// Valid up to the next call.
template <class T>
std::string const& EndfReader<T>::levelText(int level) {
  bool const isNamed = level >= K1 && level <= Q3;
  std::string& text =
      levelTexts_[isNamed ? static_cast<std::size_t>(level) : 0];
  if (isNamed && !text.empty()) return text;
  std::ostringstream out;
  SubshellToString(out, subshell(level));
  text = out.str();
  return text;
}

// Cross sections, form factors and the like.

template <class T>
void EndfReader<T>::readTable() {
  if (ns_ == 2) {
    beginRanges();
    clearPoints();
    return;
  }
  bool const isUsed = target_.data || target_.levels;
  if (!isUsed) return readOther();
  if (!readData()) return;
  if (target_.isOverEnergy)
    for (std::size_t i = 0; i < fields_.size(); i += 2)
      fields_[i] /= 1000;  // eV to keV
  if (points_.empty())
    points_.reserve(plausible(size_, rest_, ColumnsPerPoint));
  addPoints(count_, size_);
  if (count_ >= size_) storeTable();
}

template <class T>
typename EndfReader<T>::Target EndfReader<T>::target() {
  if (section_ != Tables || sublibrary_ == AtomicRelaxation) return {};
  if (mf_ == 27) return formFactorTarget();
  bool const isLevel = mt_ > 533 && mt_ <= 533 + LevelCount;
  return isLevel ? levelTarget() : crossSectionTarget();
}

template <class T>
typename EndfReader<T>::Target EndfReader<T>::levelTarget() {
  bool const isPhoton = sublibrary_ == PhotoAtomic;
  Target target;
  target.slot = mt_ - 534 + (isPhoton ? 0 : LevelCount);
  target.levels =
      isPhoton ? &material_.PhotoIonization : &material_.ElectronIonization;
  target.cubic = !isPhoton;
  return target;
}

template <class T>
typename EndfReader<T>::Target EndfReader<T>::crossSectionTarget() {
  bool const isPhoton = sublibrary_ == PhotoAtomic;
  switch (mt_) {
    case 502:
      return isPhoton ? curveTarget(Coherent, true, true) : Target();
    case 504:
      return isPhoton ? curveTarget(Incoherent, true, true) : Target();
    case 516:
      return isPhoton ? curveTarget(Pair, true, true) : Target();
    case 522:
      return isPhoton ? curveTarget(Absorption, true, true) : Target();
    case 526:
      return isPhoton ? Target() : curveTarget(ElectronElastic, true, true);
    case 527: {
      Target target{FirstCurve + results_.size(), &bremsstrahlung_, nullptr,
                    true, true};
      return isPhoton ? Target() : target;
    }
    default:
      return {};
  }
}

// Those of scattering stand over the momentum transfer.
template <class T>
typename EndfReader<T>::Target EndfReader<T>::formFactorTarget() {
  if (sublibrary_ != PhotoAtomic) return {};
  switch (mt_) {
    case 502:
      return curveTarget(FormFactor, false, false);
    case 504:
      return curveTarget(ScatterFunction, false, false);
    case 505:
      return curveTarget(AnomalousImag, false, true);
    case 506:
      return curveTarget(AnomalousReal, false, true);
    default:
      return {};
  }
}

template <class T>
typename EndfReader<T>::Target EndfReader<T>::curveTarget(ResultIndex index,
                                                          bool cubic,
                                                          bool isOverEnergy) {
  return {FirstCurve + index, &results_[index].data, nullptr, cubic,
          isOverEnergy};
}

// Further lines of a complete section would store the same points once more,
// which changes nothing, save that each empty stretch is a finding each time.
template <class T>
void EndfReader<T>::storeTable() {
  bool const isEmptyAhead =
      !ranges_.empty() && (points_.empty() || ranges_.front().first == 0);
  if (isStored_[target_.slot] && !isEmptyAhead) return;
  countStored(points_.size() + ranges_.size());
  isStored_.set(target_.slot);
  sortPoints();
  if (target_.data)
    return cutRanges(ranges_, points_, *target_.data, target_.cubic);
  T const threshold = points_.empty() ? T(0) : points_.front().first;
  Data data{zeroUpTo<typename Curve::Stretch>(threshold)};
  cutRanges(ranges_, points_, data, target_.cubic);
  SubshellID const level(z_, subshell(static_cast<int>(mt_ - 533)));
  target_.levels->try_emplace(
      level, Curve::fromSorted(data, factor_, /*linear=*/true));
}

// The end.

template <class T>
void EndfReader<T>::finish() {
  if (!isFound_)
    throw std::runtime_error("Element " + material_.Name + " not found");
  std::vector<Curve> built;
  for (Result const& result : results_)
    built.push_back(Curve::fromSorted(
        result.data, result.isPerAtom ? factor_ : T(1), /*linear=*/true));
  BiLSpline<T, T> angles = angleTable();
  for (std::size_t i = 0; i < built.size(); ++i)
    material_.*results_[i].curve = std::move(built[i]);
  if (!angles.empty()) material_.ElasticAngle = std::move(angles);
  if (!spectra_.empty()) material_.TabSigma = BiLSpline<T, T>(spectra_);
}

template <class T>
void Material<T>::readENDF(std::istream& in) {
  in.clear();
  std::string storage;
  parseENDF(remainingView(in, storage));
}

template <class T>
void Material<T>::parseENDF(std::string_view text) {
  EndfReader<T>(*this).read(text);
}

template <class T>
typename Material<T>::Fields Material<T>::parseENDFline(
    std::string const& line) {
  EndfFields fields{};
  if (line.size() < EndfControlColumn)
    throw std::out_of_range("invalid string position");
  std::size_t const bad = endfFields(line, fields);
  if (bad != EndfNoField)
    throw std::runtime_error(
        endfError(line.substr(bad * EndfFieldWidth, EndfFieldWidth)));
  return {{T(fields[0]), T(fields[1])},
          {T(fields[2]), T(fields[3])},
          {T(fields[4]), T(fields[5])}};
}

template <class T>
void Material<T>::insertTriple(std::multimap<T, T>& points, Fields const& line,
                               unsigned int& count, unsigned int limit) {
  for (auto const* pair : {&line.first, &line.second, &line.third}) {
    if (count >= limit) return;
    points.insert(*pair);
    ++count;
  }
}

template <class T>
void Material<T>::splitRanges(
    std::vector<std::pair<unsigned int,
                          typename AttenuationCoeff<T>::Interpolation>> const&
        ranges,
    std::multimap<T, T> const& points, std::vector<Stretch>& data, bool third) {
  cutRanges(ranges, points, data, third);
}

template class EndfReader<double>;
template void Material<double>::readENDF(std::istream&);
template void Material<double>::parseENDF(std::string_view);
template Material<double>::Fields Material<double>::parseENDFline(
    std::string const&);
template void Material<double>::insertTriple(std::multimap<double, double>&,
                                             Fields const&, unsigned int&,
                                             unsigned int);
template void Material<double>::splitRanges(
    std::vector<std::pair<unsigned int,
                          AttenuationCoeff<double>::Interpolation>> const&,
    std::multimap<double, double> const&, std::vector<Stretch>&, bool);
