#pragma once

#include <set>
#include <vector>

#include "photarium/foundation/export.h"
#include "photarium/spline/LSpline.h"
#include "photarium/spline/SplineRows.h"

/// Two-dimensional spline, linear across u and linear across v: a family of
/// LSpline over v, one for each u.
///
///     std::map<double const, LSpline<double, double>> rows;
///     rows[0.1] = LSpline<double, double>(pointsAt10Percent);
///     rows[0.5] = LSpline<double, double>(pointsAt50Percent);
///     BiLSpline<double, double> const table(rows);
///     LSpline<double, double> const row = table(0.3, false, false);
///
/// At a u of the family the result has the very nodes of its spline.
/// Construction, evaluation and scalars are those of SplineRows.
template <class X, class Y>
class BiLSpline
    : public SplineRows<BiLSpline<X, Y>, X, Y, LSpline<X, Y>, LSpline<X, Y>> {
  using Rows = SplineRows<BiLSpline<X, Y>, X, Y, LSpline<X, Y>, LSpline<X, Y>>;

 public:
  using Rows::Rows;
  using Rows::operator+=;

  /// The outer coordinates u; none if there are no rows.
  std::set<X> nodes() const;

  /// The sum of two tables on the coordinates of both. Each is extrapolated
  /// where only the other one reaches. An empty one counts as 0.
  BiLSpline operator+(BiLSpline const& other) const;
  BiLSpline& operator+=(BiLSpline const& other);
};

extern template class PHOTARIUM_EXPORT
    SplineRows<BiLSpline<double, double>, double, double,
               LSpline<double, double>, LSpline<double, double>>;
extern template class PHOTARIUM_EXPORT BiLSpline<double, double>;
