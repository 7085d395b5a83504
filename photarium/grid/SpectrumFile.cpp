#include "photarium/grid/SpectrumFile.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/grid/TableText.h"
#include "photarium/grid/bin_width.h"
#include "photarium/streams/PHMCStream.h"

namespace {

bool isTrue(std::string_view text) {
  if (text == "True" || text == "true") return true;
  std::int64_t number = 0;
  extractNumber(text, number);
  return number != 0;
}

// Takes over what a comment line says of the spectrum.
template <class T>
void readComment(std::string_view line, Config<T>& config) {
  constexpr std::string_view bin = "Bin: ";
  constexpr std::string_view time = "Time: ";
  std::string_view text = trimmed(line.substr(1));
  if (text.starts_with(bin)) {
    config.Bin = isTrue(text.substr(bin.size(), 4));
  } else if (text.starts_with(time)) {
    text.remove_prefix(time.size());
    double value = 0;
    extractNumber(text, value);
    config.Time = T(value);
  }
}

// A line takes memory for its text alone; what never ends must not take all.
constexpr std::size_t LongestLine = std::size_t{16} << 20;

// Reads a line as std::getline() does, up to that limit.
bool readLine(std::istream& in, std::string& line) {
  char piece[1 << 12];
  line.clear();
  for (;;) {
    in.getline(piece, sizeof(piece));
    auto const got = static_cast<std::size_t>(in.gcount());
    bool const isWhole = in.good() || in.eof();
    // The line end counts and is not stored.
    line.append(piece, in.good() ? got - 1 : got);
    if (isWhole || got == 0) break;
    if (line.size() > LongestLine) throw std::runtime_error("Line too long");
    in.clear(in.rdstate() & ~std::ios::failbit);
  }
  // Only a line without any byte fails at the end.
  if (!line.empty() && !in.bad()) in.clear(in.rdstate() & ~std::ios::failbit);
  return !in.fail();
}

template <class T>
void readNode(std::string const& line, std::map<T const, T>& grid,
              LabelMap<T>& labels, bool energiesOnly) {
  std::string_view rest = line;
  double energy = 0;
  if (!extractNumber(rest, energy))
    throw std::runtime_error("Error parsing energy: " + line);
  double value = 0;
  if (!extractNumber(rest, value)) {
    if (!energiesOnly)
      throw std::runtime_error("Error parsing intensity: " + line);
    rest = {};
  }
  if (!(energy >= 0)) return;
  grid.emplace_hint(grid.end(), T(energy), energiesOnly ? T(0) : T(value));
  labels.emplace_hint(labels.end(), T(energy), rest);
}

template <class T>
std::string readFile(GridConfig<T>& config, std::map<T const, T>& grid,
                     LabelMap<T>& labels, bool energiesOnly) {
  if (config.GridFile.empty()) return "";
  if (config.GridFile == "-")
    return Grid::ReadGrid(std::cin, grid, labels, config, energiesOnly);
  std::ifstream file(config.GridFile, std::ios::binary);
  if (!file) return "";
  std::ostringstream unused;
  PHMCStream text(file, unused, /*plain=*/true);
  text.limitText(config.GridFile);  // a short hostile file must come to an end
  std::string const comments =
      Grid::ReadGrid(text, grid, labels, config, energiesOnly);
  if (text.exceededLimit())
    throw std::runtime_error("Packed text is too long: " + config.GridFile);
  return comments;
}

template <class T>
void generate(GridConfig<T> const& config, std::map<T const, T>& grid,
              LabelMap<T>& labels) {
  T const step = config.EBin;
  if (0 >= step) throw std::runtime_error("Unreasonable energy resolution.\n");
  // Nodes of a spectrum stand at bin centres. Its grid runs a fifth above the
  // tube voltage, with the factor in single precision as files have it.
  T const start = config.spectrum ? step * T(0.5) : step;
  T const limit = config.spectrum ? config.kVp * T(1.2F) : config.kVp;
  auto const energy = [=](std::uint64_t i) { return T(i) * step + start; };
  if (limit > energy(Grid::MaxNodes) - step) {
    std::string message = "Energy grid of more than ";
    appendInteger(message, Grid::MaxNodes);
    throw std::runtime_error(message + " nodes requested.\n");
  }
  for (std::uint64_t i = 0; limit > energy(i) - step; ++i) {
    grid.emplace_hint(grid.end(), energy(i), T(0));
    labels.emplace_hint(labels.end(), energy(i), "");
  }
}

}  // namespace

namespace Grid {

std::string const PlotSeparator = "#EOF";

template <class T>
std::string ReadGrid(std::istream& in, std::map<T const, T>& grid,
                     LabelMap<T>& labels, Config<T>& config,
                     bool energiesOnly) {
  grid.clear();
  labels.clear();
  std::string comments;
  std::string line;
  bool skipping = false;
  while (readLine(in, line)) {
    if (line.empty()) continue;
    if (line[0] == '#' || line[0] == ';') {
      if (line.starts_with(PlotSeparator)) break;
      comments += line;
      comments += '\n';
      readComment(line, config);
      continue;
    }
    // The heading of the spectrum itself goes on to fail as a data line.
    if (line[0] == '[') skipping = !line.starts_with("[Spectrum]");
    if (!skipping) readNode(line, grid, labels, energiesOnly);
  }
  return comments;
}

template <class T>
std::string GenGrid(GridConfig<T>& config, Material<T> const&,
                    std::map<T const, T>& grid, LabelMap<T>& labels,
                    bool energiesOnly) {
  grid.clear();
  labels.clear();
  std::string const comments = readFile(config, grid, labels, energiesOnly);
  if (!grid.empty()) return comments;
  config.GridFile.clear();
  generate(config, grid, labels);
  return comments;
}

template <class T>
void WriteGrid(std::ostream& out, std::map<T const, T> const& grid,
               LabelMap<T> const& labels, bool inBinned, bool outBinned, T& avg,
               T& flux, T const& scale, bool dropTiny) {
  TableText lines(out);
  T const factor = scale;  // which may be `avg` or `flux`
  flux = 0;
  avg = 0;
  auto label = labels.begin();
  auto next = grid.begin();
  T below = grid.empty() ? T(0) : next->first;
  for (auto node = next; node != grid.end(); node = next) {
    ++next;
    T const above = next == grid.end() ? node->first : next->first;
    T const width = binWidth(below, node->first, above);
    below = node->first;
    auto const* const text = label == labels.end() ? nullptr : &label->second;
    if (text) ++label;
    T intensity = node->second * factor;
    bool const tiny = dropTiny && intensity < std::numeric_limits<T>::min();
    if (std::isnan(intensity) || tiny) intensity = 0;
    if (std::isinf(intensity)) continue;
    T const contents = inBinned ? intensity : intensity * width;
    avg += contents * node->first;
    flux += contents;
    T const density = inBinned ? intensity / width : intensity;
    lines.number(node->first);
    lines.text += '\t';
    lines.number(outBinned ? contents : density);
    if (text) lines.text += *text;
    lines.endRow();
  }
  lines.flush();
  if (flux > 0) avg /= flux;
}

template <class T>
void WriteGrid(std::ostream& out, std::map<T const, T> const& grid,
               LabelMap<T> const& labels, T const& scale, bool dropTiny) {
  T avg = 0;
  T flux = 0;
  WriteGrid(out, grid, labels, /*inBinned=*/true, /*outBinned=*/true, avg, flux,
            scale, dropTiny);
}

template PHOTARIUM_EXPORT std::string ReadGrid(std::istream&,
                                               std::map<double const, double>&,
                                               LabelMap<double>&,
                                               Config<double>&, bool);
template PHOTARIUM_EXPORT std::string GenGrid(GridConfig<double>&,
                                              Material<double> const&,
                                              std::map<double const, double>&,
                                              LabelMap<double>&, bool);
template PHOTARIUM_EXPORT void WriteGrid(std::ostream&,
                                         std::map<double const, double> const&,
                                         LabelMap<double> const&, bool, bool,
                                         double&, double&, double const&, bool);
template PHOTARIUM_EXPORT void WriteGrid(std::ostream&,
                                         std::map<double const, double> const&,
                                         LabelMap<double> const&, double const&,
                                         bool);

}  // namespace Grid
