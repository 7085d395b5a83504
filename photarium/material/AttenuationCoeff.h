#pragma once

#include <cstddef>
#include <map>
#include <ostream>
#include <utility>
#include <variant>
#include <vector>

#include "photarium/foundation/export.h"
#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"
#include "photarium/spline/Spline.h"
#include "photarium/spline/records.h"

/// A function of energy [keV] with jumps: a cross section or an attenuation
/// curve, in the unit of the values it was built from.
///
/// It consists of energy ranges, one between each two edges. Each range has a
/// spline of its own, on linear or logarithmic scales. An energy at an edge
/// belongs to the range above.
///
///     using Curve = AttenuationCoeff<double>;
///     Curve const absorption = Curve::fromSorted(
///         {{{{6., 85.}, {7.112, 53.}, {7.112, 410.}, {20., 25.}},
///           Curve::LogLog, /*cubic=*/false}},
///         /*scale=*/1., /*linear=*/true);
///     absorption(7.112, /*extrapolate=*/false);  // 410
///
/// Copies are deep and have their splines computed anew from the nodes.
///
/// Threads: const operations may run on a shared object from any number of
/// threads; all others need the object for themselves. An evaluation allocates
/// nothing unless it fails.
template <class T>
class AttenuationCoeff {
 public:
  /// Interpolation law of a range; the first word names the scale of the
  /// energy, the second that of the value. Const holds the value of a point up
  /// to the next point.
  enum Interpolation : int { Const = 1, LinLin, LinLog, LogLin, LogLog };

  /// Points of energy and value.
  using Points = std::vector<std::pair<T, T>>;

  /// Points, their law, and whether their splines are cubic.
  using Stretch = triple<Points, Interpolation, bool>;
  using MapStretch = triple<std::multimap<T, T>, Interpolation, bool>;

  /// True for the five laws.
  static bool InterpolationValid(Interpolation law) {
    return law >= Const && law <= LogLog;
  }

  /// No ranges.
  AttenuationCoeff() = default;

  /// Builds a curve of the stretches in `data`.
  ///
  /// With `linear` the points are plain numbers, and the values are multiplied
  /// by `scale`. Without, each value is a natural logarithm, as is each energy
  /// if the law has a logarithmic energy scale; `scale` is a factor to the
  /// plain value nevertheless.
  ///
  /// Two neighbours whose energies differ by a ten-thousandth or less are an
  /// edge: the second one begins a range. A range replaces an earlier one that
  /// begins at the same energy.
  ///
  /// Throws std::runtime_error "Invalid interpolation type" for a law that is
  /// none, and a warning with "No datapoints for interpolation!\n" for each
  /// stretch without points.
  AttenuationCoeff(std::vector<MapStretch> const& data, T const& scale,
                   bool linear);

  /// The same from points in contiguous memory: quicker, and equal to the
  /// curve from multimaps that the points were inserted into one by one.
  static AttenuationCoeff fromSorted(std::vector<Stretch> const& data,
                                     T const& scale, bool linear);

  AttenuationCoeff(AttenuationCoeff const& other);
  /// A moved curve has the very values of a copy. `other` is empty afterwards.
  AttenuationCoeff(AttenuationCoeff&& other) noexcept;
  /// A copy multiplied by `factor`.
  AttenuationCoeff(AttenuationCoeff const& other, T const& factor);
  ~AttenuationCoeff() = default;

  /// A curve assigned to itself is empty afterwards.
  AttenuationCoeff& operator=(AttenuationCoeff const& other);
  AttenuationCoeff& operator=(AttenuationCoeff&& other) noexcept;

  /// True if there are no ranges.
  bool empty() const { return ranges_.empty(); }

  /// Value at the energy `x` [keV].
  ///
  /// Outside the nodes of the range that `x` falls in its spline goes on if
  /// `extrapolate`; otherwise std::out_of_range "Cannot evaluate at X (above
  /// K)." is thrown, where K is the energy at which the range begins, or
  /// "(below K)" below all ranges. A curve without ranges is 0 or throws "No
  /// data points for interpolation.".
  T operator()(T const& x, bool extrapolate) const;

  /// True if operator() has a value at `x` without extrapolation.
  bool covers(T const& x) const;

  /// The sum of two curves where both have nodes, with the edges of both; what
  /// only one of them covers is lost. A curve without ranges counts as 0.
  ///
  /// The scales of an interval are logarithmic where either curve has them so,
  /// and its spline is cubic if either one is.
  AttenuationCoeff operator+(AttenuationCoeff const& other) const;
  AttenuationCoeff& operator+=(AttenuationCoeff const& other);

  /// Multiplies the curve by `c`. On a logarithmic value scale a `c` that is
  /// not positive gives infinities or values that are no numbers.
  AttenuationCoeff& operator*=(T const& c);

  /// Replaces the curve by its square: the values at the nodes are squared.
  void sqr();

  /// Replaces the curve by its square root. Throws std::runtime_error "Cannot
  /// take sqare root of negative values" at the first such range; the ranges
  /// ahead of it are converted then, the others are not.
  void sqrt();

  /// The nodes as plain numbers, range by range. Allocates; made for printing.
  ///
  ///     for (auto const& [points, law, isCubic] : curve.nodes())
  ///       for (auto const& [energy, value] : points) ...
  std::vector<Stretch> nodes() const;

  /// The energy at which each range begins, with the ratio of the values there
  /// by its own and by the preceding spline; 0 for the first range. Throws a
  /// warning "Couldn't determine jump ratio: " and the cause if that fails.
  std::map<T, T> Discontinuities() const;

 protected:
  /// Removes all ranges.
  void eraseData();

  /// Removes the range that begins exactly at `key`.
  void eraseData(T const& key);

 private:
  using RangeSpline = std::variant<LSpline<T, T>, CSpline<T, T>>;

  struct Range {
    T key;               // where it begins, always the plain energy [keV]
    Interpolation type;  // scales of the spline's nodes
    bool isSolved;       // coefficients as computed from the nodes
    RangeSpline spline;
  };

  class Scratch;
  class Operand;

  template <class AnyStretch>
  void build(std::vector<AnyStretch> const& data, T const& scale, bool linear);
  template <class AnyPoints>
  void addStretch(AnyPoints const& points, Interpolation law, bool isCubic,
                  T const& scale, bool linear);
  void orderRanges();
  void settle();
  template <class Change>
  void changeValues(Change const& change);

  Range const& rangeAt(T const& x) const;
  [[noreturn]] void throwOutside(T const& x, Range const& range) const;
  static void addInterval(AttenuationCoeff& sum, T const& lo, T const& hi,
                          Operand& one, Operand& two);

  std::vector<Range> ranges_;  // ascending keys
  SearchHint hint_;            // range of the last evaluation
};

/// Prints the nodes as plain numbers, range by range:
///
///     # 1 edges
///     # 2 nodes LogLog
///     1.000000e+00<tab>2.000000e+00
///     1.000000e+01<tab>2.000000e-02
///
/// Leaves `out` at scientific notation with a precision of 6.
template <class T>
std::ostream& operator<<(std::ostream& out, AttenuationCoeff<T> const& curve);

extern template class PHOTARIUM_EXPORT AttenuationCoeff<double>;
extern template PHOTARIUM_EXPORT std::ostream& operator<<(
    std::ostream&, AttenuationCoeff<double> const&);
