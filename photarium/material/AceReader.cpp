#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "photarium/foundation/constants.h"
#include "photarium/foundation/number.h"
#include "photarium/material/Material.h"
#include "photarium/material/readers.h"

// Photo-atomic tables in the text form of ACE, classic layout: a line with the
// table's name and weight, five lines, two lines of sizes of which the first is
// read, four more lines, then numbers between blanks.

namespace {

// Momentum transfers of the scattering function and of the form factor, which
// the format fixes; [1/angstrom], sin(theta/2) over the wavelength.
constexpr std::array<double, 21> ScatterGrid = {
    0,   0.005, 0.01, 0.05, 0.1, 0.15, 0.2, 0.3, 0.4, 0.5, 0.6,
    0.7, 0.8,   0.9,  1,    1.5, 2,    3,   4,   5,   8};
constexpr std::array<double, 55> FormFactorGrid = {
    0,    0.01, 0.02, 0.03, 0.04, 0.05, 0.06, 0.08, 0.1,  0.12, 0.15,
    0.18, 0.2,  0.25, 0.3,  0.35, 0.4,  0.45, 0.5,  0.55, 0.6,  0.7,
    0.8,  0.9,  1,    1.1,  1.2,  1.3,  1.4,  1.5,  1.6,  1.7,  1.8,
    1.9,  2,    2.2,  2.4,  2.6,  2.8,  3,    3.2,  3.4,  3.6,  3.8,
    4,    4.2,  4.4,  4.6,  4.8,  5,    5.2,  5.4,  5.6,  5.8,  6};

// Integrated form factors between the scattering function and the form factor.
constexpr std::size_t IntegralCount = 55;

// Lines behind the table's name: of the sizes, and ahead of the numbers.
constexpr std::size_t SizeLine = 6;
constexpr std::size_t LastHeadLine = 11;

// What the head says of the table.
struct TableSizes {
  std::uint32_t z = 0;
  std::uint32_t energies = 0;
  std::uint32_t fluorescence = 0;
};

// The number in `width` columns from `offset` on, 0 where there is none.
template <class N>
N columns(std::string_view line, std::size_t offset, std::size_t width) {
  std::string_view field =
      line.substr(std::min(offset, line.size())).substr(0, width);
  N value = 0;
  extractNumber(field, value);
  return value;
}

TableSizes sizesOf(std::string_view line) {
  return {columns<std::uint32_t>(line, 9, 9),
          columns<std::uint32_t>(line, 18, 9),
          columns<std::uint32_t>(line, 27, 9)};
}

// The numbers of a table. From the first on that cannot be read all are 0.
class Numbers {
 public:
  explicit Numbers(std::string_view text) : rest_(text) {}

  bool failed() const { return failed_; }

  double next() {
    double value = 0;
    if (!failed_) failed_ = !extractNumber(rest_, value);
    return value;
  }

  template <class T>
  std::vector<T> next(std::size_t count, T scale) {
    std::vector<T> values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(T(next()) * scale);
    return values;
  }

 private:
  std::string_view rest_;
  bool failed_ = false;
};

// Reads the table of one element.
template <class T>
class AceReader {
 public:
  AceReader(Material<T>& material, std::string_view text)
      : material_(material), rest_(text) {}

  void read() {
    if (!findTable())
      throw std::runtime_error("Element " + material_.Name + " not found");
    Numbers numbers(rest_);
    T const factor = T(Constants::Na) / material_.A * T(1e-24);
    std::vector<T> energies = readEnergies(numbers);
    bool const isEmpty = energies.empty();
    // One after the other, as points and curve together are large.
    Curve incoherent = logCurve(numbers, energies, factor);
    Curve coherent = logCurve(numbers, energies, factor);
    Curve absorption = logCurve(numbers, energies, factor);
    Points pair = readPair(numbers, energies);
    energies = {};
    Points scatterFunction = readOnGrid(numbers, ScatterGrid);
    for (std::size_t i = 0; i < IntegralCount; ++i) numbers.next();
    Points formFactor = readOnGrid(numbers, FormFactorGrid);
    if (sizes_.fluorescence > 0) readFluorescence(numbers);

    if (!isEmpty) {
      material_.Absorption = std::move(absorption);
      material_.Coherent = std::move(coherent);
      material_.Incoherent = std::move(incoherent);
    }
    material_.Pair = pairCurve(pair, factor);
    material_.FormFactor = gridCurve(formFactor);
    material_.ScatterFunction = gridCurve(scatterFunction);
  }

 private:
  using Curve = AttenuationCoeff<T>;
  using Points = typename Curve::Points;
  using Data = std::vector<typename Curve::Stretch>;

  // Moves to the numbers of the material's table. None has the number 0, which
  // lines without a number would seem to be.
  bool findTable() {
    std::size_t count = 0;
    while (!rest_.empty()) {
      std::size_t const end = std::min(rest_.find('\n'), rest_.size());
      std::string_view const line = rest_.substr(0, end);
      rest_.remove_prefix(std::min(end + 1, rest_.size()));
      ++count;
      if (isTableName(line)) {
        material_.A = T(columns<double>(line, 10, 12)) * T(NeutronWeight);
        count = 0;
      }
      if (count == SizeLine) sizes_ = sizesOf(line);
      bool const isOwn = sizes_.z != 0 && T(sizes_.z) == material_.Z;
      if (count == LastHeadLine && isOwn) return true;
    }
    return false;
  }

  // ln(energy in keV), ascending. Where the numbers end too early the rest are
  // equal, and two of them have the effect of all.
  std::vector<T> readEnergies(Numbers& numbers) const {
    T const toKeV = std::log(T(1000));
    std::vector<T> energies;
    std::uint32_t left = sizes_.energies;
    for (; left > 0 && !numbers.failed(); --left)
      energies.push_back(T(numbers.next()) + toKeV);
    energies.insert(energies.end(), std::min<std::uint32_t>(left, 2), toKeV);
    std::sort(energies.begin(), energies.end());
    return energies;
  }

  static Points readLogs(Numbers& numbers, std::vector<T> const& energies) {
    Points points;
    points.reserve(energies.size());
    for (T const energy : energies)
      points.emplace_back(energy, T(numbers.next()));
    return points;
  }

  // Plain numbers. What stands up to the last 0, or else the first entry, is
  // below the threshold.
  static Points readPair(Numbers& numbers, std::vector<T> const& energies) {
    Points points;
    bool hasEntry = false;
    for (T const energy : energies) {
      T const value = T(numbers.next());
      if (value == 0) points.clear();
      if (value != 0 && hasEntry)
        points.emplace_back(std::exp(energy), std::exp(value));
      hasEntry = true;
    }
    return points;
  }

  template <std::size_t N>
  static Points readOnGrid(Numbers& numbers,
                           std::array<double, N> const& grid) {
    Points points;
    for (double const momentum : grid)
      points.emplace_back(T(momentum), T(numbers.next()));
    return points;
  }

  static Curve curve(Points& points, bool cubic, T factor, bool linear) {
    Data data;
    data.push_back({std::move(points), Curve::LogLog, cubic});
    return Curve::fromSorted(data, factor, linear);
  }

  // A table without energies ends in the finding of pairCurve().
  static Curve logCurve(Numbers& numbers, std::vector<T> const& energies,
                        T factor) {
    Points points = readLogs(numbers, energies);
    if (points.empty()) return {};
    return curve(points, /*cubic=*/true, factor, /*linear=*/false);
  }

  static Curve pairCurve(Points& points, T factor) {
    Data data{zeroUpTo<typename Curve::Stretch>(T(PairThreshold))};
    data.push_back({std::move(points), Curve::LogLog, /*cubic=*/true});
    return Curve::fromSorted(data, factor, /*linear=*/true);
  }

  static Curve gridCurve(Points& points) {
    return curve(points, /*cubic=*/false, T(1), /*linear=*/true);
  }

  void readFluorescence(Numbers& numbers) {
    std::size_t const count = sizes_.fluorescence;
    material_.Edges.clear();
    if (count != 2 && count != 4 && count != 5 && count != 6)
      throw std::runtime_error("Unexpected fluorescence data parsing MCNP");
    constexpr T keV = 1000;  // from MeV
    std::vector<T> const edges = numbers.next(count, keV);
    std::vector<T> const probabilities = numbers.next(count, T(1));
    std::vector<T> const yields = numbers.next(count, T(1));
    std::vector<T> const energies = numbers.next(count, keV);
    bool const hasL = count > 4;
    addK(hasL ? 1 : 0, edges, probabilities, yields, energies);
    if (hasL) addL(edges, probabilities, yields, energies);
  }

  // The K edge has the entries behind `below`, one for each line.
  void addK(std::size_t below, std::vector<T> const& E, std::vector<T> const& P,
            std::vector<T> const& Y, std::vector<T> const& F) {
    static constexpr std::array<std::pair<char const*, subshell>, 4> lines = {{
        {"K-L3", L3},
        {"K-L2", L2},
        {"K-M3", M3},
        {"K-N2,3", subshell(0)},
    }};
    std::size_t const n = E.size() - 1;
    T const D = P[n] - P[below];
    T const yield = (Y[n] - Y[below]) / D;
    auto& edge = material_.Edges.emplace_back(
        SubshellID(sizes_.z, K1), E[n], yield, below > 0 ? P[n] : 1 / P[0]);
    if (n == 1) {
      edge.Lines.emplace_back(F[1], yield, "K", /*radiative=*/true);
      return;
    }
    for (std::size_t i = below + 1; i <= n; ++i) {
      auto const& [label, level] = lines[i - below - 1];
      SubshellID const from(level == 0 ? 0 : sizes_.z, level);
      edge.Lines.emplace_back(F[i], (Y[i] - Y[i - 1]) / D, label, from,
                              /*radiative=*/true);
    }
  }

  void addL(std::vector<T> const& E, std::vector<T> const& P,
            std::vector<T> const& Y, std::vector<T> const& F) {
    T const yield = (Y[1] - Y[0]) / (P[1] - P[0]);
    auto& edge = material_.Edges.emplace_back(SubshellID(sizes_.z, L3), E[1],
                                              yield, 1 / P[0]);
    edge.Lines.emplace_back(F[1], yield, "L", /*radiative=*/true);
  }

  Material<T>& material_;
  std::string_view rest_;
  TableSizes sizes_;
};

}  // namespace

template <class T>
void Material<T>::readMCNP(std::istream& in) {
  std::string storage;
  parseMCNP(remainingView(in, storage));
}

template <class T>
void Material<T>::parseMCNP(std::string_view text) {
  AceReader<T>(*this, text).read();
}

template void Material<double>::readMCNP(std::istream&);
template void Material<double>::parseMCNP(std::string_view);
