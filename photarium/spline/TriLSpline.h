#pragma once

#include "photarium/foundation/export.h"
#include "photarium/spline/BiLSpline.h"
#include "photarium/spline/SplineRows.h"

/// Three-dimensional spline, linear in all coordinates: a family of BiLSpline,
/// one for each u. `t(u, ...)(v, ...)(w, ...)` is its value.
///
/// Construction, evaluation and scalars are those of SplineRows.
template <class X, class Y>
class TriLSpline : public SplineRows<TriLSpline<X, Y>, X, Y, BiLSpline<X, Y>,
                                     BiLSpline<X, Y>> {
  using Rows =
      SplineRows<TriLSpline<X, Y>, X, Y, BiLSpline<X, Y>, BiLSpline<X, Y>>;

 public:
  using Rows::Rows;
};

extern template class PHOTARIUM_EXPORT
    SplineRows<TriLSpline<double, double>, double, double,
               BiLSpline<double, double>, BiLSpline<double, double>>;
extern template class PHOTARIUM_EXPORT TriLSpline<double, double>;
