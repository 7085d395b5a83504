#include "photarium/material/Material.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "photarium/foundation/constants.h"
#include "photarium/foundation/elements.h"

namespace {

using Curve = AttenuationCoeff<double>;

// Opens the operations that readers use.
struct Probe : Material<double> {
  using Material<double>::initDataVec;
  using Material<double>::initPairData;
  using Material<double>::Stretch;
};

Curve constant(double value) {
  return Curve({{{{1., value}, {10., value}}, Curve::LinLin, false}}, 1.,
               /*linear=*/true);
}

Material<double> named(std::string const& name) {
  return {name, 0, 0, 0};
}

}  // namespace

TEST(Material, FindsAnElementByTheTextOfItsNumber) {
  Material<double> const iron = named("26");
  EXPECT_EQ(iron.Name, "Fe");
  EXPECT_EQ(iron.Z, 26);
  EXPECT_EQ(iron.Density, Densities[26]);
  EXPECT_EQ(iron.A, MassNumbers[26]);
}

TEST(Material, FindsAnElementByItsSymbol) {
  Material<double> const lead = named("Pb");
  EXPECT_EQ(lead.Z, 82);
  EXPECT_EQ(lead.Density, Densities[82]);
  EXPECT_EQ(lead.A, MassNumbers[82]);
}

TEST(Material, FindsAnElementByItsNumber) {
  Material<double> const tungsten(74);
  EXPECT_EQ(tungsten.Name, "W");
  EXPECT_EQ(tungsten.Density, Densities[74]);
}

TEST(Material, FindsEverySymbolOfTheTable) {
  for (unsigned int z = 1; z < ElementsCount; ++z)
    EXPECT_EQ(named(Elements[z]).Z, z);
}

TEST(Material, IsNothingByDefault) {
  Material<double> const nothing;
  EXPECT_EQ(nothing.Name, "");
  EXPECT_EQ(nothing.Z, 0);
  EXPECT_EQ(nothing.A, 0);
  EXPECT_EQ(nothing.Density, 0);
  ASSERT_EQ(nothing.EnergyLoss.size(), 1U);
  EXPECT_EQ(nothing.EnergyLoss.begin()->first.J, 0);
  EXPECT_EQ(nothing.EnergyLoss.begin()->second, 1);
}

TEST(Material, LeavesANameAloneThatIsNoElement) {
  Material<double> const brass = named("CuZn");
  EXPECT_EQ(brass.Name, "CuZn");
  EXPECT_EQ(brass.Z, 0);
}

TEST(Material, TakesSymbolsAsTheyAreWritten) {
  EXPECT_EQ(named("fe").Z, 0);
  EXPECT_EQ(named(" Fe").Z, 0);
  EXPECT_EQ(named("Fe 1").Z, 0);
}

TEST(Material, TakesANumberWithBlanksAroundItAndTextBehindIt) {
  EXPECT_EQ(named(" 26\t").Name, "Fe");
  EXPECT_EQ(named("26.9").Name, "Fe");
  EXPECT_EQ(named("26x").Name, "Fe");
}

TEST(Material, TakesTwoNumbersForACompositeAndZeroForAName) {
  EXPECT_EQ(named("26 29").Name, "26 29");
  EXPECT_EQ(named("0").Name, "0");
  EXPECT_EQ(named("0").Z, 0);
}

TEST(Material, KeepsTheNameOfANumberBeyondTheTable) {
  Material<double> const unknown = named("119");
  EXPECT_EQ(unknown.Name, "119");
  EXPECT_EQ(unknown.Z, 119);
  EXPECT_EQ(unknown.Density, 0);
  EXPECT_EQ(named("-1").Z, 4294967295.);  // as a stream reads it
}

TEST(Material, LooksUpTheWholePartOfAFractionalNumber) {
  Material<double> const mean(26.4);
  EXPECT_EQ(mean.Name, "Fe");
  EXPECT_EQ(mean.Z, 26.4);
  EXPECT_EQ(mean.Density, Densities[26]);
}

TEST(Material, LooksUpNothingForANumberBelowOne) {
  EXPECT_EQ(Material<double>(0.5).Name, "");
  EXPECT_EQ(Material<double>(-5.).Name, "");
  EXPECT_EQ(Material<double>(1e300).Name, "");
}

TEST(Material, LooksUpTheRowOfNoElementBetweenZeroAndOne) {
  Material<double> const nothing(.5, -1, -2);
  EXPECT_EQ(nothing.Density, Densities[0]);
  EXPECT_EQ(nothing.A, MassNumbers[0]);
  EXPECT_EQ(Material<double>(0., -1, -2).Density, -2);
  EXPECT_EQ(Material<double>(0., -1, -2).A, -1);
}

TEST(Material, KeepsGivenValues) {
  Material<double> const enriched("Fe", 0, 56.9, 7.5);
  EXPECT_EQ(enriched.A, 56.9);
  EXPECT_EQ(enriched.Density, 7.5);
}

TEST(Material, LooksUpANegativeDensityAndWeight) {
  Material<double> const iron("Fe", 0, -1, -1);
  EXPECT_EQ(iron.A, MassNumbers[26]);
  EXPECT_EQ(iron.Density, Densities[26]);
}

TEST(Material, StartsWithTheStoppingConstantsOfTheFormula) {
  Material<double> const iron = named("Fe");
  ASSERT_EQ(iron.EnergyLoss.size(), 1U);
  EXPECT_EQ(iron.EnergyLoss.begin()->first.J,
            EnergyLossConstants<double>(26.).J);
}

TEST(Material, KeepsStoppingConstantsWhenSearchedAgain) {
  Material<double> material = named("Fe");
  material.Name = "29";
  material.search();
  EXPECT_EQ(material.Name, "Cu");
  EXPECT_EQ(material.EnergyLoss.begin()->first.J,
            EnergyLossConstants<double>(26.).J);
}

TEST(Material, CopiesDeeply) {
  Material<double> material = named("Fe");
  material.Absorption = constant(2);
  material.PhotoIonization[SubshellID(26, K1)] = constant(3);
  Material<double> const copy = material;
  material.Absorption *= 10;
  material.PhotoIonization[SubshellID(26, K1)] *= 10;
  EXPECT_EQ(copy.Absorption(5, false), 2);
  EXPECT_EQ(copy.PhotoIonization.begin()->second(5, false), 3);
}

TEST(Material, LosesItsCurvesAloneWhenAssignedToItself) {
  Material<double> material = named("Fe");
  material.Absorption = constant(2);
  material.PhotoIonization[SubshellID(26, K1)] = constant(3);
  Material<double> const& itself = material;
  material = itself;
  EXPECT_TRUE(material.Absorption.empty());
  EXPECT_EQ(material.Name, "Fe");
  EXPECT_EQ(material.EnergyLoss.size(), 1U);
  EXPECT_EQ(material.PhotoIonization.begin()->second(5, false), 3);
}

TEST(Material, BeginsACurveWithNothingUpToItsThreshold) {
  std::vector<Probe::Stretch> data;
  Probe::initDataVec(data, 7.);
  ASSERT_EQ(data.size(), 1U);
  EXPECT_EQ(data[0].first, (std::multimap<double, double>{{0, 0}, {7, 0}}));
  EXPECT_EQ(data[0].second, Curve::Const);
  EXPECT_FALSE(data[0].third);
}

TEST(Material, BeginsPairProductionAboveTwoElectronMasses) {
  std::vector<Probe::Stretch> data;
  Probe::initPairData(data);
  ASSERT_EQ(data.size(), 1U);
  EXPECT_EQ(data[0].first.rbegin()->first, 2.2 * Constants::XME);
}
