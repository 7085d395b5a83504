#include "photarium/spline/CSpline.h"

#include <cstddef>

#include "photarium/spline/points.h"

namespace {

/// Slope of the chord from `node` to the next one.
template <class Node>
auto chord(Node const* node) {
  return (node[1].fifth - node->fifth) / (node[1].first - node->first);
}

/// Sets up the tridiagonal system for the quadratic coefficients of the inner
/// nodes and eliminates it downwards. Until substituteBack() has run, a node
/// keeps its pivot in `second`, its right-hand side in `third` and the slope of
/// its chord in `fourth`.
template <class X, class Y>
void eliminate(quint<X, Y, Y, Y, Y>* node, std::size_t segments) {
  node[0].fourth = chord(node);
  X below = node[1].first - node[0].first;
  Y factor = below;
  Y rhsBelow = Y(0);
  for (std::size_t i = 1; i < segments; ++i) {
    if (i > 1) factor = below / node[i - 1].second;
    Y const pivot = 2 * (node[i + 1].first - node[i - 1].first);
    node[i].fourth = chord(node + i);
    Y const rhs = 3 * (node[i].fourth - node[i - 1].fourth);
    node[i].second = i > 1 ? pivot - factor * below : pivot;
    node[i].third = rhsBelow = rhs - factor * rhsBelow;
    below = node[i + 1].first - node[i].first;
  }
}

/// Solves the system upwards and puts the coefficients in their places.
template <class X, class Y>
void substituteBack(quint<X, Y, Y, Y, Y>* node, std::size_t segments) {
  Y above = Y(0);  // no curvature at the ends
  for (std::size_t i = segments; i-- > 0;) {
    X const h = node[i + 1].first - node[i].first;
    Y const b = i > 0 ? (node[i].third - h * above) / node[i].second : Y(0);
    Y const difference = above - b;
    node[i].second = (difference / 3) / h;
    node[i].third = b;
    node[i].fourth = node[i].fourth - difference * h / 3 - h * b;
    above = b;
  }
}

}  // namespace

template <class X, class Y>
CSpline<X, Y>::CSpline(std::map<X const, Y> const& points) {
  auto const [abscissas, ordinates] = columns(points);
  build(abscissas, ordinates);
}

template <class X, class Y>
CSpline<X, Y>::CSpline(std::span<X const> abscissas,
                       std::span<Y const> ordinates) {
  build(abscissas, ordinates);
}

template <class X, class Y>
void CSpline<X, Y>::build(std::span<X const> abscissas,
                          std::span<Y const> ordinates) {
  requireEqualLengths(abscissas.size(), ordinates.size());
  this->data.reserve(abscissas.size());
  for (std::size_t i = 0; i < abscissas.size(); ++i)
    this->data.push_back({abscissas[i], Y(0), Y(0), Y(0), ordinates[i]});
  this->fillBuckets(abscissas);
  rebuild();
}

template <class X, class Y>
void CSpline<X, Y>::rebuild() {
  std::vector<Node>& list = this->data;
  if (list.empty()) list.push_back(Node{});
  std::size_t const segments = list.size() - 1;
  if (segments < 2) {
    for (Node& node : list) node.second = node.third = node.fourth = Y(0);
    // Two points: a line between them, a constant above them.
    if (segments == 1) list[0].fourth = chord(list.data());
    return;
  }
  eliminate(list.data(), segments);
  substituteBack(list.data(), segments);
  // Above the last node the polynomial of the last segment is used anew.
  Node const& last = list[segments - 1];
  list[segments] = {list[segments].first, last.second, last.third, last.fourth,
                    list[segments].fifth};
}

template <class X, class Y>
std::map<X const, Y> CSpline<X, Y>::nodes() const {
  std::map<X const, Y> points;
  for (Node const& node : this->data)
    points.emplace_hint(points.end(), node.first, node.fifth);
  return points;
}

template <class X, class Y>
CSpline<X, Y>* CSpline<X, Y>::Clone() const {
  return new CSpline(nodes());
}

template <class X, class Y>
Spline<X, Y>& CSpline<X, Y>::operator+=(Y const& c) {
  for (Node& node : this->data) node.fifth += c;
  return *this;
}

template <class X, class Y>
Spline<X, Y>& CSpline<X, Y>::operator*=(Y const& c) {
  for (Node& node : this->data) {
    node.second *= c;
    node.third *= c;
    node.fourth *= c;
    node.fifth *= c;
  }
  return *this;
}

template class CSpline<double, double>;
