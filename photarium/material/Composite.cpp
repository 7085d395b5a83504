#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "photarium/material/readers.h"

namespace {

bool isUpper(char c) {
  return c >= 'A' && c <= 'Z';
}

bool isLetter(char c) {
  return isUpper(c) || (c >= 'a' && c <= 'z');
}

bool isNumeric(char c) {
  return (c >= '0' && c <= '9') || c == '.' || c == ',';
}

// Cuts a formula ahead of each upper case letter and each letter that follows a
// number: "Fe0.7Cr0.3" into "Fe0.7" and "Cr0.3".
std::vector<std::string_view> pieces(std::string_view formula) {
  std::vector<std::string_view> found;
  std::size_t start = 0;
  for (std::size_t i = 1; i <= formula.size(); ++i) {
    bool const isEnd = i == formula.size() || isUpper(formula[i]) ||
                       (isLetter(formula[i]) && isNumeric(formula[i - 1]));
    if (!isEnd) continue;
    found.push_back(formula.substr(start, i - start));
    start = i;
  }
  return found;
}

// Cuts the number off a piece that begins with a letter; 1 if there is none.
template <class T>
T cutNumber(std::string_view& piece) {
  if (!isLetter(piece[0])) return 1;
  std::size_t end = 1;
  while (end < piece.size() && isLetter(piece[end])) ++end;
  std::string_view number = piece.substr(end);
  piece = piece.substr(0, end);
  double value = 1;
  return extractNumber(number, value) ? T(value) : T(1);
}

}  // namespace

// Loads the elements of a material text and sums them by their weights.
template <class T>
class Material<T>::Composite {
 public:
  Composite(Material& whole, MaterialConfig<T>& config, std::string& findings,
            Source& source)
      : whole_(whole), config_(config), findings_(findings), source_(source) {}

  void load() {
    std::vector<std::string> const words =
        split<std::string>(whole_.Name, Blanks, /*keepEmpty=*/false);
    readWords(words);
    whole_.Z = whole_.A = whole_.Density = 0;
    for (auto& [piece, part] : parts_) add(part);
    if (words.size() > 1) whole_.Name = canonicalName();
    note(" (coherent scattering form factor of ", whole_.Name,
         [&] { whole_.FormFactor.sqrt(); });
    note(" (elastic electron scattering of ", whole_.Name,
         [&] { mergeElasticAngle(); });
    if (config_.DataFile.empty()) config_.DataFile = files_;
  }

 private:
  struct Part {
    Material element;
    T mass = 0;
  };

  // Formulas, each with its weight behind it unless that is 1.
  void readWords(std::vector<std::string> const& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
      std::string const& formula = words[i];
      double weight = 1;
      if (i + 1 < words.size()) {
        std::string_view next = words[i + 1];
        if (extractNumber(next, weight))
          ++i;
        else
          weight = 1;
      }
      readFormula(formula, T(weight));
      sum_ += T(weight);
    }
  }

  void readFormula(std::string const& formula, T weight) {
    bool const byMass = formula.find_first_of(",.") != std::string::npos;
    std::map<std::string_view, T> masses;
    T total = 0;
    for (std::string_view piece : pieces(formula)) {
      T mass = cutNumber<T>(piece);
      T const atomicWeight = part(piece).element.A;
      if (!byMass) mass *= atomicWeight;
      masses[piece] += mass;
      total += mass;
    }
    for (auto const& [piece, mass] : masses)
      part(piece).mass += weight * mass / total;
  }

  // The element of a piece, loaded when it is first met.
  Part& part(std::string_view piece) {
    std::string name(piece);
    auto const known = parts_.find(name);
    if (known != parts_.end()) return known->second;
    Part& added = parts_[name];
    added.element = Material(std::move(name), 0, 0, 0);
    added.element.search();
    added.element.correct(config_, findings_);
    added.element.load(config_.DataFile, config_.Directory, config_.DataType,
                       source_);
    if (!files_.empty()) files_ += ';';
    files_ += source_.name;
    return added;
  }

  // Adds an element, which is scaled by its share for that.
  void add(Part& part) {
    Material& element = part.element;
    T const share = part.mass / sum_;
    shares_.emplace(share, element.Z, element.Name);
    Share& own = whole_.Shares[element.Name];
    own.Mass += share;
    own.A = element.A;
    whole_.Z += share * element.Z;
    whole_.A += share * element.A;
    whole_.Density += share * element.Density;
    for (auto const& [constants, weight] : element.EnergyLoss)
      whole_.EnergyLoss[constants] += share * weight;
    std::move(element.Edges.begin(), element.Edges.end(),
              std::back_inserter(whole_.Edges));
    addCurves(element, share);
    angles_.push_back(element.ElasticAngle);
    addLevels(whole_.PhotoIonization, element.PhotoIonization, share);
    addLevels(whole_.ElectronIonization, element.ElectronIonization, share);
  }

  void addCurves(Material& element, T share) {
    std::string const& name = element.Name;
    note(" (pair production of ", name, [&] {
      scale(element, share);
      whole_.Absorption += element.Absorption;
      whole_.Coherent += element.Coherent;
      whole_.Incoherent += element.Incoherent;
      whole_.Pair += element.Pair;
    });
    note(" (coherent scattering form factor of ", name,
         [&] { whole_.FormFactor += element.FormFactor; });
    note(" (incoherent scattering function of ", name,
         [&] { whole_.ScatterFunction += element.ScatterFunction; });
    note(" (electron scattering of ", name,
         [&] { whole_.ElectronElastic += element.ElectronElastic; });
    note(" (bremsstrahlung of ", name,
         [&] { whole_.TabSigma += element.TabSigma; });
  }

  // Form factors add up as their squares.
  static void scale(Material& element, T share) {
    element.FormFactor.sqr();
    element.Absorption *= share;
    element.Coherent *= share;
    element.Incoherent *= share;
    element.Pair *= share;
    element.ScatterFunction *= share;
    element.FormFactor *= share;
    element.ElectronElastic *= share;
    element.TabSigma *= share;
    element.ElasticAngle *= share;
  }

  using Levels = std::map<SubshellID, AttenuationCoeff<T>>;

  static void addLevels(Levels& sums, Levels& levels, T share) {
    for (auto& [level, curve] : levels) {
      curve *= share;
      auto const [sum, isNew] = sums.try_emplace(level, std::move(curve));
      if (!isNew) sum->second += curve;
    }
  }

  std::string canonicalName() const {
    std::string name;
    for (auto const& [share, z, element] : shares_) {
      name += element;
      appendGeneral(name, share);
    }
    return name;
  }

  // All elements get the same grid: the energies of all of them, the cosines of
  // the lowest energy of each.
  void mergeElasticAngle() {
    std::set<T> energies;
    std::set<T> cosines;
    for (auto const& angle : angles_) {
      std::set<T> const nodes = angle.nodes();
      if (nodes.empty()) throw warning("Empty spline");
      energies.insert(nodes.begin(), nodes.end());
      for (auto const& node : row(angle, *nodes.begin()).nodes())
        cosines.insert(node.first);
    }
    if (!energies.empty() && cosines.size() > LargestTable / energies.size())
      throw std::runtime_error("Angular distribution is too large");
    std::map<T const, LSpline<T, T>> rows;
    for (T const energy : energies)
      rows.emplace(energy, summedRow(energy, cosines));
    whole_.ElasticAngle =
        rows.empty() ? BiLSpline<T, T>() : BiLSpline<T, T>(rows);
  }

  LSpline<T, T> summedRow(T energy, std::set<T> const& cosines) const {
    std::vector<LSpline<T, T>> rows;
    for (auto const& angle : angles_) rows.push_back(row(angle, energy));
    std::map<T const, T> points;
    for (T const cosine : cosines) {
      T sum = 0;
      for (auto const& summand : rows)
        sum += summand(cosine, /*sequential=*/true, /*extrapolate=*/true);
      points.emplace_hint(points.end(), cosine, std::min(sum, T(1)));
    }
    return LSpline<T, T>(points);
  }

  static LSpline<T, T> row(BiLSpline<T, T> const& angle, T energy) {
    return angle(energy, /*sequential=*/false, /*extrapolate=*/true);
  }

  // Runs a step and takes down what it warns of.
  template <class Step>
  void note(char const* label, std::string const& name, Step const& step) {
    try {
      step();
    } catch (warning const& finding) {
      findings_ += finding.what();
      findings_ += label + name + ")\n";
    }
  }

  Material& whole_;
  MaterialConfig<T>& config_;
  std::string& findings_;
  Source& source_;
  std::string files_;  // of the elements, in the order of loading
  std::map<std::string, Part> parts_;
  T sum_ = 0;  // of the weights
  // Share, number and name. A symbol and its number may give equal ones.
  std::multiset<std::tuple<T, T, std::string>, std::greater<>> shares_;
  std::vector<BiLSpline<T, T>> angles_;
};

template <class T>
void Material<T>::loadComposite(MaterialConfig<T>& config,
                                std::string& findings, Source& source) {
  Composite(*this, config, findings, source).load();
}

template void Material<double>::loadComposite(MaterialConfig<double>&,
                                              std::string&, Source&);
