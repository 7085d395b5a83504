#pragma once

#include <map>
#include <span>
#include <vector>

#include "photarium/foundation/export.h"
#include "photarium/spline/Spline.h"
#include "photarium/spline/records.h"

/// Natural cubic spline through points of ascending abscissa: the second
/// derivative is continuous, and 0 at both ends.
///
///     std::map<double const, double> const points{{0., 1.}, {1., 2.},
///     {2., 5.}}; CSpline<double, double> const curve(points); curve(1.5,
///     /*sequential=*/false, /*extrapolate=*/false);  // 3.3125
///
/// Below the first node its polynomial goes on. Above the last node x_m, with
/// ordinate y_m, the polynomial of the last segment is moved to (x_m, y_m):
/// continuous there, yet not the continuation of that segment. With two points
/// only it is the constant y_m. At a node the value is exactly its ordinate.
///
/// Copies are deep. Threads as in Spline: evaluation may share an object.
template <class X, class Y>
class CSpline : public NodeSpline<X, Y, quint<X, Y, Y, Y, Y>> {
 public:
  /// Abscissa x_i, then the coefficients of (x - x_i)^3, (x - x_i)^2 and
  /// (x - x_i), then the ordinate.
  using Node = quint<X, Y, Y, Y, Y>;

  /// No nodes: 0 everywhere under `extrapolate`.
  CSpline() = default;

  /// The curve through `points`. No point gives the curve that is 0 everywhere
  /// and has one node at 0; one point gives a constant, two a straight line.
  CSpline(std::map<X const, Y> const& points);

  /// The same from strictly ascending abscissas and as many ordinates, without
  /// a map. The order is the caller's duty; std::invalid_argument is thrown if
  /// the lengths differ.
  CSpline(std::span<X const> abscissas, std::span<Y const> ordinates);

  int order() const override { return 3; }
  std::map<X const, Y> nodes() const override;
  CSpline* Clone() const override;

  Y operator()(X x, bool sequential, bool extrapolate) const override;

  /// Value at `x` as operator() has it, with the choices known in advance.
  template <bool sequential, bool extrapolate>
  Y at(X x) const;

  Spline<X, Y>& operator+=(Y const& c) override;
  Spline<X, Y>& operator*=(Y const& c) override;

  /// Computes the coefficients anew from the nodes, so that it equals its
  /// Clone().
  void rebuild();

 protected:
  /// Takes the nodes with their coefficients as they are; throws
  /// std::runtime_error "Trying to construct empty spline!" if there are none.
  explicit CSpline(std::vector<Node> const& nodes)
      : NodeSpline<X, Y, Node>(nodes) {}
  explicit CSpline(std::vector<Node>&& nodes)
      : NodeSpline<X, Y, Node>(std::move(nodes)) {}

  template <class, class, class, class, class>
  friend class SplineRows;

 private:
  void build(std::span<X const> abscissas, std::span<Y const> ordinates);
};

template <class X, class Y>
template <bool sequential, bool extrapolate>
Y CSpline<X, Y>::at(X x) const {
  if constexpr (extrapolate) {
    if (this->data.empty()) return Y(0);
  } else {
    if (!this->covers(x)) this->throwOutside();
  }
  Node const& node = sequential ? this->segmentFromHint(x) : this->segment(x);
  X const d = x - node.first;
  // A node is exact even where coefficients are infinite or not a number.
  if (d == 0) return node.fifth;
  return ((d * node.second + node.third) * d + node.fourth) * d + node.fifth;
}

template <class X, class Y>
inline Y CSpline<X, Y>::operator()(X x, bool sequential,
                                   bool extrapolate) const {
  if (sequential) return extrapolate ? at<true, true>(x) : at<true, false>(x);
  return extrapolate ? at<false, true>(x) : at<false, false>(x);
}

extern template class PHOTARIUM_EXPORT
    NodeSpline<double, double, quint<double, double, double, double, double>>;
extern template class PHOTARIUM_EXPORT CSpline<double, double>;
