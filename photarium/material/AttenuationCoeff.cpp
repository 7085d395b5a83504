#include "photarium/material/AttenuationCoeff.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <iomanip>
#include <iterator>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>

#include "photarium/foundation/number.h"
#include "photarium/foundation/warning.h"

namespace {

// Indexed by the law less 1.
constexpr char const* LawNames[] = {"Const", "LinLin", "LinLog", "LogLin",
                                    "LogLog"};

// Neighbours whose energies differ by no more than this part are an edge.
constexpr double EdgeWidth = 0.0001;

bool hasLogEnergy(int law) {
  return law >= 4;
}
bool hasLogValue(int law) {
  return law == 3 || law == 5;
}

template <class T>
T plainEnergy(int law, T const& abscissa) {
  return hasLogEnergy(law) ? std::exp(abscissa) : abscissa;
}
template <class T>
T plainValue(int law, T const& ordinate) {
  return hasLogValue(law) ? std::exp(ordinate) : ordinate;
}

template <class T>
T ordinate(triple<T, T, T> const& node) {
  return node.third;
}
template <class T>
T ordinate(quint<T, T, T, T, T> const& node) {
  return node.fifth;
}

template <class T>
Spline<T, T>& base(std::variant<LSpline<T, T>, CSpline<T, T>>& spline) {
  return std::visit([](Spline<T, T>& any) -> Spline<T, T>& { return any; },
                    spline);
}

/// Calls `use` with the spline in its own class.
template <class Variant, class Use>
auto withSpline(Variant const& spline, Use const& use) {
  if (auto const* const linear = std::get_if<0>(&spline)) return use(*linear);
  return use(*std::get_if<1>(&spline));
}

/// Value of a spline at an abscissa of its own scale, extrapolated.
template <class Variant, class T>
T valueAt(Variant const& spline, T const& abscissa) {
  return withSpline(spline, [&abscissa](auto const& any) {
    return any.template at<true, true>(abscissa);
  });
}

template <class Variant, class T>
bool isInside(Variant const& spline, T const& abscissa) {
  return withSpline(
      spline, [&abscissa](auto const& any) { return any.covers(abscissa); });
}

}  // namespace

/// The nodes of a range in the making. Of two with an equal abscissa the first
/// one stays.
template <class T>
class AttenuationCoeff<T>::Scratch {
 public:
  bool empty() const { return abscissas_.empty(); }

  void put(T const& abscissa, T const& ordinate) {
    if (!empty() && !(abscissas_.back() < abscissa)) isAscending_ = false;
    abscissas_.push_back(abscissa);
    ordinates_.push_back(ordinate);
  }

  /// The spline through the nodes, which are gone then.
  RangeSpline take(bool isCubic) {
    RangeSpline const spline =
        isCubic ? RangeSpline(make<CSpline<T, T>>()) : make<LSpline<T, T>>();
    abscissas_.clear();
    ordinates_.clear();
    isAscending_ = true;
    return spline;
  }

 private:
  template <class AnySpline>
  AnySpline make() const {
    if (isAscending_) return AnySpline(abscissas_, ordinates_);
    std::map<T const, T> points;
    for (std::size_t i = 0; i < abscissas_.size(); ++i)
      points.emplace(abscissas_[i], ordinates_[i]);
    return AnySpline(points);
  }

  std::vector<T> abscissas_;
  std::vector<T> ordinates_;
  bool isAscending_ = true;
};

/// One side of a sum, visited with ascending energies.
template <class T>
class AttenuationCoeff<T>::Operand {
 public:
  explicit Operand(AttenuationCoeff const& curve) : curve_(curve) {}

  /// Selects the range that holds `energy`.
  void moveTo(T const& energy) {
    Range const* const range = &curve_.rangeAt(energy);
    if (range == range_) return;
    range_ = range;
    energies_.clear();
    withSpline(range->spline, [this](auto const& spline) {
      for (auto const& node : spline.records()) {
        T const plain = plainEnergy(range_->type, node.first);
        if (!std::isnan(plain)) energies_.push_back(plain);
      }
    });
  }

  int law() const { return range_->type; }
  bool isCubic() const { return range_->spline.index() == 1; }

  /// Puts the energies of the nodes from `lo` to `hi` behind the others, so
  /// that all ascend.
  void mergeEnergies(std::vector<T>& energies, T const& lo, T const& hi) const {
    auto const begin = std::lower_bound(energies_.begin(), energies_.end(), lo);
    auto const end = std::upper_bound(begin, energies_.end(), hi);
    std::vector<T> merged;
    merged.reserve(energies.size() +
                   static_cast<std::size_t>(std::distance(begin, end)));
    std::merge(energies.begin(), energies.end(), begin, end,
               std::back_inserter(merged));
    energies = std::move(merged);
  }

  /// True if the range's nodes enclose the energy; its plain value then.
  bool valueAtEnergy(T const& energy, T const& logEnergy, T& value) const {
    T const& abscissa = hasLogEnergy(law()) ? logEnergy : energy;
    if (!isInside(range_->spline, abscissa)) return false;
    value = plainValue(law(), valueAt(range_->spline, abscissa));
    return true;
  }

 private:
  AttenuationCoeff const& curve_;
  Range const* range_ = nullptr;
  std::vector<T> energies_;  // plain energies of the range's nodes
};

template <class T>
AttenuationCoeff<T>::AttenuationCoeff(std::vector<MapStretch> const& data,
                                      T const& scale, bool linear) {
  build(data, scale, linear);
}

template <class T>
AttenuationCoeff<T> AttenuationCoeff<T>::fromSorted(
    std::vector<Stretch> const& data, T const& scale, bool linear) {
  AttenuationCoeff curve;
  curve.build(data, scale, linear);
  return curve;
}

template <class T>
AttenuationCoeff<T>::AttenuationCoeff(AttenuationCoeff const& other)
    : ranges_(other.ranges_) {
  settle();
}

template <class T>
AttenuationCoeff<T>::AttenuationCoeff(AttenuationCoeff&& other) noexcept
    : ranges_(std::move(other.ranges_)), hint_(std::move(other.hint_)) {
  settle();
}

template <class T>
AttenuationCoeff<T>::AttenuationCoeff(AttenuationCoeff const& other,
                                      T const& factor)
    : AttenuationCoeff(other) {
  *this *= factor;
}

template <class T>
AttenuationCoeff<T>& AttenuationCoeff<T>::operator=(
    AttenuationCoeff const& other) {
  eraseData();  // of the other one too if it is this one
  ranges_ = other.ranges_;
  settle();
  return *this;
}

template <class T>
AttenuationCoeff<T>& AttenuationCoeff<T>::operator=(
    AttenuationCoeff&& other) noexcept {
  eraseData();
  ranges_.swap(other.ranges_);
  other.hint_.set(0);
  settle();
  return *this;
}

template <class T>
template <class AnyStretch>
void AttenuationCoeff<T>::build(std::vector<AnyStretch> const& data,
                                T const& scale, bool linear) {
  auto const isLower = [](auto const& one, auto const& two) {
    return !(one.first <= two.first);
  };
  std::string findings;
  for (auto const& [points, law, isCubic] : data) {
    if (!InterpolationValid(law))
      throw std::runtime_error("Invalid interpolation type");
    if (points.empty())
      findings += "No datapoints for interpolation!\n";
    else if (std::adjacent_find(points.begin(), points.end(), isLower) ==
             points.end())
      addStretch(points, law, isCubic, scale, linear);
    else
      addStretch(std::multimap<T, T>(points.begin(), points.end()), law,
                 isCubic, scale, linear);
  }
  orderRanges();
  if (!findings.empty()) throw warning(findings);
}

template <class T>
template <class AnyPoints>
void AttenuationCoeff<T>::addStretch(AnyPoints const& points, Interpolation law,
                                     bool isCubic, T const& scale,
                                     bool linear) {
  bool const logX = hasLogEnergy(law);
  bool const logY = hasLogValue(law);
  T const logScale = std::log(scale);
  Scratch scratch;
  T start{}, energyBelow{}, ordinateBelow{};
  auto const close = [&] {
    ranges_.push_back({start, law, true, scratch.take(isCubic)});
  };
  bool isFirst = true;
  for (auto const& [x, y] : points) {
    T const energy = !linear && logX ? std::exp(x) : x;
    T const a = linear && logX ? std::log(x) : x;
    T b;
    if (linear)
      b = logY ? std::log(y * scale) : y * scale;
    else
      b = logY ? y + logScale : std::exp(y) * scale;

    if (isFirst) {
      start = energy;
    } else if (law == Const) {
      scratch.put(a, ordinateBelow);
      close();
      start = energy;
    } else if (!(std::abs(energy / energyBelow - 1) > EdgeWidth)) {
      close();
      start = energy;
    }
    scratch.put(a, b);
    energyBelow = energy;
    ordinateBelow = b;
    isFirst = false;
  }
  if (law != Const) close();  // the last point of Const begins nothing
}

/// Sorts the ranges by their keys; of equal ones the last one stays.
template <class T>
void AttenuationCoeff<T>::orderRanges() {
  auto const isLower = [](Range const& one, Range const& two) {
    // A key that is not a number comes last, so that there is an order at all.
    return one.key < two.key || (two.key != two.key && one.key == one.key);
  };
  auto const isNotLower = [&isLower](Range const& one, Range const& two) {
    return !isLower(one, two);
  };
  if (std::adjacent_find(ranges_.begin(), ranges_.end(), isNotLower) ==
      ranges_.end())
    return;
  std::stable_sort(ranges_.begin(), ranges_.end(), isLower);
  // Seen from behind, the last of equal keys is the first one.
  auto const obsolete =
      std::unique(ranges_.rbegin(), ranges_.rend(),
                  [&isLower](Range const& one, Range const& two) {
                    return !isLower(two, one);
                  });
  ranges_.erase(ranges_.begin(), obsolete.base());
}

/// Computes the splines that were scaled anew from their nodes, as a clone has
/// them.
template <class T>
void AttenuationCoeff<T>::settle() {
  for (Range& range : ranges_) {
    if (range.isSolved) continue;
    std::visit([](auto& spline) { spline.rebuild(); }, range.spline);
    range.isSolved = true;
  }
}

/// The last range that begins at or below `x`, or the first one.
template <class T>
typename AttenuationCoeff<T>::Range const& AttenuationCoeff<T>::rangeAt(
    T const& x) const {
  std::size_t const index = hint_.get();
  Range const* range = ranges_.data() + index;
  if (!(range->key > x) && (index + 1 == ranges_.size() || range[1].key > x))
    return *range;
  range = ranges_.data();
  for (std::size_t count = ranges_.size(); count > 1;) {
    std::size_t const half = count / 2;
    range = range[half].key > x ? range : range + half;
    count -= half;
  }
  hint_.set(static_cast<std::size_t>(range - ranges_.data()));
  return *range;
}

template <class T>
T AttenuationCoeff<T>::operator()(T const& x, bool extrapolate) const {
  if (ranges_.empty()) {
    if (extrapolate) return T(0);
    throw std::out_of_range("No data points for interpolation.");
  }
  Range const& range = rangeAt(x);
  T const abscissa = hasLogEnergy(range.type) ? std::log(x) : x;
  if (!extrapolate && !isInside(range.spline, abscissa)) throwOutside(x, range);
  return plainValue(range.type, valueAt(range.spline, abscissa));
}

template <class T>
bool AttenuationCoeff<T>::covers(T const& x) const {
  if (ranges_.empty()) return false;
  Range const& range = rangeAt(x);
  return isInside(range.spline, hasLogEnergy(range.type) ? std::log(x) : x);
}

template <class T>
void AttenuationCoeff<T>::throwOutside(T const& x, Range const& range) const {
  std::string text = "Cannot evaluate at ";
  appendScientific(text, x);
  text += ranges_.front().key > x ? " (below " : " (above ";
  appendScientific(text, range.key);
  throw std::out_of_range(text + ").");
}

template <class T>
AttenuationCoeff<T> AttenuationCoeff<T>::operator+(
    AttenuationCoeff const& other) const {
  if (ranges_.empty()) return other;
  if (other.ranges_.empty()) return *this;
  std::vector<T> edges, edgesOther;
  for (Range const& range : ranges_) edges.push_back(range.key);
  for (Range const& range : other.ranges_) edgesOther.push_back(range.key);
  std::vector<T> all;
  std::set_union(edges.begin(), edges.end(), edgesOther.begin(),
                 edgesOther.end(), std::back_inserter(all));
  all.push_back(std::numeric_limits<T>::infinity());

  AttenuationCoeff sum;
  Operand one(*this);
  Operand two(other);
  for (std::size_t i = 0; i + 1 < all.size(); ++i)
    addInterval(sum, all[i], all[i + 1], one, two);
  return sum;
}

/// Adds to `sum` the range of the energies from `lo` to `hi` where both
/// operands have nodes around them.
template <class T>
void AttenuationCoeff<T>::addInterval(AttenuationCoeff& sum, T const& lo,
                                      T const& hi, Operand& one, Operand& two) {
  one.moveTo(lo);
  two.moveTo(lo);
  bool const logX = hasLogEnergy(one.law()) || hasLogEnergy(two.law());
  bool const logY = hasLogValue(one.law()) || hasLogValue(two.law());

  std::vector<T> energies{lo};
  one.mergeEnergies(energies, lo, hi);
  two.mergeEnergies(energies, lo, hi);
  if (std::isfinite(hi)) energies.push_back(hi);
  energies.erase(std::unique(energies.begin(), energies.end()), energies.end());

  Scratch scratch;
  for (T const& x : energies) {
    T const logEnergy = logX ? std::log(x) : x;
    T first, second;
    if (!one.valueAtEnergy(x, logEnergy, first)) continue;
    if (!two.valueAtEnergy(x, logEnergy, second)) continue;
    T const value = first + second;
    scratch.put(logEnergy, logY ? std::log(value) : value);
  }
  if (scratch.empty()) return;
  auto const law =
      static_cast<Interpolation>(LinLin + (logX ? 2 : 0) + (logY ? 1 : 0));
  sum.ranges_.push_back(
      {lo, law, true, scratch.take(one.isCubic() || two.isCubic())});
}

template <class T>
AttenuationCoeff<T>& AttenuationCoeff<T>::operator+=(
    AttenuationCoeff const& other) {
  return *this = *this + other;
}

template <class T>
AttenuationCoeff<T>& AttenuationCoeff<T>::operator*=(T const& c) {
  for (Range& range : ranges_) {
    if (hasLogValue(range.type))
      base(range.spline) += std::log(c);
    else
      base(range.spline) *= c;
    range.isSolved = false;
  }
  return *this;
}

/// Replaces the ordinates of each range by change(law, ordinate).
template <class T>
template <class Change>
void AttenuationCoeff<T>::changeValues(Change const& change) {
  for (Range& range : ranges_) {
    Scratch scratch;
    withSpline(range.spline, [&](auto const& spline) {
      for (auto const& node : spline.records())
        scratch.put(node.first, change(range.type, ordinate(node)));
    });
    range.spline = scratch.take(range.spline.index() == 1);
    range.isSolved = true;
  }
}

template <class T>
void AttenuationCoeff<T>::sqr() {
  changeValues([](int law, T const& value) {
    return hasLogValue(law) ? 2 * value : value * value;
  });
}

template <class T>
void AttenuationCoeff<T>::sqrt() {
  changeValues([](int law, T const& value) {
    if (hasLogValue(law)) return T(0.5) * value;
    if (value < 0)
      throw std::runtime_error("Cannot take sqare root of negative values");
    return std::sqrt(value);
  });
}

template <class T>
std::vector<typename AttenuationCoeff<T>::Stretch> AttenuationCoeff<T>::nodes()
    const {
  std::vector<Stretch> stretches;
  stretches.reserve(ranges_.size());
  for (Range const& range : ranges_) {
    Points points;
    withSpline(range.spline, [&](auto const& spline) {
      points.reserve(spline.records().size());
      for (auto const& node : spline.records())
        points.emplace_back(plainEnergy(range.type, node.first),
                            plainValue(range.type, ordinate(node)));
    });
    stretches.push_back(
        {std::move(points), range.type, range.spline.index() == 1});
  }
  return stretches;
}

template <class T>
std::map<T, T> AttenuationCoeff<T>::Discontinuities() const try {
  std::map<T, T> ratios;
  auto const valueIn = [](Range const& range, T const& x) {
    T const abscissa = hasLogEnergy(range.type) ? std::log(x) : x;
    return plainValue(range.type, valueAt(range.spline, abscissa));
  };
  Range const* below = nullptr;
  for (Range const& range : ranges_) {
    T const ratio =
        below ? valueIn(range, range.key) / valueIn(*below, range.key) : T(0);
    ratios.emplace_hint(ratios.end(), range.key, ratio);
    below = &range;
  }
  return ratios;
} catch (std::bad_alloc const&) {
  throw;
} catch (std::exception const& cause) {
  throw warning(std::string("Couldn't determine jump ratio: ") + cause.what());
}

template <class T>
void AttenuationCoeff<T>::eraseData() {
  ranges_.clear();
  hint_.set(0);
}

template <class T>
void AttenuationCoeff<T>::eraseData(T const& key) {
  std::erase_if(ranges_,
                [&key](Range const& range) { return range.key == key; });
  hint_.set(0);
}

template <class T>
std::ostream& operator<<(std::ostream& out, AttenuationCoeff<T> const& curve) {
  out << std::scientific << std::setprecision(6);
  auto const ranges = curve.nodes();
  out << "# " << ranges.size() << " edges\n";
  for (auto const& [points, law, isCubic] : ranges) {
    out << "# " << points.size() << " nodes " << LawNames[law - 1] << '\n';
    for (auto const& [energy, value] : points)
      out << energy << '\t' << value << '\n';
  }
  return out;
}

template class AttenuationCoeff<double>;
template std::ostream& operator<<(std::ostream&,
                                  AttenuationCoeff<double> const&);
