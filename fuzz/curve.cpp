// Attenuation curves of any points: building ends in a curve or in an
// exception of the library, from contiguous points as from multimaps, and
// whatever was built can be evaluated, added, copied and printed.
//
// Input: a byte of flags (1: plain numbers), then stretches: a byte with the
// law in its low three bits and "cubic" in the fourth, a byte with the number
// of points, and two doubles a point.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/material/AttenuationCoeff.h"

namespace {

using Curve = AttenuationCoeff<double>;

/// Takes a T from the front of the input; zero where it has ended.
template <class T>
T take(std::uint8_t const*& data, std::size_t& size) {
  T value{};
  std::size_t const length = size < sizeof(T) ? size : sizeof(T);
  std::memcpy(&value, data, length);
  data += length;
  size -= length;
  return value;
}

std::string text(Curve const& curve) {
  std::ostringstream out;
  out << curve;
  return out.str();
}

void use(Curve curve, Curve const& other) {
  for (double const x : {0., 1e-3, 1., 3.7, 1e6, -1., std::nan("")}) {
    double const value = curve(x, /*extrapolate=*/true);
    if (!curve.covers(x)) continue;
    double const inside = curve(x, /*extrapolate=*/false);
    if (inside != value && !std::isnan(value)) __builtin_trap();
  }
  curve.Discontinuities();
  curve += other;
  curve *= 0.5;
  curve.sqr();
  text(curve);
  curve.sqrt();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data,
                                      std::size_t size) {
  bool const linear = take<std::uint8_t>(data, size) & 1;
  std::vector<Curve::Stretch> stretches;
  std::vector<Curve::MapStretch> maps;
  while (size > 0) {
    unsigned const kind = take<std::uint8_t>(data, size);
    unsigned const count = take<std::uint8_t>(data, size);
    auto const law = static_cast<Curve::Interpolation>(kind & 7);
    bool const isCubic = (kind & 8) != 0;
    stretches.push_back({{}, law, isCubic});
    maps.push_back({{}, law, isCubic});
    for (unsigned i = 0; i < count && size > 0; ++i) {
      double const x = take<double>(data, size);
      double const y = take<double>(data, size);
      stretches.back().first.emplace_back(x, y);
      maps.back().first.emplace(x, y);
    }
  }
  try {
    Curve const curve = Curve::fromSorted(stretches, 2., linear);
    if (text(curve) != text(Curve(maps, 2., linear))) __builtin_trap();
    if (!stretches.empty())
      use(curve, Curve::fromSorted({stretches.front()}, 1., linear));
  } catch (std::runtime_error const&) {
  }
  return 0;
}
