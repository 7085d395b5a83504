#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "photarium/foundation/bremsstrahlung_tables.h"
#include "photarium/foundation/elements.h"
#include "photarium/foundation/text.h"
#include "tests/support/paths.h"

namespace {

// The rows of a data file below its head line, cut into fields.
std::vector<std::vector<std::string>> rowsOf(std::string const& name) {
  std::vector<std::vector<std::string>> rows;
  for (std::string const& line : split<std::string>(
           fileText(sourceDir() / "data/tables" / name), "\n", false))
    rows.push_back(split<std::string>(line, ",", true));
  rows.erase(rows.begin());
  return rows;
}

double number(std::string const& field) {
  return split<double>(field, "", true).at(0);
}

using Numbers = std::vector<double>;

Numbers spectrumRow(int z, int e) {
  double const* const row = XSpecValues + (z * 20 + e) * 12;
  return Numbers(row, row + 12);
}

Numbers shapeRow(int c, int z, int e) {
  double const* const row = ShapeValues + ((c * 6 + z) * 6 + e) * 4;
  return Numbers(row, row + 4);
}

}  // namespace

TEST(Elements, AreIndexedByAtomicNumber) {
  EXPECT_EQ(ElementsCount, 119U);
  EXPECT_EQ(Elements[1], "H");
  EXPECT_EQ(Elements[26], "Fe");
  EXPECT_EQ(Elements[74], "W");
  EXPECT_EQ(Elements[92], "U");
}

TEST(Elements, HaveAnEmptyPlaceholder) {
  EXPECT_EQ(Elements[0], "");
  EXPECT_EQ(Densities[0], 0);
  EXPECT_EQ(MassNumbers[0], 0);
}

TEST(Elements, KeepProvisionalSymbols) {
  EXPECT_EQ(Elements[113], "Uut");
  EXPECT_EQ(Elements[114], "Fl");
  EXPECT_EQ(Elements[115], "Uup");
  EXPECT_EQ(Elements[116], "Lv");
  EXPECT_EQ(Elements[117], "Uus");
  EXPECT_EQ(Elements[118], "Uuo");
}

TEST(Elements, HaveTheRowsOfTheirDataFile) {
  auto const rows = rowsOf("elements.csv");
  ASSERT_EQ(rows.size(), ElementsCount);
  for (std::size_t Z = 0; Z < rows.size(); ++Z) {
    EXPECT_EQ(number(rows[Z][0]), static_cast<double>(Z));
    EXPECT_EQ(Elements[Z], rows[Z][1]);
    EXPECT_EQ(Densities[Z], number(rows[Z][2]));
    EXPECT_EQ(MassNumbers[Z], number(rows[Z][3]));
  }
}

TEST(Elements, HaveTheDensitiesOfGasesAtNormalConditions) {
  EXPECT_EQ(Densities[1], 8.2e-05);
  EXPECT_EQ(Densities[7], 0.001145);
  EXPECT_EQ(Densities[86], 0.0090074);
}

TEST(Elements, HaveNoDensityFromFermiumOn) {
  EXPECT_EQ(Densities[99], 8.84);
  for (std::size_t Z = 100; Z < ElementsCount; ++Z) EXPECT_EQ(Densities[Z], 0);
  for (std::size_t Z = 1; Z < 100; ++Z) EXPECT_GT(Densities[Z], 0);
}

TEST(Elements, HaveTheMassOfOneIsotopeWhereNoneIsStable) {
  EXPECT_EQ(MassNumbers[43], 97.9075);
  EXPECT_EQ(MassNumbers[61], 144.914);
  EXPECT_EQ(MassNumbers[118], 294.0);
}

TEST(Elements, HaveNoSymbolTwice) {
  std::vector<std::string> symbols(Elements, Elements + ElementsCount);
  std::ranges::sort(symbols);
  EXPECT_EQ(std::ranges::adjacent_find(symbols), symbols.end());
}

TEST(XSpecValues, HasItsAxes) {
  EXPECT_EQ(SIZENRGXSPEC, 20);
  EXPECT_EQ(SIZETRANSXSPEC, 12);
  EXPECT_EQ(SIZEMATXSPEC, 11);
  EXPECT_EQ(Numbers(EXSpec, std::end(EXSpec)),
            (Numbers{1,   2.5, 5,   10,  25,   50,   75,   100,  200,  300,
                     400, 500, 600, 800, 1000, 1200, 1400, 1600, 1800, 2000}));
  EXPECT_EQ(Numbers(TransXSpec, std::end(TransXSpec)),
            (Numbers{0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 0.95, 1}));
  EXPECT_EQ(
      std::vector<unsigned int>(ZXSpec, std::end(ZXSpec)),
      (std::vector<unsigned int>{2, 8, 13, 26, 29, 42, 47, 61, 74, 79, 92}));
}

TEST(XSpecValues, HasTheKnownRows) {
  EXPECT_EQ(spectrumRow(0, 0),
            (Numbers{7.167, 7.167, 6.988, 6.716, 6.403, 6.07, 5.73, 5.412,
                     5.138, 4.926, 4.86, 4.829}));
  EXPECT_EQ(spectrumRow(0, 1),
            (Numbers{8.567, 8.381, 7.881, 7.292, 6.697, 6.128, 5.588, 5.072,
                     4.577, 4.098, 3.886, 3.776}));
  EXPECT_EQ(spectrumRow(8, 7),
            (Numbers{8.936, 8.592, 7.981, 7.426, 6.946, 6.57, 6.237, 5.951,
                     5.711, 5.517, 5.417, 5.319}));
  EXPECT_EQ(spectrumRow(10, 19),
            (Numbers{11.45, 9.571, 8.101, 6.889, 5.921, 5.126, 4.454, 3.892,
                     3.341, 2.786, 2.434, 2.084}));
}

TEST(XSpecValues, LiesWithinItsBounds) {
  auto const [least, most] = std::ranges::minmax(XSpecValues);
  EXPECT_EQ(std::size(XSpecValues), 2640U);
  EXPECT_EQ(least, 0.108);
  EXPECT_EQ(most, 14.856);
}

TEST(XSpecValues, HasTheRowsOfItsDataFile) {
  auto const rows = rowsOf("xspec_values.csv");
  ASSERT_EQ(rows.size(), 220U);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    ASSERT_EQ(rows[i].size(), 14U);
    EXPECT_EQ(number(rows[i][0]), ZXSpec[i / 20]);
    EXPECT_EQ(number(rows[i][1]), EXSpec[i % 20]);
    for (std::size_t t = 0; t < 12; ++t)
      EXPECT_EQ(XSpecValues[i * 12 + t], number(rows[i][t + 2]));
  }
}

TEST(ShapeValues, HasItsAxes) {
  EXPECT_EQ(SIZENRGSHAPE, 6);
  EXPECT_EQ(SIZETRANSSHAPE, 4);
  EXPECT_EQ(SIZEMATSHAPE, 6);
  EXPECT_EQ(SIZECOEFFSHAPE, 6);
  EXPECT_EQ(Numbers(EShape, std::end(EShape)),
            (Numbers{1, 5, 10, 50, 100, 500}));
  EXPECT_EQ(Numbers(TransShape, std::end(TransShape)),
            (Numbers{0, 0.6, 0.8, 0.95}));
  EXPECT_EQ(std::vector<unsigned int>(ZShape, std::end(ZShape)),
            (std::vector<unsigned int>{2, 8, 13, 47, 79, 92}));
}

TEST(ShapeValues, HasTheKnownRows) {
  EXPECT_EQ(shapeRow(0, 0, 0), (Numbers{1.00283, 0.99589, 0.99419, 0.99308}));
  EXPECT_EQ(shapeRow(0, 0, 1), (Numbers{1.01192, 0.97473, 0.96784, 0.96307}));
  EXPECT_EQ(shapeRow(0, 4, 4), (Numbers{1.13296, 0.79769, 0.76072, 0.73495}));
  EXPECT_EQ(shapeRow(1, 4, 4),
            (Numbers{-1.41839, -0.96388, -0.87542, -0.80929}));
  EXPECT_EQ(shapeRow(2, 4, 4),
            (Numbers{0.56396, -0.09604, -0.23057, -0.33104}));
  EXPECT_EQ(shapeRow(3, 4, 4), (Numbers{-0.07703, 0.11911, 0.15553, 0.18196}));
  EXPECT_EQ(shapeRow(4, 4, 4), (Numbers{0.00021, -0.0056, -0.00498, -0.00168}));
  EXPECT_EQ(shapeRow(5, 4, 4),
            (Numbers{-0.00025, -0.00195, -0.00218, -0.00309}));
}

TEST(ShapeValues, LiesWithinItsBounds) {
  auto const [least, most] = std::ranges::minmax(ShapeValues);
  EXPECT_EQ(std::size(ShapeValues), 864U);
  EXPECT_EQ(least, -1.70461);
  EXPECT_EQ(most, 1.15289);
}

TEST(ShapeValues, HasTheRowsOfItsDataFile) {
  auto const rows = rowsOf("shape_values.csv");
  ASSERT_EQ(rows.size(), 216U);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    ASSERT_EQ(rows[i].size(), 7U);
    EXPECT_EQ(number(rows[i][0]), static_cast<double>(i / 36));
    EXPECT_EQ(number(rows[i][1]), ZShape[i / 6 % 6]);
    EXPECT_EQ(number(rows[i][2]), EShape[i % 6]);
    for (std::size_t t = 0; t < 4; ++t)
      EXPECT_EQ(ShapeValues[i * 4 + t], number(rows[i][t + 3]));
  }
}
