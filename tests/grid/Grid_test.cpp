#include "photarium/grid/Grid.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"
#include "tests/support/plain_grid.h"

namespace {

using Energies = std::map<double const, double>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// The grids hold the same doubles; any two values that are no number count as
// the same.
void expectSame(Energies const& a, Energies const& b) {
  ASSERT_EQ(a.size(), b.size());
  for (auto i = a.begin(), j = b.begin(); i != a.end(); ++i, ++j) {
    bool const bothNan = std::isnan(i->second) && std::isnan(j->second);
    EXPECT_TRUE(bothNan || std::bit_cast<std::uint64_t>(i->second) ==
                               std::bit_cast<std::uint64_t>(j->second))
        << i->first << ": " << i->second << " and " << j->second;
  }
}

// Densities rebinned by overlap.
void rebin(Energies const& source, Energies& target) {
  Grid::ConvGrid(source, target, /*inBinned=*/false, /*outBinned=*/false,
                 /*interpolated=*/false, /*extrapolate=*/false,
                 /*cubic=*/false);
}

void expectPlainRebin(Energies const& source, Energies target) {
  Energies expected = target;
  plain::rebin(source, expected);
  rebin(source, target);
  expectSame(target, expected);
}

double integral(Energies const& density) {
  Energies counts = density;
  Grid::ConvGrid(counts, Grid::ToCounts);
  double sum = 0;
  for (auto const& node : counts) sum += node.second;
  return sum;
}

TEST(GridConvDir, HasItsNumbers) {
  EXPECT_EQ(Grid::ToCounts, 0);
  EXPECT_EQ(Grid::ToDensity, 1);
}

TEST(InitGrid, FillsAllNodes) {
  Energies grid{{1, 5}, {2, 6}};
  Grid::InitGrid(grid, 3.);
  EXPECT_EQ(grid, (Energies{{1, 3}, {2, 3}}));
}

TEST(InitGrid, TakesAValueOfTheGridItself) {
  Energies grid{{1, 5}, {2, 6}};
  Grid::InitGrid(grid, grid[2]);
  EXPECT_EQ(grid, (Energies{{1, 6}, {2, 6}}));
}

TEST(InitGrid, TakesTheKeysOfTheSource) {
  Energies grid{{1, 5}, {9, 6}};
  Grid::InitGrid(Energies{{2, 1}, {3, 1}}, grid, 7.);
  EXPECT_EQ(grid, (Energies{{2, 7}, {3, 7}}));
}

TEST(InitGrid, KeepsTheNodesOfAnEqualGrid) {
  Energies const source{{1, 5}, {2, 6}};
  Energies grid = source;
  double const* const node = &grid.at(2);
  Grid::InitGrid(source, grid, 7.);
  EXPECT_EQ(&grid.at(2), node);
  EXPECT_EQ(grid, (Energies{{1, 7}, {2, 7}}));
}

TEST(InitGrid, KeepsAGridOfNoNumbersThatIsItsOwnSource) {
  Energies grid{{1, nan}, {2, 6}};
  Grid::InitGrid(grid, grid, 7.);
  EXPECT_EQ(grid, (Energies{{1, 7}, {2, 7}}));
}

TEST(InitGrid, EmptiesTheGridForAnEmptySource) {
  Energies grid{{1, 5}};
  Grid::InitGrid(Energies{}, grid, 7.);
  EXPECT_TRUE(grid.empty());
}

TEST(CopyGrid, MakesTheTargetEqual) {
  Energies const source{{1, 5}, {2, 6}};
  Energies target{{3, 1}};
  Grid::CopyGrid(source, target);
  EXPECT_EQ(target, source);
}

TEST(CopyGrid, TouchesNothingOfAnEqualTarget) {
  Energies const source{{1, 5}, {2, 6}};
  Energies target = source;
  double const* const node = &target.at(1);
  Grid::CopyGrid(source, target);
  EXPECT_EQ(&target.at(1), node);
}

TEST(ConvGrid, TakesHalfDistancesAndDoublesTheEnds) {
  Energies grid{{1, 1}, {2, 1}, {4, 1}, {8, 1}};
  Grid::ConvGrid(grid, Grid::ToCounts);
  EXPECT_EQ(grid, (Energies{{1, 1}, {2, 1.5}, {4, 3}, {8, 4}}));
}

TEST(ConvGrid, DividesByTheWidthForDensities) {
  Energies grid{{1, 1}, {2, 1.5}, {4, 3}, {8, 4}};
  Grid::ConvGrid(grid, Grid::ToDensity);
  EXPECT_EQ(grid, (Energies{{1, 1}, {2, 1}, {4, 1}, {8, 1}}));
}

TEST(ConvGrid, LeavesOneNodeAlone) {
  Energies grid{{5, 3}};
  Grid::ConvGrid(grid, Grid::ToDensity);
  Grid::ConvGrid(grid, Grid::ToCounts);
  EXPECT_EQ(grid, (Energies{{5, 3}}));
}

TEST(ConvGrid, LeavesAnEmptyGridAlone) {
  Energies grid;
  Grid::ConvGrid(grid, Grid::ToDensity);
  EXPECT_TRUE(grid.empty());
}

TEST(ConvGrid, RebinsOntoEqualEquidistantNodesUnchanged) {
  Energies const source{{1, 5}, {2, 7}, {3, 11}, {4, 2}};
  Energies target{{1, 0}, {2, 0}, {3, 0}, {4, 0}};
  rebin(source, target);
  EXPECT_EQ(target, source);
}

TEST(ConvGrid, RebinsContentsOntoEqualEquidistantNodesUnchanged) {
  Energies const source{{1, 5}, {2, 7}, {3, 11}, {4, 2}};
  Energies target{{1, 0}, {2, 0}, {3, 0}, {4, 0}};
  Grid::ConvGrid(source, target, /*inBinned=*/true, /*outBinned=*/true,
                 /*interpolated=*/false, false, false);
  EXPECT_EQ(target, source);
}

TEST(ConvGrid, AddsTheContentsOfFineBinsUp) {
  Energies const source{{0.5, 1}, {1.5, 2}, {2.5, 3}, {3.5, 4}};
  Energies target{{1, 0}, {3, 0}};
  Grid::ConvGrid(source, target, /*inBinned=*/true, /*outBinned=*/true,
                 /*interpolated=*/false, false, false);
  EXPECT_EQ(target, (Energies{{1, 3}, {3, 7}}));
}

TEST(ConvGrid, CountsWhatTheSourceDoesNotCoverAsZero) {
  Energies const source{{10.5, 4}, {11.5, 4}};
  Energies target{{9, 1}, {11, 1}, {13, 1}, {15, 1}};
  rebin(source, target);
  EXPECT_EQ(target, (Energies{{9, 0}, {11, 4}, {13, 0}, {15, 0}}));
}

TEST(ConvGrid, KeepsTheIntegral) {
  Energies const source = plain::randomGrid(200, 10, 20, /*seed=*/3);
  Energies target = plain::randomGrid(77, 5, 25, /*seed=*/4);
  rebin(source, target);
  // The rounding of a few hundred products.
  EXPECT_NEAR(integral(target) / integral(source), 1, 1e-13);
}

TEST(ConvGrid, DividesByNoWidthForASingleTargetNode) {
  Energies target{{2, 7}};
  rebin(Energies{{1, 5}, {2, 7}, {3, 9}}, target);
  // Its bin from 2 to 2 lies within the source bin from 1.5 to 2.5.
  EXPECT_TRUE(std::isnan(target.at(2)));
}

TEST(ConvGrid, GivesASingleTargetNodeOutsideTheSourceZero) {
  Energies target{{20, 7}};
  rebin(Energies{{1, 5}, {2, 7}, {3, 9}}, target);
  EXPECT_EQ(target.at(20), 0);
}

TEST(ConvGrid, SweepsWithTheDoublesOfTheRestart) {
  std::mt19937_64 random(11);
  for (unsigned int seed = 0; seed < 300; ++seed) {
    std::uniform_real_distribution<double> end(0, 30);
    std::uniform_int_distribution<std::size_t> nodes(1, 60);
    double const from = end(random);
    expectPlainRebin(
        plain::randomGrid(nodes(random), from, from + end(random), seed),
        plain::randomGrid(nodes(random), end(random), 30, seed + 1000));
  }
}

TEST(ConvGrid, RebinsContentsLikeTheirDensities) {
  for (std::size_t nodes : {1U, 2U, 40U}) {
    Energies const source = plain::randomGrid(nodes, 1, 30, /*seed=*/12);
    Energies density = source;
    Grid::ConvGrid(density, Grid::ToDensity);
    Energies target = plain::randomGrid(30, 0, 40, /*seed=*/13);
    Energies expected = target;
    plain::rebin(density, expected);
    Grid::ConvGrid(expected, Grid::ToCounts);
    Grid::ConvGrid(source, target, true, true, /*interpolated=*/false, false,
                   false);
    expectSame(target, expected);
  }
}

TEST(ConvGrid, SweepsDisjointGridsLikeTheRestart) {
  Energies const low = plain::randomGrid(50, 1, 10, /*seed=*/5);
  Energies const high = plain::randomGrid(50, 20, 30, /*seed=*/6);
  expectPlainRebin(low, high);
  expectPlainRebin(high, low);
}

TEST(ConvGrid, SweepsInfiniteAndHugeEnergiesLikeTheRestart) {
  double const huge = std::numeric_limits<double>::max();
  std::vector<Energies> const odd{
      {{-infinity, 1}, {0, 2}, {5, 3}},
      {{0, 1}, {5, 2}, {infinity, 3}},
      {{-infinity, 1}, {infinity, 3}},
      {{-infinity, 1}, {1, 2}, {3, 4}, {infinity, 3}},
      {{0.7 * huge, 1}, {0.8 * huge, 2}, {0.9 * huge, 3}, {huge, 4}},
      {{-huge, 1}, {-0.9 * huge, 2}, {0, 2}, {0.8 * huge, 3}, {huge, 4}},
      {{nan, 3}},
      {{1, 3}},
      {{infinity, 3}},
      {{1, nan}, {2, infinity}, {3, -infinity}, {4, 0}},
      plain::randomGrid(20, 0, 6, /*seed=*/8),
      {}};
  for (Energies const& source : odd)
    for (Energies const& target : odd) expectPlainRebin(source, target);
}

TEST(ConvGrid, MayRebinAGridOntoItself) {
  Energies grid{{1, 5}, {2, 7}, {3, 11}};
  rebin(grid, grid);
  EXPECT_EQ(grid, (Energies{{1, 5}, {2, 7}, {3, 11}}));
}

TEST(ConvGrid, InterpolatesOnChords) {
  Energies target{{1.5, 0}, {2, 0}};
  Grid::ConvGrid(Energies{{1, 10}, {2, 30}}, target, false, false,
                 /*interpolated=*/true, /*extrapolate=*/false,
                 /*cubic=*/false);
  EXPECT_EQ(target, (Energies{{1.5, 20}, {2, 30}}));
}

TEST(ConvGrid, InterpolatesOnTheCubicSpline) {
  Energies const source{{1, 1}, {2, 4}, {3, 9}, {4, 1}};
  Energies target{{0.5, 0}, {1.3, 0}, {2.8, 0}, {5, 0}};
  Grid::ConvGrid(source, target, false, false, /*interpolated=*/true,
                 /*extrapolate=*/true, /*cubic=*/true);
  CSpline<double, double> const curve(source);
  for (auto const& [energy, value] : target)
    EXPECT_EQ(value, curve(energy, false, true));
}

TEST(ConvGrid, InterpolatesToZeroOutsideTheSource) {
  Energies target{{0.5, 7}, {1, 7}, {2, 7}, {2.5, 7}};
  Grid::ConvGrid(Energies{{1, 10}, {2, 30}}, target, false, false,
                 /*interpolated=*/true, /*extrapolate=*/false,
                 /*cubic=*/false);
  EXPECT_EQ(target, (Energies{{0.5, 0}, {1, 10}, {2, 30}, {2.5, 0}}));
}

TEST(ConvGrid, ExtrapolatesIfAsked) {
  Energies target{{0.5, 7}, {3, 7}};
  Grid::ConvGrid(Energies{{1, 10}, {2, 30}}, target, false, false,
                 /*interpolated=*/true, /*extrapolate=*/true, /*cubic=*/false);
  EXPECT_EQ(target, (Energies{{0.5, 0}, {3, 50}}));
}

TEST(ConvGrid, InterpolatesDensitiesOfContents) {
  Energies target{{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}};
  // Bins 2 wide with 10, 20 and 30 hold densities of 5, 10 and 15.
  Grid::ConvGrid(Energies{{1, 10}, {3, 20}, {5, 30}}, target,
                 /*inBinned=*/true, /*outBinned=*/true, /*interpolated=*/true,
                 /*extrapolate=*/false, /*cubic=*/false);
  EXPECT_EQ(target, (Energies{{1, 5}, {2, 7.5}, {3, 10}, {4, 12.5}, {5, 15}}));
}

TEST(ConvGrid, TakesAnEmptySourceForZero) {
  Energies target{{0, 3}, {1, 5}};
  Grid::ConvGrid(Energies{}, target, false, false, /*interpolated=*/true,
                 /*extrapolate=*/true, /*cubic=*/false);
  EXPECT_EQ(target, (Energies{{0, 0}, {1, 0}}));
}

TEST(ConvGrid, RebinsAHundredThousandNodesInLinearTime) {
  Energies const source = plain::randomGrid(100000, 1, 150, /*seed=*/1);
  Energies target = plain::randomGrid(100000, 1, 150, /*seed=*/2);
  rebin(source, target);  // the restart would take ten thousand million steps
  EXPECT_NEAR(integral(target) / integral(source), 1, 1e-3);
}

TEST(GridArithmetic, WorksNodeByNodeByPosition) {
  Energies const a{{1, 6}, {2, 8}};
  Energies const b{{5, 3}, {6, 2}};
  Energies out{{10, 0}, {20, 0}};
  Grid::AddGrid(out, a, b);
  EXPECT_EQ(out, (Energies{{10, 9}, {20, 10}}));
  Grid::SubtractGrid(out, a, b);
  EXPECT_EQ(out, (Energies{{10, 3}, {20, 6}}));
  Grid::MultiplyGrid(out, a, b);
  EXPECT_EQ(out, (Energies{{10, 18}, {20, 16}}));
  Grid::DivideGrid(out, a, b);
  EXPECT_EQ(out, (Energies{{10, 2}, {20, 4}}));
}

TEST(GridArithmetic, TakesNumbers) {
  Energies const a{{1, 6}, {2, 8}};
  Energies out = a;
  Grid::MultiplyGrid(out, a, 0.5);
  EXPECT_EQ(out, (Energies{{1, 3}, {2, 4}}));
  Grid::DivideGrid(out, a, 2.);
  EXPECT_EQ(out, (Energies{{1, 3}, {2, 4}}));
}

TEST(GridArithmetic, MayWriteIntoAnOperand) {
  Energies a{{1, 6}, {2, 8}};
  Grid::AddGrid(a, a, a);
  EXPECT_EQ(a, (Energies{{1, 12}, {2, 16}}));
  Grid::DivideGrid(a, a, a.at(1));
  EXPECT_EQ(a, (Energies{{1, 1}, {2, 16. / 12.}}));
}

TEST(GridArithmetic, DividesByZeroLikeFloatingPoint) {
  Energies out{{1, 0}, {2, 0}, {3, 0}};
  Grid::DivideGrid(out, Energies{{1, 1}, {2, -1}, {3, 0}}, 0.);
  EXPECT_EQ(out.at(1), infinity);
  EXPECT_EQ(out.at(2), -infinity);
  EXPECT_TRUE(std::isnan(out.at(3)));
}

TEST(GridArithmetic, ReturnsFromAnEmptyGridAtOnce) {
  Energies out;
  Grid::AddGrid(out, Energies{{1, 1}}, Energies{{1, 1}});
  EXPECT_TRUE(out.empty());
}

TEST(GridArithmetic, LeavesNodesBeyondAShorterOperandAlone) {
  Energies out{{1, 1}, {2, 2}};
  Grid::AddGrid(out, Energies{{1, 5}}, Energies{{1, 5}, {2, 5}});
  EXPECT_EQ(out, (Energies{{1, 10}, {2, 2}}));
  Grid::SubtractGrid(out, Energies{{1, 5}, {2, 5}}, Energies{{1, 1}});
  EXPECT_EQ(out, (Energies{{1, 4}, {2, 2}}));
}

TEST(AddToGrid, SharesAnAmountBetweenNodes) {
  Energies grid{{1, 0}, {3, 10}};
  add(grid, 2., 8.);
  EXPECT_EQ(grid, (Energies{{1, 4}, {3, 14}}));
  add(grid, 2.5, 8.);
  EXPECT_EQ(grid, (Energies{{1, 6}, {3, 20}}));
}

TEST(AddToGrid, GivesTheEndsWhatLiesBeyond) {
  Energies grid{{1, 0}, {3, 10}};
  add(grid, 0.5, 4.);
  add(grid, 3., 5.);
  add(grid, 30., 7.);
  EXPECT_EQ(grid, (Energies{{1, 4}, {3, 22}}));
}

TEST(AddToGrid, GivesANodeAllAtItsEnergy) {
  Energies grid{{1, 0}, {2, 0}, {3, 0}};
  add(grid, 2., 5.);
  add(grid, 1., 3.);
  EXPECT_EQ(grid, (Energies{{1, 3}, {2, 5}, {3, 0}}));
}

TEST(AddToGrid, IsUndoneBySub) {
  Energies const before = plain::randomGrid(20, 1, 10, /*seed=*/9);
  Energies grid = before;
  add(grid, 4.321, 3.3);
  sub(grid, 4.321, 3.3);
  for (auto const& [energy, value] : before)
    EXPECT_NEAR(grid.at(energy), value, 1e-13);  // values up to 100
}

TEST(AddToGrid, LeavesAnEmptyGridEmpty) {
  Energies grid;
  add(grid, 1., 1.);
  EXPECT_TRUE(grid.empty());
}

}  // namespace
