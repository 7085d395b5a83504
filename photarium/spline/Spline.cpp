#include "photarium/spline/Spline.h"

#include <stdexcept>

#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"
#include "photarium/spline/lengths.h"

void requireEqualLengths(std::size_t abscissas, std::size_t ordinates) {
  if (abscissas != ordinates)
    throw std::invalid_argument("Abscissas and ordinates differ in number!");
}

template <class X, class Y, class Node>
NodeSpline<X, Y, Node>::NodeSpline(std::vector<Node> nodes)
    : data(std::move(nodes)) {
  if (data.empty())
    throw std::runtime_error("Trying to construct empty spline!");
}

template <class X, class Y, class Node>
void NodeSpline<X, Y, Node>::throwOutside() {
  throw std::out_of_range("");
}

template class Spline<double, double>;
template class NodeSpline<double, double, LSpline<double, double>::Node>;
template class NodeSpline<double, double, CSpline<double, double>::Node>;
