// Splines beside those of the GNU Scientific Library: evaluation on ascending
// and on random abscissas, and building a natural cubic spline.

#include <benchmark/benchmark.h>
#include <gsl/gsl_spline.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <random>
#include <vector>

#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"

namespace {

using Linear = LSpline<double, double>;
using Cubic = CSpline<double, double>;

struct Curve {
  std::vector<double> x;
  std::vector<double> y;
};

/// Nodes at uneven distances.
Curve RandomCurve(std::size_t size) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> step(0.1, 1.);
  Curve curve;
  double x = 1.;
  for (std::size_t i = 0; i < size; ++i) {
    curve.x.push_back(x);
    curve.y.push_back(std::sin(0.1 * x) + 2.);
    x += step(random);
  }
  return curve;
}

std::vector<double> RandomAbscissas(Curve const& curve) {
  std::mt19937_64 random(8);
  std::uniform_real_distribution<double> anywhere(curve.x.front(),
                                                  curve.x.back());
  std::vector<double> x(std::clamp<std::size_t>(curve.x.size(), 4096, 1 << 18));
  for (double& value : x) value = anywhere(random);
  return x;
}

/// As many abscissas as nodes, at least 4096.
std::vector<double> AscendingAbscissas(Curve const& curve) {
  std::size_t const size = std::max<std::size_t>(curve.x.size(), 4096);
  double const step =
      (curve.x.back() - curve.x.front()) / static_cast<double>(size);
  std::vector<double> x(size);
  for (std::size_t i = 0; i < size; ++i)
    x[i] = curve.x.front() + step * (static_cast<double>(i) + 0.5);
  return x;
}

template <class Value>
void Evaluate(benchmark::State& state, std::vector<double> const& abscissas,
              Value const& value) {
  for (auto _ : state)
    for (double const x : abscissas) benchmark::DoNotOptimize(value(x));
  state.SetItemsProcessed(state.iterations() *
                          static_cast<std::int64_t>(abscissas.size()));
}

template <class Spline>
void BM_Ascending(benchmark::State& state) {
  Curve const curve = RandomCurve(static_cast<std::size_t>(state.range(0)));
  Spline const spline(curve.x, curve.y);
  Evaluate(state, AscendingAbscissas(curve),
           [&](double x) { return spline(x, true, true); });
}

template <class Spline>
void BM_Random(benchmark::State& state) {
  Curve const curve = RandomCurve(static_cast<std::size_t>(state.range(0)));
  Spline const spline(curve.x, curve.y);
  Evaluate(state, RandomAbscissas(curve),
           [&](double x) { return spline(x, false, true); });
}

struct GslFree {
  void operator()(gsl_spline* spline) const { gsl_spline_free(spline); }
  void operator()(gsl_interp_accel* accel) const {
    gsl_interp_accel_free(accel);
  }
};

void EvaluateGsl(benchmark::State& state, gsl_interp_type const* type,
                 std::vector<double> (*abscissas)(Curve const&)) {
  Curve const curve = RandomCurve(static_cast<std::size_t>(state.range(0)));
  std::unique_ptr<gsl_spline, GslFree> const spline(
      gsl_spline_alloc(type, curve.x.size()));
  gsl_spline_init(spline.get(), curve.x.data(), curve.y.data(), curve.x.size());
  std::unique_ptr<gsl_interp_accel, GslFree> const accel(
      gsl_interp_accel_alloc());
  Evaluate(state, abscissas(curve), [&](double x) {
    return gsl_spline_eval(spline.get(), x, accel.get());
  });
}

void BM_GslLinearAscending(benchmark::State& state) {
  EvaluateGsl(state, gsl_interp_linear, AscendingAbscissas);
}
void BM_GslCubicAscending(benchmark::State& state) {
  EvaluateGsl(state, gsl_interp_cspline, AscendingAbscissas);
}
void BM_GslLinearRandom(benchmark::State& state) {
  EvaluateGsl(state, gsl_interp_linear, RandomAbscissas);
}
void BM_GslCubicRandom(benchmark::State& state) {
  EvaluateGsl(state, gsl_interp_cspline, RandomAbscissas);
}

void BM_BuildCubic(benchmark::State& state) {
  Curve const curve = RandomCurve(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    Cubic const spline(curve.x, curve.y);
    benchmark::DoNotOptimize(spline.records().data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_GslBuildCubic(benchmark::State& state) {
  Curve const curve = RandomCurve(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::unique_ptr<gsl_spline, GslFree> const spline(
        gsl_spline_alloc(gsl_interp_cspline, curve.x.size()));
    gsl_spline_init(spline.get(), curve.x.data(), curve.y.data(),
                    curve.x.size());
    benchmark::DoNotOptimize(spline.get());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(100)->Arg(1000)->Arg(1000000);
}

BENCHMARK(BM_Ascending<Linear>)->Apply(Sizes);
BENCHMARK(BM_GslLinearAscending)->Apply(Sizes);
BENCHMARK(BM_Ascending<Cubic>)->Apply(Sizes);
BENCHMARK(BM_GslCubicAscending)->Apply(Sizes);
BENCHMARK(BM_Random<Linear>)->Apply(Sizes);
BENCHMARK(BM_GslLinearRandom)->Apply(Sizes);
BENCHMARK(BM_Random<Cubic>)->Apply(Sizes);
BENCHMARK(BM_GslCubicRandom)->Apply(Sizes);
BENCHMARK(BM_BuildCubic)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GslBuildCubic)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
