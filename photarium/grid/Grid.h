#pragma once

#include <map>

#include "photarium/foundation/export.h"

/// Arithmetic on energy grids.
///
/// An energy grid is a map from energy [keV] to a value: counts in a bin,
/// counts per keV, an attenuation coefficient. What the value means is the
/// caller's business. A grid stores no bin edges. A node's bin reaches half way
/// to either neighbour; the first and the last node lack a neighbour, and their
/// inner half bin is mirrored around them.
///
///     std::map<double const, double> fine = ..., coarse = ...;
///     // Counts of `fine`, brought onto the nodes of `coarse`.
///     Grid::ConvGrid(fine, coarse, /*inBinned=*/true, /*outBinned=*/true,
///                    /*interpolated=*/false, /*extrapolate=*/false,
///                    /*cubic=*/false);
///
/// The element-wise operations walk their grids in step by position: energies
/// are not compared, `out` must already hold the wanted nodes, and `a` and `b`
/// at least as many. `out` may be `a` or `b`. Division by zero gives what
/// floating point gives.
///
/// Nothing here keeps state; a grid is used by one thread at a time.
namespace Grid {

/// What ConvGrid makes of the values of a grid.
enum GridConvDir {
  ToCounts = 0,   ///< per keV to contents of the bin: times bin width
  ToDensity = 1,  ///< contents of the bin to per keV: divided by bin width
};

/// Gives every node `value`.
template <class T>
void InitGrid(std::map<T const, T>& grid, T const& value);

/// Gives `grid` the energies of `source`, each with `value`. The nodes are kept
/// where `grid` already equals `source`.
template <class T>
void InitGrid(std::map<T const, T> const& source, std::map<T const, T>& grid,
              T const& value);

/// Makes `target` equal to `source`, and leaves it alone where it is already.
template <class T>
void CopyGrid(std::map<T const, T> const& source, std::map<T const, T>& target);

/// Turns densities into contents of bins or back. A grid of fewer than two
/// nodes has no bin width and stays as it is.
template <class T>
void ConvGrid(std::map<T const, T>& grid, GridConvDir dir);

/// Brings `source` onto the nodes of `target`, whose values are rewritten.
///
/// `inBinned` says that `source` holds contents of bins, not densities;
/// `outBinned` asks for them in `target`. If `interpolated`, a node gets the
/// value of the spline through the densities of `source`, natural cubic if
/// `cubic` and else linear; outside `source` that is 0 unless `extrapolate`.
/// Otherwise a node gets the mean density over its bin, so that the integral is
/// kept; what `source` does not cover counts as 0. The time is proportional to
/// the nodes of both. `source` and `target` may be one grid.
///
/// Rebinning onto a single node divides by a bin of no width. An exception
/// while the spline is built passes through, `target` untouched.
template <class T>
void ConvGrid(std::map<T const, T> const& source, std::map<T const, T>& target,
              bool inBinned, bool outBinned, bool interpolated,
              bool extrapolate, bool cubic);

/// out = a + b
template <class T>
void AddGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
             std::map<T const, T> const& b);

/// out = a - b
template <class T>
void SubtractGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                  std::map<T const, T> const& b);

/// out = a * factor
template <class T>
void MultiplyGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                  T const& factor);

/// out = a * b
template <class T>
void MultiplyGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                  std::map<T const, T> const& b);

/// out = a / divisor
template <class T>
void DivideGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                T const& divisor);

/// out = a / b
template <class T>
void DivideGrid(std::map<T const, T>& out, std::map<T const, T> const& a,
                std::map<T const, T> const& b);

}  // namespace Grid

/// Shares `amount` between the two nodes around `energy` so that both the sum
/// and the mean energy are kept. Outside the grid the end node gets it all. An
/// empty grid has no node to take it and stays empty.
template <class T>
void add(std::map<T const, T>& grid, T energy, T amount);

/// Takes away what add() with the same arguments gives.
template <class T>
void sub(std::map<T const, T>& grid, T energy, T amount);

/// The instantiations in the library, named once here.
#define PHOTARIUM_GRID_FUNCTIONS(prefix, T)                                 \
  prefix void Grid::InitGrid(std::map<T const, T>&, T const&);              \
  prefix void Grid::InitGrid(std::map<T const, T> const&,                   \
                             std::map<T const, T>&, T const&);              \
  prefix void Grid::CopyGrid(std::map<T const, T> const&,                   \
                             std::map<T const, T>&);                        \
  prefix void Grid::ConvGrid(std::map<T const, T>&, Grid::GridConvDir);     \
  prefix void Grid::ConvGrid(std::map<T const, T> const&,                   \
                             std::map<T const, T>&, bool, bool, bool, bool, \
                             bool);                                         \
  prefix void Grid::AddGrid(std::map<T const, T>&,                          \
                            std::map<T const, T> const&,                    \
                            std::map<T const, T> const&);                   \
  prefix void Grid::SubtractGrid(std::map<T const, T>&,                     \
                                 std::map<T const, T> const&,               \
                                 std::map<T const, T> const&);              \
  prefix void Grid::MultiplyGrid(std::map<T const, T>&,                     \
                                 std::map<T const, T> const&, T const&);    \
  prefix void Grid::MultiplyGrid(std::map<T const, T>&,                     \
                                 std::map<T const, T> const&,               \
                                 std::map<T const, T> const&);              \
  prefix void Grid::DivideGrid(std::map<T const, T>&,                       \
                               std::map<T const, T> const&, T const&);      \
  prefix void Grid::DivideGrid(std::map<T const, T>&,                       \
                               std::map<T const, T> const&,                 \
                               std::map<T const, T> const&);                \
  prefix void add(std::map<T const, T>&, T, T);                             \
  prefix void sub(std::map<T const, T>&, T, T);

PHOTARIUM_GRID_FUNCTIONS(extern template PHOTARIUM_EXPORT, double)
