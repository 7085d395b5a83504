// angle: the table of scattering angles of a Monte Carlo program.

#include <stdexcept>
#include <vector>

#include "photarium/config/DistributionConfig.h"
#include "photarium/grid/AngleDist.h"
#include "photarium/material/Material.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/Picture.h"
#include "tools/command.h"
#include "tools/loading.h"
#include "tools/tables.h"

namespace Tool {
namespace {

PicturePage pageOf(std::vector<TableRow> const& rows,
                   Material<double> const& material) {
  PicturePage page{"Elastic electron scattering of " + material.Name,
                   "probability", "cosine of the scattering angle"};
  page.logX = page.logY = false;
  page.legend = "bottom right";
  page.curves = samplingCurves(rows, /*skip=*/0);
  return page;
}

}  // namespace

void runAngle(Arguments const& arguments) {
  CommandLine const line(arguments, {OutputOption, PlotOption});
  DistributionConfig<double> settings;
  line.configure(settings, "angle");
  Picture const picture(line.value("plot"));

  Material<double> material;
  load(material, settings);
  check(settings);
  if (material.ElasticAngle.empty())
    throw std::runtime_error(
        importHint(material, "angular distribution of scattered electrons"));

  Output output(line.value("output"));
  auto const rows = writeTable(
      output, picture, settings, /*ahead=*/0,
      [&](std::ostream& out) { AngleDist(out, settings, material); });
  if (picture.isWanted()) picture.draw(pageOf(rows, material));
  output.finish();
}

}  // namespace Tool
