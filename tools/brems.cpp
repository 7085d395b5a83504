// brems: the bremsstrahlung table of a Monte Carlo program.

#include <string>
#include <vector>

#include "photarium/config/DistributionConfig.h"
#include "photarium/config/SpectConfig.h"
#include "photarium/grid/BremsTable.h"
#include "photarium/material/Material.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/Picture.h"
#include "tools/command.h"
#include "tools/loading.h"
#include "tools/report.h"
#include "tools/tables.h"

namespace Tool {
namespace {

// The keys of both classes. Energies and material are those of Spect.
class Settings : public SpectConfig<double>, public DistributionConfig<double> {
 public:
  using Spect = SpectConfig<double>;
  using Distribution = DistributionConfig<double>;

  std::string write(std::string const& prefix, bool chain) const override {
    return Spect::write(prefix, chain) +
           Distribution::write(prefix, /*chain=*/false);
  }

  std::vector<Setting> settings(bool chain) const override {
    std::vector<Setting> all = Spect::settings(chain);
    for (Setting& own : Distribution::settings(/*chain=*/false))
      all.push_back(std::move(own));
    return all;
  }

  void check() override { Spect::check(); }

  // Of the steps alone: energies and material have been checked.
  void checkSteps() {
    DistributionConfig<double> steps;
    steps.Steps = Steps;
    steps.Density = 1;
    Tool::check(steps);
    Steps = steps.Steps;
  }

 protected:
  using Config<double>::parse;
  void parse(OptionMap const& options, bool chain) override {
    Distribution::parse(options, /*chain=*/false);
    Spect::parse(options, chain);
  }
};

std::vector<PicturePage> pagesOf(std::vector<TableRow> const& rows,
                                 Material<double> const& material) {
  PicturePage total{"Bremsstrahlung of " + material.Name,
                    "electron energy [keV]", "total cross section [1/cm]"};
  PictureCurve& curve = total.curves.emplace_back(PictureCurve{"total", {}});
  for (auto const& [energy, numbers] : rows)
    curve.points.emplace_back(energy, numbers.front());
  PicturePage family{"Sampled photon energies", "probability",
                     "photon energy / electron energy"};
  family.logX = false;
  family.legend = "bottom right";
  family.curves = samplingCurves(rows, /*skip=*/1);
  return {total, family};
}

void nameUseless(Arguments const& arguments) {
  for (auto const& key : OptionKeys(arguments))
    if (key == "shapefct")
      report("--shapefct has no effect: the table has no angles");
}

}  // namespace

void runBrems(Arguments const& arguments) {
  CommandLine const line(arguments, {OutputOption, PlotOption});
  Settings settings;
  line.configure(settings, "brems");
  Picture const picture(line.value("plot"));
  SpectConfig<double>& spect = settings;
  nameUseless(arguments);
  spect.ShapeFct = false;

  Material<double> material;
  load(material, spect);
  check(settings);
  settings.checkSteps();

  Output output(line.value("output"));
  auto const rows =
      writeTable(output, picture, spect, /*ahead=*/0, [&](std::ostream& out) {
        ProgressTap const progress(spect, "brems");
        BremsTable<double>(out, spect, settings, material);
      });
  if (picture.isWanted()) picture.draw(pagesOf(rows, material));
  output.finish();
}

}  // namespace Tool
