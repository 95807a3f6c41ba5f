#include "bit_image.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace virtual_printer {
namespace {

using namespace std::string_literals;

std::size_t ink_of(const DotImage& image) {
  std::size_t dots = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) dots += image.ink(x, y) ? 1U : 0U;
  }
  return dots;
}

// Of an image to keep.
std::string kept(int across, int bands) {
  return {static_cast<char>(across), static_cast<char>(across / 256), static_cast<char>(bands),
          static_cast<char>(bands / 256)};
}

TEST(BitImage, columns_go_right_and_their_bytes_down) {
  // Two bands: in column 0 the topmost dot and the lowest, in column 7 the ninth from the top.
  const DotImage image = image_in("\x01\x02\x80\x01"s + std::string(12, '\0') + "\x00\x80"s);
  DotImage expected(8, 16);
  expected.set_ink(0, 0);
  expected.set_ink(0, 15);
  expected.set_ink(7, 8);
  EXPECT_EQ(image, expected);
}

TEST(BitImage, length_is_known_from_the_sizes) {
  EXPECT_EQ(length_of_image(""), 2U);
  EXPECT_EQ(length_of_image("\x30"), 2U);
  EXPECT_EQ(length_of_image("\x30\x1e"), 2U + 11520U);
  EXPECT_EQ(length_of_image("\xff\xff"), 2U + 255U * 8U * 255U);
}

TEST(BitImage, without_width_or_height_is_none) {
  EXPECT_EQ(length_of_image("\0\x01"s), std::nullopt);
  EXPECT_EQ(length_of_image("\x01\0"s), std::nullopt);
  for (const std::string& size : {kept(0, 1), kept(1, 0), kept(1024, 1), kept(1, 289)}) {
    EXPECT_EQ(length_of_images("\x01" + size), std::nullopt);
  }
}

TEST(BitImage, length_of_several_is_known_one_after_another) {
  EXPECT_EQ(length_of_images(""), 1U);
  EXPECT_EQ(length_of_images("\0"s), 1U);
  const std::string first = "\x02" + kept(1, 1);
  EXPECT_EQ(length_of_images(first), 1U + 4 + 8 + 4);
  const std::string second = first + std::string(8, '\x01') + kept(300, 2);
  EXPECT_EQ(length_of_images(second), 1U + 4 + 8 + 4 + 4800);
}

TEST(BitImage, more_than_the_memory_holds_is_refused_at_the_size_that_is_too_much) {
  std::string block = "\x02" + kept(1023, 288);
  EXPECT_EQ(length_of_images(block), 1U + 4 + 2356992 + 4);
  block += std::string(2356992, '\0') + kept(1023, 288);
  EXPECT_EQ(length_of_images(block), std::nullopt);
}

TEST(BitImage, kept_ones_count_from_one) {
  const std::string block =
      "\x02" + kept(1, 1) + std::string(8, '\x01') + kept(2, 1) + std::string(16, '\xff');
  EXPECT_EQ(image_in(block, 0), std::nullopt);
  EXPECT_EQ(image_in(block, 1)->width(), 8);
  EXPECT_EQ(ink_of(*image_in(block, 1)), 8U);
  EXPECT_EQ(image_in(block, 2)->width(), 16);
  EXPECT_EQ(ink_of(*image_in(block, 2)), 16U * 8);
  EXPECT_EQ(image_in(block, 3), std::nullopt);
  EXPECT_EQ(image_in("\0"s, 1), std::nullopt);
}

TEST(BitImage, enlarged_dots_double_in_either_direction) {
  DotImage image(3, 2);
  image.set_ink(1, 1);
  EXPECT_EQ(enlarged(image, 0), image);
  DotImage wide(6, 2);
  wide.fill(2, 1, 2, 1);
  EXPECT_EQ(enlarged(image, 1), wide);
  DotImage high(3, 4);
  high.fill(1, 2, 1, 2);
  EXPECT_EQ(enlarged(image, 2), high);
  DotImage both(6, 4);
  both.fill(2, 2, 2, 2);
  EXPECT_EQ(enlarged(image, 3), both);
}

}  // namespace
}  // namespace virtual_printer
