#include "text/units.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

#include "byte_strings.h"
#include "tzvio.h"

namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();

struct LengthRow {
  const char* name;
  int32_t map_mode;
  int32_t length;
  int32_t dots;
};

void PrintTo(const LengthRow& row, std::ostream* out) {
  *out << row.name;
}

class Units : public testing::TestWithParam<LengthRow> {};

TEST_P(Units, length_in_dots) {
  const LengthRow& row = GetParam();
  EXPECT_EQ(to_dots(row.length, row.map_mode), row.dots)
      << row.name << ": length " << row.length << ", unit " << row.map_mode;
}

INSTANTIATE_TEST_SUITE_P(dots, Units,
                         testing::Values(LengthRow{"zero_dots", TZV_MAP_DOTS, 0, 0},
                                         LengthRow{"dots_stay_as_they_are", TZV_MAP_DOTS, 30, 30},
                                         LengthRow{"negative_dots", TZV_MAP_DOTS, -7, -7},
                                         LengthRow{"most_dots", TZV_MAP_DOTS, kMax, kMax},
                                         LengthRow{"fewest_dots", TZV_MAP_DOTS, kMin, kMin}),
                         RowName());

// A dot is 203.04 / 25.4 = 7.99370 twips.
INSTANTIATE_TEST_SUITE_P(
    twips, Units,
    testing::Values(LengthRow{"zero_twips", TZV_MAP_TWIPS, 0, 0},
                    LengthRow{"twips_of_0_375_dots", TZV_MAP_TWIPS, 3, 0},
                    LengthRow{"twips_of_0_5004_dots", TZV_MAP_TWIPS, 4, 1},
                    LengthRow{"twips_of_1_376_dots", TZV_MAP_TWIPS, 11, 1},
                    LengthRow{"twips_of_1_501_dots", TZV_MAP_TWIPS, 12, 2},
                    LengthRow{"twips_of_158_4998_dots", TZV_MAP_TWIPS, 1267, 158},
                    LengthRow{"twips_of_476_5002_dots", TZV_MAP_TWIPS, 3809, 477},
                    LengthRow{"twips_of_317_5_dots_go_up", TZV_MAP_TWIPS, 2538, 318},
                    LengthRow{"a_sixth_of_an_inch", TZV_MAP_TWIPS, 240, 30},
                    LengthRow{"an_inch_in_twips", TZV_MAP_TWIPS, 1440, 180},
                    LengthRow{"most_twips", TZV_MAP_TWIPS, kMax, 268646989},
                    LengthRow{"fewest_twips", TZV_MAP_TWIPS, kMin, -268646988}),
    RowName());

// 124362 twips are 15557.5 dots, which arithmetic in doubles sees as a little less; 246186 twips
// are 30797.5, lost when only the millimetres are rounded to a double on the way.
INSTANTIATE_TEST_SUITE_P(
    twips_in_extended_precision, Units,
    testing::Values(LengthRow{"half_a_dot_that_doubles_lose", TZV_MAP_TWIPS, 124362, 15558},
                    LengthRow{"negative_half_that_doubles_lose", TZV_MAP_TWIPS, -124362, -15557},
                    LengthRow{"half_that_millimetres_in_doubles_lose", TZV_MAP_TWIPS, 246186,
                              30798},
                    LengthRow{"another_half_that_doubles_lose", TZV_MAP_TWIPS, 230958, 28893}),
    RowName());

// The half is added, then the fraction cut off towards zero: so negative lengths come out one dot
// nearer to zero than rounding would give.
INSTANTIATE_TEST_SUITE_P(
    negative_lengths, Units,
    testing::Values(LengthRow{"minus_0_125_dots", TZV_MAP_TWIPS, -1, 0},
                    LengthRow{"minus_0_5004_dots", TZV_MAP_TWIPS, -4, 0},
                    LengthRow{"minus_1_376_dots", TZV_MAP_TWIPS, -11, 0},
                    LengthRow{"minus_1_501_dots", TZV_MAP_TWIPS, -12, -1},
                    LengthRow{"minus_317_5_dots", TZV_MAP_TWIPS, -2538, -317},
                    LengthRow{"minus_24_4993_dots", TZV_MAP_ENGLISH, -136, -23},
                    LengthRow{"minus_102_5007_dots", TZV_MAP_ENGLISH, -569, -102},
                    LengthRow{"minus_0_496_dots", TZV_MAP_METRIC, -7, 0},
                    LengthRow{"minus_0_567_dots", TZV_MAP_METRIC, -8, 0},
                    LengthRow{"minus_9_504_dots", TZV_MAP_METRIC, -134, -9},
                    LengthRow{"minus_10_496_dots", TZV_MAP_METRIC, -148, -9}),
    RowName());

// A dot is 705 / 127 = 5.55118 thousandths of an inch.
INSTANTIATE_TEST_SUITE_P(
    thousandths_of_an_inch, Units,
    testing::Values(LengthRow{"zero_inches", TZV_MAP_ENGLISH, 0, 0},
                    LengthRow{"inches_of_0_360_dots", TZV_MAP_ENGLISH, 2, 0},
                    LengthRow{"inches_of_0_540_dots", TZV_MAP_ENGLISH, 3, 1},
                    LengthRow{"inches_of_24_4993_dots", TZV_MAP_ENGLISH, 136, 24},
                    LengthRow{"inches_of_102_5007_dots", TZV_MAP_ENGLISH, 569, 103},
                    LengthRow{"inches_of_151_4993_dots", TZV_MAP_ENGLISH, 841, 151},
                    LengthRow{"inches_of_229_5007_dots", TZV_MAP_ENGLISH, 1274, 230},
                    LengthRow{"a_thousand_thousandths", TZV_MAP_ENGLISH, 1000, 180},
                    LengthRow{"most_inches", TZV_MAP_ENGLISH, kMax, 386851664},
                    LengthRow{"fewest_inches", TZV_MAP_ENGLISH, kMin, -386851663}),
    RowName());

// A dot is 14.1 hundredths of a millimetre.
INSTANTIATE_TEST_SUITE_P(
    hundredths_of_a_millimetre, Units,
    testing::Values(LengthRow{"zero_millimetres", TZV_MAP_METRIC, 0, 0},
                    LengthRow{"millimetres_of_0_496_dots", TZV_MAP_METRIC, 7, 0},
                    LengthRow{"millimetres_of_0_567_dots", TZV_MAP_METRIC, 8, 1},
                    LengthRow{"millimetres_of_9_504_dots", TZV_MAP_METRIC, 134, 10},
                    LengthRow{"millimetres_of_10_496_dots", TZV_MAP_METRIC, 148, 10},
                    LengthRow{"ten_dots_in_millimetres", TZV_MAP_METRIC, 141, 10},
                    LengthRow{"ten_millimetres", TZV_MAP_METRIC, 1000, 71},
                    LengthRow{"most_millimetres", TZV_MAP_METRIC, kMax, 152303805},
                    LengthRow{"fewest_millimetres", TZV_MAP_METRIC, kMin, -152303804}),
    RowName());

INSTANTIATE_TEST_SUITE_P(no_such_unit, Units,
                         testing::Values(LengthRow{"unit_4", 4, 1000, 0},
                                         LengthRow{"unit_5", 5, -1000, 0},
                                         LengthRow{"unit_minus_1", -1, 1000, 0},
                                         LengthRow{"unit_256", 256, 1000, 0},
                                         LengthRow{"greatest_unit", kMax, 1000, 0},
                                         LengthRow{"smallest_unit", kMin, 1000, 0}),
                         RowName());

TEST(WrappingNumbers, stay_as_they_are_within_32_bits) {
  static_assert(wrap32(0) == 0);
  static_assert(wrap32(-1) == -1);
  static_assert(wrap32(2147483647L) == kMax);
  static_assert(wrap32(-2147483647L - 1) == kMin);
}

TEST(WrappingNumbers, keep_the_low_32_bits_of_a_longer_number) {
  if constexpr (sizeof(long) > sizeof(int32_t)) {
    long two_to_the_32 = 1;
    for (int i = 0; i < 32; ++i) two_to_the_32 *= 2;
    EXPECT_EQ(wrap32(two_to_the_32), 0);
    EXPECT_EQ(wrap32(two_to_the_32 + 42), 42);
    EXPECT_EQ(wrap32(two_to_the_32 / 2), kMin);
    EXPECT_EQ(wrap32(-two_to_the_32 - 1), -1);
  }
}

TEST(WrappingNumbers, sums_wrap) {
  static_assert(add_wrapping(2, 3) == 5);
  static_assert(add_wrapping(2, -3) == -1);
  static_assert(add_wrapping(kMax, 1) == kMin);
  static_assert(add_wrapping(kMin, -1) == kMax);
  static_assert(add_wrapping(kMin, kMin) == 0);
  static_assert(add_wrapping(kMax, kMax) == -2);
}

}  // namespace
