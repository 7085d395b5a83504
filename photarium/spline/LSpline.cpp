#include "photarium/spline/LSpline.h"

#include <cstddef>

#include "photarium/spline/points.h"

template <class X, class Y>
LSpline<X, Y>::LSpline(std::map<X const, Y> const& points) {
  auto const [abscissas, ordinates] = columns(points);
  build(abscissas, ordinates);
}

template <class X, class Y>
LSpline<X, Y>::LSpline(std::span<X const> abscissas,
                       std::span<Y const> ordinates) {
  build(abscissas, ordinates);
}

template <class X, class Y>
void LSpline<X, Y>::build(std::span<X const> abscissas,
                          std::span<Y const> ordinates) {
  requireEqualLengths(abscissas.size(), ordinates.size());
  this->data.reserve(abscissas.size());
  for (std::size_t i = 0; i < abscissas.size(); ++i)
    this->data.push_back({abscissas[i], Y(0), ordinates[i]});
  this->fillBuckets(abscissas);
  rebuild();
}

template <class X, class Y>
void LSpline<X, Y>::rebuild() {
  std::vector<Node>& list = this->data;
  if (list.empty()) list.push_back(Node{});
  list.front().second = Y(0);
  for (std::size_t i = 0; i + 1 < list.size(); ++i)
    list[i].second = (list[i + 1].third - list[i].third) /
                     (list[i + 1].first - list[i].first);
  // Above the last node the last segment goes on.
  if (list.size() > 1) list.back().second = list[list.size() - 2].second;
}

template <class X, class Y>
std::map<X const, Y> LSpline<X, Y>::nodes() const {
  std::map<X const, Y> points;
  for (Node const& node : this->data)
    points.emplace_hint(points.end(), node.first, node.third);
  return points;
}

template <class X, class Y>
LSpline<X, Y>* LSpline<X, Y>::Clone() const {
  return new LSpline(nodes());
}

template <class X, class Y>
Spline<X, Y>& LSpline<X, Y>::operator+=(Y const& c) {
  for (Node& node : this->data) node.third += c;
  return *this;
}

template <class X, class Y>
Spline<X, Y>& LSpline<X, Y>::operator*=(Y const& c) {
  for (Node& node : this->data) {
    node.second *= c;
    node.third *= c;
  }
  return *this;
}

template class LSpline<double, double>;
