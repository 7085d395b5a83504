#pragma once

#include <cmath>
#include <cstdio>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"

/// All that a reader fills, to the last bit, as text: equal materials have
/// equal texts.
class Fingerprint {
 public:
  explicit Fingerprint(Material<double> const& m) {
    text_ = m.Name;
    add(m.Z);
    add(m.A);
    addEdges(m);
    for (auto const* curve :
         {&m.Absorption, &m.Incoherent, &m.Coherent, &m.Pair, &m.FormFactor,
          &m.ScatterFunction, &m.AnomalousImag, &m.AnomalousReal,
          &m.ElectronElastic})
      addCurve(*curve);
    for (auto const* levels : {&m.PhotoIonization, &m.ElectronIonization})
      for (auto const& [level, curve] : *levels) {
        addLevel(level);
        addCurve(curve);
      }
    addRows(m.TabSigma);
    addRows(m.ElasticAngle);
  }

  std::string const& str() const { return text_; }

 private:
  void add(double value) {
    char buffer[40];
    // The sign of a value that is no number depends on the compiler.
    if (std::isnan(value)) value = std::abs(value);
    std::snprintf(buffer, sizeof(buffer), " %a", value);
    text_ += std::isnan(value) ? " nan" : buffer;
  }

  void addLevel(SubshellID const& level) {
    text_ += '\n' + std::to_string(level.Z) + '/' + std::to_string(level.Shell);
  }

  void addEdges(Material<double> const& m) {
    for (auto const& edge : m.Edges) {
      addLevel(edge.ID);
      add(edge.Energy);
      add(edge.Yield);
      add(edge.Jump);
      for (auto const& line : edge.Lines) {
        text_ += '\n' + line.Label + (line.Radiative ? " photon" : " electron");
        addLevel(line.From);
        addLevel(line.To);
        add(line.Energy);
        add(line.Intensity);
      }
    }
  }

  // The text form has the nodes to six digits; values within and at both sides
  // of each range have the rest.
  void addCurve(AttenuationCoeff<double> const& curve) {
    std::ostringstream out;
    out << curve;
    text_ += out.str();
    for (double x = 1e-4; x < 1e9; x *= 1.7) add(curve(x, true));
    try {
      for (auto const& [key, jump] : curve.Discontinuities()) {
        add(key);
        add(jump);
        add(curve(key, true));
        add(curve(key * (1 + 1e-9), true));
      }
    } catch (std::exception const& failure) {
      text_ += failure.what();
    }
  }

  void addRows(BiLSpline<double, double> const& table) {
    for (auto const& row : table.records()) {
      text_ += "\nrow";
      add(row.first);
      for (auto const* spline : {&row.second, &row.third})
        for (auto const& node : spline->records()) {
          add(node.first);
          add(node.second);
          add(node.third);
        }
    }
  }

  std::string text_;
};

/// What `read` makes of a fresh material of that name or number: how it ends,
/// then the fingerprint.
template <class Read>
std::string outcome(std::string const& name, Read const& read) {
  Material<double> material(name, 0, 0, 0);
  std::string end = "good";
  try {
    read(material);
  } catch (warning const& failure) {
    end = std::string("warning ") + failure.what();
  } catch (std::out_of_range const& failure) {
    end = std::string("out_of_range ") + failure.what();
  } catch (std::runtime_error const& failure) {
    end = std::string("runtime_error ") + failure.what();
  }
  return end + '\n' + Fingerprint(material).str();
}
