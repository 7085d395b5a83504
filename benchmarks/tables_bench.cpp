#include <benchmark/benchmark.h>
#include <omp.h>

#include <cstdint>
#include <sstream>

#include "photarium/config/DistributionConfig.h"
#include "photarium/config/SpectConfig.h"
#include "photarium/grid/AngleDist.h"
#include "photarium/grid/BremsTable.h"
#include "photarium/material/Material.h"
#include "tests/support/plain_tables.h"
#include "tests/support/table_materials.h"

namespace {

// 200 energies of 1001 steps, the usual table.
struct Settings {
  Settings() {
    spect.kVp = dist.kVp = 100;
    spect.EBin = dist.EBin = 0.5;
    spect.Pratt = true;
    dist.Cubic = true;
  }

  SpectConfig<double> spect;
  DistributionConfig<double> dist;
};

void countRows(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * 200);
}

void BM_BremsTable(benchmark::State& state) {
  Settings const settings;
  Material<double> const material = bremsMaterial();
  int const threads = omp_get_max_threads();
  omp_set_num_threads(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    std::ostringstream out;
    BremsTable(out, settings.spect, settings.dist, material);
    benchmark::DoNotOptimize(out);
  }
  omp_set_num_threads(threads);
  countRows(state);
}
BENCHMARK(BM_BremsTable)
    ->ArgName("threads")
    ->Arg(1)
    ->Arg(2)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void BM_BremsTablePlain(benchmark::State& state) {
  Settings const settings;
  Material<double> const material = bremsMaterial();
  for (auto _ : state) {
    std::ostringstream out;
    plain::bremsTable(out, settings.spect, settings.dist, material);
    benchmark::DoNotOptimize(out);
  }
  countRows(state);
}
BENCHMARK(BM_BremsTablePlain)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_AngleDist(benchmark::State& state) {
  Settings const settings;
  Material<double> const material = angleMaterial(/*nodes=*/100);
  for (auto _ : state) {
    std::ostringstream out;
    AngleDist(out, settings.dist, material);
    benchmark::DoNotOptimize(out);
  }
  countRows(state);
}
BENCHMARK(BM_AngleDist)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_AngleDistPlain(benchmark::State& state) {
  Settings const settings;
  Material<double> const material = angleMaterial(/*nodes=*/100);
  for (auto _ : state) {
    std::ostringstream out;
    plain::angleDist(out, settings.dist, material);
    benchmark::DoNotOptimize(out);
  }
  countRows(state);
}
BENCHMARK(BM_AngleDistPlain)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
