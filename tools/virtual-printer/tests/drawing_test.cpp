#include "drawing.h"

#include <gtest/gtest.h>

#include <string>

#include "paper.h"
#include "png.h"

namespace virtual_printer {
namespace {

constexpr int kTop = kPaperMarginDots;
constexpr int kBaseline = kTop + kFontA.ascent_dots;
constexpr int kCellHeight = kFontA.ascent_dots + kFontA.descent_dots;

struct Box {
  int left, top, right, bottom;  // right and bottom lie just outside
};

int ink_in(const DotImage& image, const Box& box) {
  int dots = 0;
  for (int y = box.top; y < box.bottom; ++y) {
    for (int x = box.left; x < box.right; ++x) dots += image.ink(x, y) ? 1 : 0;
  }
  return dots;
}

int area_of(const Box& box) {
  return (box.right - box.left) * (box.bottom - box.top);
}

// Every dot inside is ink and no dot outside.
void expect_exactly(const DotImage& image, const Box& box) {
  EXPECT_EQ(ink_in(image, box), area_of(box));
  EXPECT_EQ(ink_in(image, {0, 0, image.width(), image.height()}), area_of(box));
}

std::string with(std::string_view style, const std::string& text) {
  return std::string(style) + text;
}

TEST(Drawing, paper_is_640_dots_wide_and_as_long_as_its_feeds) {
  const DotImage image = draw(printed("a\nb\n"));
  EXPECT_EQ(image.width(), 640);
  EXPECT_EQ(image.height(), 2 * 30 + 2 * kPaperMarginDots);
}

TEST(Drawing, reversed_blank_is_a_solid_cell) {
  expect_exactly(draw(printed(with(kReverseOn, " "))), {0, kTop, 15, kTop + 24});
}

TEST(Drawing, reversed_blanks_join_over_the_whole_line) {
  expect_exactly(draw(printed(with(kReverseOn, std::string(42, ' ')))),
                 {0, kTop, 640, kTop + kCellHeight});
}

TEST(Drawing, reversed_blanks_of_font_b_join_over_the_whole_line) {
  expect_exactly(draw(printed(with(kReverseOn, with(kFontBOn, std::string(56, ' '))))),
                 {0, kTop, 640, kTop + 17});
}

TEST(Drawing, third_cell_stands_at_its_exact_columns) {
  expect_exactly(draw(printed("  " + with(kReverseOn, " "))), {30, kTop, 46, kTop + 24});
}

TEST(Drawing, right_aligned_cell_ends_at_the_paper_edge) {
  expect_exactly(draw(printed(with(kRight, with(kReverseOn, " ")))), {625, kTop, 640, kTop + 24});
}

TEST(Drawing, double_size_doubles_the_cell) {
  expect_exactly(draw(printed(with(kReverseOn, with(kDoubleSizeOn, " ")))),
                 {0, kTop, 30, kTop + 48});
}

TEST(Drawing, underline_has_one_dot_or_two) {
  expect_exactly(draw(printed(with(kUnderlineOne, " "))), {0, kBaseline + 2, 15, kBaseline + 3});
  expect_exactly(draw(printed(with(kUnderlineTwo, " "))), {0, kBaseline + 2, 15, kBaseline + 4});
}

TEST(Drawing, underline_of_a_line_has_no_gap) {
  expect_exactly(draw(printed(with(kUnderlineOne, std::string(42, ' ')))),
                 {0, kBaseline + 2, 640, kBaseline + 3});
}

TEST(Drawing, reversed_underline_is_white) {
  const DotImage image = draw(printed(with(kReverseOn, with(kUnderlineOne, " "))));
  EXPECT_EQ(ink_in(image, {0, kBaseline + 2, 15, kBaseline + 3}), 0);
  EXPECT_EQ(ink_in(image, {0, 0, 640, image.height()}), 15 * 23);
}

TEST(Drawing, small_cells_stand_on_the_line_of_the_tall_ones) {
  const DotImage image =
      draw(printed(with(kReverseOn, with(kDoubleSizeOn, " ") + with(kPlain, " "))));
  const int baseline = kTop + 2 * kFontA.ascent_dots;
  const Box small{30, baseline - kFontA.ascent_dots, 46, baseline + kFontA.descent_dots};
  EXPECT_EQ(ink_in(image, small), area_of(small));
  EXPECT_EQ(ink_in(image, {30, 0, 640, image.height()}), area_of(small));
}

TEST(Drawing, second_line_stands_below_by_the_line_spacing) {
  expect_exactly(draw(printed("\n" + with(kReverseOn, " "))), {0, kTop + 30, 15, kTop + 54});
}

TEST(Drawing, half_dots_add_up) {
  const std::string odd_spacing = "\x1b\x33\x03";
  expect_exactly(draw(printed(odd_spacing + "\n\n" + with(kReverseOn, " "))),
                 {0, kTop + 3, 15, kTop + 27});
}

TEST(Drawing, full_block_fills_its_cell) {
  expect_exactly(draw(printed(std::string(42, '\xdb'))), {0, kTop, 640, kTop + kCellHeight});
}

TEST(Drawing, glyph_stays_inside_its_cell) {
  for (int code = 0x21; code <= 0xff; ++code) {
    if (code == 0x7f) continue;
    const DotImage image = draw(printed(with(kDoubleSizeOn, " ") + static_cast<char>(code)));
    const Box cell{30, kTop, 61, kTop + 48};
    EXPECT_EQ(ink_in(image, cell), ink_in(image, {0, 0, 640, image.height()})) << code;
    EXPECT_EQ(ink_in(image, cell) > 0, code != 0xff) << code;
  }
}

TEST(Drawing, picture_stands_dot_for_dot_at_its_place) {
  const std::string solid = "\x1d*\x02\x01" + std::string(16, '\xff') + "\x1d/0";
  expect_exactly(draw(printed(solid)), {0, kTop, 16, kTop + 8});
  expect_exactly(draw(printed(with(kRight, "\n" + solid))), {624, kTop + 30, 640, kTop + 38});
  expect_exactly(draw(printed("\x1d}X\x7b\x02" + solid)), {635, kTop, 640, kTop + 8});
}

TEST(Drawing, picture_beyond_the_paper_is_white) {
  const std::string solid = "\x1d*\x01\x01" + std::string(8, '\xff') + "\x1d/0";
  const DotImage image = draw(printed("\x1d}X\xff\xff" + solid));
  EXPECT_EQ(ink_in(image, {0, 0, 640, image.height()}), 0);
}

TEST(Drawing, text_of_a_symbol_stands_above_or_below_its_bars) {
  const std::string symbol = "\x1dw\x04\x1dh\x32\x1dkD\x07" + std::string("9638507");
  const DotImage below = draw(printed("\x1dH2" + symbol));
  const DotImage above = draw(printed("\x1dH1" + symbol));
  const Box first_bar{0, 0, 4, 50};
  const auto moved = [](Box box, int down) {
    return Box{box.left, box.top + down, box.right, box.bottom + down};
  };
  EXPECT_EQ(ink_in(below, moved(first_bar, kTop)), area_of(first_bar));
  EXPECT_EQ(ink_in(above, moved(first_bar, kTop + kCellHeight)), area_of(first_bar));
  const Box text{0, 0, 640, kCellHeight};
  EXPECT_GT(ink_in(below, moved(text, kTop + 50)), 0);
  EXPECT_EQ(ink_in(below, moved(text, kTop + 50)), ink_in(above, moved(text, kTop)));
}

TEST(Drawing, bold_burns_more_dots) {
  const auto ink = [](const std::string& bytes) {
    const DotImage image = draw(printed(bytes));
    return ink_in(image, {0, 0, 640, image.height()});
  };
  EXPECT_GT(ink(with(kBoldOn, "TOTAL")), ink("TOTAL"));
}

TEST(Png, knows_the_printed_size_of_a_dot) {
  const std::string png = png_of(DotImage(640, 10));
  const std::string size_chunk("\0\0\0\x09pHYs\0\0\x1b\xb4\0\0\x1b\xb4\x01\x9e\x3d\xa8\xde", 21);
  EXPECT_EQ(png.find(size_chunk), 33U);
}

}  // namespace
}  // namespace virtual_printer
