#include "photarium/material/EnergyLossConstants.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "../support/paths.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"

namespace {

using Record = EnergyLossConstants<double>;
using Row = std::array<double, 9>;

// Divides as the printed columns are scaled.
Row scaled(Row row) {
  Row const divisors{1, 10, 10, 100, 1000, 10, 10, 100, 1000};
  for (std::size_t i = 0; i < row.size(); ++i) row[i] /= divisors[i];
  return row;
}

}  // namespace

TEST(EnergyLossConstants, StartsAtZero) {
  Record const record;
  EXPECT_EQ(record.J, 0);
  EXPECT_EQ(record.C, 0);
  EXPECT_EQ(record.x0, 0);
  EXPECT_EQ(record.x1, 0);
  EXPECT_EQ(record.m, 0);
  EXPECT_EQ(record.a, 0);
  EXPECT_EQ(record.delta0, 0);
  EXPECT_EQ(record.Ef, 0);
  EXPECT_EQ(record.RL, Row{});
}

TEST(EnergyLossConstants, HasTheKnownRows) {
  EXPECT_EQ(Record(1.).RL, scaled({9.852, 4.1384, 1.9703, 2.7608, 1.9841,
                                   -0.0881, 0.6893, 0.1158, 0.6558}));
  EXPECT_EQ(Record(6.).RL, scaled({6.6696, 2.2127, 1.4623, 0.5969, -0.7762,
                                   -0.7644, 0.5754, 0.0359, -0.1501}));
  EXPECT_EQ(Record(13.).RL, scaled({6.4185, 3.7066, 2.045, 2.875, 1.0984,
                                    1.0366, 0.6827, 0.7722, 0.5543}));
  EXPECT_EQ(Record(26.).RL, scaled({6.5278, 4.021, 2.2787, 3.6616, 1.7519,
                                    1.7589, 0.8701, 0.9955, 0.9892}));
  EXPECT_EQ(Record(29.).RL, scaled({6.5754, 3.9824, 2.2837, 3.7519, 1.837,
                                    1.8107, 0.9027, 1.0495, 1.0547}));
  EXPECT_EQ(Record(79.).RL, scaled({7.5133, 2.2935, 1.2341, 2.4982, 1.4316,
                                    1.3792, 0.7574, 0.8551, 1.1199}));
  EXPECT_EQ(Record(100.).RL, scaled({7.9309, 0.4446, 0.5265, 1.7115, 1.1907,
                                     -0.0801, 0.4932, 0.5628, 1.0432}));
}

TEST(EnergyLossConstants, HasTheRowsOfItsDataFile) {
  auto const lines = split<std::string>(
      fileText(sourceDir() / "data/tables/radiative_loss.csv"), "\n", false);
  ASSERT_EQ(lines.size(), 102U);
  for (std::size_t Z = 1; Z <= 100; ++Z) {
    auto const fields = split<double>(lines[Z + 1], ",", true);
    ASSERT_EQ(fields.size(), 10U);
    EXPECT_EQ(fields[0], static_cast<double>(Z));
    Row row{};
    std::copy(fields.begin() + 1, fields.end(), row.begin());
    EXPECT_EQ(Record(static_cast<double>(Z)).RL, scaled(row));
  }
}

// The cross section that the coefficients describe is a positive, finite
// number below the limit of complete screening, which is highest for hydrogen,
// from 1 keV to 10 GeV.
TEST(EnergyLossConstants, HasAPositiveCrossSectionAtAnyEnergy) {
  for (int Z = 1; Z <= 100; ++Z) {
    Row const r = Record(Z).RL;
    for (double L = std::log(1e-3); L < std::log(1e4); L += 0.1) {
      double const above = 1 + L * (r[1] + L * (r[2] + L * (r[3] + L * r[4])));
      double const below = 1 + L * (r[5] + L * (r[6] + L * (r[7] + L * r[8])));
      EXPECT_GT(below, 0) << Z << ' ' << L;
      EXPECT_GT(r[0] * above / below, 0) << Z << ' ' << L;
      EXPECT_LT(r[0] * above / below, 50) << Z << ' ' << L;
    }
  }
}

TEST(EnergyLossConstants, HasTheMeanExcitationEnergyOfAFormula) {
  EXPECT_DOUBLE_EQ(Record(26.).J, 26 * 0.00976 + 0.05882 * std::pow(26, -0.19));
  EXPECT_NEAR(Record(26.).J, 0.28543, 5e-6);
  EXPECT_DOUBLE_EQ(Record(9.9).J, 0.13464);
  EXPECT_DOUBLE_EQ(Record(10.).J, 10 * 0.00976 + 0.05882 * std::pow(10, -0.19));
}

TEST(EnergyLossConstants, TakesTheRowOfTheWholePart) {
  EXPECT_EQ(Record(26.99).RL, Record(26.).RL);
  EXPECT_EQ(Record(0.5).RL, Row{});
  EXPECT_DOUBLE_EQ(Record(0.5).J, 0.0068);
}

TEST(EnergyLossConstants, PrefersAGivenMeanExcitationEnergy) {
  Record const record(0., 0.1);
  EXPECT_EQ(record.J, 0.1);
  EXPECT_EQ(record.RL, Row{});
  EXPECT_EQ(Record(26., 0.3).J, 0.3);
  EXPECT_EQ(Record(26., 0.3).RL, Record(26.).RL);
  EXPECT_EQ(Record(26., -0.3).J, Record(26.).J);
}

TEST(EnergyLossConstants, HasNoRowBeyondTheTable) {
  EXPECT_EQ(Record(100.5).RL, Record(100.).RL);
  EXPECT_EQ(Record(101.).RL, Row{});
  EXPECT_EQ(Record(1e300).RL, Row{});
  EXPECT_EQ(Record(std::numeric_limits<double>::infinity()).RL, Row{});
  EXPECT_GT(Record(101.).J, 1);
}

TEST(EnergyLossConstants, IsEmptyWithoutAnElement) {
  EXPECT_EQ(Record(-1.).J, 0);
  EXPECT_EQ(Record(-1.).RL, Row{});
  EXPECT_EQ(Record(std::nan("")).J, 0);
  EXPECT_EQ(Record(std::nan("")).RL, Row{});
}

TEST(EnergyLossConstants, ClearsTheFirstCoefficientAloneWhereItHasNoRow) {
  Record record(26.);
  double const second = record.RL[1];
  record.C = record.x0 = record.x1 = record.m = record.a = 1;
  record.delta0 = record.Ef = 1;
  record.init(0, 0);
  EXPECT_EQ(record.J, 0);
  EXPECT_EQ(record.C + record.x0 + record.x1 + record.m + record.a, 0);
  EXPECT_EQ(record.delta0 + record.Ef, 0);
  EXPECT_EQ(record.RL[0], 0);
  EXPECT_EQ(record.RL[1], second);
}

TEST(EnergyLossConstants, ScalesAPrintedRow) {
  Row const row{1, 20, 30, 400, 5000, 60, 70, 800, 9000};
  Record const record(row.data());
  EXPECT_EQ(record.RL, (Row{1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(record.J, 0);
}

TEST(EnergyLossConstants, KeepsTheOtherFieldsWhenARowIsSet) {
  Record record(26.);
  double const J = record.J;
  record.x0 = 2;
  Row const row{};
  record.initRL(row.data());
  EXPECT_EQ(record.RL, Row{});
  EXPECT_EQ(record.J, J);
  EXPECT_EQ(record.x0, 2);
}

TEST(EnergyLossConstants, IsOrderedByTheMeanExcitationEnergyAlone) {
  Record small(26., 0.1);
  Record const large(1., 0.2);
  Record const equal(1., 0.1);
  EXPECT_LT(small, large);
  EXPECT_FALSE(large < small);
  EXPECT_FALSE(small < equal);
  EXPECT_FALSE(equal < small);
  small = large;
  EXPECT_EQ(small.RL, large.RL);
}
