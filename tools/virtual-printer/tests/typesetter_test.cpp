#include "typesetter.h"

#include <gmock/gmock.h>

#include <string>

#include "paper.h"

namespace virtual_printer {
namespace {

using testing::IsEmpty;
using testing::SizeIs;
using namespace std::string_literals;

std::string repeated(int count) {
  return std::string(static_cast<std::size_t>(count), 'x');
}

struct ColumnsRow {
  const char* name;
  std::string style;
  int columns;
};

TEST(Typesetter, each_type_fills_the_line_exactly) {
  const std::vector<ColumnsRow> rows{{"font A", std::string(kPlain), 42},
                                     {"font B", std::string(kFontBOn), 56},
                                     {"font A, double width", std::string(kDoubleWidthOn), 21},
                                     {"font B, double width", "\x1b!\x21", 28},
                                     {"font A, eight times", "\x1d!\x77", 5}};
  for (const ColumnsRow& row : rows) {
    const Receipt full = printed(row.style + repeated(row.columns) + "\n");
    ASSERT_THAT(full.lines, SizeIs(1)) << row.name;
    const Receipt wrapped = printed(row.style + repeated(row.columns + 1) + "\n");
    ASSERT_THAT(wrapped.lines, SizeIs(2)) << row.name;
    EXPECT_THAT(wrapped.lines[1].cells, SizeIs(1)) << row.name;
    EXPECT_EQ(wrapped.lines[1].cells[0].left, 0) << row.name;
  }
}

TEST(Typesetter, full_lines_of_both_fonts_end_at_the_paper_edge) {
  EXPECT_EQ(printed(repeated(42)).lines[0].cells.back().right(), kPaperUnits);
  EXPECT_EQ(printed(std::string(kFontBOn) + repeated(56)).lines[0].cells.back().right(),
            kPaperUnits);
}

TEST(Typesetter, alignment_moves_the_whole_line) {
  EXPECT_EQ(printed(std::string(kRight) + "abc").lines[0].cells.back().right(), kPaperUnits);
  const Line centred = printed(std::string(kCentre) + "ab").lines[0];
  EXPECT_EQ(centred.cells.front().left, kPaperUnits - centred.cells.back().right());
}

TEST(Typesetter, alignment_within_a_line_has_no_effect) {
  const Receipt receipt = printed("a" + std::string(kRight) + "b\nc");
  EXPECT_EQ(receipt.lines[0].cells[0].left, 0);
  EXPECT_EQ(receipt.lines[1].cells[0].left, 0);
}

TEST(Typesetter, alignment_lasts_until_it_is_changed) {
  const Receipt receipt = printed(std::string(kRight) + "a\nb\n");
  EXPECT_EQ(receipt.lines[1].cells.back().right(), kPaperUnits);
}

TEST(Typesetter, print_mode_sets_size_font_emphasis_and_underline) {
  const Style style = printed(
                          "\x1b!\xb9"
                          "a")
                          .lines[0]
                          .cells[0]
                          .style;
  EXPECT_EQ(style, (Style{.font = Font::kB,
                          .bold = true,
                          .underline_dots = 1,
                          .width_factor = 2,
                          .height_factor = 2}));
}

TEST(Typesetter, print_mode_resets_emphasis_and_underline_but_not_reverse) {
  const Style style = printed(
                          "\x1b\x45\x31\x1b-2\x1d\x42\x31\x1b!\x46"
                          "a")
                          .lines[0]
                          .cells[0]
                          .style;
  EXPECT_EQ(style, (Style{.reverse = true}));
}

TEST(Typesetter, line_feed_advances_by_the_line_spacing) {
  EXPECT_EQ(printed("a\n").length, 60);
  EXPECT_EQ(printed("\x1b\x33\x40"
                    "a\n\n")
                .length,
            2 * 0x40);
  EXPECT_EQ(printed("\x1b\x33\x05\n").length, 5);
  EXPECT_EQ(printed("\x1b\x33\x05\x1b\x32\n").length, 60);
}

TEST(Typesetter, line_feed_clears_the_tallest_cell) {
  const Receipt receipt = printed("small" + std::string(kDoubleSizeOn) + "BIG\n");
  EXPECT_EQ(receipt.length, 2 * 48);
  EXPECT_EQ(printed("\x1b\x33\x01"
                    "a\n")
                .length,
            2 * 24);
}

TEST(Typesetter, no_cell_reaches_beyond_the_tallest_on_its_line) {
  const Line line = printed("a" + std::string(kFontBOn) +
                            "b\x1b!\x11"
                            "c\x1b!\x10"
                            "d")
                        .lines[0];
  EXPECT_EQ(line.ascent + line.descent, 48);
}

TEST(Typesetter, empty_feeds_are_lines_without_ink) {
  Typesetter typesetter;
  typesetter.execute({CommandKind::kLineFeed});
  typesetter.execute({CommandKind::kLineFeed});
  EXPECT_TRUE(typesetter.has_fed());
  EXPECT_FALSE(typesetter.has_ink());
}

TEST(Typesetter, cut_prints_the_open_line) {
  const Receipt receipt = printed("abc" + std::string(kCut));
  ASSERT_THAT(receipt.lines, SizeIs(1));
  EXPECT_THAT(receipt.lines[0].cells, SizeIs(3));
}

TEST(Typesetter, tab_goes_to_the_next_eighth_column) {
  const Line line = printed("ab\tc").lines[0];
  EXPECT_EQ(line.cells.back().left, 8 * kFontA.cell_units);
}

TEST(Typesetter, initialise_restores_the_settings_and_keeps_the_paper) {
  const Receipt receipt = printed(
      "\x1b!\x31\x1b\x61\x32\x1b\x33\x01"
      "a\n\x1b@b\n");
  ASSERT_THAT(receipt.lines, SizeIs(2));
  EXPECT_EQ(receipt.lines[1].cells[0].style, Style());
  EXPECT_EQ(receipt.lines[1].cells[0].left, 0);
  EXPECT_EQ(receipt.length - receipt.lines[1].top, 60);
}

TEST(Typesetter, tearing_off_starts_a_fresh_piece) {
  Typesetter typesetter;
  typesetter.execute({CommandKind::kLineFeed});
  EXPECT_THAT(typesetter.tear_off().lines, SizeIs(1));
  EXPECT_THAT(typesetter.tear_off().lines, IsEmpty());
  EXPECT_FALSE(typesetter.has_fed());
}

}  // namespace
}  // namespace virtual_printer
