#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <functional>

#include "../support/paths.h"
#include "photarium/config/SpectConfig.h"
#include "photarium/foundation/bremsstrahlung_tables.h"
#include "photarium/foundation/constants.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "photarium/spline/TriCSpline.h"

namespace {

using Surface = BiCSpline<double, double>;
using Curve = CSpline<double, double>;

std::string warningOf(std::function<void()> const& operation) {
  try {
    operation();
  } catch (warning const& found) {
    return found.what();
  }
  return "no warning";
}

double value(Surface const& surface, double energy, double fraction) {
  return surface(beta(energy), false, true)(fraction, false, true);
}

// A material of that number alone, whatever elements there are.
Material<double> numbered(double Z, std::string const& name = "") {
  Material<double> material;
  material.Z = Z;
  material.Name = name;
  return material;
}

// The surface of the rows that begin at `values`, built point by point.
Surface plainSurface(double const* energies, int energyCount,
                     double const* fractions, int fractionCount,
                     double const* values) {
  std::map<double const, Curve> rows;
  for (int e = 0; e < energyCount; ++e) {
    std::map<double const, double> row;
    for (int t = 0; t < fractionCount; ++t)
      row[fractions[t]] = values[e * fractionCount + t];
    rows.insert({beta(energies[e]), Curve(row)});
  }
  return Surface(rows);
}

Surface plainSigma(int z) {
  return plainSurface(EXSpec, SIZENRGXSPEC, TransXSpec, SIZETRANSXSPEC,
                      XSpecValues + z * SIZENRGXSPEC * SIZETRANSXSPEC);
}

Surface plainShape(int c, int z) {
  return plainSurface(
      EShape, SIZENRGSHAPE, TransShape, SIZETRANSSHAPE,
      ShapeValues + (c * SIZEMATSHAPE + z) * SIZENRGSHAPE * SIZETRANSSHAPE);
}

void expectSame(Surface const& a, Surface const& b) {
  for (double energy : {1., 3.7, 80., 450., 1999.})
    for (double fraction : {0., 0.05, 0.42, 0.93, 1.})
      EXPECT_EQ(value(a, energy, fraction), value(b, energy, fraction));
}

}  // namespace

TEST(readSigma, HoldsTheTableOfATabulatedElement) {
  auto gold = numbered(79);
  EXPECT_NO_THROW(gold.readSigma());
  for (int e = 0; e < SIZENRGXSPEC; ++e)
    for (int t = 0; t < SIZETRANSXSPEC; ++t)
      EXPECT_DOUBLE_EQ(
          value(gold.BremsSigma, EXSpec[e], TransXSpec[t]),
          XSpecValues[(9 * SIZENRGXSPEC + e) * SIZETRANSXSPEC + t]);
}

TEST(readSigma, HasTheKnownRowOfTungsten) {
  auto tungsten = numbered(74);
  EXPECT_NO_THROW(tungsten.readSigma());
  EXPECT_DOUBLE_EQ(value(tungsten.BremsSigma, 100, 0), 8.936);
  EXPECT_DOUBLE_EQ(value(tungsten.BremsSigma, 100, 0.5), 6.57);
  EXPECT_DOUBLE_EQ(value(tungsten.BremsSigma, 100, 1), 5.319);
}

TEST(readSigma, GivesTheSplinesOfThePlainForm) {
  for (int z = 0; z < SIZEMATXSPEC; ++z) {
    auto material = numbered(ZXSpec[z]);
    material.readSigma();
    expectSame(material.BremsSigma, plainSigma(z));
  }
}

TEST(readSigma, InterpolatesOverZAsThePlainForm) {
  std::map<double const, Surface> surfaces;
  for (int z = 0; z < SIZEMATXSPEC; ++z)
    surfaces.insert({ZXSpec[z], plainSigma(z)});
  TriCSpline<double, double> const family(surfaces);
  for (double Z : {1., 29.5, 50., 100.}) {
    auto material = numbered(Z);
    EXPECT_THROW(material.readSigma(), warning);
    expectSame(material.BremsSigma, family(Z, false, true));
  }
}

TEST(readSigma, WarnsOfAnInterpolatedElement) {
  auto brass = numbered(29.5, "Brass");
  EXPECT_EQ(warningOf([&] { brass.readSigma(); }),
            "Bremsstrahlung cross sections interpolated for Z=29.5 (Brass)");
  auto nameless = numbered(29.123456789);
  EXPECT_EQ(warningOf([&] { nameless.readSigma(); }),
            "Bremsstrahlung cross sections interpolated for Z=29.1235");
}

TEST(readSigma, HasAValueBeyondTheTable) {
  for (double Z : {1., 100.}) {
    auto material = numbered(Z);
    EXPECT_THROW(material.readSigma(), warning);
    EXPECT_TRUE(std::isfinite(value(material.BremsSigma, 100, 0.5)));
    EXPECT_GT(value(material.BremsSigma, 100, 0.5), 0);
  }
}

TEST(readSigma, KeepsDataWhereTheElementIsNotTabulated) {
  auto material = numbered(79);
  material.readSigma();
  material.Z = 29.5;
  EXPECT_NO_THROW(material.readSigma());
  expectSame(material.BremsSigma, plainSigma(9));
}

TEST(readShape, HoldsTheTableOfATabulatedElement) {
  auto gold = numbered(79);
  EXPECT_NO_THROW(gold.readShape());
  for (int c = 0; c < SIZECOEFFSHAPE; ++c)
    expectSame(gold.Shape[static_cast<std::size_t>(c)], plainShape(c, 4));
  EXPECT_DOUBLE_EQ(value(gold.Shape[0], 100, 0.6), 0.79769);
  EXPECT_DOUBLE_EQ(value(gold.Shape[5], 100, 0.95), -0.00309);
}

TEST(readShape, KeepsDataWhereTheElementIsNotTabulated) {
  auto material = numbered(79);
  material.readShape();
  material.Z = 29.5;
  EXPECT_NO_THROW(material.readShape());
  expectSame(material.Shape[0], plainShape(0, 4));
}

TEST(readShape, InterpolatesOverZAsThePlainForm) {
  for (double Z : {1., 29.5, 74., 100.}) {
    auto material = numbered(Z);
    EXPECT_THROW(material.readShape(), warning);
    for (int c = 0; c < SIZECOEFFSHAPE; ++c) {
      std::map<double const, Surface> surfaces;
      for (int z = 0; z < SIZEMATSHAPE; ++z)
        surfaces.insert({ZShape[z], plainShape(c, z)});
      TriCSpline<double, double> const family(surfaces);
      expectSame(material.Shape[static_cast<std::size_t>(c)],
                 family(Z, false, true));
    }
  }
}

TEST(readShape, WarnsOfAnInterpolatedElement) {
  auto tungsten = numbered(74, "W");
  EXPECT_EQ(warningOf([&] { tungsten.readShape(); }),
            "Bremsstrahlung shape functions interpolated for Z=74 (W)");
  auto nameless = numbered(29.5);
  EXPECT_EQ(warningOf([&] { nameless.readShape(); }),
            "Bremsstrahlung shape functions interpolated for Z=29.5");
}

namespace {

// 4 pi times the angular shape at the cosine `x`.
double shape(Material<double> const& material, double energy, double fraction,
             double x) {
  double series = 1;
  for (unsigned int n = 1; n < 6; ++n)
    series += value(material.Shape[n], energy, fraction) * std::legendre(n, x);
  return value(material.Shape[0], energy, fraction) * series /
         std::pow(1 - beta(energy) * x, 4.5);
}

// By the midpoint rule, whose error is far below the tolerance.
double meanShape(Material<double> const& material, double energy,
                 double fraction) {
  constexpr int steps = 1000;
  double sum = 0;
  for (int i = 0; i < steps; ++i)
    sum += shape(material, energy, fraction, (2 * i + 1.) / steps - 1);
  return sum / steps;
}

// The one node whose coefficients make no distribution: the smallest value of
// the table beside values calculated with another one (data/tables/README.md).
bool isTrap(unsigned int Z, double energy, double fraction) {
  return Z == 92 && energy == 500 && fraction == 0;
}

}  // namespace

// The mean over the sphere is 1; the tables keep it within 0.0021.
TEST(readShape, HasShapesOfUnitMean) {
  for (unsigned int Z : ZShape) {
    auto material = numbered(Z);
    material.readShape();
    for (double energy : EShape)
      for (double fraction : TransShape)
        EXPECT_NEAR(meanShape(material, energy, fraction), 1,
                    isTrap(Z, energy, fraction) ? 0.23 : 0.0021)
            << Z << ' ' << energy << ' ' << fraction;
  }
}

TEST(readShape, HasShapesThatArePositive) {
  for (unsigned int Z : ZShape) {
    auto material = numbered(Z);
    material.readShape();
    for (double energy : EShape)
      for (double fraction : TransShape) {
        if (isTrap(Z, energy, fraction)) continue;
        for (int i = -100; i <= 100; ++i)
          EXPECT_GT(shape(material, energy, fraction, i / 100.), 0)
              << Z << ' ' << energy << ' ' << fraction << ' ' << i;
      }
  }
}

namespace {

// Settings of a spectrum of an element in a database of its own.
class Spectrum {
 public:
  explicit Spectrum(std::string const& symbol, std::string const& number) {
    config.Directory = folder.path().string();
    config.DataFile = "small.txt";
    config.Material = symbol;
    folder.write("small.txt",
                 "Version 1\n\nElement " + symbol + " " + number +
                     " 183.85 19.3\nPhoto\n 2 9 0\n 3 8 0\n 4 7 0\n"
                     "Scatter\n 2 1 0 0 0\n 3 1 0 0 0\n 4 1 0 0 0\n"
                     "EndElement\nEnd\n");
    folder.write("data/ELossCorrections.txt", "# none\n");
  }

  SpectConfig<double> config;

 private:
  ScratchFolder folder;
};

}  // namespace

TEST(updateSpectrum, SwitchesToTheBuiltInCrossSections) {
  Spectrum spectrum("W", "74");
  Material<double> tungsten;
  std::string const findings =
      warningOf([&] { tungsten.update(spectrum.config); });
  EXPECT_EQ(findings,
            "No tabulated bremsstrahlung cross section found, switching to "
            "builtin one.\nBremsstrahlung shape functions interpolated for "
            "Z=74 (W)\n");
  EXPECT_TRUE(spectrum.config.Pratt);
  EXPECT_FALSE(tungsten.BremsSigma.empty());
  EXPECT_FALSE(tungsten.Shape[5].empty());
}

TEST(updateSpectrum, LeavesOutWhatIsNotAskedFor) {
  Spectrum spectrum("Au", "79");
  spectrum.config.Pratt = true;
  spectrum.config.ShapeFct = false;
  Material<double> gold;
  EXPECT_NO_THROW(gold.update(spectrum.config));
  EXPECT_FALSE(gold.BremsSigma.empty());
  EXPECT_TRUE(gold.Shape[0].empty());
}

TEST(updateSpectrum, PassesOnFindingsOfTheMaterial) {
  Spectrum spectrum("Au", "79");
  spectrum.config.CorrFile = "missing.txt";
  spectrum.config.Pratt = true;
  Material<double> gold;
  std::string const findings = warningOf([&] { gold.update(spectrum.config); });
  EXPECT_EQ(findings, "Could not open file while reading " +
                          spectrum.config.Directory + "/missing.txt\n\n");
  EXPECT_FALSE(gold.Shape[0].empty());
}
