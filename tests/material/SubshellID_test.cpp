#include "photarium/material/SubshellID.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "photarium/foundation/warning.h"

namespace {

std::string name(int shell) {
  std::ostringstream out;
  SubshellToString(out, static_cast<subshell>(shell));
  return out.str();
}

std::string refusal(std::string const& text) {
  try {
    StringToSubshell(text);
  } catch (warning const& refused) {
    return refused.what();
  }
  return "accepted";
}

}  // namespace

TEST(Subshell, NamesItsThirtyNineLevelsInTheOrderOfTheFormat) {
  std::string all;
  for (int shell = 1; shell <= 39; ++shell) all += name(shell) + " ";
  EXPECT_EQ(all,
            "K1 L1 L2 L3 M1 M2 M3 M4 M5 N1 N2 N3 N4 N5 N6 N7 O1 O2 O3 O4 O5 O6 "
            "O7 O8 O9 P1 P2 P3 P4 P5 P6 P7 P8 P9 P10 P11 Q1 Q2 Q3 ");
  EXPECT_EQ(K1, 1);
  EXPECT_EQ(P10, 35);
  EXPECT_EQ(Q3, 39);
}

TEST(Subshell, IsReadBackFromEachOfItsNames) {
  for (int shell = 1; shell <= 39; ++shell)
    EXPECT_EQ(StringToSubshell(name(shell)), shell);
}

TEST(Subshell, TakesTheBareKForK1ButPrintsK1) {
  EXPECT_EQ(StringToSubshell("K"), K1);
  EXPECT_EQ(StringToSubshell("K1"), K1);
  EXPECT_EQ(name(1), "K1");
}

TEST(Subshell, RefusesEveryOtherText) {
  EXPECT_EQ(refusal("L2,3"), "Unknown subshell L2,3");
  EXPECT_EQ(refusal("k1"), "Unknown subshell k1");
  EXPECT_EQ(refusal("L"), "Unknown subshell L");
  EXPECT_EQ(refusal("K1 "), "Unknown subshell K1 ");
  EXPECT_EQ(refusal(""), "Unknown subshell ");
}

TEST(Subshell, PrintsTheNumberOfALevelOutsideItsTable) {
  EXPECT_EQ(name(40), "40");
  EXPECT_EQ(name(0), "0");
  EXPECT_EQ(name(-1), "-1");
}

TEST(Subshell, PrintsIntoTheStreamThatItReturns) {
  std::ostringstream out;
  EXPECT_EQ(&SubshellToString(out, L3), &out);
}

TEST(SubshellID, IsZeroByDefault) {
  SubshellID const none;
  EXPECT_EQ(none.Z, 0U);
  EXPECT_EQ(none.Shell, 0);
}

TEST(SubshellID, SortsTheHeavierElementFirst) {
  EXPECT_TRUE(SubshellID(79, K1) < SubshellID(26, K1));
  EXPECT_FALSE(SubshellID(26, L1) < SubshellID(79, K1));
}

TEST(SubshellID, SortsTheInnerLevelOfAnElementFirst) {
  EXPECT_TRUE(SubshellID(26, K1) < SubshellID(26, L1));
  EXPECT_FALSE(SubshellID(26, L1) < SubshellID(26, L1));
}

TEST(SubshellID, ComparesBothFields) {
  EXPECT_EQ(SubshellID(26, K1), SubshellID(26, K1));
  EXPECT_NE(SubshellID(26, K1), SubshellID(26, L1));
  EXPECT_NE(SubshellID(26, K1), SubshellID(27, K1));
}
