#pragma once

#include "photarium/foundation/export.h"
#include "photarium/spline/BiCSpline.h"
#include "photarium/spline/SplineRows.h"

/// Three-dimensional spline, cubic in all coordinates: a family of BiCSpline,
/// one for each u. `t(u, ...)(v, ...)(w, ...)` is its value.
///
/// Construction, evaluation and scalars are those of SplineRows.
template <class X, class Y>
class TriCSpline : public SplineRows<TriCSpline<X, Y>, X, Y, BiCSpline<X, Y>,
                                     BiCSpline<X, Y>> {
  using Rows =
      SplineRows<TriCSpline<X, Y>, X, Y, BiCSpline<X, Y>, BiCSpline<X, Y>>;

 public:
  using Rows::Rows;
};

extern template class PHOTARIUM_EXPORT
    SplineRows<TriCSpline<double, double>, double, double,
               BiCSpline<double, double>, BiCSpline<double, double>>;
extern template class PHOTARIUM_EXPORT TriCSpline<double, double>;
