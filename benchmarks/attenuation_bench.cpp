// Attenuation curves beside the photoabsorption of xraylib, on the same
// energies: brass's copper from 1 keV to 100 keV, with its K edge at 8.98 keV.

#include <benchmark/benchmark.h>
#include <xraylib/xraylib.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/AttenuationCoeff.h"
#include "photarium/material/Material.h"

namespace {

using Curve = AttenuationCoeff<double>;

constexpr int Copper = 29;
constexpr double Lowest = 1.2;  // above the L edges [keV]
constexpr double Highest = 100.;

/// Points of xraylib's own curve, at about the density of a database.
void AddPoints(Curve::Points& points, double from, double to, int count) {
  for (int i = 0; i <= count; ++i) {
    double const x = from * std::pow(to / from, i / static_cast<double>(count));
    points.emplace_back(x, CS_Photo(Copper, x, nullptr));
  }
}

Curve CopperCurve(bool cubic) {
  double const edge = EdgeEnergy(Copper, K_SHELL, nullptr);
  Curve::Points points;
  AddPoints(points, Lowest, edge * (1 - 1e-6), 60);
  AddPoints(points, edge * (1 + 1e-6), Highest, 60);
  return Curve::fromSorted({{points, Curve::LogLog, cubic}}, 1., true);
}

std::vector<double> Energies(bool random) {
  std::mt19937_64 engine(9);
  std::uniform_real_distribution<double> anywhere(Lowest, Highest);
  std::vector<double> energies(8192);
  double const step = (Highest - Lowest) / 8192.;
  for (std::size_t i = 0; i < energies.size(); ++i)
    energies[i] = random ? anywhere(engine)
                         : Lowest + step * (static_cast<double>(i) + 0.5);
  return energies;
}

template <class Value>
void Evaluate(benchmark::State& state, Value const& value) {
  std::vector<double> const energies = Energies(state.range(0) != 0);
  for (auto _ : state)
    for (double const e : energies) benchmark::DoNotOptimize(value(e));
  state.SetItemsProcessed(state.iterations() *
                          static_cast<std::int64_t>(energies.size()));
}

void BM_Curve(benchmark::State& state) {
  Curve const curve = CopperCurve(/*cubic=*/true);
  Evaluate(state, [&](double e) { return curve(e, false); });
}

void BM_LinearCurve(benchmark::State& state) {
  Curve const curve = CopperCurve(/*cubic=*/false);
  Evaluate(state, [&](double e) { return curve(e, false); });
}

void BM_Xraylib(benchmark::State& state) {
  Evaluate(state, [](double e) { return CS_Photo(Copper, e, nullptr); });
}

// The four columns of the table of brass, without grids and formatting.
void BM_BrassColumns(benchmark::State& state) {
  MaterialConfig<double> settings;
  settings.Directory = PHOTARIUM_SOURCE_DIR;
  settings.Material = "CuZn";
  Material<double> brass;
  try {
    brass.update(settings);
  } catch (warning const&) {  // no electron data
  }
  Evaluate(state, [&](double e) {
    return brass.Absorption(e, false) + brass.Incoherent(e, false) +
           brass.Coherent(e, false) + brass.Pair(e, false);
  });
}

// The three that xraylib has, the formula parsed once.
void BM_XraylibBrassColumns(benchmark::State& state) {
  compoundData* const brass = CompoundParser("CuZn", nullptr);
  Evaluate(state, [&](double e) {
    double sum = 0;
    for (int i = 0; i < brass->nElements; ++i) {
      int const Z = brass->Elements[i];
      sum += brass->massFractions[i] *
             (CS_Photo(Z, e, nullptr) + CS_Compt(Z, e, nullptr) +
              CS_Rayl(Z, e, nullptr));
    }
    return sum;
  });
  FreeCompoundData(brass);
}

// What no curve on logarithmic scales can do without.
void BM_LogarithmAndExponential(benchmark::State& state) {
  Evaluate(state, [](double e) { return std::exp(-2.8 * std::log(e)); });
}

BENCHMARK(BM_Curve)->ArgName("random")->Arg(0)->Arg(1);
BENCHMARK(BM_LinearCurve)->ArgName("random")->Arg(0)->Arg(1);
BENCHMARK(BM_Xraylib)->ArgName("random")->Arg(0)->Arg(1);
BENCHMARK(BM_BrassColumns)->ArgName("random")->Arg(0)->Arg(1);
BENCHMARK(BM_XraylibBrassColumns)->ArgName("random")->Arg(0)->Arg(1);
BENCHMARK(BM_LogarithmAndExponential)->ArgName("random")->Arg(0)->Arg(1);

}  // namespace
