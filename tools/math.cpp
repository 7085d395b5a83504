// math: arithmetic on two spectrum files.

#include <map>
#include <sstream>
#include <string>

#include "photarium/config/Header.h"
#include "photarium/config/MathConfig.h"
#include "photarium/foundation/console.h"
#include "photarium/grid/Grid.h"
#include "photarium/grid/SpectrumFile.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/Picture.h"
#include "tools/command.h"
#include "tools/loading.h"
#include "tools/spectra.h"

namespace Tool {
namespace {

constexpr char Usage[] =
    "photarium math FIRST SECOND --operation WORD [OPTIONS]: add, subtract, "
    "multiply or\ndivide spectrum files, packed or plain; \"-\" is standard "
    "input. The second is\nbrought onto the nodes of the first. \"--operation "
    "rebin\" does that alone; with one\nfile the nodes are those of "
    "--gridfile, "
    "or of --kVp and --EBin.\n\n";

// A spectrum and what its file says of it.
struct Spectrum {
  std::string name;
  MathConfig<double> settings;  // with the flags of the file
  std::map<double const, double> grid;
  LabelMap<double> labels;
};

Spectrum read(std::string const& file, MathConfig<double> const& settings) {
  Spectrum spectrum{"", settings, {}, {}};
  spectrum.name =
      readSpectrum(file, spectrum.settings, spectrum.grid, spectrum.labels);
  return spectrum;
}

// The nodes that the settings describe.
Spectrum generated(MathConfig<double> settings) {
  Spectrum spectrum{"the generated nodes", settings, {}, {}};
  if (!settings.GridFile.empty()) spectrum.name = settings.GridFile;
  energyNodes(settings, spectrum.grid, spectrum.labels);
  return spectrum;
}

bool isProduct(Math::Operations operation) {
  return operation == Math::Multiply || operation == Math::Divide;
}

// The second spectrum on the nodes of the first, as contents of bins or as
// densities like the first. A factor that is no contents of bins stays what it
// is, since a product must not depend on the bin width.
std::map<double const, double> brought(Spectrum const& second,
                                       Spectrum const& first,
                                       MathConfig<double> const& settings) {
  bool const outBinned = first.settings.Bin && (second.settings.Bin ||
                                                !isProduct(settings.Operation));
  std::map<double const, double> grid;
  Grid::InitGrid(first.grid, grid, 0.);
  Grid::ConvGrid(second.grid, grid, second.settings.Bin, outBinned,
                 settings.Interpolation, settings.Extrapolate, settings.Cubic);
  return grid;
}

std::map<double const, double> result(Spectrum const& first,
                                      Spectrum const& second,
                                      MathConfig<double> const& settings) {
  auto grid = brought(second, first, settings);
  switch (settings.Operation) {
    case Math::Add:
      Grid::AddGrid(grid, first.grid, grid);
      break;
    case Math::Subtract:
      Grid::SubtractGrid(grid, first.grid, grid);
      break;
    case Math::Multiply:
      Grid::MultiplyGrid(grid, first.grid, grid);
      break;
    case Math::Divide:
      Grid::DivideGrid(grid, first.grid, grid);
      break;
    case Math::Rebin:
    case Math::None:
      break;
  }
  return grid;
}

std::string described(char const* label, Spectrum const& spectrum) {
  return describeSpectrum(label, spectrum.name, spectrum.grid.size(),
                          spectrum.settings.Bin);
}

std::string transfer(MathConfig<double> const& settings) {
  if (!settings.Interpolation) return "rebinned by overlap";
  std::string text = settings.Cubic ? "cubic" : "linear";
  return text + " interpolation, " +
         (settings.Extrapolate ? "extrapolated" : "0") + " beyond the second";
}

std::string operationText(Math::Operations operation) {
  std::ostringstream text;
  if (operation == Math::Rebin)
    text << "second on the nodes of first";
  else
    text << "first " << operation << " second";
  return std::move(text).str();
}

std::string comments(Spectrum const& first, Spectrum const& second,
                     MathConfig<double> const& settings) {
  // The flags that a reader of the result takes from its comments.
  MathConfig<double> shown(settings);
  shown.Bin = first.settings.Bin;
  shown.Time = first.settings.Time;
  return Header("math", static_cast<Config<double> const&>(shown)) +
         described("First", first) + described("Second", second) +
         "# Result: " + operationText(settings.Operation) + "; " +
         transfer(settings) + "\n";
}

PicturePage pageOf(Spectrum const& first, Spectrum const& second,
                   std::map<double const, double> const& grid,
                   MathConfig<double> const& settings) {
  PicturePage page{operationText(settings.Operation), "energy [keV]",
                   first.settings.Bin ? "contents of bins" : "density [1/keV]"};
  page.logX = page.logY = false;
  auto const add = [&](std::string const& name, auto const& spectrum) {
    page.curves.push_back({name, {spectrum.begin(), spectrum.end()}});
  };
  if (settings.Operation != Math::Rebin) add(first.name, first.grid);
  add(second.name, second.grid);
  add("result", grid);
  return page;
}

// With one file and "rebin" the nodes come from the settings.
std::pair<Spectrum, Spectrum> operands(std::vector<std::string> const& files,
                                       MathConfig<double> const& settings) {
  if (settings.Operation == Math::Rebin && files.size() == 1) {
    Spectrum second = read(files[0], settings);
    Spectrum first = generated(second.settings);
    return {std::move(first), std::move(second)};
  }
  if (files.size() != 2)
    throw UsageError("Two spectrum files expected, not " +
                     std::to_string(files.size()) +
                     ": photarium math FIRST SECOND --operation WORD");
  if (files[0] == "-" && files[1] == "-")
    throw UsageError("Only one of the spectra can be standard input.");
  return {read(files[0], settings), read(files[1], settings)};
}

}  // namespace

void runMath(Arguments const& arguments) {
  CommandLine const line(arguments, {OutputOption, PlotOption},
                         CommandLine::Files::Some);
  MathConfig<double> settings;
  line.configure(settings, "math", Usage);
  check(settings);
  Picture const picture(line.value("plot"));
  if (settings.Operation == Math::None)
    throw UsageError(
        "No operation given: --operation add, subtract, multiply, divide or "
        "rebin");

  auto const [first, second] = operands(line.files(), settings);
  auto const grid = result(first, second, settings);
  reportInfinite(grid);
  Output output(line.value("output"));
  output.stream() << comments(first, second, settings);
  double average = 0, flux = 0;
  Grid::WriteGrid(output.stream(), grid, first.labels, first.settings.Bin,
                  first.settings.Bin, average, flux, 1., /*dropTiny=*/false);
  if (picture.isWanted()) picture.draw(pageOf(first, second, grid, settings));
  output.finish();
}

}  // namespace Tool
