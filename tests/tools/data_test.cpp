// The data that the repository ships.

#include <algorithm>
#include <cmath>
#include <map>

#include "photarium/config/MaterialConfig.h"
#include "photarium/foundation/elements.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tests/support/paths.h"

namespace {

constexpr unsigned int LastElement = 98;

MaterialConfig<double> settingsFor(std::string const& material) {
  MaterialConfig<double> settings;
  settings.Directory = sourceDir().string();
  settings.DataFile = "data/ElamDB12.txt";
  settings.Material = material;
  return settings;
}

Material<double> loaded(std::string const& material) {
  MaterialConfig<double> settings = settingsFor(material);
  return Material<double>(settings);
}

Edge<double> edgeOf(Material<double> const& material, subshell shell) {
  for (auto const& edge : material.Edges)
    if (edge.ID.Shell == shell) return edge;
  return {};
}

double lineOf(Edge<double> const& edge, std::string const& label) {
  for (auto const& line : edge.Lines)
    if (line.Label == label) return line.Energy;
  return 0;
}

}  // namespace

TEST(DefaultDatabase, LoadsEveryElementWithoutAFinding) {
  for (unsigned int Z = 1; Z <= LastElement; ++Z) {
    Material<double> element;
    MaterialConfig<double> settings = settingsFor(Elements[Z]);
    EXPECT_NO_THROW(element.update(settings)) << Elements[Z];
    EXPECT_EQ(element.Z, Z);
    EXPECT_EQ(element.A, MassNumbers[Z]);
    EXPECT_EQ(element.Density, Densities[Z]);
    EXPECT_EQ(settings.DataType, ElamDB);
  }
}

TEST(DefaultDatabase, IsReadAsAWholeToo) {
  std::map<std::string, Material<double>> elements;
  Material<double>::readDB(elements,
                           (sourceDir() / "data/ElamDB12.txt").string());
  EXPECT_EQ(elements.size(), LastElement);
}

TEST(DefaultDatabase, CoversATenthOfAKilovoltToTenMegavolt) {
  for (unsigned int Z = 1; Z <= LastElement; ++Z) {
    Material<double> const element = loaded(Elements[Z]);
    for (auto const* curve :
         {&element.Absorption, &element.Coherent, &element.Incoherent})
      for (double const energy : {0.1, 1., 100., 1e4}) {
        EXPECT_TRUE(curve->covers(energy)) << Elements[Z] << ' ' << energy;
        EXPECT_GT((*curve)(energy, false), 0) << Elements[Z];
      }
  }
}

// The ratio in the file is that of the source; update() takes it from the
// splines through the nodes.
TEST(DefaultDatabase, HasTheJumpOfTheSourceAtEveryEdge) {
  std::map<std::string, Material<double>> stated;
  Material<double>::readDB(stated,
                           (sourceDir() / "data/ElamDB12.txt").string());
  for (auto const& [symbol, element] : stated) {
    Material<double> const found = loaded(symbol);
    ASSERT_EQ(found.Edges.size(), element.Edges.size());
    for (std::size_t i = 0; i < element.Edges.size(); ++i)
      EXPECT_NEAR(found.Edges[i].Jump / element.Edges[i].Jump, 1, 1e-3)
          << symbol << ' ' << element.Edges[i].Energy;
  }
}

// Energies [keV]: edges of J. A. Bearden, A. F. Burr, Rev. Mod. Phys. 39 (1967)
// 125 and G. P. Williams, X-ray Data Booklet (2001), table 1-1; lines of J. A.
// Bearden, Rev. Mod. Phys. 39 (1967) 78 (X-ray Data Booklet, table 1-2).
TEST(DefaultDatabase, HasThePublishedEdgesAndLines) {
  struct Published {
    char const* element;
    double K, KL3, KL2, L3, L3M5, L2M4;  // 0: not compared
  };
  constexpr Published Table[] = {
      {"Al", 1.5596, 1.48670, 1.48627, 0, 0, 0},
      {"Si", 1.839, 1.73998, 1.73938, 0, 0, 0},
      {"Ca", 4.0385, 3.69168, 3.68809, 0, 0, 0},
      {"Ti", 4.966, 4.51084, 4.50486, 0, 0, 0},
      {"Fe", 7.112, 6.40384, 6.39084, 0, 0, 0},
      {"Cu", 8.979, 8.04778, 8.02783, 0, 0, 0},
      {"Zn", 9.659, 8.63886, 8.61578, 0, 0, 0},
      {"Mo", 20.000, 17.47934, 17.3743, 2.520, 2.29316, 2.39481},
      {"Ag", 25.514, 22.16292, 21.9903, 3.351, 2.98431, 3.15094},
      {"Sn", 29.200, 25.2713, 25.0440, 3.929, 3.44398, 3.66280},
      {"W", 69.525, 59.31824, 57.9817, 10.207, 8.3976, 9.67235},
      {"Au", 80.725, 68.8037, 66.9895, 11.919, 9.7133, 11.4423},
      {"Pb", 88.005, 74.9694, 72.8042, 13.035, 10.5515, 12.6137},
      {"U", 115.606, 98.439, 94.665, 17.166, 13.6147, 17.2200},
  };
  // Levels differ by that much between compilations.
  auto const near = [](double published) { return 0.0035 + 1e-4 * published; };
  for (auto const& row : Table) {
    Material<double> const element = loaded(row.element);
    auto const k = edgeOf(element, K1), l3 = edgeOf(element, L3),
               l2 = edgeOf(element, L2);
    EXPECT_NEAR(k.Energy, row.K, near(row.K)) << row.element;
    EXPECT_NEAR(lineOf(k, "K-L3"), row.KL3, near(row.KL3)) << row.element;
    EXPECT_NEAR(lineOf(k, "K-L2"), row.KL2, near(row.KL2)) << row.element;
    if (row.L3 == 0) continue;
    EXPECT_NEAR(l3.Energy, row.L3, near(row.L3)) << row.element;
    EXPECT_NEAR(lineOf(l3, "L3-M5"), row.L3M5, near(row.L3M5)) << row.element;
    EXPECT_NEAR(lineOf(l2, "L2-M4"), row.L2M4, near(row.L2M4)) << row.element;
  }
}

// Mass attenuation coefficients [cm^2/g] without pair production: M. J. Berger
// and J. H. Hubbell, XCOM, NBSIR 87-3597 (1987), as the Debian package
// python-fisx-common 1.2.0 prints them. docs/data.md states the deviation.
TEST(DefaultDatabase, AgreesWithPublishedAttenuation) {
  struct Published {
    char const* element;
    double at10keV, at30keV, at60keV, at100keV, at500keV;
  };
  constexpr Published Table[] = {
      {"H", 0.3854, 0.3570, 0.3260, 0.2944, 0.1729},
      {"C", 2.373, 0.2562, 0.1753, 0.1514, 0.08715},
      {"O", 5.953, 0.3779, 0.1907, 0.1551, 0.08730},
      {"Al", 26.21, 1.128, 0.2778, 0.1704, 0.08445},
      {"Fe", 170.7, 8.176, 1.205, 0.3717, 0.08415},
      {"Cu", 216.0, 10.91, 1.593, 0.4585, 0.08363},
      {"Zn", 233.1, 12.07, 1.760, 0.4973, 0.08450},
      {"Mo", 85.76, 28.10, 4.274, 1.096, 0.08848},
      {"Ag", 119.3, 36.68, 5.766, 1.470, 0.09321},
      {"W", 96.90, 22.73, 3.713, 4.437, 0.1378},
      {"Pb", 130.6, 30.32, 5.020, 5.549, 0.1613},
      {"U", 179.1, 41.28, 7.034, 1.955, 0.1976},
  };
  for (auto const& row : Table) {
    Material<double> const element = loaded(row.element);
    for (auto const& [energy, published] :
         {std::pair(10., row.at10keV), std::pair(30., row.at30keV),
          std::pair(60., row.at60keV), std::pair(100., row.at100keV),
          std::pair(500., row.at500keV)}) {
      double const total = element.Absorption(energy, false) +
                           element.Coherent(energy, false) +
                           element.Incoherent(energy, false);
      EXPECT_NEAR(total / published, 1, 0.029)
          << row.element << ' ' << energy << " keV";
    }
  }
}

TEST(DefaultCorrections, HoldEveryElementButThoseTheyName) {
  std::map<std::string, Material<double>> substances;
  Material<double>::readCorr(
      substances, (sourceDir() / "data/ELossCorrections.txt").string());
  for (unsigned int Z = 1; Z <= 97; ++Z)
    EXPECT_EQ(substances.count(Elements[Z]), Z == 85 || Z == 87 ? 0u : 1u)
        << Elements[Z];
  // I = 322 eV of copper, R. M. Sternheimer, M. J. Berger, S. M. Seltzer, At.
  // Data Nucl. Data Tables 30 (1984) 261.
  EXPECT_DOUBLE_EQ(substances["Cu"].EnergyLoss.begin()->first.J, 0.322);
}
