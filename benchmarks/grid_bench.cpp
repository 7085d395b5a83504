#include "photarium/grid/Grid.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>

#include "photarium/config/PlotConfig.h"
#include "photarium/grid/Attenuation.h"
#include "photarium/grid/SpectrumFile.h"
#include "photarium/material/Material.h"
#include "tests/support/plain_grid.h"
#include "tests/support/table_materials.h"

namespace {

// Takes everything and keeps nothing.
class Sink : public std::streambuf {
 public:
  Sink() { setp(area_, area_ + sizeof(area_)); }

 protected:
  int_type overflow(int_type c) override {
    setp(area_, area_ + sizeof(area_));
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(char const*, std::streamsize n) override { return n; }

 private:
  char area_[4096];
};

void BM_Rebin(benchmark::State& state) {
  auto const nodes = static_cast<std::size_t>(state.range(0));
  plain::Grid const source = plain::randomGrid(nodes, 1, 150, /*seed=*/1);
  plain::Grid target = plain::randomGrid(nodes, 1, 150, /*seed=*/2);
  for (auto _ : state)
    Grid::ConvGrid(source, target, true, true, /*interpolated=*/false, false,
                   false);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Rebin)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_RebinPlain(benchmark::State& state) {
  auto const nodes = static_cast<std::size_t>(state.range(0));
  plain::Grid const source = plain::randomGrid(nodes, 1, 150, /*seed=*/1);
  plain::Grid target = plain::randomGrid(nodes, 1, 150, /*seed=*/2);
  for (auto _ : state) plain::rebin(source, target);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_RebinPlain)->Arg(1000)->Unit(benchmark::kMillisecond);

constexpr std::int64_t plotNodes = 1'000'000;

plain::Grid plotEnergies() {
  plain::Grid grid;
  for (std::int64_t i = 0; i < plotNodes; ++i)
    grid.emplace_hint(grid.end(), 1 + 1e-4 * static_cast<double>(i), 0.);
  return grid;
}

// The nodes of a large grid through muPlot, table or spectrum.
void muPlotNodes(benchmark::State& state, bool table) {
  PlotConfig<double> plot;
  plot.ACRP = table;
  Material<double> const material = photonMaterial();
  plain::Grid grid = plotEnergies();
  LabelMap<double> labels;
  Sink sink;
  std::ostream out(&sink);
  for (auto _ : state) muPlot(out, plot, material, grid, labels);
  state.SetItemsProcessed(state.iterations() * plotNodes);
}

// As many numbers a node through stream insertion, without their evaluation.
void insertNodes(benchmark::State& state, bool table) {
  Material<double> const material = photonMaterial();
  plain::Grid grid = plotEnergies();
  muGen(material, grid);
  Sink sink;
  std::ostream out(&sink);
  out << std::scientific;
  for (auto _ : state) {
    for (auto const& [energy, value] : grid) {
      if (table) out << value << '\t' << value << '\t';
      out << energy << '\t' << value << '\n';
    }
  }
  state.SetItemsProcessed(state.iterations() * plotNodes);
}

void BM_MuPlotTable(benchmark::State& state) {
  muPlotNodes(state, /*table=*/true);
}
void BM_InsertTable(benchmark::State& state) {
  insertNodes(state, /*table=*/true);
}
void BM_MuPlotSpectrum(benchmark::State& state) {
  muPlotNodes(state, /*table=*/false);
}
void BM_InsertSpectrum(benchmark::State& state) {
  insertNodes(state, /*table=*/false);
}
BENCHMARK(BM_MuPlotTable)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_InsertTable)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MuPlotSpectrum)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_InsertSpectrum)->Unit(benchmark::kMillisecond);

// A spectrum file of many lines, read as a whole.
void BM_ReadGrid(benchmark::State& state) {
  std::ostringstream file;
  LabelMap<double> labels;
  Grid::WriteGrid(file, plotEnergies(), labels, 1., /*dropTiny=*/false);
  std::string const text = file.str();
  PlotConfig<double> config;
  plain::Grid grid;
  for (auto _ : state) {
    std::istringstream in(text);
    Grid::ReadGrid(in, grid, labels, config, /*energiesOnly=*/false);
  }
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_ReadGrid)->Unit(benchmark::kMillisecond);

}  // namespace
