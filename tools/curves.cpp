#include "tools/curves.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <string_view>

#include "photarium/foundation/constants.h"
#include "photarium/foundation/number.h"

namespace Tool {

std::vector<std::pair<double, double>> nodesOf(
    AttenuationCoeff<double> const& curve) {
  std::ostringstream printed;
  printed << curve;
  std::string const text = std::move(printed).str();
  std::vector<std::pair<double, double>> nodes;
  for (std::string_view rest = text; !rest.empty();) {
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    std::pair<double, double> node;
    if (extractNumber(line, node.first) && extractNumber(line, node.second))
      nodes.push_back(node);
  }
  return nodes;
}

double pathLength(GeometryConfig<double> const& geometry) {
  return geometry.Thickness /
         std::cos((90 - geometry.AngleIn) * Constants::DegRad);
}

}  // namespace Tool
