#pragma once

#include <cmath>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/foundation/constants.h"
#include "photarium/material/Material.h"

/// The reader of ACE text once more, slow and plain: numbers by stream
/// extraction, points in multimaps. The library's reader must fill a material
/// with the very same bits.
class PlainAceReader {
 public:
  explicit PlainAceReader(Material<double>& material) : m_(material) {}

  void read(std::istream& in) {
    if (!findTable(in))
      throw std::runtime_error("Element " + m_.Name + " not found");
    Points photo;
    for (unsigned int i = 0; i < nes_; ++i)
      photo.insert({number(in) + std::log(1000.), 0});
    Points coherent = photo;
    Points incoherent = photo;
    Points pair;
    for (auto const& point : photo) pair.insert({std::exp(point.first), 0});
    for (auto* points : {&incoherent, &coherent, &photo})
      for (auto& point : *points) point.second = number(in);
    readPair(in, pair);
    Points scatter =
        onGrid(in, {0,  .005, .01, .05, .1,  .15, .2, .3, .4, .5, .6,
                    .7, .8,   .9,  1,   1.5, 2,   3,  4,  5,  8});
    for (int i = 0; i < 55; ++i) number(in);
    Points form =
        onGrid(in, {0,   .01, .02, .03, .04, .05, .06, .08, .1,  .12, .15,
                    .18, .2,  .25, .3,  .35, .4,  .45, .5,  .55, .6,  .7,
                    .8,  .9,  1,   1.1, 1.2, 1.3, 1.4, 1.5, 1.6, 1.7, 1.8,
                    1.9, 2,   2.2, 2.4, 2.6, 2.8, 3,   3.2, 3.4, 3.6, 3.8,
                    4,   4.2, 4.4, 4.6, 4.8, 5,   5.2, 5.4, 5.6, 5.8, 6});
    if (nflo_ > 0) readFluorescence(in);
    double const factor = 6.022140857e23 / m_.A * 1e-24;
    m_.Absorption = curve({{photo, Curve::LogLog, true}}, factor, false);
    m_.Coherent = curve({{coherent, Curve::LogLog, true}}, factor, false);
    m_.Incoherent = curve({{incoherent, Curve::LogLog, true}}, factor, false);
    m_.Pair =
        curve({{{{0., 0.}, {2.2 * Constants::XME, 0.}}, Curve::Const, false},
               {pair, Curve::LogLog, true}},
              factor, true);
    m_.FormFactor = curve({{form, Curve::LogLog, false}}, 1, true);
    m_.ScatterFunction = curve({{scatter, Curve::LogLog, false}}, 1, true);
  }

 private:
  using Curve = AttenuationCoeff<double>;
  using Points = std::multimap<double, double>;

  static Curve curve(std::vector<Curve::MapStretch> const& data, double scale,
                     bool linear) {
    return Curve(data, scale, linear);
  }

  static double number(std::istream& in) {
    double value = 0;
    in >> value;
    return value;
  }

  template <class N>
  static N field(std::string const& line, std::size_t offset,
                 std::size_t width) {
    std::istringstream stream(offset < line.size() ? line.substr(offset, width)
                                                   : "");
    N value = 0;
    stream >> value;
    return value;
  }

  bool findTable(std::istream& in) {
    std::string line;
    int count = 0;
    while (std::getline(in, line)) {
      ++count;
      if (line.size() >= 10 && (line[9] == 'p' || line[9] == 'P') &&
          line[6] == '.') {
        m_.A = field<double>(line, 10, 12) * 1.0086649158215515;
        count = 0;
      }
      if (count == 6) {
        z_ = field<unsigned int>(line, 9, 9);
        nes_ = field<unsigned int>(line, 18, 9);
        nflo_ = field<unsigned int>(line, 27, 9);
      }
      if (count == 11 && z_ != 0 && z_ == m_.Z) return true;
    }
    return false;
  }

  static void readPair(std::istream& in, Points& pair) {
    auto last = pair.begin();
    for (auto point = pair.begin(); point != pair.end(); ++point) {
      double const value = number(in);
      if (value == 0)
        last = point;
      else
        point->second = std::exp(value);
    }
    if (!pair.empty()) pair.erase(pair.begin(), std::next(last));
  }

  static Points onGrid(std::istream& in, std::vector<double> const& grid) {
    Points points;
    for (double const x : grid) points.insert({x, number(in)});
    return points;
  }

  std::vector<double> block(std::istream& in, double scale) const {
    std::vector<double> values(nflo_);
    for (double& value : values) value = number(in) * scale;
    return values;
  }

  void readFluorescence(std::istream& in) {
    m_.Edges.clear();
    if (nflo_ != 2 && nflo_ != 4 && nflo_ != 5 && nflo_ != 6)
      throw std::runtime_error("Unexpected fluorescence data parsing MCNP");
    auto const E = block(in, 1000);
    auto const P = block(in, 1);
    auto const Y = block(in, 1);
    auto const F = block(in, 1000);
    SubshellID const K(z_, K1);
    SubshellID const L(z_, L3);
    if (nflo_ == 2) {
      double const yield = (Y[1] - Y[0]) / (P[1] - P[0]);
      m_.Edges.push_back(Edge<double>(K, E[1], yield, 1 / P[0]));
      m_.Edges[0].Lines = {Line<double>(F[1], yield, "K", true)};
    } else if (nflo_ == 4) {
      double const D = P[3] - P[0];
      m_.Edges.push_back(Edge<double>(K, E[3], (Y[3] - Y[0]) / D, 1 / P[0]));
      addLines(1, D, Y, F);
    } else {
      std::size_t const n = nflo_ - 1;
      double const D = P[n] - P[1];
      m_.Edges.push_back(Edge<double>(K, E[n], (Y[n] - Y[1]) / D, P[n]));
      addLines(2, D, Y, F);
      if (nflo_ == 6)
        m_.Edges[0].Lines.push_back(
            Line<double>(F[5], (Y[5] - Y[4]) / D, "K-N2,3", true));
      double const yield = (Y[1] - Y[0]) / (P[1] - P[0]);
      m_.Edges.push_back(Edge<double>(L, E[1], yield, 1 / P[0]));
      m_.Edges[1].Lines = {Line<double>(F[1], yield, "L", true)};
    }
  }

  void addLines(std::size_t i, double D, std::vector<double> const& Y,
                std::vector<double> const& F) {
    auto const add = [&](char const* label, subshell from) {
      m_.Edges[0].Lines.push_back(Line<double>(
          F[i], (Y[i] - Y[i - 1]) / D, label, SubshellID(z_, from), true));
      ++i;
    };
    add("K-L3", L3);
    add("K-L2", L2);
    add("K-M3", M3);
  }

  Material<double>& m_;
  unsigned int z_ = 0, nes_ = 0, nflo_ = 0;
};
