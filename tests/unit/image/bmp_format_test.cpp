#include "image/bmp_format.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::size_t kEnough = kMost;
constexpr std::uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};

Measured measured_with_fault(std::int32_t width, std::int32_t height, std::uint16_t bits,
                             std::size_t bitsSize = kEnough) {
  BITMAPINFOHEADER header{};
  header.biWidth = width;
  header.biHeight = height;
  header.biBitCount = bits;
  return measure(header, bitsSize);
}

std::optional<Geometry> measured(std::int32_t width, std::int32_t height, std::uint16_t bits,
                                 std::size_t bitsSize = kEnough) {
  return measured_with_fault(width, height, bits, bitsSize).geometry;
}

TEST(Measure, units_of_eight_dots_are_rounded_up_and_at_least_one) {
  const std::pair<std::int32_t, std::int32_t> rows[] = {
      {1, 1}, {7, 1}, {8, 1}, {9, 2}, {15, 2}, {16, 2}, {17, 3}, {384, 48}, {2048, 256}};
  for (const auto& [dots, units] : rows) {
    EXPECT_EQ(measured(dots, 1, 1)->newX, units) << dots;
    EXPECT_EQ(measured(1, dots, 1)->newY, units) << dots;
  }
  for (const std::int32_t height : {0, -1, -8, -9, -4096, kLeast}) {
    EXPECT_EQ(measured(1, height, 1)->newY, 1) << height;
    EXPECT_EQ(measured(1, height, 1)->rows(), 0) << height;
  }
}

struct Stride {
  std::uint16_t bits;
  std::int32_t width, bytes;
};

TEST(Measure, rows_are_padded_to_four_bytes) {
  const Stride rows[] = {{1, 1, 4},   {1, 32, 4},  {1, 33, 8},  {4, 1, 4},  {4, 7, 4},  {4, 8, 4},
                         {4, 9, 8},   {16, 1, 4},  {16, 2, 4},  {16, 3, 8}, {24, 1, 4}, {24, 2, 8},
                         {24, 3, 12}, {24, 4, 12}, {24, 5, 16}, {32, 1, 4}, {32, 3, 12}};
  for (const Stride& row : rows) {
    EXPECT_EQ(measured(row.width, 1, row.bits)->iRowBytes, row.bytes)
        << row.bits << " bits, " << row.width;
  }
}

TEST(Measure, rows_of_8_bits_are_not_padded) {
  for (const std::int32_t width : {1, 2, 3, 4, 5, 10, 33}) {
    EXPECT_EQ(measured(width, 1, 8)->iRowBytes, width);
  }
}

// Nine dots: rows of 4, 9, 9, 20, 28 and 36 bytes, for 16 rows.
TEST(Measure, buffer_of_one_bit_rows) {
  const std::pair<std::uint16_t, std::size_t> rows[] = {{1, 64},   {4, 144},  {8, 144},
                                                        {16, 320}, {24, 448}, {32, 576}};
  for (const auto& [bits, size] : rows) EXPECT_EQ(measured(9, 9, bits)->tmpbitsSize, size) << bits;
}

TEST(Measure, other_depths_are_refused) {
  for (int bits = 0; bits <= 65535; ++bits) {
    const bool known =
        bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
    EXPECT_EQ(measured(1, 1, static_cast<std::uint16_t>(bits)).has_value(), known) << bits;
  }
}

TEST(Measure, a_width_of_0_or_below_is_refused) {
  for (const std::int32_t width : {0, -1, -8, kLeast}) {
    EXPECT_FALSE(measured(width, 1, 24).has_value()) << width;
  }
}

TEST(Measure, a_row_that_the_pixels_do_not_hold_is_refused) {
  const std::pair<std::uint16_t, std::size_t> rows[] = {{1, 12},  {4, 24},  {8, 27},
                                                        {16, 60}, {24, 84}, {32, 108}};
  for (const auto& [bits, size] : rows) {
    EXPECT_TRUE(measured(9, 3, bits, size).has_value()) << bits;
    EXPECT_FALSE(measured(9, 3, bits, size - 1).has_value()) << bits;
    EXPECT_TRUE(measured(9, -3, bits, 0).has_value()) << bits;
  }
}

TEST(Measure, buffers_beyond_31_bits_are_refused) {
  // Rows of 2^26 x 4 = 2^28 bytes, for eight rows: 2^31. One dot less: 4 bytes less for each.
  EXPECT_FALSE(measured(1 << 26, -1, 32).has_value());
  EXPECT_TRUE(measured((1 << 26) - 1, -1, 32).has_value());
  // 4 bytes a row, and 2^29 rows or eight less.
  EXPECT_FALSE(measured(32, 1 << 29, 1).has_value());
  EXPECT_TRUE(measured(32, (1 << 29) - 8, 1).has_value());
  for (const std::uint16_t bits : kDepths) {
    EXPECT_FALSE(measured(kMost, kMost, bits).has_value()) << bits;
    EXPECT_FALSE(measured(1, kMost, bits).has_value()) << bits;
    EXPECT_FALSE(measured(kMost, 1, bits).has_value()) << bits;
    EXPECT_FALSE(measured(kMost, kLeast, bits).has_value()) << bits;
    // 2^13 x 2^16 bytes in one bit.
    EXPECT_EQ(measured(65536, 65536, bits).has_value(), bits == 1) << bits;
  }
}

TEST(Measure, says_what_is_wrong) {
  EXPECT_EQ(measured_with_fault(9, 3, 1).fault, BmpFault::kNone);
  EXPECT_EQ(measured_with_fault(9, 3, 2).fault, BmpFault::kDepth);
  EXPECT_EQ(measured_with_fault(0, 3, 1).fault, BmpFault::kWidth);
  EXPECT_EQ(measured_with_fault(1 << 26, 1, 32).fault, BmpFault::kTooLarge);
  EXPECT_EQ(measured_with_fault(9, 3, 1, 11).fault, BmpFault::kRowsMissing);
}

}  // namespace
