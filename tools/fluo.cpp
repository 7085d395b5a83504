// fluo: the table of inner-shell ionization of a Monte Carlo program.

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "photarium/config/DistributionConfig.h"
#include "photarium/grid/FluoTable.h"
#include "photarium/material/Material.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/Picture.h"
#include "tools/command.h"
#include "tools/loading.h"
#include "tools/names.h"
#include "tools/tables.h"

namespace Tool {
namespace {

// More curves than these cannot be told apart.
constexpr std::size_t MostCurves = 12;

// A curve of each edge: the columns from `first` on.
void addEdges(PicturePage& page, std::vector<TableRow> const& rows,
              Material<double> const& material, std::size_t first) {
  page.legend = "outside right top";
  std::size_t const edges = std::min(material.Edges.size(), MostCurves);
  for (std::size_t j = 0; j < edges; ++j) {
    PictureCurve& curve = page.curves.emplace_back(
        PictureCurve{nameOf(material.Edges[j].ID), {}});
    for (auto const& [energy, numbers] : rows)
      curve.points.emplace_back(energy, numbers[first + j]);
  }
}

std::vector<PicturePage> pagesOf(std::vector<TableRow> const& rows,
                                 Material<double> const& material) {
  PicturePage photons{"Inner-shell ionization of " + material.Name,
                      "photon energy [keV]", "share of photoabsorption"};
  addEdges(photons, rows, material, 0);
  PicturePage electrons{"Electron impact ionization of " + material.Name,
                        "electron energy [keV]", "cross section [1/cm]"};
  addEdges(electrons, rows, material, material.Edges.size());
  return {photons, electrons};
}

}  // namespace

void runFluo(Arguments const& arguments) {
  CommandLine const line(arguments, {OutputOption, PlotOption});
  DistributionConfig<double> settings;
  line.configure(settings, "fluo");
  Picture const picture(line.value("plot"));

  Material<double> material;
  load(material, settings);
  check(settings);
  if (material.PhotoIonization.empty() || material.ElectronIonization.empty())
    throw std::runtime_error(
        importHint(material, "ionization cross section by level"));

  Output output(line.value("output"));
  auto const rows = writeTable(
      output, picture, settings, material.Edges.size(),
      [&](std::ostream& out) { FluoTable<double>(out, settings, material); });
  if (picture.isWanted()) picture.draw(pagesOf(rows, material));
  output.finish();
}

}  // namespace Tool
