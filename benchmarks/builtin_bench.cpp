#include <benchmark/benchmark.h>

#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"

namespace {

// A material between two tabulated elements, so that Z is interpolated.
Material<double> between() {
  Material<double> material;
  material.Z = 29.5;
  return material;
}

void BM_ReadSigma(benchmark::State& state) {
  for (auto _ : state) {
    Material<double> material = between();
    try {
      material.readSigma();
    } catch (warning const&) {
    }
    benchmark::DoNotOptimize(material.BremsSigma);
  }
}
BENCHMARK(BM_ReadSigma)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_ReadShape(benchmark::State& state) {
  for (auto _ : state) {
    Material<double> material = between();
    try {
      material.readShape();
    } catch (warning const&) {
    }
    benchmark::DoNotOptimize(material.Shape);
  }
}
BENCHMARK(BM_ReadShape)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
