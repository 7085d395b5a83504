#include "photarium/grid/FluoTable.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/foundation/elements.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/warning.h"
#include "photarium/grid/TableHeader.h"
#include "photarium/grid/TableText.h"
#include "photarium/material/AttenuationCoeff.h"
#include "photarium/material/Edge.h"
#include "photarium/material/SubshellID.h"

namespace {

template <class T>
using LevelCurves = std::map<SubshellID, AttenuationCoeff<T>>;

// The level as element and shell, such as "Cu K1".
std::string levelName(SubshellID const& level) {
  std::ostringstream name;
  if (level.Z > 0 && level.Z < ElementsCount) name << Elements[level.Z] << ' ';
  SubshellToString(name, level.Shell);
  return name.str();
}

// The curve of each edge, null where `curves` has none, which is a finding.
template <class T>
std::vector<AttenuationCoeff<T> const*> curvesOf(
    std::vector<Edge<T>> const& edges, LevelCurves<T> const& curves,
    std::string const& kind, std::string& findings) {
  std::vector<AttenuationCoeff<T> const*> found;
  for (Edge<T> const& edge : edges) {
    auto const curve = curves.find(edge.ID);
    found.push_back(curve == curves.end() ? nullptr : &curve->second);
    if (!found.back())
      findings +=
          "No " + kind + " data for level: " + levelName(edge.ID) + "\n";
  }
  return found;
}

template <class T>
void writeEdges(TableText& rows, std::vector<Edge<T>> const& edges) {
  rows.text +=
      "# edge energy\ttransition count\ttransition energy\t"
      "transition probability\t0: photon, 1: electron, ...\n";
  for (Edge<T> const& edge : edges) {
    rows.number(edge.Energy);
    rows.text += '\t';
    appendInteger(rows.text, edge.Lines.size());
    for (auto const& line : edge.Lines) {
      rows.text += '\t';
      rows.number(line.Energy);
      rows.text += '\t';
      rows.number(line.Intensity);
      rows.text += line.Radiative ? "\t0" : "\t1";
    }
    rows.endRow();
  }
}

// True if the edge can be excited at `E`, its own energy included, and `curve`
// says how.
template <class T>
bool isOpen(Edge<T> const& edge, AttenuationCoeff<T> const* curve, T E) {
  return curve && !(edge.Energy > E);
}

template <class T>
void reportSum(T E, T sum, std::string& findings) {
  findings += "Probability greater than one: ";
  appendScientific(findings, E);
  findings += '\t';
  appendScientific(findings, sum);
  findings += '\n';
}

// The part of the table that has a row for each energy.
template <class T>
class Excitation {
 public:
  Excitation(Material<T> const& material, std::string& findings)
      : material_(material),
        photons_(curvesOf(material.Edges, material.PhotoIonization,
                          "photoionization", findings)),
        electrons_(curvesOf(material.Edges, material.ElectronIonization,
                            "electron ionization", findings)) {}

  void write(TableText& rows, T E, std::string& findings) const {
    auto const& edges = material_.Edges;
    T const total = material_.Absorption(E, /*extrapolate=*/true);
    T sum = 0;
    for (std::size_t j = 0; j < edges.size(); ++j) {
      if (j > 0) rows.text += '\t';
      auto const* const curve = photons_[j];
      T const share =
          isOpen(edges[j], curve, E) ? (*curve)(E, true) / total : T(0);
      rows.number(share);
      sum += share;
    }
    if (sum > 1) reportSum(E, sum, findings);
    for (std::size_t j = 0; j < edges.size(); ++j) {
      auto const* const curve = electrons_[j];
      bool const open = isOpen(edges[j], curve, E);
      rows.text += '\t';
      rows.number(open ? (*curve)(E, true) * material_.Density : T(0));
    }
    rows.endRow();
  }

 private:
  Material<T> const& material_;
  std::vector<AttenuationCoeff<T> const*> photons_;
  std::vector<AttenuationCoeff<T> const*> electrons_;
};

}  // namespace

template <class T>
void FluoTable(std::ostream& out, GridConfig<T> const& grid,
               Material<T> const& material) {
  if (grid.EBin >= grid.kVp)
    throw std::runtime_error("Unreasonable maximum energy!\n");
  TableHeader<T> header;
  header.Name = material.Name;
  header.Kind = "Fluo";
  header.Columns = material.Edges.size();
  header.Rows = TableRows(grid.kVp, grid.EBin);
  header.First = header.Step = grid.EBin;
  header.Last = T(header.Rows) * grid.EBin;
  header.Density = material.Density;
  out << header.text();
  TableText rows(out);
  writeEdges(rows, material.Edges);
  std::string findings;
  if (!material.Edges.empty()) {
    rows.text +=
        "# one column per edge (order as above) giving excitation probability "
        "in case of photoabsorption,\n"
        "# followed by excitation cross sections in 1/cm for electrons (same "
        "column order)\n";
    Excitation<T> const excitation(material, findings);
    for (std::uint64_t i = 0; i < header.Rows; ++i)
      excitation.write(rows, T(i + 1) * grid.EBin, findings);
  }
  rows.flush();
  if (!findings.empty()) throw warning(findings);
}

template PHOTARIUM_EXPORT void FluoTable(std::ostream&,
                                         GridConfig<double> const&,
                                         Material<double> const&);
