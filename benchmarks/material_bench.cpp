// Loading elements and composites from the shipped database, with reading its
// lines beside it.

#include "photarium/material/Material.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/warning.h"

namespace {

std::string const folder = PHOTARIUM_SOURCE_DIR;
std::string const file = folder + "/data/ElamDB12.txt";

std::string contents() {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::int64_t fileSize() {
  return static_cast<std::int64_t>(std::filesystem::file_size(file));
}

// Opens the recogniser.
struct Probe : Material<double> {
  using Material<double>::readDB;
};

// Forgets the cached text, so that the next load goes to the disk.
void forget() {
  Material<double>::CacheName.clear();
}

void BM_ReadLines(benchmark::State& state) {
  for (auto _ : state) {
    std::ifstream in(file, std::ios::binary);
    std::string line;
    while (std::getline(in, line)) benchmark::DoNotOptimize(line.data());
  }
  state.SetBytesProcessed(state.iterations() * fileSize());
}
BENCHMARK(BM_ReadLines);

// 1: hydrogen at the head of the file, 26: iron, 98: californium at its end.
void BM_LoadFromDisk(benchmark::State& state) {
  for (auto _ : state) {
    forget();
    Material<double> element(static_cast<double>(state.range(0)));
    element.readDB(file, "", Unknown);
    benchmark::DoNotOptimize(element.A);
  }
  state.SetBytesProcessed(state.iterations() * fileSize());
}
BENCHMARK(BM_LoadFromDisk)->Arg(1)->Arg(26)->Arg(98);

void BM_LoadFromCache(benchmark::State& state) {
  for (auto _ : state) {
    Material<double> element(static_cast<double>(state.range(0)));
    element.readDB(file, "", Unknown);
    benchmark::DoNotOptimize(element.A);
  }
}
BENCHMARK(BM_LoadFromCache)->Arg(1)->Arg(26)->Arg(98);

void BM_LoadBrass(benchmark::State& state) {
  for (auto _ : state) {
    forget();
    MaterialConfig<double> config;
    config.Directory = folder;
    config.Material = "CuZn";
    Material<double> brass;
    try {
      brass.update(config);
    } catch (warning const&) {
      // The database has no electron data.
    }
    benchmark::DoNotOptimize(brass.A);
  }
}
BENCHMARK(BM_LoadBrass);

void BM_Recognise(benchmark::State& state) {
  std::istringstream in(contents());
  for (auto _ : state) {
    in.clear();
    in.seekg(0);
    std::ostringstream out;
    benchmark::DoNotOptimize(Probe::readDB(in, out));
  }
  state.SetBytesProcessed(state.iterations() * fileSize());
}
BENCHMARK(BM_Recognise);

}  // namespace
