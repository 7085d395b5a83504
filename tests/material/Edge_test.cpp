#include "photarium/material/Edge.h"

#include <gtest/gtest.h>

#include "photarium/material/Line.h"

TEST(Edge, HasAJumpRatioOfOneByDefault) {
  Edge<double> const edge;
  EXPECT_EQ(edge.ID, SubshellID());
  EXPECT_EQ(edge.Energy, 0);
  EXPECT_EQ(edge.Yield, 0);
  EXPECT_EQ(edge.Jump, 1);
  EXPECT_TRUE(edge.Lines.empty());
}

TEST(Edge, KeepsWhatItIsMadeOf) {
  Edge<double> const edge(SubshellID(26, K1), 7.112, 0.35, 8.);
  EXPECT_EQ(edge.ID, SubshellID(26, K1));
  EXPECT_EQ(edge.Energy, 7.112);
  EXPECT_EQ(edge.Yield, 0.35);
  EXPECT_EQ(edge.Jump, 8.);
  EXPECT_TRUE(edge.Lines.empty());
}

TEST(Edge, CopiesItsLinesDeeply) {
  Edge<double> edge(SubshellID(26, K1), 7.112, 0.35, 8.);
  edge.Lines.emplace_back(6.404, 0.2, "K-L3", true);
  Edge<double> const copy = edge;
  edge.Lines[0].Label = "changed";
  ASSERT_EQ(copy.Lines.size(), 1U);
  EXPECT_EQ(copy.Lines[0].Label, "K-L3");
}

TEST(Line, IsAPhotonByDefault) {
  Line<double> const line;
  EXPECT_EQ(line.Energy, 0);
  EXPECT_EQ(line.Intensity, 0);
  EXPECT_EQ(line.Label, "");
  EXPECT_TRUE(line.Radiative);
  EXPECT_EQ(line.From, SubshellID());
  EXPECT_EQ(line.To, SubshellID());
}

TEST(Line, MayComeFromAnUnknownLevel) {
  Line<double> const line(0.9, 0.01, "L", true);
  EXPECT_EQ(line.Energy, 0.9);
  EXPECT_EQ(line.Intensity, 0.01);
  EXPECT_EQ(line.Label, "L");
  EXPECT_EQ(line.From, SubshellID());
}

TEST(Line, NamesTheLevelThatFillsTheVacancy) {
  Line<double> const line(6.404, 0.2, "K-L3", SubshellID(26, L3), true);
  EXPECT_EQ(line.From, SubshellID(26, L3));
  EXPECT_EQ(line.To, SubshellID());
  EXPECT_TRUE(line.Radiative);
}

TEST(Line, NamesBothLevelsOfANonRadiativeTransition) {
  Line<double> const line(5.4, 0.3, "K1-L2-L3", SubshellID(26, L2),
                          SubshellID(26, L3), false);
  EXPECT_EQ(line.From, SubshellID(26, L2));
  EXPECT_EQ(line.To, SubshellID(26, L3));
  EXPECT_FALSE(line.Radiative);
}
