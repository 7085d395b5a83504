#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <istream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "photarium/foundation/constants.h"
#include "photarium/material/Material.h"
#include "tests/material/fingerprint.h"

/// The ENDF reader once more, slow and plain: a string stream for each field, a
/// multimap for the points, and every step in the order in which the format's
/// rules are told. The library's reader must fill a material with the very same
/// bits.
class PlainEndfReader {
 public:
  explicit PlainEndfReader(Material<double>& material) : m_(material) {}

  void read(std::istream& in) {
    if (m_.Z <= 99) {
      std::ostringstream mat;
      mat << std::setw(4) << m_.Z * 100;
      target_ = mat.str();
    }
    data_["Pair"].push_back(zeroUpTo(2.2 * Constants::XME));
    in.clear();
    while (std::getline(in, line_)) {
      if (line_.size() < 66) throw std::out_of_range("invalid string position");
      matText_ = line_.substr(66, 4);
      fileZ_ = control(66, 2);
      mf_ = control(70, 2);
      mt_ = control(72, 3);
      ns_ = control(75, 5);
      if (matText_ == "  -1" && mf_ == 0 && mt_ == 0 && ns_ == 0) break;
      readLine();
    }
    finish();
  }

  /// Number of a field; throws "Error parsing " and the field.
  template <class N>
  static N number(std::string field) {
    std::size_t const first = field.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return 0;
    field = field.substr(first, field.find_last_not_of(" \t\r\n") - first + 1);
    std::string text = field;
    std::size_t const sign = text.find_first_of("+-", 1);
    if (text.size() > 1 && sign != std::string::npos) text.insert(sign, 1, 'e');
    std::istringstream stream(text);
    N value = 0;
    if (!(stream >> value)) throw std::runtime_error("Error parsing " + field);
    return value;
  }

 private:
  using Curve = AttenuationCoeff<double>;
  using Law = Curve::Interpolation;
  using Stretch = Curve::MapStretch;
  using Row = std::map<double const, double>;

  static Stretch zeroUpTo(double threshold) {
    return {{{0., 0.}, {threshold, 0.}}, Curve::Const, false};
  }

  // Real numbers that do not fit become the nearest whole one that does.
  template <class N>
  static N whole(double value) {
    double const least = std::numeric_limits<N>::min();
    double const most = std::numeric_limits<N>::max();
    return value <= least  ? std::numeric_limits<N>::min()
           : value >= most ? std::numeric_limits<N>::max()
                           : static_cast<N>(value);
  }

  unsigned int control(std::size_t offset, std::size_t width) const {
    if (offset >= line_.size()) return 0;
    try {
      return number<unsigned int>(line_.substr(offset, width));
    } catch (std::runtime_error const&) {
      return 0;
    }
  }

  unsigned int unsignedAt(std::size_t offset) const {
    return number<unsigned int>(line_.substr(offset, 11));
  }

  double realAt(std::size_t offset) const {
    return number<double>(line_.substr(offset, 11));
  }

  void readLine() {
    if (mf_ == 1 && mt_ == 451) return readHead();
    if (nsub_ != 3 && nsub_ != 6 && nsub_ != 113) return;
    if (matText_ != target_ && matText_ != m_.Name) return;
    m_.A = weight_;
    factor_ = 6.022140857e23 / m_.A * 1e-24;
    bool const isTransition = nsub_ == 6 && mf_ == 28;
    bool const isSpectrum = nsub_ == 113 && mf_ == 26 && mt_ == 527;
    bool const isAngle = nsub_ == 113 && mf_ == 26 && mt_ == 526;
    if (isTransition && ns_ == 1) beginTransitions();
    if (ns_ == 2 && (mf_ == 23 || mf_ == 27)) return beginTable();
    if (isSpectrum && !goesOn()) return;
    if (isAngle && ns_ == 5) beginAngles();
    if (isAngle && ns_ < 7) return;
    if (ns_ < 2) return;
    try {
      for (std::size_t i = 0; i < 6; ++i) f_[i + 1] = realAt(11 * i);
    } catch (std::runtime_error const&) {
      return;
    }
    isParsed_ = true;
    if (isTransition) return readTransition();
    if (inRanges_) return readRanges();
    if (mf_ == 23) return readCrossSection();
    if (nsub_ == 3 && mf_ == 27) return readFormFactor();
    if (isSpectrum) return readSpectrum();
    if (isAngle) return readAngle();
  }

  void readHead() {
    if (ns_ == 1) weight_ = realAt(11) * 1.0086649158215515;
    if (ns_ == 3) nsub_ = unsignedAt(44);
    if (ns_ != 5) return;
    std::string symbol = line_.substr(4, 2);
    while (!symbol.empty() &&
           std::string(" \t\r").find(symbol.back()) != std::string::npos)
      symbol.pop_back();
    while (!symbol.empty() &&
           std::string(" \t\r").find(symbol.front()) != std::string::npos)
      symbol.erase(0, 1);
    if (symbol != m_.Name) return;
    m_.Z = fileZ_;
    target_ = matText_;
  }

  void beginTransitions() {
    nss_ = unsignedAt(44);
    block_ = 0;
    blockEnd_ = 0;
    subi_ = 0;
    yield_ = 0;
    m_.Edges.clear();
  }

  void beginTable() {
    nr_ = unsignedAt(44);
    np_ = unsignedAt(55);
    inRanges_ = nr_ > 0;
    ranges_.clear();
    points_.clear();
    counter_ = 0;
  }

  // Whether a line of the spectra holds data.
  bool goesOn() {
    if (ns_ == 1) {
      if (data_["Brems"].empty())
        throw std::runtime_error(
            "Found bremsstrahlung spectra, but no cross section!");
      brems_ = Curve(data_["Brems"], 1000000, true);
      return false;
    }
    if (ns_ == 2) {
      if (realAt(33) != 1)
        throw std::runtime_error("Non-conforming ENDF database!");
      np_ = 0;
      inYields_ = true;
    } else {
      if (counter_ < np_) return true;
      if (np_ != 0 && !inYields_) return false;
      inYields_ = false;
    }
    lep_ = static_cast<int>(unsignedAt(33));
    nr_ = unsignedAt(44);
    np_ = unsignedAt(55);
    inRanges_ = nr_ > 0;
    ranges_.clear();
    counter_ = 0;
    point_ = 0;
    pointEnd_ = 0;
    return false;
  }

  void beginAngles() {
    np_ = unsignedAt(55);
    counter_ = 0;
    point_ = 0;
    pointEnd_ = 0;
    inRanges_ = false;
    cosines_.clear();
  }

  static std::string text(int level) {
    std::ostringstream out;
    SubshellToString(out, subshell(level));
    return out.str();
  }

  void readTransition() {
    if (block_ >= blockEnd_) {
      if (!m_.Edges.empty() && yield_ > 0) m_.Edges.back().Yield = yield_;
      if (m_.Edges.size() < nss_) {
        subi_ = whole<int>(f_[1]);
        blockEnd_ = whole<unsigned int>(f_[6] + 1);
        block_ = 0;
        return;
      }
    } else if (block_ == 0) {
      block_ = 1;
      yield_ = 0;
      m_.Edges.push_back(Edge<double>(SubshellID(fileZ_, subshell(subi_)),
                                      f_[1] / 1000, 0, 0));
      return;
    }
    if (mt_ != 533) return;
    ++block_;
    if (m_.Edges.empty()) return;
    int const subj = whole<int>(f_[1]);
    int const subk = whole<int>(f_[2]);
    std::string label = text(subi_);
    label.append("-").append(text(subj));
    SubshellID const from(fileZ_, subshell(subj));
    auto& lines = m_.Edges.back().Lines;
    if (subk == 0) {
      lines.push_back(Line<double>(f_[3] / 1000, f_[4], label, from, true));
      yield_ += f_[4];
    } else {
      label.append("-").append(text(subk));
      lines.push_back(Line<double>(f_[3] / 1000, f_[4], label, from,
                                   SubshellID(fileZ_, subshell(subk)), false));
    }
  }

  void readRanges() {
    for (unsigned int i = 0; i < 3; ++i)
      if (counter_ + i + 1 <= nr_)
        ranges_.push_back({whole<unsigned int>(f_[2 * i + 1]),
                           Law(whole<int>(f_[2 * i + 2]))});
    counter_ += 3;
    if (counter_ >= nr_) {
      inRanges_ = false;
      counter_ = 0;
    }
  }

  void insertTriple(unsigned int& count, unsigned int limit) {
    for (std::size_t i = 1; i < 6; i += 2) {
      if (count >= limit) return;
      points_.insert({f_[i], f_[i + 1]});
      ++count;
    }
  }

  void splitRanges(std::vector<Stretch>& data, bool third) const {
    std::multimap<double, double> scratch;
    auto point = points_.begin();
    unsigned int count = 0;
    for (auto const& [nbt, law] : ranges_) {
      for (; count < nbt && point != points_.end(); ++count)
        scratch.insert(*point++);
      data.push_back({scratch, law, third});
      scratch.clear();
      if (point != points_.begin()) scratch.insert(*std::prev(point));
    }
  }

  void readCrossSection() {
    for (std::size_t i = 1; i < 6; i += 2) f_[i] /= 1000;
    if (mt_ >= 534 && mt_ <= 572 && (nsub_ == 3 || nsub_ == 113)) {
      insertTriple(counter_, np_);
      if (counter_ < np_) return;
      std::vector<Stretch> data{
          zeroUpTo(points_.empty() ? 0 : points_.begin()->first)};
      splitRanges(data, nsub_ != 3);
      Curve const curve(data, factor_, true);
      SubshellID const key(fileZ_, subshell(int(mt_) - 533));
      auto& map = nsub_ == 3 ? m_.PhotoIonization : m_.ElectronIonization;
      map.insert({key, curve});
      return;
    }
    static std::map<std::pair<unsigned int, unsigned int>, std::string> const
        names = {{{3, 502}, "Coherent"},  {{3, 504}, "Incoherent"},
                 {{3, 516}, "Pair"},      {{3, 522}, "Absorption"},
                 {{113, 526}, "Elastic"}, {{113, 527}, "Brems"}};
    auto const name = names.find({nsub_, mt_});
    if (name == names.end()) return;
    insertTriple(counter_, np_);
    if (counter_ >= np_) splitRanges(data_[name->second], true);
  }

  void readFormFactor() {
    static std::map<unsigned int, std::string> const names = {
        {502, "FormFactor"}, {504, "Scatter"}, {505, "Imag"}, {506, "Real"}};
    auto const name = names.find(mt_);
    if (name == names.end()) return;
    if (mt_ >= 505)
      for (std::size_t i = 1; i < 6; i += 2) f_[i] /= 1000;
    insertTriple(counter_, np_);
    if (counter_ >= np_) splitRanges(data_[name->second], false);
  }

  void readSpectrum() {
    if (inYields_) {
      counter_ += 3;
      return;
    }
    if (point_ < pointEnd_) {
      for (std::size_t i = 1; i < 6; i += 2) {
        f_[i] /= 1000;
        f_[i + 1] *= f_[i];
      }
      insertTriple(point_, pointEnd_);
      if (point_ < pointEnd_) return;
      ++counter_;
      Curve const spectrum(std::vector<Stretch>{{points_, Law(lep_), false}}, 1,
                           true);
      double const s = brems_(energy_, true) * beta(energy_);
      Row table;
      for (int i = 1; i <= 100; ++i) {
        double const x = i / 100.;
        table[x] = spectrum(x * energy_, true) * s;
      }
      spectra_[beta(energy_)] = LSpline<double, double>(table);
      return;
    }
    energy_ = realAt(11) / 1000;
    if (unsignedAt(22) != 0 || unsignedAt(33) != 0 ||
        unsignedAt(44) != 2 * unsignedAt(55))
      throw std::runtime_error("Unable to parse:\n" + line_);
    pointEnd_ = unsignedAt(55);
    point_ = 0;
    points_.clear();
  }

  void readAngle() {
    if (point_ < pointEnd_) {
      insertTriple(point_, pointEnd_);
      if (point_ < pointEnd_) return;
      ++counter_;
      double before = -1;
      double previous = 0;
      double sum = 0;
      Row cdf;
      for (auto const& [mu, p] : points_) {
        if (mu < before || mu > 1 || p <= 0)
          throw std::runtime_error("Impossible angle distribution value: " +
                                   line_);
        sum += (p + previous) * 0.5 * (mu - before);
        cdf[mu] = sum < 1 ? sum : 1;
        cosines_.insert(mu);
        before = mu;
        previous = p;
      }
      if (!cdf.count(1)) cdf[1] = 1;
      angles_[std::log10(energy_)] = LSpline<double, double>(cdf);
      return;
    }
    energy_ = realAt(11) / 1000;
    pointEnd_ = unsignedAt(55);
    point_ = 0;
    points_.clear();
  }

  void finish() {
    if (!isParsed_)
      throw std::runtime_error("Element " + m_.Name + " not found");
    std::vector<std::pair<Curve*, Curve>> curves;
    auto const build = [&](Curve& to, char const* name, double scale) {
      curves.push_back({&to, Curve(data_[name], scale, true)});
    };
    build(m_.Absorption, "Absorption", factor_);
    build(m_.Coherent, "Coherent", factor_);
    build(m_.Incoherent, "Incoherent", factor_);
    build(m_.Pair, "Pair", factor_);
    build(m_.ElectronElastic, "Elastic", factor_);
    build(m_.FormFactor, "FormFactor", 1);
    build(m_.ScatterFunction, "Scatter", 1);
    build(m_.AnomalousImag, "Imag", 1);
    build(m_.AnomalousReal, "Real", 1);
    for (auto& [to, curve] : curves) *to = curve;
    if (!spectra_.empty()) m_.TabSigma = BiLSpline<double, double>(spectra_);
    if (angles_.empty()) return;
    for (auto& [energy, row] : angles_) {
      Row shared;
      for (double const mu : cosines_) shared[mu] = row(mu, false, true);
      row = LSpline<double, double>(shared);
    }
    m_.ElasticAngle = BiLSpline<double, double>(angles_);
  }

  Material<double>& m_;
  std::string line_, matText_, target_;
  unsigned int fileZ_ = 0, mf_ = 0, mt_ = 0, ns_ = 0, nsub_ = 0;
  std::array<double, 7> f_{};  // fields 1 to 6
  double weight_ = 0, factor_ = 0;
  bool isParsed_ = false;
  unsigned int nr_ = 0, np_ = 0, counter_ = 0;
  bool inRanges_ = false, inYields_ = false;
  std::vector<std::pair<unsigned int, Law>> ranges_;
  std::multimap<double, double> points_;
  unsigned int nss_ = 0, block_ = 0, blockEnd_ = 0;
  int subi_ = 0, lep_ = 0;
  double yield_ = 0, energy_ = 0;
  unsigned int point_ = 0, pointEnd_ = 0;
  std::map<std::string, std::vector<Stretch>> data_;
  Curve brems_;
  std::map<double const, LSpline<double, double>> spectra_, angles_;
  std::set<double> cosines_;
};

/// What the library's reader makes of `text` for the material `name`.
inline std::string readOutcome(std::string const& text,
                               std::string const& name) {
  return outcome(name, [&text](Material<double>& material) {
    std::istringstream in(text);
    material.readENDF(in);
  });
}

/// What the plain one makes of it.
inline std::string plainOutcome(std::string const& text,
                                std::string const& name) {
  return outcome(name, [&text](Material<double>& material) {
    std::istringstream in(text);
    PlainEndfReader(material).read(in);
  });
}
