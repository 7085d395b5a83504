#include "tools/endf_thin.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"

namespace Tool {
namespace {

constexpr std::size_t FieldWidth = 11;
constexpr std::size_t PointWidth = 2 * FieldWidth;
constexpr std::size_t PerLine = 3;     // points, or ranges
constexpr std::size_t FirstRange = 2;  // line behind the two heads

std::uint32_t count(std::string_view line, std::size_t index) {
  std::string_view field = line.substr(index * FieldWidth, FieldWidth);
  std::uint32_t value = 0;
  extractNumber(field, value);
  return value;
}

std::size_t linesFor(std::size_t items) {
  return items / PerLine + (items % PerLine != 0 ? 1 : 0);
}

struct Node {
  double x;
  double y;
};

// Chooses the points that stay. From each one on it looks for the farthest
// point whose chord passes all between within their tolerance.
class Chooser {
 public:
  Chooser(std::vector<Node> const& nodes, double tolerance)
      : nodes_(nodes), tolerance_(tolerance), stays_(nodes.size(), false) {}

  std::vector<bool> choose() {
    std::size_t const last = nodes_.size() - 1;
    stays_[0] = stays_[last] = true;
    for (std::size_t anchor = 0; anchor < last;) {
      anchor = farthest(anchor, last);
      stays_[anchor] = true;
    }
    return stays_;
  }

 private:
  // Points at one energy are the sides of an edge.
  bool isEdge(std::size_t i) const {
    bool const atBefore = i > 0 && nodes_[i - 1].x == nodes_[i].x;
    bool const atNext = i + 1 < nodes_.size() && nodes_[i + 1].x == nodes_[i].x;
    return atBefore || atNext;
  }

  std::size_t farthest(std::size_t anchor, std::size_t last) const {
    double low = -std::numeric_limits<double>::infinity();
    double high = -low;
    Node const& from = nodes_[anchor];
    std::size_t best = anchor + 1;
    for (std::size_t i = anchor + 1; i <= last; ++i) {
      double const width = nodes_[i].x - from.x;
      if (!(width > 0)) return best;
      double const slope = (nodes_[i].y - from.y) / width;
      if (!(slope >= low && slope <= high)) return best;
      best = i;
      if (isEdge(i)) return best;
      double const margin = tolerance_ * std::abs(nodes_[i].y) / width;
      low = std::fmax(low, slope - margin);
      high = std::fmin(high, slope + margin);
    }
    return best;
  }

  std::vector<Node> const& nodes_;
  double tolerance_;
  std::vector<bool> stays_;
};

}  // namespace

bool endfValue(std::string_view field, double& value) {
  std::string text(trimmed(field));
  value = 0;
  if (text.empty()) return true;
  std::size_t const sign = text.find_first_of("+-", 1);
  if (sign != std::string::npos) text.insert(sign, 1, 'e');
  std::string_view rest = text;
  return extractNumber(rest, value) && rest.empty();
}

bool isWholeTable(std::vector<std::string_view> const& lines) {
  if (lines.size() < FirstRange) return false;
  std::size_t const ranges = count(lines[1], 4);
  std::size_t const points = count(lines[1], 5);
  return lines.size() == FirstRange + linesFor(ranges) + linesFor(points);
}

ThinTable::ThinTable(std::vector<std::string_view> const& lines,
                     double tolerance)
    : lines_(lines) {
  constexpr std::uint32_t linear = 2;
  bool const isPlain = tolerance > 0 && lines.size() > FirstRange + 1 &&
                       count(lines[1], 4) == 1 && count(lines[1], 5) > 2 &&
                       count(lines[FirstRange], 0) == count(lines[1], 5) &&
                       count(lines[FirstRange], 1) == linear;
  if (isPlain) thin(tolerance);
}

void ThinTable::thin(double tolerance) {
  std::size_t const size = count(lines_[1], 5);
  std::vector<std::string_view> points;
  std::vector<Node> nodes;
  for (std::size_t i = 0; i < size; ++i) {
    std::string_view const line = lines_[FirstRange + 1 + i / PerLine];
    std::string_view const point = line.substr(i % PerLine * PointWidth);
    points.push_back(point.substr(0, PointWidth));
    Node node{};
    bool const isRead =
        endfValue(points.back().substr(0, FieldWidth), node.x) &&
        endfValue(points.back().substr(FieldWidth), node.y);
    if (!isRead) return;
    nodes.push_back(node);
  }
  std::vector<bool> const stays = Chooser(nodes, tolerance).choose();
  std::vector<std::string_view> kept;
  for (std::size_t i = 0; i < size; ++i)
    if (stays[i]) kept.push_back(points[i]);
  if (kept.size() < size) write(kept);
}

void ThinTable::write(std::vector<std::string_view> const& points) {
  std::string number = std::to_string(points.size());
  number.insert(0, FieldWidth - number.size(), ' ');
  std::string head(lines_[1]);
  head.replace(5 * FieldWidth, FieldWidth, number);
  std::string range(lines_[FirstRange]);
  range.replace(0, FieldWidth, number);
  lines_.resize(1);
  lines_.push_back(texts_.emplace_back(std::move(head)));
  lines_.push_back(texts_.emplace_back(std::move(range)));
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i % PerLine == 0) texts_.emplace_back();
    texts_.back() += points[i];
    if (i % PerLine == PerLine - 1 || i + 1 == points.size())
      lines_.push_back(texts_.back());
  }
}

}  // namespace Tool
