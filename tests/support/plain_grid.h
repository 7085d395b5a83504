#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <random>

/// The plain form of rebinning, for comparison: it walks the whole source for
/// each node of the target.
namespace plain {

using Grid = std::map<double const, double>;

struct Ends {
  double low, high;
};

inline Ends endsOf(Grid::const_iterator node, Grid const& grid) {
  double const e = node->first;
  auto const next = std::next(node);
  double const before =
      node == grid.begin() ? node->first : std::prev(node)->first;
  double const after = next == grid.end() ? node->first : next->first;
  Ends ends{(e + before) / 2, (e + after) / 2};
  if (node == grid.begin())
    ends.low = 2 * e - ends.high;
  else if (next == grid.end())
    ends.high = 2 * e - ends.low;
  return ends;
}

/// Gives each node of `target` the mean of the densities of `source` over its
/// bin.
inline void rebin(Grid const source, Grid& target) {
  for (auto node = target.begin(); node != target.end(); ++node) {
    auto const [low, high] = endsOf(node, target);
    double const width = high - low;
    double sum = 0;
    for (auto from = source.begin(); from != source.end(); ++from) {
      auto [l, h] = endsOf(from, source);
      if (low >= h) continue;
      if (l >= high) break;
      if (h > high) h = high;
      if (l < low) l = low;
      sum += (h - l) / width * from->second;
    }
    node->second = sum;
  }
}

/// A grid of `nodes` random energies in a range, with random values.
inline Grid randomGrid(std::size_t nodes, double from, double to,
                       unsigned int seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> energy(from, to);
  std::uniform_real_distribution<double> value(0, 100);
  Grid grid;
  while (grid.size() < nodes) grid.emplace(energy(random), value(random));
  return grid;
}

}  // namespace plain
