#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <map>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "photarium/config/DistributionConfig.h"
#include "photarium/config/SpectConfig.h"
#include "photarium/foundation/constants.h"
#include "photarium/material/Material.h"
#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"

/// The plain forms of the table writers, for comparison: a map for each
/// inversion and a stream insertion for each number.
namespace plain {

using Points = std::map<double const, double>;

inline std::uint64_t rows(double kVp, double EBin) {
  return static_cast<std::uint64_t>(std::ceil(kVp / EBin));
}

inline void header(std::ostream& out, std::string const& tag,
                   std::uint64_t columns, std::uint64_t rows, double step,
                   double density) {
  std::ostringstream text;
  double const last = static_cast<double>(rows) * step;
  text << tag << columns << "\t" << rows << "\t" << step << "\t" << step
       << "\n# Density: " << density << "\t# [g/cm^3]\n# energy steps of "
       << step << " keV, from " << step << " keV to " << last << " keV\n";
  out << text.str();
}

/// The table of AngleDist(); returns the findings.
inline std::string angleDist(std::ostream& out,
                             DistributionConfig<double> const& dist,
                             Material<double> const& material) {
  std::uint64_t const energies = rows(dist.kVp, dist.EBin);
  header(out, "#MIC\t0\t" + material.Name + "\tAngle\t", dist.Steps, energies,
         dist.EBin, material.Density);
  out << std::scientific << std::showpos;
  out.precision(6);
  std::ostringstream findings;
  for (std::uint64_t i = 0; i < energies; ++i) {
    double const E = static_cast<double>(i + 1) * dist.EBin;
    LSpline<double, double> inverse;
    if (!material.ElasticAngle.empty()) {
      Points inverted;
      double previous = 0;
      auto const row = material.ElasticAngle(std::log10(E), true, true);
      for (auto const& [x, p] : row.nodes()) {
        if (previous > p)
          findings << "Probability function not monotonous at: " << E << ", "
                   << x << ", " << p << '\n';
        inverted.insert({p, x});
        previous = p;
      }
      inverse = LSpline<double, double>(inverted);
    }
    for (std::uint64_t j = 0; j < dist.Steps; ++j) {
      double const p =
          static_cast<double>(j) / static_cast<double>(dist.Steps - 1);
      double const x = inverse(p, true, true);
      if (x < -1 || x > 1 || (j == 0 && x != -1))
        findings << "Something wrong at: (" << i << ", " << j << ") == (" << E
                 << ", " << p << ", " << x << ")\n";
      out << " " << x;
    }
    out << "\n";
  }
  return findings.str();
}

/// The text of one row of BremsTable(), without its line feed.
template <class Spectrum>
std::string bremsRow(Spectrum const& spectrum, double scale, double E,
                     double EBin, std::uint64_t steps, bool cubic) {
  auto const points = static_cast<std::size_t>(10 * steps);
  double const low = std::min(1.0, std::min(EBin, E / 100));
  double const dk = (E - low) / static_cast<double>(points - 1);
  std::vector<double> cumulative(points);
  double sum = 0;
  for (std::size_t k = 0; k < points; ++k) {
    double const Ek = static_cast<double>(k) * dk + low;
    double const y = spectrum(Ek / E, true, true) * scale / Ek * dk;
    if (y > 0) sum += y;
    cumulative[k] = sum;
  }
  Points inverted;
  for (std::size_t k = 0; k < points; ++k) {
    double const Ek = static_cast<double>(k) * dk + low;
    inverted.insert({cumulative[k] / sum, Ek / E});
  }
  CSpline<double, double> smooth;
  LSpline<double, double> straight;
  if (cubic)
    smooth = CSpline<double, double>(inverted);
  else
    straight = LSpline<double, double>(inverted);
  std::ostringstream text;
  text << std::scientific;
  text.precision(6);
  text << sum;
  for (std::uint64_t j = 0; j < steps; ++j) {
    double const p = static_cast<double>(j) / static_cast<double>(steps - 1);
    text << "\t" << (cubic ? smooth(p, true, true) : straight(p, true, true));
  }
  return text.str();
}

/// The table of BremsTable().
inline void bremsTable(std::ostream& out, SpectConfig<double> const& spect,
                       DistributionConfig<double> const& dist,
                       Material<double> const& material) {
  std::uint64_t const energies = rows(spect.kVp, spect.EBin);
  header(out, "#Tramo\t0\t" + material.Name + "\tBrems\t", dist.Steps + 1,
         energies, spect.EBin, material.Density);
  double const factor = 6.022140857e23 / material.A * 1e-27 * material.Density;
  for (std::uint64_t i = 0; i < energies; ++i) {
    double const E = static_cast<double>(i + 1) * spect.EBin;
    double const g = E / Constants::XME + 1;
    double const velocity = std::sqrt(1 - 1 / (g * g));
    std::string row;
    if (spect.Pratt) {
      CSpline<double, double> spectrum;
      if (!material.BremsSigma.empty())
        spectrum = material.BremsSigma(velocity, true, true);
      row = bremsRow(spectrum,
                     material.Z * material.Z * factor / (1 - 1 / (g * g)), E,
                     spect.EBin, dist.Steps, dist.Cubic);
    } else {
      LSpline<double, double> spectrum;
      if (!material.TabSigma.empty())
        spectrum = material.TabSigma(velocity, true, true);
      row = bremsRow(spectrum, factor / velocity, E, spect.EBin, dist.Steps,
                     dist.Cubic);
    }
    out << row << "\n";
  }
}

}  // namespace plain
