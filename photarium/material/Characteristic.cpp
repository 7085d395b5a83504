#include <map>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "photarium/material/Material.h"

namespace {

bool isSet(SubshellID const& level) {
  return level.Z != 0 && level.Shell != 0;
}

// Cuts what a line says of levels that are not among `levels`.
template <class T>
void forget(Line<T>& line, std::set<SubshellID> const& levels) {
  if (isSet(line.From) && !levels.contains(line.From)) line.From = SubshellID();
  if (isSet(line.To) && !levels.contains(line.To)) {
    // The pair begins one word early: the level of `To` stays, and without an
    // element it stands for none.
    line.From.Shell = subshell(0);
    line.To.Z = 0;
  }
}

template <class T>
using Levels = std::vector<std::pair<Edge<T> const*, T>>;

// The highest edge that `E` reaches, the first of equal ones; it takes `total`,
// so that the order of the edges does not matter.
template <class T>
Levels<T> highestLevel(std::vector<Edge<T>> const& edges, T E, T total) {
  Edge<T> const* highest = nullptr;
  for (Edge<T> const& edge : edges) {
    if (edge.Energy > E) continue;
    if (!highest || edge.Energy > highest->Energy) highest = &edge;
  }
  if (!highest) return {};
  return {{highest, total}};
}

// The edges that `E` reaches with their own cross sections times `density`;
// one without data at `E` is left out.
template <class T>
Levels<T> ownLevels(std::vector<Edge<T>> const& edges,
                    std::map<SubshellID, AttenuationCoeff<T>> const& data, T E,
                    T density) {
  Levels<T> levels;
  for (Edge<T> const& edge : edges) {
    if (edge.Energy > E) continue;
    auto const curve = data.find(edge.ID);
    if (curve == data.end() || !curve->second.covers(E)) continue;
    T const value = curve->second(E, /*extrapolate=*/false);
    levels.emplace_back(&edge, value * density);
  }
  return levels;
}

}  // namespace

template <class T>
void Material<T>::FilterCharacteristic(T minEnergy, bool keepNonRadiative) {
  std::erase_if(Edges, [&](Edge<T>& edge) {
    if (minEnergy > edge.Energy) return true;
    std::erase_if(edge.Lines, [&](Line<T> const& line) {
      return !(line.Energy >= minEnergy && line.Intensity > 0 &&
               (keepNonRadiative || line.Radiative));
    });
    return edge.Lines.empty();
  });
  std::set<SubshellID> levels;
  for (Edge<T> const& edge : Edges) levels.insert(edge.ID);
  for (Edge<T>& edge : Edges)
    for (Line<T>& line : edge.Lines) forget(line, levels);
}

template <class T>
void Material<T>::IonizationProbabilities(
    std::map<T const, T> const& energies,
    std::map<T const, std::vector<std::pair<Edge<T> const*, T>>>& result,
    bool photons) const {
  if (energies.empty()) throw std::runtime_error("Empty input spectrum!");
  auto const& data = photons ? PhotoIonization : ElectronIonization;
  bool const hasLevels = !photons || !data.empty();
  result.clear();
  for (auto const& node : energies) {
    T const E = node.first;
    T const total = Absorption(E, /*extrapolate=*/true) * Density;
    result.emplace_hint(result.end(), E,
                        hasLevels ? ownLevels(Edges, data, E, Density)
                                  : highestLevel(Edges, E, total));
  }
}

template void Material<double>::FilterCharacteristic(double, bool);
template void Material<double>::IonizationProbabilities(
    std::map<double const, double> const&,
    std::map<double const,
             std::vector<std::pair<Edge<double> const*, double>>>&,
    bool) const;
