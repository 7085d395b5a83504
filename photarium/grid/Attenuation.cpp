#include "photarium/grid/Attenuation.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/config/Header.h"
#include "photarium/foundation/constants.h"
#include "photarium/foundation/warning.h"
#include "photarium/grid/Grid.h"
#include "photarium/grid/TableHeader.h"
#include "photarium/grid/TableText.h"

namespace {

// Runs `work` and puts `name` ahead of the text of what it throws.
template <class Work>
void named(std::string const& name, Work&& work) {
  try {
    work();
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& failure) {
    std::string const prefix = name.empty() ? name : name + ": ";
    throw std::runtime_error(prefix + failure.what());
  }
}

// A column of the cross section table; an energy that the curve does not cover
// has no value.
template <class T>
struct Column {
  std::vector<T> values;
  std::vector<bool> held;
};

template <class T>
Column<T> sample(AttenuationCoeff<T> const& coeff,
                 std::vector<T> const& energies, T factor,
                 std::string const& name, bool extrapolate) {
  Column<T> column;
  named(name, [&] {
    AttenuationCoeff<T> const curve(coeff, factor);
    column.values.reserve(energies.size());
    column.held.reserve(energies.size());
    for (T energy : energies) {
      bool const held = extrapolate || curve.covers(energy);
      T value = 0;
      if (held) value += curve(energy, extrapolate);
      column.values.push_back(value);
      column.held.push_back(held);
    }
  });
  return column;
}

// The four photon cross sections on an energy grid.
template <class T>
class PhotonTable {
 public:
  PhotonTable(Material<T> const& material, bool extrapolate,
              std::vector<T> const& energies)
      : columns_{sample(material.Absorption, energies, material.Density,
                        "Absorption " + material.Name, extrapolate),
                 sample(material.Incoherent, energies, material.Density,
                        "Incoherent " + material.Name, extrapolate),
                 sample(material.Coherent, energies, material.Density,
                        "Coherent " + material.Name, extrapolate),
                 sample(material.Pair, energies, material.Density,
                        "Pair " + material.Name, extrapolate)} {}

  std::size_t size() const { return columns_[0].values.size(); }

  // Number of curves that cover the energy at position `i`.
  unsigned int count(std::size_t i) const {
    unsigned int number = 0;
    for (auto const& column : columns_) number += column.held[i] ? 1 : 0;
    return number;
  }

  bool isComplete(std::size_t i) const { return count(i) == columns_.size(); }

  T absorption(std::size_t i) const { return columns_[0].values[i]; }

  void write(std::ostream& out) const {
    TableText rows(out);
    for (std::size_t i = 0; i < size(); ++i) {
      if (!isComplete(i)) continue;
      char const* separator = "";
      for (auto const& column : columns_) {
        rows.text += separator;
        rows.number(column.values[i]);
        separator = "\t";
      }
      rows.endRow();
    }
    rows.flush();
  }

 private:
  std::array<Column<T>, 4> columns_;
};

// Puts the absorption into `grid` and removes the energies that the table lacks
// data for, also from `energies`, naming those that some of the curves cover.
// Returns the number of energies that any of them does.
template <class T>
std::uint64_t reduce(PhotonTable<T> const& table, std::map<T const, T>& grid,
                     std::vector<T>& energies) {
  std::uint64_t covered = 0;
  std::size_t i = 0;
  energies.clear();
  for (auto node = grid.begin(); node != grid.end(); ++i) {
    unsigned int const count = table.count(i);
    covered += count > 0 ? 1 : 0;
    if (table.isComplete(i)) {
      energies.push_back(node->first);
      node->second = table.absorption(i);
      ++node;
      continue;
    }
    if (count > 0) std::cerr << node->first << '\t' << count << '\n';
    node = grid.erase(node);
  }
  return covered;
}

// The step of a regular grid, 0 for a single energy.
template <class T>
T regularStep(std::vector<T> const& energies) {
  T step = 0;
  for (std::size_t i = 1; i < energies.size(); ++i) {
    T const difference = energies[i] - energies[i - 1];
    if (step == 0)
      step = difference;
    else if (std::abs(difference / step - 1) > T(1e-5))
      throw std::runtime_error("Not a regular energy grid");
  }
  return step;
}

template <class T>
void requireEnergies(std::vector<T> const& energies) {
  if (energies.empty()) throw std::runtime_error("No energies given");
}

template <class T>
void writeTable(std::ostream& out, PlotConfig<T> const& plot,
                Material<T> const& material, std::map<T const, T>& grid,
                std::string& findings) {
  std::vector<T> energies;
  energies.reserve(grid.size());
  for (auto const& node : grid) energies.push_back(node.first);
  requireEnergies(energies);
  PhotonTable<T> const table(material, plot.Extrapolate, energies);
  std::uint64_t const covered = reduce(table, grid, energies);
  if (energies.size() != table.size())
    findings += "Not enough data for requested energy values\n";
  requireEnergies(energies);
  TableHeader<T> header;
  header.Name = material.Name;
  header.Kind = "ACRP";
  header.Columns = 4;
  header.Rows = covered;
  header.First = energies.front();
  header.Step = regularStep(energies);
  header.Last = T(covered - 1) * header.Step + header.First;
  header.Density = material.Density;
  out << header.text()
      << "# photoabsorption\tincoherent\tcoherent\tpair production\n";
  table.write(out);
}

// Sums the selected curves into `grid`.
template <class T>
void sumCurves(PlotConfig<T> const& plot, Material<T> const& material,
               std::map<T const, T>& grid) {
  struct Choice {
    bool wanted;
    AttenuationCoeff<T> const& curve;
    char const* name;
  };
  bool const photons = !plot.eElScatter;
  for (Choice const& choice :
       {Choice{plot.eElScatter, material.ElectronElastic, "eElScatter "},
        Choice{photons && plot.Absorption, material.Absorption, "Absorption "},
        Choice{photons && plot.Coherent, material.Coherent, "Coherent "},
        Choice{photons && plot.Incoherent, material.Incoherent, "Incoherent "},
        Choice{photons && plot.Pair, material.Pair, "Pair "}})
    if (choice.wanted)
      interpolate(choice.curve, grid, material.Density,
                  choice.name + material.Name, plot.Extrapolate);
}

// Turns attenuation [1/cm] into what a layer absorbs of rays at `AngleIn`.
template <class T>
void toEfficiency(PlotConfig<T> const& plot, std::map<T const, T>& grid) {
  T const path =
      plot.Thickness / std::cos((90 - plot.AngleIn) * T(Constants::DegRad));
  for (auto& [energy, value] : grid) value = 1 - std::exp(-path * value);
}

template <class T>
void writePlot(std::ostream& out, PlotConfig<T> const& plot,
               Material<T> const& material, std::map<T const, T>& grid,
               LabelMap<T> const& labels) {
  out << Header<T>("muPlot", plot);
  if (plot.FormFactor) {
    out << material.FormFactor;
  } else if (plot.ScatFunc) {
    out << material.ScatterFunction;
  } else if (plot.ImagFactor) {
    out << material.AnomalousImag;
  } else if (plot.RealFactor) {
    out << material.AnomalousReal;
  } else {
    Grid::InitGrid(grid, T(0));
    sumCurves(plot, material, grid);
    if (plot.Efficiency && !plot.eElScatter) toEfficiency(plot, grid);
    Grid::WriteGrid(out, grid, labels, T(1), /*dropTiny=*/true);
  }
}

}  // namespace

template <class T>
void interpolate(AttenuationCoeff<T> const& coeff, std::map<T const, T>& grid,
                 T factor, std::string name, bool extrapolate) {
  named(name, [&] {
    AttenuationCoeff<T> const curve(coeff, factor);
    for (auto node = grid.begin(); node != grid.end();) {
      if (extrapolate || curve.covers(node->first)) {
        node->second += curve(node->first, extrapolate);
        ++node;
      } else {
        node = grid.erase(node);
      }
    }
  });
}

template <class T>
void muGen(Material<T> const& material, std::map<T const, T>& grid) {
  interpolate(material.Absorption, grid, material.Density, material.Name,
              /*extrapolate=*/true);
}

template <class T>
void muPlot(std::ostream& out, PlotConfig<T> const& plot,
            Material<T> const& material, std::map<T const, T>& grid,
            LabelMap<T>& labels) {
  if (!plot.ACRP) return writePlot(out, plot, material, grid, labels);
  std::string findings;
  writeTable(out, plot, material, grid, findings);
  if (!findings.empty()) throw warning(findings);
}

template PHOTARIUM_EXPORT void interpolate(AttenuationCoeff<double> const&,
                                           std::map<double const, double>&,
                                           double, std::string, bool);
template PHOTARIUM_EXPORT void muGen(Material<double> const&,
                                     std::map<double const, double>&);
template PHOTARIUM_EXPORT void muPlot(std::ostream&, PlotConfig<double> const&,
                                      Material<double> const&,
                                      std::map<double const, double>&,
                                      LabelMap<double>&);
