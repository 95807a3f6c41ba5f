#include "text/units.h"

#include <gtest/gtest.h>

#include "tzvio.h"

TEST(Units, dots_stay_as_they_are) {
  EXPECT_EQ(to_dots(30, TZV_MAP_DOTS), 30);
  EXPECT_EQ(to_dots(-7, TZV_MAP_DOTS), -7);
}
