#include "photarium/foundation/text.h"

#include <gtest/gtest.h>

TEST(ConcatPath, PutsOneSlashBetween) {
  EXPECT_EQ(ConcatPath("data/", "x"), "data/x");
  EXPECT_EQ(ConcatPath("data", "x"), "data/x");
}
