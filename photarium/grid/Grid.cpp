#include "photarium/grid/Grid.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

#include "photarium/grid/bin_width.h"
#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"
#include "photarium/spline/Spline.h"

namespace {

// A node's bin and the density in it.
template <class T>
struct Bin {
  T low, high, density;
};

template <class Node>
auto energyAfter(Node node, Node end) {
  Node const next = std::next(node);
  return next == end ? node->first : next->first;
}

// The bins of a grid, whose values are densities or, if `binned`, contents. An
// end bin mirrors its inner half.
template <class T>
std::vector<Bin<T>> binsOf(std::map<T const, T> const& grid, bool binned) {
  std::vector<std::pair<T, T>> const nodes(grid.begin(), grid.end());
  std::size_t const size = nodes.size();
  std::vector<Bin<T>> bins(size);
  for (std::size_t i = 0; i < size; ++i) {
    auto const [energy, value] = nodes[i];
    bool const isFirst = i == 0, isLast = i + 1 == size;
    T const before = isFirst ? energy : nodes[i - 1].first;
    T const after = isLast ? energy : nodes[i + 1].first;
    T const width = binned ? binWidth(before, energy, after) : T(1);
    T low = (energy + before) / 2;
    T high = (energy + after) / 2;
    if (isFirst)
      low = 2 * energy - high;
    else if (isLast)
      high = 2 * energy - low;
    bins[i] = {low, high, value / width};
  }
  return bins;
}

// Mean density over the bin `low` to `high`, from the source bins that begin at
// `first`, the first one that reaches above `low`.
template <class T>
T meanDensity(std::vector<Bin<T>> const& source, std::size_t first, T low,
              T high) {
  T const width = high - low;
  T sum = 0;
  for (std::size_t i = first; i < source.size(); ++i) {
    auto const& bin = source[i];
    if (bin.low >= high) break;
    T const top = std::min(bin.high, high);
    T const bottom = std::max(bin.low, low);
    sum += (top - bottom) / width * bin.density;
  }
  return sum;
}

// The bins of `source` that end below a target bin end below the next one too,
// so they are passed over once. A bin that does not lie above the one before,
// which takes infinite energies, starts anew.
template <class T>
void rebin(std::vector<Bin<T>> const& source, std::map<T const, T>& target) {
  std::vector<Bin<T>> const bins = binsOf(target, /*binned=*/false);
  std::size_t first = 0;
  std::size_t i = 0;
  for (auto& [energy, value] : target) {
    T const low = bins[i].low;
    if (i > 0 && !(low >= bins[i - 1].low)) first = 0;
    while (first < source.size() && low >= source[first].high) ++first;
    value = meanDensity(source, first, low, bins[i].high);
    ++i;
  }
}

template <class T>
void resample(Spline<T, T> const& curve, std::map<T const, T>& target,
              bool extrapolate) {
  for (auto& [energy, value] : target) try {
      value = curve(energy, /*sequential=*/true, extrapolate);
    } catch (std::out_of_range const&) {
      value = 0;
    }
}

// Gives each node of `out` what `operation` makes of the nodes of `a` and `b`
// at its position, as far as they reach.
template <class T, class Operation>
void combine(std::map<T const, T>& out, std::map<T const, T> const& a,
             std::map<T const, T> const& b, Operation operation) {
  auto left = a.begin();
  auto right = b.begin();
  for (auto& [energy, value] : out) {
    if (left == a.end() || right == b.end()) return;
    value = operation((left++)->second, (right++)->second);
  }
}

}  // namespace

namespace Grid {

template <class T>
void InitGrid(std::map<T const, T>& grid, T const& value) {
  T const fill = value;  // which may be one of the values
  for (auto& node : grid) node.second = fill;
}

template <class T>
void InitGrid(std::map<T const, T> const& source, std::map<T const, T>& grid,
              T const& value) {
  if (&source == &grid || source == grid) return InitGrid(grid, value);
  T const fill = value;
  grid.clear();
  for (auto const& node : source)
    grid.emplace_hint(grid.end(), node.first, fill);
}

template <class T>
void CopyGrid(std::map<T const, T> const& source,
              std::map<T const, T>& target) {
  if (source != target) target = source;
}

template <class T>
void ConvGrid(std::map<T const, T>& grid, GridConvDir dir) {
  if (grid.size() < 2) return;  // one node has no width
  T before = grid.begin()->first;
  for (auto node = grid.begin(); node != grid.end(); ++node) {
    T const width =
        binWidth(before, node->first, energyAfter(node, grid.end()));
    if (dir == ToDensity)
      node->second /= width;
    else
      node->second *= width;
    before = node->first;
  }
}

template <class T>
void ConvGrid(std::map<T const, T> const& source, std::map<T const, T>& target,
              bool inBinned, bool outBinned, bool interpolated,
              bool extrapolate, bool cubic) {
  if (interpolated) {
    std::map<T const, T> density = source;
    if (inBinned) ConvGrid(density, ToDensity);
    if (cubic)
      resample(CSpline<T, T>(density), target, extrapolate);
    else
      resample(LSpline<T, T>(density), target, extrapolate);
  } else {
    rebin(binsOf(source, inBinned), target);
  }
  if (outBinned) ConvGrid(target, ToCounts);
}

template <class T>
void AddGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
             std::map<T const, T> const& b) {
  combine(out, a, b, [](T x, T y) { return x + y; });
}

template <class T>
void SubtractGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                  std::map<T const, T> const& b) {
  combine(out, a, b, [](T x, T y) { return x - y; });
}

template <class T>
void MultiplyGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                  T const& factor) {
  combine(out, a, a, [factor](T x, T) { return x * factor; });
}

template <class T>
void MultiplyGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                  std::map<T const, T> const& b) {
  combine(out, a, b, [](T x, T y) { return x * y; });
}

template <class T>
void DivideGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                T const& divisor) {
  combine(out, a, a, [divisor](T x, T) { return x / divisor; });
}

template <class T>
void DivideGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                std::map<T const, T> const& b) {
  combine(out, a, b, [](T x, T y) { return x / y; });
}

}  // namespace Grid

template <class T>
void add(std::map<T const, T>& grid, T energy, T amount) {
  if (grid.empty()) return;
  auto const above = grid.upper_bound(energy);
  if (above == grid.end()) {
    std::prev(above)->second += amount;
  } else if (above == grid.begin()) {
    above->second += amount;
  } else {
    auto const below = std::prev(above);
    T const share = (above->first - energy) / (above->first - below->first);
    below->second += share * amount;
    above->second += (1 - share) * amount;
  }
}

template <class T>
void sub(std::map<T const, T>& grid, T energy, T amount) {
  add(grid, energy, -amount);
}

PHOTARIUM_GRID_FUNCTIONS(template PHOTARIUM_EXPORT, double)
