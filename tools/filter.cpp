// filter: a spectrum behind layers of material, or ahead of them.

#include <cmath>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "photarium/config/FilterConfig.h"
#include "photarium/config/Header.h"
#include "photarium/foundation/console.h"
#include "photarium/foundation/constants.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/grid/Grid.h"
#include "photarium/grid/SpectrumFile.h"
#include "photarium/material/Material.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/Picture.h"
#include "tools/command.h"
#include "tools/curves.h"
#include "tools/loading.h"
#include "tools/report.h"
#include "tools/spectra.h"

namespace Tool {
namespace {

using Settings = FilterConfig<double>;
using Spectrum = std::map<double const, double>;

constexpr char Usage[] =
    "photarium filter [FILE] [OPTIONS]: a spectrum behind a filter; without "
    "FILE or with\n\"-\" from standard input.\n\n"
    "The primary beam is attenuated exponentially over --thickness / "
    "cos(90 deg - angle-in).\nPhotoabsorption always counts; --coherent, "
    "--incoherent and --pair count these\ninteractions as losses too. "
    "--coverage mixes filtered and bare beam; --inverse, or a\nnegative "
    "thickness, undoes the filter. Beyond the data the curves are "
    "extrapolated.\n\nScattered photons, fluorescence and buildup are not "
    "modelled: --fluorescence,\n--scatterangle, reflection (--no-transmission, "
    "--angle-out) and --angle-side are\nrefused. --steps and the scaling "
    "(--norm, --area, --distance, --geometry) have no effect.\n\n";

Option const LayersOption{
    "layers", "\"MATERIAL CM; ...\"",
    "several layers, the first ahead, instead of --material and --thickness"};

// A photon interaction that takes photons out of the beam.
struct Interaction {
  char const* name;
  AttenuationCoeff<double> Material<double>::*curve;
  bool Settings::*flag;  // that asks for it; null: always
  double threshold;      // no such interaction below [keV]
};

constexpr Interaction Interactions[] = {
    {"photoabsorption", &Material<double>::Absorption, nullptr, 0},
    {"coherent scattering", &Material<double>::Coherent, &Settings::Coherent,
     0},
    {"incoherent scattering", &Material<double>::Incoherent,
     &Settings::Incoherent, 0},
    {"pair production", &Material<double>::Pair, &Settings::Pair,
     2 * Constants::XME},
};

// Part of a filter that is of one material.
struct Layer {
  Settings settings;
  Material<double> material;
  std::vector<Interaction> interactions;
};

void refuse(bool isAsked, char const* what) {
  if (isAsked)
    throw UsageError(std::string(what) +
                     " is not modelled by photarium filter, see --help");
}

void refuseUnmodelled(Settings const& settings) {
  Settings const usual;
  refuse(settings.Fluorescence, "Fluorescence");
  refuse(settings.ScatterAngle != usual.ScatterAngle,
         "Radiation scattered to an angle");
  refuse(!settings.Transmission, "Reflection");
  refuse(settings.AngleOut != usual.AngleOut, "An outgoing angle");
  refuse(settings.AngleSide != usual.AngleSide, "An off-axis angle");
}

// The settings of one item of --layers, "Al 0.1".
Settings parseLayer(std::string const& text, Settings const& settings) {
  std::string_view const item = trimmed(text);
  std::size_t const blank = item.find_last_of(Blanks);
  std::string_view thickness = item.substr(blank + 1);
  Settings layer(settings);
  layer.Sections = settings.Sections;  // which a copy leaves out
  layer.Material = trimmed(item.substr(0, blank + 1));
  layer.Density = layer.MeanExcitationPotential = -1;  // looked up
  bool const isNumber = extractNumber(thickness, layer.Thickness);
  if (layer.Material.empty() || !isNumber || !thickness.empty())
    throw UsageError("Layer not understood: '" + std::string(item) +
                     "', expected a material and a thickness in cm");
  return layer;
}

// What each layer is made of and how, from the first that the beam meets.
std::vector<Settings> layerSettings(std::string const& list,
                                    Settings const& settings) {
  std::vector<Settings> layers;
  for (auto const& item : split<std::string>(list, ";", /*keepEmpty=*/false))
    if (!trimmed(item).empty()) layers.push_back(parseLayer(item, settings));
  if (layers.empty()) throw UsageError("No layer in --layers");
  return layers;
}

void refuseBoth(Arguments const& arguments) {
  for (auto const& key : OptionKeys(arguments))
    for (char const* own : {"material", "density", "thickness", "count"})
      if (key == own)
        throw UsageError("--" + key + " and --layers exclude each other");
}

Layer makeLayer(Settings const& settings) {
  Layer layer{settings, {}, {}};
  layer.settings.Sections = settings.Sections;
  load(layer.material, layer.settings);
  check(layer.settings);
  for (auto const& interaction : Interactions) {
    if (interaction.flag && !(layer.settings.*interaction.flag)) continue;
    if ((layer.material.*interaction.curve).empty())
      throw std::runtime_error(std::string("No data on ") + interaction.name +
                               " of " + layer.settings.Material);
    layer.interactions.push_back(interaction);
  }
  return layer;
}

// The share of the beam that passes at an energy [keV].
double transmission(Layer const& layer, double path, double energy,
                    bool& isBeyond) {
  double mu = 0;  // [1/cm]
  for (auto const& interaction : layer.interactions) {
    auto const& curve = layer.material.*interaction.curve;
    if (energy < interaction.threshold) continue;
    isBeyond = isBeyond || !curve.covers(energy);
    mu += layer.settings.Density * curve(energy, /*extrapolate=*/true);
  }
  // Nothing passes where the extrapolation leaves the numbers.
  double const passed = energy > 0 && mu >= 0 ? std::exp(-mu * path) : 0;
  double const coverage = layer.settings.Coverage;
  return coverage * passed + (1 - coverage);
}

// Sends a spectrum through a layer, or back.
void send(Layer const& layer, Spectrum& spectrum) {
  double const path = pathLength(layer.settings);
  std::size_t beyond = 0;
  for (auto& [energy, value] : spectrum) {
    bool isBeyond = false;
    double const share = transmission(layer, path, energy, isBeyond);
    beyond += isBeyond;
    if (value != 0)
      value = layer.settings.Inverse ? value / share : value * share;
  }
  if (beyond != 0)
    report(std::to_string(beyond) + " of " + std::to_string(spectrum.size()) +
           " energies are beyond the data of " + layer.settings.Material +
           ", which are extrapolated");
}

// Mean energy and sum of the values that a spectrum file has.
std::string summary(Spectrum contents, bool isBinned) {
  if (!isBinned) Grid::ConvGrid(contents, Grid::ToCounts);
  double average = 0, flux = 0;
  for (auto const& [energy, value] : contents) {
    if (!std::isfinite(value)) continue;
    average += value * energy;
    flux += value;
  }
  if (flux > 0) average /= flux;
  return SpectInfo(average, flux, 0.);
}

std::string comments(std::vector<Layer> const& layers) {
  std::string text;
  for (auto const& layer : layers) {
    Config<double> const& settings = layer.settings;
    if (text.empty())
      text = Header("filter", settings);
    else
      text += "# And behind it:\n" + settings.write("# ", /*chain=*/true);
  }
  return text;
}

PicturePage pageOf(Spectrum const& before, Spectrum const& after,
                   bool isBinned) {
  PicturePage page{"filter", "energy [keV]",
                   isBinned ? "contents of bins" : "density [1/keV]"};
  page.logX = page.logY = false;
  page.curves = {{"before", {before.begin(), before.end()}},
                 {"after", {after.begin(), after.end()}}};
  return page;
}

std::string fileOf(CommandLine const& line) {
  if (line.files().size() > 1)
    throw UsageError("One spectrum file expected, not " +
                     std::to_string(line.files().size()));
  return line.files().empty() ? "-" : line.files().front();
}

}  // namespace

void runFilter(Arguments const& arguments) {
  CommandLine const line(arguments, {OutputOption, PlotOption, LayersOption},
                         CommandLine::Files::Some);
  Settings settings;
  line.configure(settings, "filter", Usage);
  refuseUnmodelled(settings);
  if (line.has("layers")) refuseBoth(arguments);
  Picture const picture(line.value("plot"));
  std::string const file = fileOf(line);

  Spectrum before;
  LabelMap<double> labels;
  std::vector<Layer> layers;
  if (line.has("layers"))
    for (auto const& layer : layerSettings(line.value("layers"), settings))
      layers.push_back(makeLayer(layer));
  else
    layers.push_back(makeLayer(settings));
  std::string const name = readSpectrum(file, settings, before, labels);
  Spectrum after = before;
  for (auto& layer : layers) {
    // What a reader of the result takes from its comments.
    layer.settings.Bin = settings.Bin;
    layer.settings.Time = settings.Time;
    send(layer, after);
  }
  reportInfinite(after);

  Output output(line.value("output"));
  output.stream() << comments(layers)
                  << describeSpectrum("Spectrum", name, before.size(),
                                      settings.Bin)
                  << "# Before: " << summary(before, settings.Bin)
                  << "\n# After: " << summary(after, settings.Bin) << '\n';
  double average = 0, flux = 0;
  Grid::WriteGrid(output.stream(), after, labels, settings.Bin, settings.Bin,
                  average, flux, 1., /*dropTiny=*/false);
  if (picture.isWanted()) picture.draw(pageOf(before, after, settings.Bin));
  output.finish();
}

}  // namespace Tool
