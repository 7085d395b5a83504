#pragma once

#include <map>
#include <span>
#include <vector>

#include "photarium/foundation/export.h"
#include "photarium/spline/records.h"

/// What the two- and three-dimensional splines share.
///
/// They interpolate a family of splines, one for each outer coordinate u, and
/// evaluate to the spline at u. A spline is a vector of records with an
/// abscissa and coefficients, so each coefficient of each record is
/// interpolated across the family: there is one row for each record of the
/// inner splines, with its abscissa and, for each of its coefficients, a Field,
/// the spline over u that the coefficient follows. Nothing is solved anew at
/// u.
///
/// Inner is the class of the family and of the result, Field that of the
/// coefficients, Derived the class that derives from this one.
///
/// Threads as in Spline: evaluation may share an object.
template <class Derived, class X, class Y, class Inner, class Field>
class SplineRows {
  template <class A, class B>
  static triple<X, Field, Field> rowOf(triple<X, A, B> const*);
  template <class A, class B, class C, class D>
  static quint<X, Field, Field, Field, Field> rowOf(
      quint<X, A, B, C, D> const*);
  using InnerRecord = typename Inner::Node;

 public:
  /// Abscissa of an inner record and the splines of its coefficients.
  using Node = decltype(rowOf(static_cast<InnerRecord const*>(nullptr)));

  /// No rows.
  SplineRows() = default;

  /// Builds from inner splines keyed by the outer coordinate. They are to have
  /// the same abscissas, those of the last one are used; as many records are
  /// used as the first one has. std::runtime_error "Splines of different
  /// lengths!" is thrown if another one has fewer. An empty map gives no rows.
  SplineRows(std::map<X const, Inner> const& splines);

  /// The same from strictly ascending outer coordinates and as many splines,
  /// without a map; std::invalid_argument is thrown if the lengths differ.
  SplineRows(std::span<X const> outer, std::span<Inner const> splines);

  /// The same for splines that lie apart.
  SplineRows(std::span<X const> outer, std::span<Inner const* const> splines);

  /// True if there is no row.
  bool empty() const { return data.empty(); }

  /// The rows in the order of the inner abscissas.
  std::vector<Node> const& records() const { return data; }

  /// The inner spline at `u`, with the search and the limits of
  /// Spline::operator(). Throws std::out_of_range with an empty message
  /// outside the outer coordinates unless `extrapolate`, and
  /// std::runtime_error "Trying to construct empty spline!" without rows.
  Inner operator()(X u, bool sequential, bool extrapolate) const;

  /// Shifts all ordinates by `c`.
  Derived& operator+=(Y const& c);

  /// Shifts all ordinates by `-c`.
  Derived& operator-=(Y const& c) { return *this += -c; }

  /// Scales all ordinates by `c`.
  Derived& operator*=(Y const& c);

  /// Scales all ordinates by the reciprocal of `c`.
  Derived& operator/=(Y const& c) { return *this *= Y(1.0) / c; }

 protected:
  /// Takes the rows as they are; throws std::runtime_error "Trying to
  /// construct empty spline!" if there are none.
  explicit SplineRows(std::vector<Node> rows);

  std::vector<Node> data;

 private:
  template <class, class, class, class, class>
  friend class SplineRows;

  void build(std::span<X const> outer, std::span<Inner const* const> splines);
};
