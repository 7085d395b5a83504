#include "photarium/spline/BiLSpline.h"

#include <map>

template <class X, class Y>
std::set<X> BiLSpline<X, Y>::nodes() const {
  std::set<X> outer;
  if (this->data.empty()) return outer;
  for (auto const& node : this->data.front().third.records())
    outer.insert(node.first);
  return outer;
}

template <class X, class Y>
BiLSpline<X, Y> BiLSpline<X, Y>::operator+(BiLSpline const& other) const {
  if (this->empty()) return other;
  if (other.empty()) return *this;
  std::set<X> inner;
  for (auto const& row : this->data) inner.insert(row.first);
  for (auto const& row : other.data) inner.insert(row.first);
  std::set<X> outer = nodes();
  outer.merge(other.nodes());

  std::map<X const, LSpline<X, Y>> sums;
  for (X const u : outer) {
    LSpline<X, Y> const one = (*this)(u, true, true);
    LSpline<X, Y> const two = other(u, true, true);
    std::map<X const, Y> points;
    for (X const v : inner)
      points.emplace_hint(
          points.end(), v,
          one.template at<true, true>(v) + two.template at<true, true>(v));
    sums.emplace_hint(sums.end(), u, LSpline<X, Y>(points));
  }
  return BiLSpline(sums);
}

template <class X, class Y>
BiLSpline<X, Y>& BiLSpline<X, Y>::operator+=(BiLSpline const& other) {
  return *this = *this + other;
}

template class BiLSpline<double, double>;
