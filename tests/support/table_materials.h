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
  for (double logE : {0., 1., 2., 3.}) {
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
