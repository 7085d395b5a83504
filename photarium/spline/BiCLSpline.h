#pragma once

#include <set>

#include "photarium/foundation/export.h"
#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"
#include "photarium/spline/SplineRows.h"

/// Two-dimensional spline, cubic across u and linear across v: a family of
/// LSpline over v, one for each u.
///
/// Evaluated at u it is the LSpline whose slopes and ordinates are interpolated
/// one by one. Construction, evaluation and scalars are those of SplineRows.
template <class X, class Y>
class BiCLSpline
    : public SplineRows<BiCLSpline<X, Y>, X, Y, LSpline<X, Y>, CSpline<X, Y>> {
  using Rows = SplineRows<BiCLSpline<X, Y>, X, Y, LSpline<X, Y>, CSpline<X, Y>>;

 public:
  using Rows::Rows;

  /// The outer coordinates u; none if there are no rows.
  std::set<X> nodes() const;
};

extern template class PHOTARIUM_EXPORT
    SplineRows<BiCLSpline<double, double>, double, double,
               LSpline<double, double>, CSpline<double, double>>;
extern template class PHOTARIUM_EXPORT BiCLSpline<double, double>;
