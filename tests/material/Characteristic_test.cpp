#include <gtest/gtest.h>

#include <limits>

#include "photarium/material/Material.h"

namespace {

using Levels = std::vector<std::pair<Edge<double> const*, double>>;
using Result = std::map<double const, Levels>;

SubshellID const K(26, K1);
SubshellID const L(26, L3);
SubshellID const M(26, M1);

Line<double> photon(double energy, double intensity, SubshellID from = {}) {
  return {energy, intensity, "", from, /*radiative=*/true};
}

Line<double> electron(double energy, double intensity, SubshellID from,
                      SubshellID to) {
  return {energy, intensity, "", from, to, /*radiative=*/false};
}

Edge<double> edge(SubshellID id, double energy,
                  std::vector<Line<double>> const& lines = {}) {
  Edge<double> made(id, energy, /*yield=*/0.3, /*jump=*/8);
  made.Lines = lines;
  return made;
}

std::vector<double> energiesOf(Edge<double> const& edge) {
  std::vector<double> energies;
  for (auto const& line : edge.Lines) energies.push_back(line.Energy);
  return energies;
}

// A curve that is `value` from `first` to `last` [keV].
AttenuationCoeff<double> constant(double first, double last, double value) {
  using Curve = AttenuationCoeff<double>;
  return Curve::fromSorted(
      {{{{first, value}, {last, value}}, Curve::LinLin, /*cubic=*/false}},
      /*scale=*/1, /*linear=*/true);
}

}  // namespace

TEST(FilterCharacteristic, RemovesOnlyEmptyLinesAndEdgesAtZero) {
  Material<double> iron;
  iron.Edges = {edge(K, 7.1,
                     {photon(6.4, 0.3), photon(7, 0), photon(6, -1),
                      electron(5, 0.1, L, L)}),
                edge(L, 0.7), edge(M, 0.1, {photon(0.05, 0)})};
  iron.FilterCharacteristic(0, true);
  ASSERT_EQ(iron.Edges.size(), 1U);
  EXPECT_EQ(iron.Edges[0].ID, K);
  EXPECT_EQ(energiesOf(iron.Edges[0]), (std::vector<double>{6.4, 5}));
}

TEST(FilterCharacteristic, KeepsEnergiesAtTheThreshold) {
  Material<double> iron;
  iron.Edges = {edge(K, 7, {photon(7, 0.3), photon(6.999, 0.3)}),
                edge(L, 6.999, {photon(8, 0.3)})};
  iron.FilterCharacteristic(7, true);
  ASSERT_EQ(iron.Edges.size(), 1U);
  EXPECT_EQ(energiesOf(iron.Edges[0]), std::vector<double>{7});
}

TEST(FilterCharacteristic, ErasesEdgesOfElectronsAlone) {
  Material<double> iron;
  iron.Edges = {edge(K, 7, {electron(5, 0.7, L, L)}),
                edge(L, 0.7, {electron(0.6, 0.5, M, M), photon(0.7, 0.01)})};
  iron.FilterCharacteristic(0, false);
  ASSERT_EQ(iron.Edges.size(), 1U);
  EXPECT_EQ(iron.Edges[0].ID, L);
  EXPECT_EQ(energiesOf(iron.Edges[0]), std::vector<double>{0.7});
}

TEST(FilterCharacteristic, KeepsALineFromAnErasedLevelWithoutIt) {
  Material<double> iron;
  iron.Edges = {edge(K, 7, {photon(6.4, 0.3, L)}),
                edge(L, 0.7, {photon(0.6, 0.1)})};
  iron.FilterCharacteristic(1, true);
  ASSERT_EQ(iron.Edges.size(), 1U);
  ASSERT_EQ(iron.Edges[0].Lines.size(), 1U);
  EXPECT_EQ(iron.Edges[0].Lines[0].From, SubshellID());
}

TEST(FilterCharacteristic, KeepsLevelsThatStay) {
  Material<double> iron;
  iron.Edges = {edge(K, 7, {electron(5, 0.3, L, M)}),
                edge(L, 0.7, {photon(0.6, 0.1)}),
                edge(M, 0.1, {photon(0.05, 0.1)})};
  iron.FilterCharacteristic(0, true);
  ASSERT_EQ(iron.Edges.size(), 3U);
  EXPECT_EQ(iron.Edges[0].Lines[0].From, L);
  EXPECT_EQ(iron.Edges[0].Lines[0].To, M);
}

TEST(FilterCharacteristic, CutsTheWordsFromTheShellBeforeToItsElement) {
  Material<double> iron;
  iron.Edges = {edge(K, 7, {electron(5, 0.3, L, M)}),
                edge(L, 0.7, {photon(0.6, 0.1)})};
  iron.FilterCharacteristic(0.3, true);
  Line<double> const& line = iron.Edges[0].Lines[0];
  EXPECT_EQ(line.From.Z, 26U);
  EXPECT_EQ(line.From.Shell, 0);
  EXPECT_EQ(line.To.Z, 0U);
  EXPECT_EQ(line.To.Shell, M1);
}

TEST(FilterCharacteristic, CutsBothLevelsThatAreGone) {
  Material<double> iron;
  iron.Edges = {edge(K, 7, {electron(5, 0.3, L, M)})};
  iron.FilterCharacteristic(0, true);
  Line<double> const& line = iron.Edges[0].Lines[0];
  EXPECT_EQ(line.From, SubshellID());
  EXPECT_EQ(line.To.Z, 0U);
  EXPECT_EQ(line.To.Shell, M1);
}

TEST(FilterCharacteristic, LeavesHalfSetLevelsAlone) {
  Material<double> iron;
  iron.Edges = {
      edge(K, 7, {electron(5, 0.3, SubshellID(26), SubshellID(0, L1))})};
  iron.FilterCharacteristic(0, true);
  Line<double> const& line = iron.Edges[0].Lines[0];
  EXPECT_EQ(line.From, SubshellID(26));
  EXPECT_EQ(line.To, SubshellID(0, L1));
}

TEST(FilterCharacteristic, KeepsTheOrderOfEdgesAndLines) {
  Material<double> iron;
  iron.Edges = {edge(L, 0.7, {photon(0.6, 0.1), photon(0.7, 0.2)}),
                edge(M, 0.1, {photon(0.05, 0.1)}),
                edge(K, 7, {photon(7, 0.1), photon(6.4, 0.3)})};
  iron.FilterCharacteristic(0.5, true);
  ASSERT_EQ(iron.Edges.size(), 2U);
  EXPECT_EQ(energiesOf(iron.Edges[0]), (std::vector<double>{0.6, 0.7}));
  EXPECT_EQ(energiesOf(iron.Edges[1]), (std::vector<double>{7, 6.4}));
}

TEST(IonizationProbabilities, RefusesAnEmptySpectrum) {
  Material<double> const iron;
  Result result{{1., {}}};
  try {
    iron.IonizationProbabilities({}, result, true);
    FAIL();
  } catch (std::runtime_error const& error) {
    EXPECT_STREQ(error.what(), "Empty input spectrum!");
  }
  EXPECT_EQ(result.size(), 1U);
}

namespace {

// Iron of density 8 with edges out of order and an absorption of 100.
Material<double> ironWithoutLevels() {
  Material<double> iron;
  iron.Density = 8;
  iron.Edges = {edge(L, 0.7), edge(K, 7.1), edge(M, 0.1)};
  iron.Absorption = constant(1, 10, 100);
  return iron;
}

}  // namespace

TEST(IonizationProbabilities, GivesAllToTheHighestEdgeBelow) {
  Material<double> const iron = ironWithoutLevels();
  Result result{{5., {}}};
  iron.IonizationProbabilities(
      {{0.05, 0.}, {0.5, 0.}, {7., 0.}, {7.1, 0.}, {20., 0.}}, result, true);
  ASSERT_EQ(result.size(), 5U);
  EXPECT_TRUE(result[0.05].empty());
  EXPECT_EQ(result[0.5], (Levels{{&iron.Edges[2], 800.}}));
  EXPECT_EQ(result[7.], (Levels{{&iron.Edges[0], 800.}}));
  EXPECT_EQ(result[7.1], (Levels{{&iron.Edges[1], 800.}}));
  EXPECT_EQ(result[20.], (Levels{{&iron.Edges[1], 800.}}));
}

TEST(IonizationProbabilities, KeepsTheEarlierOfEqualEdges) {
  Material<double> iron = ironWithoutLevels();
  iron.Edges = {edge(L, 0.7), edge(M, 0.7)};
  Result result;
  iron.IonizationProbabilities({{5., 0.}}, result, true);
  EXPECT_EQ(result[5.], (Levels{{&iron.Edges[0], 800.}}));
}

TEST(IonizationProbabilities, TakesTheDataOfEachLevel) {
  Material<double> iron = ironWithoutLevels();
  iron.PhotoIonization[K] = constant(7.1, 50, 30);
  iron.PhotoIonization[L] = constant(0.7, 8, 5);
  Result result;
  iron.IonizationProbabilities({{0.5, 0.}, {7.1, 0.}, {20., 0.}, {60., 0.}},
                               result, true);
  EXPECT_TRUE(result[0.5].empty());
  EXPECT_EQ(result[7.1],
            (Levels{{&iron.Edges[0], 40.}, {&iron.Edges[1], 240.}}));
  EXPECT_EQ(result[20.], (Levels{{&iron.Edges[1], 240.}}));
  EXPECT_TRUE(result[60.].empty());
}

TEST(IonizationProbabilities, HasNoFallbackForElectrons) {
  Material<double> iron = ironWithoutLevels();
  Result result;
  iron.IonizationProbabilities({{20., 0.}}, result, false);
  ASSERT_EQ(result.size(), 1U);
  EXPECT_TRUE(result[20.].empty());
  iron.ElectronIonization[L] = constant(0.7, 100, 2);
  iron.IonizationProbabilities({{20., 0.}}, result, false);
  EXPECT_EQ(result[20.], (Levels{{&iron.Edges[0], 16.}}));
}
