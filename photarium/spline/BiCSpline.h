#pragma once

#include "photarium/foundation/export.h"
#include "photarium/spline/CSpline.h"
#include "photarium/spline/SplineRows.h"

/// Two-dimensional spline, cubic across u and cubic across v: a family of
/// CSpline over v, one for each u.
///
/// Evaluated at u it is the CSpline whose coefficients and ordinates are
/// interpolated one by one. Construction, evaluation and scalars are those of
/// SplineRows.
template <class X, class Y>
class BiCSpline
    : public SplineRows<BiCSpline<X, Y>, X, Y, CSpline<X, Y>, CSpline<X, Y>> {
  using Rows = SplineRows<BiCSpline<X, Y>, X, Y, CSpline<X, Y>, CSpline<X, Y>>;

 public:
  using Rows::Rows;
};

extern template class PHOTARIUM_EXPORT
    SplineRows<BiCSpline<double, double>, double, double,
               CSpline<double, double>, CSpline<double, double>>;
extern template class PHOTARIUM_EXPORT BiCSpline<double, double>;
