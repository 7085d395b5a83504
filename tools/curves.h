#pragma once

#include <utility>
#include <vector>

#include "photarium/config/GeometryConfig.h"
#include "photarium/material/AttenuationCoeff.h"

namespace Tool {

/// The nodes of all ranges of a curve as plain numbers.
std::vector<std::pair<double, double>> nodesOf(
    AttenuationCoeff<double> const& curve);

/// Path through the layer that the geometry describes [cm].
double pathLength(GeometryConfig<double> const& geometry);

}  // namespace Tool
