#include "photarium/grid/AngleDist.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/foundation/number.h"
#include "photarium/foundation/warning.h"
#include "photarium/grid/TableHeader.h"
#include "photarium/grid/TableText.h"
#include "photarium/spline/LSpline.h"

namespace {

// Appends numbers with ", " between them.
template <class T>
void appendList(std::string& text, std::initializer_list<T> numbers) {
  char const* separator = "";
  for (T number : numbers) {
    text += separator;
    appendGeneral(text, number);
    separator = ", ";
  }
}

// Cumulative distributions of the cosine turned into cosines of probability.
template <class T>
class Inverter {
 public:
  // The inverse of `cumulative` at the electron energy `E`. Of several cosines
  // with one probability the lowest stays. Findings go to `findings`.
  LSpline<T, T> operator()(LSpline<T, T> const& cumulative, T E,
                           std::string& findings) {
    points_.clear();
    bool isSorted = true;
    T previous = 0;
    for (auto const& node : cumulative.records()) {
      Point const point{node.third, node.first};
      if (previous > point.probability) report(E, point, findings);
      previous = point.probability;
      // Neither above nor below: equal, or no number, which equals anything.
      if (points_.empty() || points_.back() < point) {
        points_.push_back(point);
      } else if (point < points_.back()) {
        points_.push_back(point);
        isSorted = false;
      }
    }
    if (!isSorted) sort();
    return spline();
  }

 private:
  struct Point {
    T probability;
    T cosine;
    bool operator<(Point const& other) const {
      return probability < other.probability;
    }
    bool operator==(Point const& other) const {
      return probability == other.probability;
    }
  };

  static void report(T E, Point const& point, std::string& findings) {
    findings += "Probability function not monotonous at: ";
    appendList(findings, {E, point.cosine, point.probability});
    findings += '\n';
  }

  void sort() {
    std::stable_sort(points_.begin(), points_.end());
    points_.erase(std::unique(points_.begin(), points_.end()), points_.end());
  }

  LSpline<T, T> spline() {
    probabilities_.clear();
    cosines_.clear();
    for (Point const& point : points_) {
      probabilities_.push_back(point.probability);
      cosines_.push_back(point.cosine);
    }
    return LSpline<T, T>(std::span<T const>(probabilities_),
                         std::span<T const>(cosines_));
  }

  std::vector<Point> points_;
  std::vector<T> probabilities_;
  std::vector<T> cosines_;
};

template <class T>
void reportCosine(std::uint64_t i, std::uint64_t j, T E, T p, T cosine,
                  std::string& findings) {
  findings += "Something wrong at: (";
  appendInteger(findings, i);
  findings += ", ";
  appendInteger(findings, j);
  findings += ") == (";
  appendList(findings, {E, p, cosine});
  findings += ")\n";
}

// Row `i`: the cosines at `steps` equidistant probabilities.
template <class T>
void writeRow(TableText& rows, LSpline<T, T> const& inverse, std::uint64_t i,
              T E, std::uint64_t steps, std::string& findings) {
  for (std::uint64_t j = 0; j < steps; ++j) {
    T const p = T(j) / T(steps - 1);
    T const x =
        inverse.template at</*sequential=*/true, /*extrapolate=*/true>(p);
    if (x < -1 || x > 1 || (j == 0 && x != -1))
      reportCosine(i, j, E, p, x, findings);
    rows.text += ' ';
    rows.number(x);
  }
  rows.endRow();
}

}  // namespace

template <class T>
void AngleDist(std::ostream& out, DistributionConfig<T> const& dist,
               Material<T> const& material) {
  if (dist.EBin >= dist.kVp)
    throw std::runtime_error("Unreasonable value for maximum kVp\n");
  std::uint64_t const energies = TableRows(dist.kVp, dist.EBin);
  LimitTableSteps(dist.Steps);
  TableHeader<T> header;
  header.Program = "MIC";
  header.Name = material.Name;
  header.Kind = "Angle";
  header.Columns = dist.Steps;
  header.Rows = energies;
  header.First = header.Step = dist.EBin;
  header.Last = T(energies) * dist.EBin;
  header.Density = material.Density;
  out << header.text() << std::showpos;
  TableText rows(out);
  std::string findings;
  Inverter<T> invert;
  for (std::uint64_t i = 0; i < energies; ++i) {
    T const E = T(i + 1) * dist.EBin;
    LSpline<T, T> inverse;
    if (!material.ElasticAngle.empty())
      inverse = invert(material.ElasticAngle(std::log10(E), /*sequential=*/true,
                                             /*extrapolate=*/true),
                       E, findings);
    writeRow(rows, inverse, i, E, dist.Steps, findings);
  }
  rows.flush();
  if (!findings.empty()) throw warning(findings);
}

template PHOTARIUM_EXPORT void AngleDist(std::ostream&,
                                         DistributionConfig<double> const&,
                                         Material<double> const&);
