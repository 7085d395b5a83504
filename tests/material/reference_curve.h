#pragma once

#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/material/AttenuationCoeff.h"

/// An attenuation curve in its plainest form, to compare with: a map of cloned
/// splines, built from multimaps through maps and driven through the virtual
/// operations of Spline.
class ReferenceCurve {
 public:
  using Curve = AttenuationCoeff<double>;
  using Law = Curve::Interpolation;

  struct Range {
    std::shared_ptr<Spline<double, double>> spline;
    int law;
  };

  ReferenceCurve() = default;

  ReferenceCurve(std::vector<Curve::MapStretch> const& data, double scale,
                 bool linear) {
    for (auto const& [points, law, cubic] : data) {
      if (points.empty()) continue;
      bool const logX = law >= 4;
      bool const logY = law == 3 || law == 5;
      double start = 0, energyBelow = 0, ordinateBelow = 0;
      bool isFirst = true;
      std::map<double const, double> scratch;
      for (auto const& [x, y] : points) {
        double a, b, e;
        if (linear) {
          b = y * scale;
          if (logY) b = std::log(b);
          e = x;
          a = logX ? std::log(x) : x;
        } else {
          b = logY ? y + std::log(scale) : std::exp(y) * scale;
          a = x;
          e = logX ? std::exp(x) : x;
        }
        if (isFirst) {
          start = e;
          scratch.insert({a, b});
        } else if (law == Curve::Const) {
          scratch.insert({a, ordinateBelow});
          close(start, law, cubic, scratch);
          start = e;
          scratch.insert({a, b});
        } else if (std::fabs(e / energyBelow - 1) > 0.0001) {
          scratch.insert({a, b});
        } else {
          close(start, law, cubic, scratch);
          start = e;
          scratch.insert({a, b});
        }
        isFirst = false;
        energyBelow = e;
        ordinateBelow = b;
      }
      if (law != Curve::Const) close(start, law, cubic, scratch);
    }
  }

  ReferenceCurve(ReferenceCurve const& other) {
    for (auto const& [key, range] : other.ranges)
      ranges[key] = {Owned(range.spline->Clone()), range.law};
  }
  ReferenceCurve& operator=(ReferenceCurve const&) = delete;

  void scale(double c) {
    for (auto& [key, range] : ranges) {
      if (range.law == 3 || range.law == 5)
        *range.spline += std::log(c);
      else
        *range.spline *= c;
    }
  }

  double operator()(double x, bool extrapolate) const {
    auto above = ranges.upper_bound(x);
    std::string word;
    if (above == ranges.begin()) {
      if (ranges.empty()) {
        if (extrapolate) return 0;
        throw std::out_of_range("No data points for interpolation.");
      }
      word = "below";
    } else {
      --above;
      word = "above";
    }
    auto const& [key, range] = *above;
    try {
      double const y =
          (*range.spline)(range.law >= 4 ? std::log(x) : x, true, extrapolate);
      return range.law == 3 || range.law == 5 ? std::exp(y) : y;
    } catch (std::out_of_range const&) {
      std::ostringstream text;
      text << std::scientific;
      text.precision(6);
      text << "Cannot evaluate at " << x << " (" << word << " " << key << ").";
      throw std::out_of_range(text.str());
    }
  }

  ReferenceCurve plus(ReferenceCurve const& other) const {
    if (ranges.empty()) return other;
    if (other.ranges.empty()) return *this;
    std::set<double> edges;
    for (auto const& [key, range] : ranges) edges.insert(key);
    for (auto const& [key, range] : other.ranges) edges.insert(key);
    ReferenceCurve sum;
    for (auto edge = edges.begin(); edge != edges.end(); ++edge) {
      auto const next = std::next(edge);
      double const hi =
          next == edges.end() ? std::numeric_limits<double>::infinity() : *next;
      sum.addInterval(*edge, hi, rangeAt(*edge), other.rangeAt(*edge));
    }
    return sum;
  }

  std::map<double, double> discontinuities() const {
    std::map<double, double> ratios;
    Range const* below = nullptr;
    for (auto const& [key, range] : ranges) {
      ratios[key] = below ? plain(range, key) / plain(*below, key) : 0;
      below = &range;
    }
    return ratios;
  }

  template <class Change>
  void change(Change const& logarithm, Change const& number) {
    for (auto& [key, range] : ranges) {
      auto nodes = range.spline->nodes();
      for (auto& [x, y] : nodes)
        y = range.law == 3 || range.law == 5 ? logarithm(y) : number(y);
      range.spline = make(range.spline->order() == 3, nodes);
    }
  }

  std::string text() const {
    static char const* const names[] = {"",       "Const",  "LinLin",
                                        "LinLog", "LogLin", "LogLog"};
    std::ostringstream out;
    out << std::scientific;
    out.precision(6);
    out << "# " << ranges.size() << " edges\n";
    for (auto const& [key, range] : ranges) {
      auto const nodes = range.spline->nodes();
      out << "# " << nodes.size() << " nodes " << names[range.law] << "\n";
      for (auto const& [x, y] : nodes)
        out << (range.law >= 4 ? std::exp(x) : x) << "\t"
            << (range.law == 3 || range.law == 5 ? std::exp(y) : y) << "\n";
    }
    return out.str();
  }

  std::map<double, Range> ranges;

 private:
  using Owned = std::shared_ptr<Spline<double, double>>;

  static Owned make(bool cubic, std::map<double const, double> const& nodes) {
    if (cubic) return std::make_shared<CSpline<double, double>>(nodes);
    return std::make_shared<LSpline<double, double>>(nodes);
  }

  static double plain(Range const& range, double x) {
    double const y =
        (*range.spline)(range.law >= 4 ? std::log(x) : x, true, true);
    return range.law == 3 || range.law == 5 ? std::exp(y) : y;
  }

  void close(double start, int law, bool cubic,
             std::map<double const, double>& scratch) {
    ranges.erase(start);
    ranges[start] = {make(cubic, scratch), law};
    scratch.clear();
  }

  Range const& rangeAt(double lo) const {
    auto range = ranges.begin();
    while (range != ranges.end() && range->first <= lo) ++range;
    if (range != ranges.begin()) --range;
    return range->second;
  }

  void addInterval(double lo, double hi, Range const& one, Range const& two) {
    bool const logX = one.law >= 4 || two.law >= 4;
    bool const logY =
        one.law == 3 || one.law == 5 || two.law == 3 || two.law == 5;
    std::set<double> energies{lo};
    if (std::isfinite(hi)) energies.insert(hi);
    for (Range const* range : {&one, &two})
      for (auto const& [node, value] : range->spline->nodes()) {
        double const x = range->law >= 4 ? std::exp(node) : node;
        if (lo <= x && x <= hi) energies.insert(x);
      }
    std::map<double const, double> scratch;
    for (double const x : energies) {
      double const l = logX ? std::log(x) : x;
      try {
        double s = 0;
        for (Range const* range : {&one, &two}) {
          double const y =
              (*range->spline)(range->law >= 4 ? l : x, true, false);
          s += range->law == 3 || range->law == 5 ? std::exp(y) : y;
        }
        scratch.insert({l, logY ? std::log(s) : s});
      } catch (std::out_of_range const&) {
      }
    }
    if (scratch.empty()) return;
    int const law = logX ? (logY ? 5 : 4) : (logY ? 3 : 2);
    bool const cubic = one.spline->order() > 1 || two.spline->order() > 1;
    ranges[lo] = {make(cubic, scratch), law};
  }
};
