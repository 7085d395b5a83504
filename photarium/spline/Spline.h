#pragma once

#include <atomic>
#include <cstddef>
#include <map>
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
  Node const& segment(X x) const {
    Node const* node = data.data();
    for (std::size_t count = data.size(); count > 1;) {
      std::size_t const half = count / 2;
      node = node[half].first > x ? node : node + half;
      count -= half;
    }
    return *node;
  }

  /// The same, looking first at the segment found last and the one behind it.
  Node const& segmentFromHint(X x) const {
    std::size_t const index = hint.get();
    Node const* const node = data.data() + index;
    std::size_t const rest = data.size() - index;
    bool const isAbove = rest > 1 && x >= node[1].first;
    if (!isAbove && !(node->first > x)) return *node;
    if (isAbove && !(rest > 2 && x >= node[2].first)) {
      hint.set(index + 1);
      return node[1];
    }
    Node const& found = segment(x);
    hint.set(static_cast<std::size_t>(&found - data.data()));
    return found;
  }

  /// Throws std::out_of_range with an empty message.
  [[noreturn]] static void throwOutside();

  std::vector<Node> data;  // ascending abscissas
  SearchHint hint;         // segment of the last sequential search
};

extern template class PHOTARIUM_EXPORT Spline<double, double>;
