#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <vector>

/// Calls `keep(n, p, k)` for each point `k` that stays of a cumulative
/// distribution, the n-th, with its probability p = `cumulative[k]` / `total`,
/// and returns their number. Of points with one probability the first counts. A
/// probability that is no number, as in a row without any, stands only if it
/// comes first, and then alone. `keep` may write over the first n sums.
template <class T, class Keep>
std::size_t forEachAscending(std::span<T const> cumulative, T total,
                             Keep const& keep) {
  std::size_t n = 0;
  T last = 0;
  for (std::size_t k = 0; k < cumulative.size(); ++k) {
    T const p = cumulative[k] / total;
    if (n > 0 && !(last < p)) continue;
    last = p;
    keep(n++, p, k);
  }
  return n;
}

/// The inverses of a few cumulative distributions, solved side by side.
///
/// Each is the natural cubic spline of CSpline through points of cumulative
/// probability and fraction, with its very values, yet it is only evaluated at
/// ascending probabilities from 0 to 1, fewer than it has segments: so most
/// coefficients are never needed. Its solve is a chain of divisions, each of
/// which waits for the one before; the chains of several rows take the time of
/// one.
template <class T>
class InverseRows {
 public:
  static constexpr std::size_t Lanes = 4;

  /// Room for `points` points a row.
  explicit InverseRows(std::size_t points)
      : probability_(points),
        fraction_(points),
        diagonal_(points),
        solution_(points) {
    size_.fill(0);
  }

  /// Takes the points of a row: `cumulative` / `total` and `fractions`, as far
  /// as they ascend, see forEachAscending().
  void set(std::size_t lane, std::span<T const> cumulative, T total,
           std::span<T const> fractions) {
    size_[lane] = forEachAscending(cumulative, total,
                                   [&](std::size_t n, T p, std::size_t k) {
                                     probability_[n][lane] = p;
                                     fraction_[n][lane] = fractions[k];
                                   });
  }

  /// Solves all rows for the quadratic coefficients of their segments.
  void solve() {
    std::size_t const common = *std::min_element(size_.begin(), size_.end());
    state_ = State();
    for (std::size_t lane = 0; lane < Lanes; ++lane) begin(lane);
    eliminate<Lanes>(0, 1, common);
    for (std::size_t lane = 0; lane < Lanes; ++lane)
      eliminate<1>(lane, std::max<std::size_t>(common, 2) - 1, size_[lane]);
    Row above{};
    for (std::size_t lane = 0; lane < Lanes; ++lane)
      substitute<1>(lane, std::max<std::size_t>(common, 2) - 1, size_[lane],
                    above);
    substitute<Lanes>(0, 1, common, above);
  }

  /// Value of row `lane` at `p`. `segment` is 0 at first and is handed on from
  /// call to call, `p` ascending up to 1.
  T value(std::size_t lane, T p, std::size_t& segment) const {
    std::size_t const last = size_[lane] - 1;
    while (segment < last && p >= probability_[segment + 1][lane]) ++segment;
    T const d = p - probability_[segment][lane];
    T const y = fraction_[segment][lane];
    if (d == 0) return y;
    // Only a row of one point comes here with its last one: a constant.
    if (segment == last) return d * 0 + y;
    T const h = probability_[segment + 1][lane] - probability_[segment][lane];
    T const slope = (fraction_[segment + 1][lane] - y) / h;
    T const b = solution_[segment][lane];
    T const rise = solution_[segment + 1][lane] - b;
    T const cubic = rise / 3 / h;
    T const linear = slope - rise * h / 3 - h * b;
    return ((d * cubic + b) * d + linear) * d + y;
  }

 private:
  using Row = std::array<T, Lanes>;

  // What the elimination hands from one interior node to the next.
  struct State {
    Row step{};   // to the node from the one ahead of it
    Row slope{};  // of the segment that ends at the node
    Row super{};
    Row diagonal{};
    Row rhs{};
  };

  void begin(std::size_t lane) {
    solution_[0][lane] = 0;
    solution_[size_[lane] - 1][lane] = 0;
    state_.diagonal[lane] = 1;  // a row of zeros stands ahead of the first
    if (size_[lane] < 3) return;
    T const h = probability_[1][lane] - probability_[0][lane];
    state_.step[lane] = h;
    state_.slope[lane] = (fraction_[1][lane] - fraction_[0][lane]) / h;
  }

  // Interior nodes `from` to `size` - 2 of `Count` rows.
  template <std::size_t Count>
  void eliminate(std::size_t firstLane, std::size_t from, std::size_t size) {
    State state = state_;
    for (std::size_t i = from; i + 1 < size; ++i) {
      for (std::size_t l = firstLane; l < firstLane + Count; ++l) {
        T const h = probability_[i + 1][l] - probability_[i][l];
        T const slope = (fraction_[i + 1][l] - fraction_[i][l]) / h;
        T const wide = 2 * (probability_[i + 1][l] - probability_[i - 1][l]);
        T const factor = state.step[l] / state.diagonal[l];
        state.diagonal[l] = wide - factor * state.super[l];
        state.rhs[l] = 3 * (slope - state.slope[l]) - factor * state.rhs[l];
        state.step[l] = state.super[l] = h;
        state.slope[l] = slope;
        diagonal_[i][l] = state.diagonal[l];
        solution_[i][l] = state.rhs[l];
      }
    }
    state_ = state;
  }

  // The same nodes downwards; `above` is the solution at the node above.
  template <std::size_t Count>
  void substitute(std::size_t firstLane, std::size_t from, std::size_t size,
                  Row& above) {
    if (size < 3) return;
    Row next = above;
    for (std::size_t i = size - 2; i >= from; --i) {
      for (std::size_t l = firstLane; l < firstLane + Count; ++l) {
        T const h = probability_[i + 1][l] - probability_[i][l];
        next[l] = (solution_[i][l] - h * next[l]) / diagonal_[i][l];
        solution_[i][l] = next[l];
      }
    }
    above = next;
  }

  std::vector<Row> probability_;
  std::vector<Row> fraction_;
  std::vector<Row> diagonal_;
  std::vector<Row> solution_;
  std::array<std::size_t, Lanes> size_;
  State state_;
};
