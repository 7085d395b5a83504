#include "photarium/foundation/constants.h"

#include <gtest/gtest.h>

#include <limits>

// Literals are the nearest doubles, so equality is that of all bits.

TEST(Constants, HaveTheMeasuredValues) {
  EXPECT_EQ(Constants::Na, 6.022140857e23);
  EXPECT_EQ(Constants::mn, 1.674927471e-27);
  EXPECT_EQ(Constants::u, 1.66053904e-27);
  EXPECT_EQ(Constants::h, 6.62607004e-34);
  EXPECT_EQ(Constants::c, 299792458.0);
  EXPECT_EQ(Constants::me, 9.10938356e-31);
  EXPECT_EQ(Constants::e, 1.6021766208e-19);
  EXPECT_EQ(Constants::XME, 510.99894626861027);
}

TEST(Constants, HaveTheBitsOfTheirOrderOfComputation) {
  EXPECT_EQ(Constants::PI, 3.141592653589793);
  EXPECT_EQ(Constants::PI, 4 * std::atan(1));
  EXPECT_EQ(Constants::InvPI, 0.3183098861837907);
  EXPECT_EQ(Constants::TwoPI, 6.283185307179586);
  EXPECT_EQ(Constants::HalfPI, 1.5707963267948966);
  EXPECT_EQ(Constants::DegRad, 0.017453292519943295);
  EXPECT_EQ(Constants::u0, 1.2566370614359173e-06);
  EXPECT_EQ(Constants::e0, 8.854187817620389e-12);
  EXPECT_EQ(Constants::a, 0.007297352566206498);
  EXPECT_EQ(Constants::r0, 2.8179403220102275e-13);
  EXPECT_EQ(Constants::r02, 7.940787658411104e-26);
}

TEST(Constants, AreThereBeforeAnyInitialiserRuns) {
  static_assert(Constants::r02 > 7.9e-26 && Constants::r02 < 8e-26);
  static_assert(Constants::DegRad * 180 == Constants::PI);
}

TEST(beta, IsZeroAtRest) {
  EXPECT_EQ(beta(0.), 0);
  EXPECT_EQ(beta2(0.), 0);
}

TEST(beta, TendsToOne) {
  EXPECT_NEAR(beta(1e9), 1, 1e-12);
  EXPECT_EQ(beta2(std::numeric_limits<double>::infinity()), 1);
  EXPECT_LT(beta(1e6), 1);
}

TEST(beta, FollowsFromTheKineticEnergy) {
  // At one and at three rest energies g is 2 and 4.
  EXPECT_DOUBLE_EQ(beta2(Constants::XME), 0.75);
  EXPECT_DOUBLE_EQ(beta(3 * Constants::XME), std::sqrt(15.) / 4);
  EXPECT_EQ(beta2(100.),
            1 - 1 / ((100 / Constants::XME + 1) * (100 / Constants::XME + 1)));
  EXPECT_EQ(beta(100.), std::sqrt(beta2(100.)));
}
