#pragma once

#include <cmath>
#include <map>
#include <random>

#include "photarium/foundation/constants.h"
#include "photarium/material/Material.h"
#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"

/// Materials with made-up electron data in the shape of the real ones, for
/// tests and benchmarks of the table writers.

/// A scaled spectrum [mb] that falls with the photon's share `k` of the energy
/// `E` [keV].
inline double madeUpSpectrum(double E, double k) {
  return (14 - 3 * std::log10(E)) * (1 - 0.7 * k) + 0.3 * std::cos(9 * k);
}

/// Tungsten with made-up bremsstrahlung spectra in both fields.
inline Material<double> bremsMaterial() {
  Material<double> material("W", 0, 0, 0);
  std::map<double const, CSpline<double, double>> builtin;
  std::map<double const, LSpline<double, double>> tabulated;
  for (double E : {1., 2.5, 5., 10., 25., 50., 75., 100., 200., 500., 2000.}) {
    std::map<double const, double> points;
    for (double k : {0., .05, .1, .2, .3, .4, .5, .6, .7, .8, .9, 1.})
      points[k] = madeUpSpectrum(E, k);
    builtin[beta(E)] = CSpline<double, double>(points);
    tabulated[beta(E)] = LSpline<double, double>(points);
  }
  material.BremsSigma = BiCSpline<double, double>(builtin);
  material.TabSigma = BiLSpline<double, double>(tabulated);
  return material;
}

/// Tungsten with a cumulative distribution of the scattering cosine that grows
/// more forward with the energy.
inline Material<double> angleMaterial(unsigned int nodes) {
  Material<double> material("W", 0, 0, 0);
  std::map<double const, LSpline<double, double>> rows;
  for (double logE : {-1., 0., 1., 2., 3.}) {
    double const screening = std::pow(10, -1 - logE);
    std::map<double const, double> points;
    for (unsigned int i = 0; i < nodes; ++i) {
      double const x = i + 1 == nodes ? 1 : -1 + 2. * i / (nodes - 1);
      // Cumulative screened Rutherford distribution.
      points[x] = screening * (1 + x) / (1 - x + 2 * screening);
    }
    rows[logE] = LSpline<double, double>(points);
  }
  material.ElasticAngle = BiLSpline<double, double>(rows);
  return material;
}

/// A made-up element with two edges and photon curves from 0.5 keV to 1 MeV.
inline Material<double> photonMaterial() {
  using Curve = AttenuationCoeff<double>;
  Material<double> material("Cu", 0, 0, 0);
  auto const power = [](double value, double exponent) {
    Curve::Points points;
    for (double E = 0.5; E < 1100; E *= 1.2)
      points.emplace_back(E, value * std::pow(E, exponent));
    return points;
  };
  Curve::Points absorption = power(4e4, -2.8);
  for (auto& [E, value] : absorption) {
    if (E > 8.979) value *= 7.2;
    if (E > 1.096) value *= 1.3;
  }
  auto const curve = [](Curve::Points const& points) {
    return Curve::fromSorted({{points, Curve::LogLog, false}}, 1.,
                             /*linear=*/true);
  };
  material.Absorption = curve(absorption);
  material.Coherent = curve(power(7, -1.2));
  material.Incoherent = curve(power(0.08, 0.1));
  material.Pair = curve(power(1e-9, 1));
  return material;
}
