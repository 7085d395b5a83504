#include <cmath>
#include <exception>
#include <iterator>
#include <map>
#include <new>
#include <stdexcept>
#include <string>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/elements.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"

template <class T>
Material<T>::Material(MaterialConfig<T>& config) : Z(0), A(0), Density(0) {
  update(config);
}

template <class T>
void Material<T>::update(MaterialConfig<T>& config) {
  Name = config.Material;
  search();
  if (Name.empty()) throw std::invalid_argument("Empty material given!");
  std::string findings;
  try {
    fill(config, findings);
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& cause) {
    throw std::runtime_error("Error loading material data for " +
                             config.Material + ":\n" + cause.what());
  }
  if (!findings.empty()) throw warning(findings);
}

template <class T>
void Material<T>::fill(MaterialConfig<T>& config, std::string& findings) {
  EnergyLoss.clear();
  Source source;
  loadMaterial(config, findings, source);
  config.DataType = source.type;
  config.Material = Name;
  setDensity(config);
  T const J = config.MeanExcitationPotential;
  if (EnergyLoss.empty()) EnergyLoss[EnergyLossConstants<T>(Z, J)] = 1;
  correct(config, findings);
  // Ordered by J, so that the first key is the smallest.
  if (EnergyLoss.begin()->first.J <= 0)
    findings += "Density effect coefficients incomplete.\n";
  setJumpRatios(findings);
}

// A text that is no element of the database is a composite of such.
template <class T>
void Material<T>::loadMaterial(MaterialConfig<T>& config, std::string& findings,
                               Source& source) {
  try {
    load(config.DataFile, config.Directory, config.DataType, source);
    if (config.DataFile.empty()) config.DataFile = source.name;
    Shares = {{Name, {T(1), A}}};
    return;
  } catch (std::bad_alloc const&) {
    throw;
  } catch (...) {
    // Its message is dropped: that of the failed piece says more.
  }
  Shares.clear();
  loadComposite(config, findings, source);
}

template <class T>
void Material<T>::setDensity(MaterialConfig<T>& config) {
  if (config.Density > 0) {
    Density = config.Density;
    return;
  }
  if (Density <= 0 && Z >= 0 && Z < T(ElementsCount))
    Density = T(Densities[static_cast<unsigned int>(Z)]);
  config.Density = Density;
}

template <class T>
void Material<T>::correct(MaterialConfig<T> const& config,
                          std::string& findings) {
  try {
    readCorr(ConcatPath(config.Directory, config.CorrFile),
             config.MeanExcitationPotential);
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& cause) {
    findings += cause.what();
    findings += '\n';
  }
}

template <class T>
void Material<T>::setJumpRatios(std::string& findings) {
  std::map<T, T> const jumps = Absorption.Discontinuities();
  for (Edge<T>& edge : Edges) {
    T const E = edge.Energy;
    T best = -1;
    // The nearest jump is the last one below or the first one from E on.
    auto const above = jumps.lower_bound(E);
    auto const below = above == jumps.begin() ? above : std::prev(above);
    for (auto jump = below; jump != jumps.end(); ++jump) {
      if (std::abs(E - best) > std::abs(E - jump->first)) {
        edge.Jump = jump->second;
        best = jump->first;
      }
      if (jump == above) break;
    }
    bool const isNear = best != -1 && !(std::abs((E - best) / E) > T(0.001));
    if (isNear || edge.Lines.empty()) continue;
    findings += "Didn't find jump ratio for edge at ";
    appendGeneral(findings, E);
    findings += " keV.\n";
  }
}

template Material<double>::Material(MaterialConfig<double>&);
template void Material<double>::update(MaterialConfig<double>&);
template void Material<double>::fill(MaterialConfig<double>&, std::string&);
template void Material<double>::loadMaterial(MaterialConfig<double>&,
                                             std::string&, Source&);
template void Material<double>::setDensity(MaterialConfig<double>&);
template void Material<double>::correct(MaterialConfig<double> const&,
                                        std::string&);
template void Material<double>::setJumpRatios(std::string&);
