// The readers on the laboratories' files. Expected values are computed here
// from the same text by other means.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <random>

#include "photarium/foundation/constants.h"
#include "photarium/foundation/elements.h"
#include "tests/material/PlainAceReader.h"
#include "tests/material/PlainEndfReader.h"
#include "tests/material/fingerprint.h"
#include "tests/support/paths.h"

namespace {

constexpr double BarnPerAtom = 0.6022140857;  // [cm^2/mol]

struct Tape {
  std::string folder;
  std::string name;

  std::string path() const { return (testData() / folder / name).string(); }
  std::string symbol() const { return name.substr(4, name.find('_', 4) - 4); }
};

std::vector<Tape> tapes() {
  std::vector<Tape> all;
  for (std::string const folder : {"endf", "endf_mt526"})
    for (auto const& entry :
         std::filesystem::directory_iterator(testData() / folder))
      all.push_back({folder, entry.path().filename().string()});
  std::sort(all.begin(), all.end(),
            [](Tape const& a, Tape const& b) { return a.path() < b.path(); });
  return all;
}

Material<double> load(Tape const& tape) {
  Material<double> material(tape.symbol(), 0, 0, 0);
  material.readDB(tape.path(), "", Unknown);
  return material;
}

// The numbers of a section, six a line, in the first sublibrary of that number.
class Section {
 public:
  Section(std::string const& text, std::string const& sublibrary,
          std::string const& control) {
    std::string current;
    for (std::size_t i = 0; i + 80 < text.size(); i += 81) {
      if (text.compare(i + 70, 10, " 1451    3") == 0)
        current = text.substr(i + 44, 11);
      bool const isHere = current.ends_with(" " + sublibrary) &&
                          text.compare(i + 70, control.size(), control) == 0;
      if (!isHere) continue;
      auto& line = lines_.emplace_back();
      for (std::size_t k = 0; k < 6; ++k)
        line[k] = PlainEndfReader::number<double>(text.substr(i + 11 * k, 11));
    }
  }

  bool empty() const { return lines_.empty(); }
  std::array<double, 6> const& line(std::size_t i) const { return lines_[i]; }
  std::size_t size() const { return lines_.size(); }

  // `count` pairs from line `first` on.
  std::vector<std::pair<double, double>> pairs(std::size_t first,
                                               std::size_t count) const {
    std::vector<std::pair<double, double>> found;
    for (std::size_t i = 0; i < count; ++i)
      found.emplace_back(lines_[first + i / 3][2 * (i % 3)],
                         lines_[first + i / 3][2 * (i % 3) + 1]);
    return found;
  }

  // The points of a table with one interpolation law.
  std::vector<std::pair<double, double>> table() const {
    return pairs(3, static_cast<std::size_t>(lines_[1][5]));
  }

 private:
  std::vector<std::array<double, 6>> lines_;
};

double linear(std::vector<std::pair<double, double>> const& points, double x) {
  std::size_t i = 1;
  while (i + 1 < points.size() && points[i].first < x) ++i;
  auto const& [x0, y0] = points[i - 1];
  auto const& [x1, y1] = points[i];
  return y0 + (y1 - y0) * (x - x0) / (x1 - x0);
}

// True for a point of table that no other comes near to.
bool standsAlone(std::vector<std::pair<double, double>> const& points,
                 std::size_t i) {
  auto const isFar = [&](std::size_t k) {
    return std::abs(points[k].first / points[i].first - 1) > 2e-4;
  };
  return (i == 0 || isFar(i - 1)) && (i + 1 == points.size() || isFar(i + 1));
}

bool isLong() {
  return std::getenv("PHOTARIUM_LONG_TESTS") != nullptr;
}

// Reads without a look at the result; the stated failures are fine.
void survive(std::string const& text, std::string const& name) {
  Material<double> material(name, 0, 0, 0);
  std::istringstream in(text);
  try {
    material.readENDF(in);
  } catch (std::runtime_error const&) {
  } catch (std::out_of_range const&) {
  }
}

std::vector<std::string> aceTables() {
  return {"1000.84p", "12000.84p", "3000.03p", "1000.01p", "92000.31p"};
}

std::string aceSymbol(std::string const& table) {
  return Elements[std::stoul(table) / 1000];
}

}  // namespace

TEST(RealEndf, EqualsThePlainReader) {
  PHOTARIUM_NEEDS_DATA();
  for (Tape const& tape : tapes()) {
    bool const isSmall = tape.name < "030" || tape.folder == "endf_mt526";
    if (!isSmall && !isLong()) continue;
    std::string const text = fileText(tape.path());
    EXPECT_TRUE(readOutcome(text, tape.symbol()) ==
                plainOutcome(text, tape.symbol()))
        << tape.path();
  }
}

TEST(RealEndf, HasTheEdgesAndLinesOfTheRelaxationData) {
  PHOTARIUM_NEEDS_DATA();
  for (Tape const& tape : tapes()) {
    Material<double> const material = load(tape);
    Section const section(fileText(tape.path()), "6", "28533");
    auto const count = static_cast<std::size_t>(section.line(0)[4]);
    ASSERT_EQ(material.Edges.size(), count) << tape.path();
    std::size_t at = 1;
    for (auto const& edge : material.Edges) {
      EXPECT_EQ(edge.ID.Shell, static_cast<int>(section.line(at)[0]));
      EXPECT_EQ(edge.Energy, section.line(at + 1)[0] / 1000);
      auto const lines = static_cast<std::size_t>(section.line(at)[5]);
      ASSERT_EQ(edge.Lines.size(), lines);
      double yield = 0;
      for (std::size_t i = 0; i < lines; ++i) {
        auto const& line = section.line(at + 2 + i);
        EXPECT_EQ(edge.Lines[i].Energy, line[2] / 1000);
        EXPECT_EQ(edge.Lines[i].Intensity, line[3]);
        EXPECT_EQ(edge.Lines[i].Radiative, line[1] == 0);
        if (line[1] == 0) yield += line[3];
      }
      EXPECT_DOUBLE_EQ(edge.Yield, yield);
      at += 2 + lines;
    }
    EXPECT_EQ(at, section.size());
  }
}

TEST(RealEndf, HasTheCrossSectionsAtTheirPoints) {
  PHOTARIUM_NEEDS_DATA();
  for (Tape const& tape : tapes()) {
    Material<double> const material = load(tape);
    std::string const text = fileText(tape.path());
    double const factor = BarnPerAtom / material.A;
    using Curve = AttenuationCoeff<double>;
    std::vector<std::pair<std::string, Curve const*>> const curves = {
        {"23502", &material.Coherent},
        {"23504", &material.Incoherent},
        {"23516", &material.Pair},
        {"23522", &material.Absorption}};
    for (auto const& [control, curve] : curves) {
      auto const points = Section(text, "3", control).table();
      for (std::size_t i = 0; i < points.size(); i += 7) {
        if (!standsAlone(points, i)) continue;
        double const expected = points[i].second * factor;
        EXPECT_NEAR((*curve)(points[i].first / 1000, true), expected,
                    std::abs(expected) * 1e-9)
            << tape.path() << ' ' << control << ' ' << points[i].first;
      }
    }
  }
}

TEST(RealEndf, JumpsAtItsEdges) {
  PHOTARIUM_NEEDS_DATA();
  for (Tape const& tape : tapes()) {
    Material<double> const material = load(tape);
    double const factor = BarnPerAtom / material.A;
    auto const points = Section(fileText(tape.path()), "3", "23522").table();
    std::size_t jumps = 0;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
      double const x = points[i].first;
      bool const isJump = points[i - 1].first == x &&
                          points[i - 1].second > 0 &&
                          points[i + 1].first / x > 1.0002 &&
                          (i < 2 || points[i - 2].first / x < .9998);
      if (!isJump) continue;
      ++jumps;
      double const below = material.Absorption(x / 1000 * (1 - 1e-12), false);
      double const above = material.Absorption(x / 1000, false);
      EXPECT_NEAR(below / (points[i - 1].second * factor), 1, 1e-8) << x;
      EXPECT_NEAR(above / (points[i].second * factor), 1, 1e-12) << x;
    }
    EXPECT_EQ(jumps > 0, tape.symbol() != "H") << tape.path();
  }
}

TEST(RealEndf, SumsItsSubshellsToTheWhole) {
  PHOTARIUM_NEEDS_DATA();
  for (Tape const& tape : tapes()) {
    Material<double> const material = load(tape);
    auto const points = Section(fileText(tape.path()), "3", "23522").table();
    ASSERT_EQ(material.PhotoIonization.size(),
              material.ElectronIonization.size());
    for (std::size_t i = 0; i < points.size(); i += 11) {
      double const energy = points[i].first / 1000;
      if (!standsAlone(points, i) || energy < .1 || energy > 1000) continue;
      double sum = 0;
      for (auto const& [level, curve] : material.PhotoIonization)
        sum += curve(energy, true);
      EXPECT_NEAR(sum / material.Absorption(energy, true), 1, 2e-3)
          << tape.path() << ' ' << energy;
    }
  }
}

TEST(RealEndf, HasBremsstrahlungRowsOfTheSpectra) {
  PHOTARIUM_NEEDS_DATA();
  for (Tape const& tape : tapes()) {
    Material<double> const material = load(tape);
    std::string const text = fileText(tape.path());
    Section const spectra(text, "113", "26527");
    auto const total = Section(text, "113", "23527").table();
    auto const records = static_cast<std::size_t>(spectra.line(4)[5]);
    EXPECT_EQ(material.TabSigma.nodes().size(), records);
    std::size_t at = 6;
    for (std::size_t k = 0; k < records; ++k) {
      double const E = spectra.line(at)[1];  // [eV]
      auto const count = static_cast<std::size_t>(spectra.line(at)[5]);
      auto points = spectra.pairs(at + 1, count);
      at += 1 + (count + 2) / 3;
      auto const sigma =
          std::find_if(total.begin(), total.end(),
                       [E](auto const& p) { return p.first == E; });
      if (sigma == total.end()) continue;
      for (auto& [x, p] : points) p *= x;  // linear in photon energy times p
      auto const row = material.TabSigma(beta(E / 1000), false, true);
      for (int i = 1; i <= 100; ++i) {
        double const fraction = i / 100.;
        // [mb] from barn
        double const expected = linear(points, fraction * E) * sigma->second *
                                1000 * beta(E / 1000);
        EXPECT_NEAR(row(fraction, false, true), expected,
                    std::abs(expected) * 1e-9)
            << tape.path() << ' ' << E << ' ' << fraction;
      }
    }
  }
}

TEST(RealEndf, HasAngularRowsThatIntegrateTheDensity) {
  PHOTARIUM_NEEDS_DATA();
  for (Tape const& tape : tapes()) {
    if (tape.folder != "endf_mt526") continue;
    Material<double> const material = load(tape);
    Section const angles(fileText(tape.path()), "113", "26526");
    auto const records = static_cast<std::size_t>(angles.line(4)[5]);
    EXPECT_EQ(material.ElasticAngle.nodes().size(), records);
    std::size_t at = 6;
    for (std::size_t k = 0; k < records; ++k) {
      double const E = angles.line(at)[1] / 1000;
      auto const count = static_cast<std::size_t>(angles.line(at)[5]);
      auto const points = angles.pairs(at + 1, count);
      at += 1 + (count + 2) / 3;
      auto const row = material.ElasticAngle(std::log10(E), false, true);
      double sum = 0;
      for (std::size_t i = 1; i < count; ++i) {
        auto const& [mu, p] = points[i];
        sum += (mu - points[i - 1].first) * (p + points[i - 1].second) / 2;
        EXPECT_NEAR(row(mu, false, true), std::min(sum, 1.), 1e-9);
      }
      EXPECT_NEAR(sum, 1, .02);  // a density
    }
  }
}

TEST(RealEndf, ReadsTwoTapesAsAList) {
  PHOTARIUM_NEEDS_DATA();
  Material<double> uranium("U", 0, 0, 0);
  uranium.readDB(
      "photoat-092_U_000-ENDF8.0.endf;atrelax-092_U_000-ENDF8.0.endf",
      (testData() / "endf_originals").string(), Unknown);
  EXPECT_EQ(uranium.Edges.size(), 29U);
  EXPECT_EQ(uranium.PhotoIonization.size(), 29U);
  EXPECT_DOUBLE_EQ(uranium.A, 235.98415 * 1.0086649158215515);
  EXPECT_TRUE(uranium.TabSigma.empty());
}

TEST(RealEndf, SurvivesBeingCutAnywhere) {
  PHOTARIUM_NEEDS_DATA();
  for (Tape const& tape : tapes()) {
    if (tape.symbol() != "H" && !isLong()) continue;
    std::string const text = fileText(tape.path());
    for (std::size_t end = 0; end < text.size(); end += 1000)
      survive(text.substr(0, end), tape.symbol());
  }
}

TEST(RealEndf, SurvivesChangesOfBytes) {
  PHOTARIUM_NEEDS_DATA();
  std::mt19937 random(10000);
  for (Tape const& tape : tapes()) {
    if (tape.symbol() != "H" && !isLong()) continue;
    std::string text = fileText(tape.path());
    for (int i = 0; i < (isLong() ? 10000 : 1000); ++i) {
      std::size_t const at = random() % text.size();
      char const before = text[at];
      text[at] = static_cast<char>(random());
      survive(text, tape.symbol());
      text[at] = before;
    }
  }
}

TEST(RealEndf, EqualsThePlainReaderWithSectionsInAnyOrder) {
  PHOTARIUM_NEEDS_DATA();
  std::string const text = fileText(testData() / "endf/001_H_000.endf");
  std::vector<std::string> sections(1);
  for (std::size_t i = 0; i + 80 < text.size(); i += 81) {
    sections.back() += text.substr(i, 81);
    if (text.compare(i + 75, 5, "99999") == 0) sections.emplace_back();
  }
  std::mt19937 random(12);
  for (int i = 0; i < (isLong() ? 200 : 10); ++i) {
    std::swap(sections[random() % sections.size()],
              sections[random() % sections.size()]);
    std::string const changed =
        std::accumulate(sections.begin(), sections.end(), std::string());
    EXPECT_TRUE(readOutcome(changed, "H") == plainOutcome(changed, "H")) << i;
  }
}

TEST(RealEndf, EqualsThePlainReaderWithWrongCounts) {
  PHOTARIUM_NEEDS_DATA();
  std::string const text = fileText(testData() / "endf/001_H_000.endf");
  for (std::size_t const column : {44u, 55u}) {
    std::string changed = text;
    for (std::size_t i = 0; i + 80 < text.size(); i += 81)
      if (text.compare(i + 75, 5, "    2") == 0 && text[i + 71] != '1')
        changed.replace(i + column, 11, " 4000000000");
    EXPECT_TRUE(readOutcome(changed, "H") == plainOutcome(changed, "H"));
  }
}

TEST(RealEndf, FailsWithoutATapeEnd) {
  PHOTARIUM_NEEDS_DATA();
  std::string const text = fileText(testData() / "endf/001_H_000.endf");
  ScratchFolder const folder;
  std::string const file =
      folder.write("H.endf", text.substr(0, text.size() - 81));
  Material<double> hydrogen("H", 0, 0, 0);
  try {
    hydrogen.readDB(file, "", Unknown);
    FAIL();
  } catch (std::runtime_error const& failure) {
    EXPECT_EQ(failure.what(), "invalid string position while reading " + file);
  }
}

TEST(RealAce, EqualsThePlainReader) {
  PHOTARIUM_NEEDS_DATA();
  for (std::string const& table : aceTables()) {
    std::string const text = fileText(testData() / "ace" / table);
    auto const read = [&text](Material<double>& material) {
      std::istringstream in(text);
      material.readMCNP(in);
    };
    auto const plain = [&text](Material<double>& material) {
      std::istringstream in(text);
      PlainAceReader(material).read(in);
    };
    std::string const symbol = aceSymbol(table);
    EXPECT_TRUE(outcome(symbol, read) == outcome(symbol, plain)) << table;
    EXPECT_TRUE(outcome(symbol, read).starts_with("good\n")) << table;
  }
}

TEST(RealAce, HasTheCrossSectionsAtItsEnergies) {
  PHOTARIUM_NEEDS_DATA();
  for (std::string const& table : aceTables()) {
    std::string const path = (testData() / "ace" / table).string();
    Material<double> material(aceSymbol(table), 0, 0, 0);
    material.readDB(path, "", Unknown);
    std::istringstream in(fileText(path));
    std::string line;
    std::size_t count = 0;
    for (int i = 0; i < 12 && std::getline(in, line); ++i)
      if (i == 6) count = std::stoul(line.substr(18, 9));
    std::vector<double> numbers(5 * count);
    for (double& number : numbers) in >> number;
    double const factor = BarnPerAtom / material.A;
    for (std::size_t i = 1; i + 1 < count; i += 5) {
      bool const isAlone = numbers[i] - numbers[i - 1] > 2e-4 &&
                           numbers[i + 1] - numbers[i] > 2e-4;
      double const energy = 1000 * std::exp(numbers[i]);
      if (!isAlone) continue;
      EXPECT_NEAR(material.Incoherent(energy, true) /
                      (factor * std::exp(numbers[count + i])),
                  1, 1e-9);
      EXPECT_NEAR(material.Coherent(energy, true) /
                      (factor * std::exp(numbers[2 * count + i])),
                  1, 1e-9);
      EXPECT_NEAR(material.Absorption(energy, true) /
                      (factor * std::exp(numbers[3 * count + i])),
                  1, 1e-9);
    }
  }
}

TEST(RealAce, SurvivesBeingCutAndChanged) {
  PHOTARIUM_NEEDS_DATA();
  std::mt19937 random(3);
  for (std::string const& table : aceTables()) {
    if (table == "92000.31p" && !isLong()) continue;
    std::string text = fileText(testData() / "ace" / table);
    auto const survives = [&](std::string const& changed) {
      Material<double> material(aceSymbol(table), 0, 0, 0);
      std::istringstream in(changed);
      try {
        material.readMCNP(in);
      } catch (std::runtime_error const&) {
      }
    };
    for (std::size_t end = 0; end < text.size(); end += 1000)
      survives(text.substr(0, end));
    for (int i = 0; i < (isLong() ? 10000 : 500); ++i) {
      std::size_t const at = random() % text.size();
      char const before = text[at];
      text[at] = static_cast<char>(random());
      survives(text);
      text[at] = before;
    }
  }
}
