#include "photarium/spline/Spline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"
#include "photarium/spline/points.h"

void requireEqualLengths(std::size_t abscissas, std::size_t ordinates) {
  if (abscissas != ordinates)
    throw std::invalid_argument("Abscissas and ordinates differ in number!");
}

template <class X, class Y, class Node>
NodeSpline<X, Y, Node>::NodeSpline(std::vector<Node> nodes)
    : data(std::move(nodes)) {
  if (data.empty())
    throw std::runtime_error("Trying to construct empty spline!");
}

template <class X, class Y, class Node>
void NodeSpline<X, Y, Node>::fillBuckets(std::span<X const> abscissas) {
  constexpr std::size_t few = 4096;  // whose search stays in the cache
  constexpr std::size_t nodesInBucket = 2;
  std::size_t const size = abscissas.size();
  if (size <= few || size > std::numeric_limits<std::uint32_t>::max()) return;
  std::size_t const count = size / nodesInBucket;
  X const lowest = abscissas.front();
  X const scale = static_cast<X>(count) / (abscissas.back() - lowest);
  if (!std::isfinite(lowest) || !std::isnormal(scale)) return;

  auto filled = std::make_shared<Buckets<X>>(
      Buckets<X>{lowest, scale, static_cast<X>(count - 1), {}});
  std::vector<std::uint32_t>& starts = filled->starts;
  starts.resize(count + 1);
  // A bucket ends behind its last node.
  for (std::size_t i = 0; i < size; ++i)
    starts[filled->bucketOf(abscissas[i]) + 1] =
        static_cast<std::uint32_t>(i + 1);
  // An empty one ends where it starts.
  for (std::size_t i = 0; i < count; ++i)
    starts[i + 1] = std::max(starts[i], starts[i + 1]);
  buckets = std::move(filled);
}

template <class X, class Y, class Node>
void NodeSpline<X, Y, Node>::throwOutside() {
  throw std::out_of_range("");
}

template class Spline<double, double>;
template class NodeSpline<double, double, LSpline<double, double>::Node>;
template class NodeSpline<double, double, CSpline<double, double>::Node>;
