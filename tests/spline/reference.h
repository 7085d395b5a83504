#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "photarium/spline/records.h"

/// Splines in their plainest form, to compare with: built from a map, searched
/// from the first node on, solved with one vector a row.
namespace reference {

using Points = std::map<double const, double>;

/// True if both are no numbers or have the same bits.
inline bool same(double one, double two) {
  if (std::isnan(one) || std::isnan(two))
    return std::isnan(one) && std::isnan(two);
  return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(two);
}

struct Linear {
  std::vector<triple<double, double, double>> nodes;

  explicit Linear(Points const& points) {
    for (auto const& [x, y] : points) nodes.push_back({x, 0, y});
    if (nodes.empty()) nodes.push_back({0, 0, 0});
    std::size_t const n = nodes.size();
    if (n < 2) return;
    for (std::size_t i = 0; i + 2 <= n; ++i)
      nodes[i].second = (nodes[i + 1].third - nodes[i].third) /
                        (nodes[i + 1].first - nodes[i].first);
    nodes[n - 1].second = nodes[n - 2].second;
  }

  double operator()(double x) const {
    std::size_t i = 0;
    while (i + 1 < nodes.size() && x >= nodes[i + 1].first) ++i;
    return (x - nodes[i].first) * nodes[i].second + nodes[i].third;
  }
};

struct Cubic {
  std::vector<quint<double, double, double, double, double>> nodes;

  explicit Cubic(Points const& points) {
    for (auto const& [x, y] : points) nodes.push_back({x, 0, 0, 0, y});
    if (nodes.empty()) nodes.push_back({0, 0, 0, 0, 0});
    if (nodes.size() == 2)
      nodes[0].fourth =
          (nodes[1].fifth - nodes[0].fifth) / (nodes[1].first - nodes[0].first);
    if (nodes.size() > 2) solve();
  }

  double operator()(double x) const {
    std::size_t i = 0;
    while (i + 1 < nodes.size() && x >= nodes[i + 1].first) ++i;
    auto const& node = nodes[i];
    double const d = x - node.first;
    if (d == 0) return node.fifth;
    return ((d * node.second + node.third) * d + node.fourth) * d + node.fifth;
  }

 private:
  double x(std::size_t i) const { return nodes[i].first; }
  double y(std::size_t i) const { return nodes[i].fifth; }
  double h(std::size_t i) const { return x(i + 1) - x(i); }

  void solve() {
    std::size_t const m = nodes.size() - 1;
    std::vector<double> sub(m), diag(m), super(m), rhs(m);
    for (std::size_t i = 1; i <= m - 1; ++i) {
      sub[i] = h(i - 1);
      diag[i] = 2 * (x(i + 1) - x(i - 1));
      super[i] = h(i);
      rhs[i] = 3 * ((y(i + 1) - y(i)) / h(i) - (y(i) - y(i - 1)) / h(i - 1));
    }
    for (std::size_t i = 2; i <= m - 1; ++i) {
      sub[i] = sub[i] / diag[i - 1];
      diag[i] = diag[i] - sub[i] * super[i - 1];
    }
    for (std::size_t i = 1; i <= m - 1; ++i)
      rhs[i] = rhs[i] - sub[i] * rhs[i - 1];
    for (std::size_t i = m - 1; i >= 1; --i)
      nodes[i].third = (rhs[i] - super[i] * nodes[i + 1].third) / diag[i];
    for (std::size_t i = 0; i < m; ++i) {
      double const difference = nodes[i + 1].third - nodes[i].third;
      nodes[i].second = (difference / 3) / h(i);
      nodes[i].fourth = (y(i + 1) - y(i)) / h(i) - difference * h(i) / 3 -
                        h(i) * nodes[i].third;
    }
    nodes[m].second = nodes[m - 1].second;
    nodes[m].third = nodes[m - 1].third;
    nodes[m].fourth = nodes[m - 1].fourth;
  }
};

/// Points at distances over many orders of magnitude, with gaps.
inline Points randomPoints(std::mt19937_64& random, std::size_t size) {
  std::uniform_real_distribution<double> exponent(-6., 2.);
  std::uniform_real_distribution<double> value(-5., 5.);
  bool const isEven = random() % 2 == 0;
  Points points;
  for (double x = value(random); points.size() < size;
       x += isEven ? 0.125 : std::exp(exponent(random)))
    points.emplace_hint(points.end(), x, value(random));
  return points;
}

/// Every node, both its neighbours in double precision, places in between and
/// outside, infinities and a value that is no number, in random order.
inline std::vector<double> probes(std::mt19937_64& random,
                                  Points const& points) {
  double const infinity = std::numeric_limits<double>::infinity();
  std::vector<double> x{-infinity, infinity, std::nan(""), 0., -1e300, 1e300};
  std::uniform_real_distribution<double> part(-0.2, 1.2);
  double const first = points.empty() ? -1. : points.begin()->first;
  double const last = points.empty() ? 1. : points.rbegin()->first;
  for (auto const& [node, value] : points) {
    x.push_back(node);
    x.push_back(std::nextafter(node, -infinity));
    x.push_back(std::nextafter(node, infinity));
    x.push_back(first + part(random) * (last - first));
  }
  std::shuffle(x.begin(), x.end(), random);
  return x;
}

}  // namespace reference
