// material: what is known of a material, as text or as JSON.

#include "photarium/material/Material.h"

#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/console.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/command.h"
#include "tools/curves.h"
#include "tools/json_text.h"
#include "tools/loading.h"
#include "tools/names.h"

namespace Tool {
namespace {

using Json = nlohmann::ordered_json;

struct Part {
  std::string symbol;
  double byMass;
  double byAtoms;
};

std::vector<Part> composition(Material<double> const& material) {
  std::vector<Part> parts;
  double atoms = 0;
  for (auto const& [symbol, share] : material.Shares) {
    parts.push_back({symbol, share.Mass, share.Mass / share.A});
    atoms += parts.back().byAtoms;
  }
  for (auto& part : parts) part.byAtoms /= atoms;
  return parts;
}

struct NamedCurve {
  char const* name;
  AttenuationCoeff<double> const* curve;
};

std::vector<NamedCurve> curvesOf(Material<double> const& m) {
  return {{"photoabsorption", &m.Absorption},
          {"incoherent", &m.Incoherent},
          {"coherent", &m.Coherent},
          {"pair production", &m.Pair},
          {"form factor", &m.FormFactor},
          {"scattering function", &m.ScatterFunction},
          {"imaginary anomalous factor", &m.AnomalousImag},
          {"real anomalous factor", &m.AnomalousReal},
          {"elastic electron scattering", &m.ElectronElastic}};
}

// What a curve holds: its nodes, their ends, and whether one can be used.
struct Contents {
  explicit Contents(AttenuationCoeff<double> const& curve) {
    auto const nodes = nodesOf(curve);
    count = nodes.size();
    for (auto const& [x, y] : nodes)
      if (std::isfinite(y) && y != 0) ++usable;
    if (count == 0) return;
    first = nodes.front().first;
    last = nodes.back().first;
  }

  std::size_t count = 0;
  std::size_t usable = 0;
  double first = 0;
  double last = 0;
};

template <class Value>
std::string printed(Value const& value) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << value;
  return std::move(text).str();
}

std::vector<std::string> files(MaterialConfig<double> const& settings) {
  std::set<std::string> seen;
  std::vector<std::string> list;
  for (auto& file :
       split<std::string>(settings.DataFile, ";", /*keepEmpty=*/false))
    if (seen.insert(file).second) list.push_back(std::move(file));
  return list;
}

// ------------------------------------------------------------------------ JSON
Json lineJson(Line<double> const& line) {
  Json json{{"label", line.Label},
            {"energy_keV", line.Energy},
            {"intensity", line.Intensity},
            {"radiative", line.Radiative}};
  if (line.From.Shell) json["from"] = shellName(line.From.Shell);
  if (line.To.Shell) json["to"] = shellName(line.To.Shell);
  return json;
}

Json edgeJson(Edge<double> const& edge) {
  Json json{{"element", elementName(edge.ID)},
            {"shell", shellName(edge.ID.Shell)},
            {"energy_keV", edge.Energy},
            {"yield", edge.Yield},
            {"jump", edge.Jump},
            {"lines", Json::array()}};
  for (auto const& line : edge.Lines) json["lines"].push_back(lineJson(line));
  return json;
}

Json stoppingJson(EnergyLossConstants<double> const& constants, double weight) {
  return {{"mass_fraction", weight}, {"J_keV", constants.J},
          {"C", constants.C},        {"x0", constants.x0},
          {"x1", constants.x1},      {"a", constants.a},
          {"m", constants.m},        {"delta0", constants.delta0},
          {"Ef_keV", constants.Ef},  {"radiative", constants.RL}};
}

Json curveJson(Contents const& contents) {
  return {{"nodes", contents.count},
          {"usable", contents.usable},
          {"first", contents.first},
          {"last", contents.last}};
}

std::string toJson(MaterialConfig<double> const& settings,
                   Material<double> const& material) {
  Json json{{"name", material.Name},        {"Z", material.Z},
            {"A_g_mol", material.A},        {"density_g_cm3", material.Density},
            {"composition", Json::array()}, {"edges", Json::array()},
            {"stopping", Json::array()},    {"curves", Json::object()}};
  for (auto const& part : composition(material))
    json["composition"].push_back({{"element", part.symbol},
                                   {"mass_fraction", part.byMass},
                                   {"atom_fraction", part.byAtoms}});
  for (auto const& edge : material.Edges)
    json["edges"].push_back(edgeJson(edge));
  for (auto const& [constants, weight] : material.EnergyLoss)
    json["stopping"].push_back(stoppingJson(constants, weight));
  for (auto const& [name, curve] : curvesOf(material))
    json["curves"][name] = curveJson(Contents(*curve));
  json["sources"] = {{"database", files(settings)},
                     {"format", printed(settings.DataType)},
                     {"corrections", settings.CorrFile},
                     {"program", printed(VersionInfo)}};
  return jsonText(json);
}

// ------------------------------------------------------------------------ text
std::string number(double value) {
  std::string text;
  appendGeneral(text, value);
  return text;
}

// Cells side by side, each at least as wide as stated.
std::string row(std::vector<std::pair<std::string, std::size_t>> const& cells) {
  std::string text;
  for (auto const& [cell, width] : cells) {
    text += "  " + cell;
    if (cell.size() < width) text.append(width - cell.size(), ' ');
  }
  return text.substr(0, text.find_last_not_of(' ') + 1) + "\n";
}

std::string curveRow(char const* name, Contents const& contents) {
  std::string state = number(contents.first) + " to " + number(contents.last) +
                      ", " + std::to_string(contents.count) + " nodes";
  if (contents.count == 0)
    state = "no data";
  else if (contents.usable == 0)
    state += ", none above 0";
  return row({{name, 28}, {state, 0}});
}

std::string edgeRows(Edge<double> const& edge) {
  std::string text = row({{nameOf(edge.ID), 8},
                          {number(edge.Energy) + " keV", 14},
                          {"yield " + number(edge.Yield), 16},
                          {"jump " + number(edge.Jump), 0}});
  for (auto const& line : edge.Lines)
    text += row({{"", 6},
                 {line.Label, 8},
                 {number(line.Energy) + " keV", 14},
                 {number(line.Intensity), 10},
                 {line.Radiative ? "" : "not radiative", 0}});
  return text;
}

std::string toText(MaterialConfig<double> const& settings,
                   Material<double> const& material) {
  std::string text = "Material: " + material.Name +
                     "\nDensity: " + number(material.Density) +
                     " g/cm^3\nZ: " + number(material.Z) +
                     "\nA: " + number(material.A) + " g/mol\n";
  text += "Format: " + printed(settings.DataType) + "\n";
  for (auto const& file : files(settings)) text += "Database: " + file + "\n";
  text += "Corrections: " + settings.CorrFile +
          "\n\nComposition by mass and by "
          "atoms\n";
  for (auto const& part : composition(material))
    text += row({{part.symbol, 4},
                 {number(part.byMass), 12},
                 {number(part.byAtoms), 0}});
  text += "\nCurves over energy [keV] or momentum transfer\n";
  for (auto const& [name, curve] : curvesOf(material))
    text += curveRow(name, Contents(*curve));
  text += "\nStopping: mass fraction, J [keV], -C, x0, x1, a, m, delta0\n";
  for (auto const& [c, weight] : material.EnergyLoss)
    text += row({{number(weight), 10},
                 {number(c.J), 10},
                 {number(-c.C), 8},
                 {number(c.x0), 8},
                 {number(c.x1), 8},
                 {number(c.a), 8},
                 {number(c.m), 8},
                 {number(c.delta0), 0}});
  text += "\nEdges, and lines with their probability per vacancy\n";
  for (auto const& edge : material.Edges) text += edgeRows(edge);
  return text;
}

}  // namespace

void runMaterial(Arguments const& arguments) {
  CommandLine const line(arguments, {OutputOption, JsonOption});
  MaterialConfig<double> settings;
  line.configure(settings, "material");
  Material<double> material;
  load(material, settings);
  check(settings);
  Output output(line.value("output"));
  output.stream() << (line.has("json") ? toJson(settings, material)
                                       : toText(settings, material));
  output.finish();
}

}  // namespace Tool
