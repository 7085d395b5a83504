#include "photarium/spline/BiCLSpline.h"

template <class X, class Y>
std::set<X> BiCLSpline<X, Y>::nodes() const {
  std::set<X> outer;
  if (this->data.empty()) return outer;
  for (auto const& node : this->data.front().third.records())
    outer.insert(node.first);
  return outer;
}

template class BiCLSpline<double, double>;
