// mu: attenuation of a material on an energy grid, as a table, as JSON and as
// a picture.

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "photarium/config/PlotConfig.h"
#include "photarium/foundation/elements.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/warning.h"
#include "photarium/grid/Attenuation.h"
#include "photarium/grid/SpectrumFile.h"
#include "photarium/material/Material.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/Picture.h"
#include "tools/command.h"
#include "tools/curves.h"
#include "tools/json_text.h"
#include "tools/loading.h"
#include "tools/names.h"
#include "tools/report.h"
#include "tools/spectra.h"

namespace Tool {
namespace {

using Plot = PlotConfig<double>;
using EnergyGrid = std::map<double const, double>;

// As muPlot does, the table of photons comes ahead of electron scattering.
bool isElectronCurve(Plot const& plot) {
  return plot.eElScatter && !plot.ACRP;
}

bool isEfficiency(Plot const& plot) {
  return plot.Efficiency && !plot.ACRP && !plot.eElScatter;
}

// A curve that the settings select.
struct Selected {
  char const* name;
  AttenuationCoeff<double> const* curve;
};

// Those of the table and of the sum, in the order of the table.
std::vector<Selected> crossSections(Plot const& plot,
                                    Material<double> const& material) {
  if (isElectronCurve(plot))
    return {{"elastic electron scattering", &material.ElectronElastic}};
  std::vector<Selected> selected;
  auto const add = [&](bool wanted, char const* name, auto const& curve) {
    if (wanted || plot.ACRP) selected.push_back({name, &curve});
  };
  add(plot.Absorption, "photoabsorption", material.Absorption);
  add(plot.Incoherent, "incoherent", material.Incoherent);
  add(plot.Coherent, "coherent", material.Coherent);
  add(plot.Pair, "pair production", material.Pair);
  return selected;
}

// A factor of the atom, of which the nodes themselves are printed; null where
// cross sections are wanted.
AttenuationCoeff<double> const* factorOf(Plot const& plot,
                                         Material<double> const& material) {
  if (plot.ACRP) return nullptr;
  if (plot.FormFactor) return &material.FormFactor;
  if (plot.ScatFunc) return &material.ScatterFunction;
  if (plot.ImagFactor) return &material.AnomalousImag;
  if (plot.RealFactor) return &material.AnomalousReal;
  return nullptr;
}

char const* factorName(Plot const& plot) {
  if (plot.FormFactor) return "form factor";
  if (plot.ScatFunc) return "scattering function";
  return plot.ImagFactor ? "imaginary anomalous scattering factor"
                         : "real anomalous scattering factor";
}

bool isOverMomentum(Plot const& plot) {
  return plot.FormFactor || plot.ScatFunc;
}

// A curve at the energies of a grid; not a number where it has no value.
struct Sampled {
  std::string name;
  std::vector<double> values;
};

double valueAt(AttenuationCoeff<double> const& curve, double energy,
               bool extrapolate) {
  if (!extrapolate && !curve.covers(energy))
    return std::numeric_limits<double>::quiet_NaN();
  return curve(energy, extrapolate);
}

// The selected curves [1/cm] and, of several, their sum; or the efficiency.
std::vector<Sampled> sample(Plot const& plot, Material<double> const& material,
                            std::vector<double> const& energies) {
  std::vector<Sampled> sampled;
  Sampled sum{"sum", std::vector<double>(energies.size())};
  for (auto const& [name, curve] : crossSections(plot, material)) {
    Sampled& one = sampled.emplace_back(Sampled{name, {}});
    for (std::size_t i = 0; i < energies.size(); ++i) {
      one.values.push_back(material.Density *
                           valueAt(*curve, energies[i], plot.Extrapolate));
      sum.values[i] += one.values[i];
    }
  }
  if (isEfficiency(plot)) {
    double const path = pathLength(plot);
    for (double& mu : sum.values) mu = -std::expm1(-path * mu);
    return {{"efficiency", std::move(sum.values)}};
  }
  if (sampled.size() > 1) sampled.push_back(std::move(sum));
  return sampled;
}

nlohmann::ordered_json headOf(Plot const& plot,
                              Material<double> const& material) {
  nlohmann::ordered_json json;
  json["material"] = material.Name;
  json["density_g_cm3"] = material.Density;
  json["database"] = plot.DataFile;
  return json;
}

std::string toJson(Plot const& plot, Material<double> const& material,
                   std::vector<double> const& energies) {
  nlohmann::ordered_json json = headOf(plot, material);
  if (auto const* const factor = factorOf(plot, material)) {
    auto& curve = json["curves"][factorName(plot)];
    for (auto const& [x, y] : nodesOf(*factor)) {
      json[isOverMomentum(plot) ? "momentum_transfer" : "energy_keV"].push_back(
          x);
      curve.push_back(y);
    }
    return jsonText(json);
  }
  json["unit"] = isEfficiency(plot) ? "1" : "1/cm";
  json["energy_keV"] = energies;
  for (auto const& [name, values] : sample(plot, material, energies))
    json["curves"][name] = values;
  return jsonText(json);
}

// Enough energies for a smooth curve, and both sides of every edge, between the
// ends of the grid; the grid itself where no equal ratios lead from one to the
// other.
std::vector<double> pictureEnergies(std::vector<double> const& grid,
                                    Material<double> const& material) {
  constexpr int Steps = 600;
  auto const positive = std::upper_bound(grid.begin(), grid.end(), 0.);
  if (positive == grid.end() || !std::isfinite(grid.back() / *positive))
    return grid;
  double const first = *positive, last = grid.back();
  std::vector<double> energies;
  for (int i = 0; i <= Steps; ++i)
    energies.push_back(first * std::pow(last / first, double(i) / Steps));
  energies.front() = first;
  energies.back() = last;
  for (auto const& [edge, ratio] : material.Absorption.Discontinuities())
    if (edge > first && edge < last) {
      energies.push_back(std::nextafter(edge, 0.));
      energies.push_back(edge);
    }
  std::sort(energies.begin(), energies.end());
  return energies;
}

PicturePage factorPage(Plot const& plot, Material<double> const& material,
                       AttenuationCoeff<double> const& factor) {
  PicturePage page{
      material.Name,
      isOverMomentum(plot) ? "momentum transfer [1/Å]" : "photon energy [keV]",
      factorName(plot)};
  page.curves = {{factorName(plot), nodesOf(factor)}};
  // The anomalous factors change sign.
  page.logY = isOverMomentum(plot);
  return page;
}

PicturePage pageOf(Plot const& plot, Material<double> const& material,
                   std::vector<double> const& grid) {
  if (auto const* const factor = factorOf(plot, material))
    return factorPage(plot, material, *factor);
  std::string density;
  appendGeneral(density, material.Density);
  PicturePage page{
      material.Name + ", " + density + " g/cm³",
      isElectronCurve(plot) ? "electron energy [keV]" : "photon energy [keV]",
      isEfficiency(plot) ? "efficiency"
                         : "linear attenuation coefficient [1/cm]"};
  page.logY = !isEfficiency(plot);
  auto const energies = pictureEnergies(grid, material);
  for (auto const& [name, values] : sample(plot, material, energies)) {
    PictureCurve& curve = page.curves.emplace_back(PictureCurve{name, {}});
    curve.isBackground = name == "sum";
    for (std::size_t i = 0; i < energies.size(); ++i)
      curve.points.emplace_back(energies[i], values[i]);
  }
  if (!isElectronCurve(plot))
    for (auto const& edge : material.Edges)
      page.marks.push_back({nameOf(edge.ID), edge.Energy});
  return page;
}

void print(std::ostream& out, Plot const& plot,
           Material<double> const& material, EnergyGrid& grid,
           LabelMap<double>& labels) {
  std::size_t const nodes = grid.size();
  try {
    muPlot(out, plot, material, grid, labels);
  } catch (warning const& findings) {
    report(findings.what());
  } catch (std::runtime_error const& error) {
    std::string message = error.what();
    // The library has named the energies that are left out.
    if (grid.size() < nodes)
      message +=
          "\nEnergies beyond the data or between their ranges need "
          "--extrapolate";
    throw std::runtime_error(message);
  }
  if (grid.size() < nodes && !plot.ACRP)
    report(std::to_string(nodes - grid.size()) + " of " +
           std::to_string(nodes) +
           " energies are beyond the data and left out, see --extrapolate");
}

}  // namespace

void runMu(Arguments const& arguments) {
  CommandLine const line(arguments, {OutputOption, PlotOption, JsonOption});
  Plot plot;
  line.configure(plot, "mu");
  Picture const picture(line.value("plot"));

  Material<double> material;
  load(material, plot);
  check(plot);
  LabelMap<double> labels;
  EnergyGrid grid;
  energyNodes(plot, grid, labels);
  std::vector<double> energies;
  if (line.has("json") || picture.isWanted())
    for (auto const& [energy, value] : grid) energies.push_back(energy);

  Output output(line.value("output"));
  if (line.has("json"))
    output.stream() << toJson(plot, material, energies);
  else
    print(output.stream(), plot, material, grid, labels);
  if (picture.isWanted()) picture.draw(pageOf(plot, material, energies));
  output.finish();
}

}  // namespace Tool
