#pragma once

#include <map>
#include <span>
#include <vector>

#include "photarium/foundation/export.h"
#include "photarium/spline/Spline.h"
#include "photarium/spline/records.h"

/// Piecewise linear curve through points of ascending abscissa.
///
/// Between two nodes the value lies on their chord; outside them the end chords
/// go on.
///
///     std::map<double const, double> const points{{20., 0.98}, {40., 0.62}};
///     LSpline<double, double> const efficiency(points);  // of energy [keV]
///     efficiency(30., false, false);                     // 0.80
///
/// Copies are deep. Threads as in Spline: evaluation may share an object.
template <class X, class Y>
class LSpline : public NodeSpline<X, Y, triple<X, Y, Y>> {
 public:
  /// Abscissa, slope of the segment that starts there, ordinate.
  using Node = triple<X, Y, Y>;

  /// No nodes: 0 everywhere under `extrapolate`.
  LSpline() = default;

  /// The curve through `points`. No point gives the curve that is 0 everywhere
  /// and has one node at 0; one point gives a constant.
  LSpline(std::map<X const, Y> const& points);

  /// The same from strictly ascending abscissas and as many ordinates, without
  /// a map. The order is the caller's duty; std::invalid_argument is thrown if
  /// the lengths differ.
  LSpline(std::span<X const> abscissas, std::span<Y const> ordinates);

  int order() const override { return 1; }
  std::map<X const, Y> nodes() const override;
  LSpline* Clone() const override;

  Y operator()(X x, bool sequential, bool extrapolate) const override;

  /// Value at `x` as operator() has it, with the choices known in advance.
  template <bool sequential, bool extrapolate>
  Y at(X x) const;

  Spline<X, Y>& operator+=(Y const& c) override;
  Spline<X, Y>& operator*=(Y const& c) override;

  /// Computes the slopes anew from the nodes, so that it equals its Clone().
  void rebuild();

 protected:
  /// Takes the nodes with their slopes as they are; throws std::runtime_error
  /// "Trying to construct empty spline!" if there are none.
  explicit LSpline(std::vector<Node> const& nodes)
      : NodeSpline<X, Y, Node>(nodes) {}
  explicit LSpline(std::vector<Node>&& nodes)
      : NodeSpline<X, Y, Node>(std::move(nodes)) {}

  template <class, class, class, class, class>
  friend class SplineRows;

 private:
  void build(std::span<X const> abscissas, std::span<Y const> ordinates);
};

template <class X, class Y>
template <bool sequential, bool extrapolate>
Y LSpline<X, Y>::at(X x) const {
  if constexpr (extrapolate) {
    if (this->data.empty()) return Y(0);
  } else {
    if (!this->covers(x)) this->throwOutside();
  }
  Node const& node = sequential ? this->segmentFromHint(x) : this->segment(x);
  return (x - node.first) * node.second + node.third;
}

template <class X, class Y>
inline Y LSpline<X, Y>::operator()(X x, bool sequential,
                                   bool extrapolate) const {
  if (sequential) return extrapolate ? at<true, true>(x) : at<true, false>(x);
  return extrapolate ? at<false, true>(x) : at<false, false>(x);
}

extern template class PHOTARIUM_EXPORT
    NodeSpline<double, double, triple<double, double, double>>;
extern template class PHOTARIUM_EXPORT LSpline<double, double>;
