#include "image/pixels.h"

#include <gtest/gtest.h>

#include "pictures/bmp.h"

namespace {

TEST(Pixels, grey_up_to_127_is_black) {
  EXPECT_TRUE(is_black_grey(0));
  EXPECT_TRUE(is_black_grey(127));
  EXPECT_FALSE(is_black_grey(128));
  EXPECT_FALSE(is_black_grey(255));
}

TEST(Pixels, low_nibble_up_to_7_is_black_whatever_the_high_one) {
  for (unsigned high = 0; high < 16; ++high) {
    for (unsigned low = 0; low < 16; ++low) {
      EXPECT_EQ(is_black_low_nibble(static_cast<std::uint8_t>(16 * high + low)), low <= 7);
    }
  }
}

TEST(Pixels, colours_sum_to_127_or_128) {
  // 29.07 + 0 + 0.
  EXPECT_TRUE(is_black_rgb(255, 0, 0));
  // 149.685.
  EXPECT_FALSE(is_black_rgb(0, 255, 0));
  // 76.245.
  EXPECT_TRUE(is_black_rgb(0, 0, 255));
  // 127 x (0.114 + 0.587 + 0.299) = 127.
  EXPECT_TRUE(is_black_rgb(127, 127, 127));
  EXPECT_FALSE(is_black_rgb(129, 129, 129));
  // 0 + 127.966 + 0 and 0.114 + 127.966 = 128.08.
  EXPECT_TRUE(is_black_rgb(0, 218, 0));
  EXPECT_FALSE(is_black_rgb(1, 218, 0));
}

// The doubles of the weights are a little less than the decimals: 127.99..., cut off to 127.
TEST(Pixels, mid_grey_is_black) {
  EXPECT_TRUE(is_black_rgb(128, 128, 128));
}

TEST(Pixels, whole_numbers_decide_every_colour_as_the_exact_sum) {
  int exact = 0;
  for (unsigned b0 = 0; b0 < 256; ++b0) {
    for (unsigned b1 = 0; b1 < 256; ++b1) {
      for (unsigned b2 = 0; b2 < 256; ++b2) {
        const bool black =
            is_black_rgb(static_cast<std::uint8_t>(b0), static_cast<std::uint8_t>(b1),
                         static_cast<std::uint8_t>(b2));
        ASSERT_EQ(black, pictures::black_by_exact_sum(b0, b1, b2)) << b0 << ' ' << b1 << ' ' << b2;
        if (114 * b0 + 587 * b1 + 299 * b2 != 128000) continue;
        ++exact;
        ASSERT_TRUE(black) << b0 << ' ' << b1 << ' ' << b2;
      }
    }
  }
  EXPECT_EQ(exact, 111);
}

TEST(Pixels, of_16_bits_sum_to_16_or_17) {
  // Blue 31 x 0.114 = 3, green 0, red 31 x 0.229 = 7: black.
  EXPECT_TRUE(is_black_16(0xf8, 0x1f));
  // Green 8 x 3 = 24 x 0.587 = 14: with blue 0 and red 9 x 0.229 = 2, 16; with red 14, 3, 17.
  EXPECT_TRUE(is_black_16(0x03, 0x09));
  EXPECT_FALSE(is_black_16(0x03, 0x0e));
  // Each product is cut off by itself: 2.964 + 14.088 + 0.916 would be 17.9.
  EXPECT_TRUE(is_black_16(26 * 8 + 3, 0x04));
}

TEST(Pixels, of_16_bits_have_a_red_weight_of_0_229) {
  // Green 24: 14. Red 13 x 0.229 = 2.98, 2: 16. 13 x 0.299 = 3.9, 3 would make it 17.
  EXPECT_TRUE(is_black_16(0x03, 0x0d));
}

// 0x80 >> 5 is -4, whose low six bits are 3C = 60: 60 x 0.587 = 35.
TEST(Pixels, of_16_bits_top_bit_of_the_second_byte_spreads_over_the_green) {
  EXPECT_FALSE(is_black_16(0x00, 0x80));
  // Without the top bit: 3 x 0.587 = 1.
  EXPECT_TRUE(is_black_16(0x00, 0x60));
}

TEST(Pixels, of_16_bits_all_as_the_three_products_say) {
  for (unsigned first = 0; first < 256; ++first) {
    for (unsigned second = 0; second < 256; ++second) {
      const auto f = static_cast<std::uint8_t>(first);
      const auto s = static_cast<std::uint8_t>(second);
      ASSERT_EQ(is_black_16(f, s), pictures::black_by_three_products(f, s))
          << first << ' ' << second;
    }
  }
}

}  // namespace
