#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "photarium/foundation/export.h"

/// A curve through points of ascending abscissa: the interface of LSpline and
/// CSpline.
///
/// X is the type of the abscissa, Y that of the ordinate; neither has a fixed
/// unit. A curve with a jump is not one spline but several, see
/// AttenuationCoeff.
///
/// Threads: const operations may run on a shared object from any number of
/// threads; arithmetic and assignment need the object for themselves.
template <class X, class Y>
class Spline {
 public:
  Spline() = default;
  Spline(Spline const&) = default;
  Spline& operator=(Spline const&) = default;
  virtual ~Spline() = default;

  /// True if there is no node at all, as in a default object.
  virtual bool empty() const = 0;

  /// Degree of the polynomials: 1 or 3.
  virtual int order() const = 0;

  /// The points. Of two with an equal abscissa the earlier one stays.
  virtual std::map<X const, Y> nodes() const = 0;

  /// A new object of the same class through nodes(), owned by the caller. Its
  /// coefficients are computed anew, and the clone of an empty spline is the
  /// curve through no points, which is 0 everywhere and not empty.
  virtual Spline* Clone() const = 0;

  /// Value at `x`. Outside the nodes the outermost polynomial goes on if
  /// `extrapolate`, otherwise std::out_of_range with an empty message is
  /// thrown; both end nodes count as inside. An empty spline is 0 if
  /// `extrapolate` and throws otherwise. `sequential` begins the search where
  /// the last sequential one ended, which suits sweeps; the value does not
  /// depend on it.
  virtual Y operator()(X x, bool sequential, bool extrapolate) const = 0;

  /// Shifts the curve by `c`.
  virtual Spline& operator+=(Y const& c) = 0;

  /// Scales the curve by `c`.
  virtual Spline& operator*=(Y const& c) = 0;

  /// Shifts the curve by `-c`.
  virtual Spline& operator-=(Y const& c) = 0;

  /// Scales the curve by the reciprocal of `c`. Zero gives infinities.
  virtual Spline& operator/=(Y const& c) = 0;
};

/// The place where the last sequential search ended: a guess that any thread
/// may read and replace at any time. It is no part of the value of its owner,
/// so a copy begins at 0 again, as does what was moved from.
class SearchHint {
 public:
  SearchHint() = default;
  SearchHint(SearchHint const&) noexcept {}
  SearchHint(SearchHint&& other) noexcept { other.set(0); }
  SearchHint& operator=(SearchHint const&) noexcept {
    set(0);
    return *this;
  }
  SearchHint& operator=(SearchHint&& other) noexcept {
    set(0);
    other.set(0);
    return *this;
  }
  ~SearchHint() = default;

  std::size_t get() const { return index_.load(std::memory_order_relaxed); }
  void set(std::size_t index) const {
    index_.store(index, std::memory_order_relaxed);
  }

 private:
  mutable std::atomic<std::size_t> index_{0};
};

/// The abscissas of many nodes in equal intervals, to find the few among which
/// one has to search.
template <class X>
struct Buckets {
  /// Interval that holds `x`; the outermost ones hold what lies outside. Never
  /// descends where `x` ascends, so what rounding does is of no account.
  std::size_t bucketOf(X x) const {
    X const position = (x - lowest) * scale;
    if (!(position > 0)) return 0;
    return position < last ? static_cast<std::size_t>(position)
                           : static_cast<std::size_t>(last);
  }

  X lowest;                           // where the first interval begins
  X scale;                            // intervals per unit of the abscissa
  X last;                             // number of the last interval
  std::vector<std::uint32_t> starts;  // first node of each one and of the next
};

/// What LSpline and CSpline share: the vector of nodes and the searches in it.
///
/// A Node has the abscissa as its member `first` and holds the polynomial of
/// the segment from there to the next node. The last node has a polynomial of
/// its own for what lies above it.
template <class X, class Y, class Node>
class NodeSpline : public Spline<X, Y> {
 public:
  bool empty() const override { return data.empty(); }
  Spline<X, Y>& operator-=(Y const& c) override { return *this += -c; }
  Spline<X, Y>& operator/=(Y const& c) override { return *this *= Y(1.0) / c; }

  /// The node records in ascending order.
  std::vector<Node> const& records() const { return data; }

  /// True if `x` lies between the first and the last node, or at one of them.
  /// A value that is not a number counts as inside, an empty spline covers
  /// nothing.
  bool covers(X x) const {
    return !data.empty() && !(data.front().first > x) &&
           !(x > data.back().first);
  }

 protected:
  NodeSpline() = default;
  /// Takes the nodes as they are; throws std::runtime_error "Trying to
  /// construct empty spline!" if there are none.
  explicit NodeSpline(std::vector<Node> nodes);

  /// The node whose segment holds `x`: the last one with an abscissa not above
  /// it, or the first one. There must be a node.
  Node const& segment(X x) const { return data[find(x)]; }

  /// The same, looking first around the segment found last.
  Node const& segmentFromHint(X x) const {
    std::size_t const index = hint.get();
    Node const* const node = data.data() + index;
    Node const* const end = data.data() + data.size();
    bool const isAbove = node + 1 != end && x >= node[1].first;
    if (!isAbove && !(node->first > x)) return *node;
    std::size_t found = 0;
    if (isAbove && end - node > 4 && !(x >= node[4].first))
      // Sweeps mostly go on by a few nodes; counting them takes no branch.
      found = index + 1 + (x >= node[2].first) + (x >= node[3].first);
    else
      found = find(x);
    hint.set(found);
    return data[found];
  }

  /// Throws std::out_of_range with an empty message.
  [[noreturn]] static void throwOutside();

  /// Prepares the search if there are many nodes, the abscissas of which are
  /// given once more.
  void fillBuckets(std::span<X const> abscissas);

  std::vector<Node> data;  // ascending abscissas
  SearchHint hint;         // segment of the last sequential search

 private:
  std::size_t find(X x) const {
    if (!buckets) return lastNotAbove(x, 0, data.size());
    std::size_t const bucket = buckets->bucketOf(x);
    std::size_t const begin = buckets->starts[bucket];
    std::size_t const first = begin - (begin > 0);
    return lastNotAbove(x, first, buckets->starts[bucket + 1] - first);
  }

  /// Of `count` nodes from `first` on the last one that is not above `x`, or
  /// `first`. There are no branches to predict.
  std::size_t lastNotAbove(X x, std::size_t first, std::size_t count) const {
    Node const* node = data.data() + first;
    while (count > 1) {
      std::size_t const half = count / 2;
      node = node[half].first > x ? node : node + half;
      count -= half;
    }
    return static_cast<std::size_t>(node - data.data());
  }

  // Only of large splines. Abscissas never change, so copies share it.
  std::shared_ptr<Buckets<X> const> buckets;
};

extern template class PHOTARIUM_EXPORT Spline<double, double>;
