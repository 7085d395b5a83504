#include "tools/curves.h"

#include <cmath>

#include "photarium/foundation/constants.h"

namespace Tool {

std::vector<std::pair<double, double>> nodesOf(
    AttenuationCoeff<double> const& curve) {
  std::vector<std::pair<double, double>> nodes;
  for (auto const& [points, law, isCubic] : curve.nodes())
    nodes.insert(nodes.end(), points.begin(), points.end());
  return nodes;
}

double pathLength(GeometryConfig<double> const& geometry) {
  return geometry.Thickness /
         std::cos((90 - geometry.AngleIn) * Constants::DegRad);
}

}  // namespace Tool
