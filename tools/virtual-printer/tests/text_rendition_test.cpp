#include "text_rendition.h"

#include <gtest/gtest.h>

#include <string>

#include "paper.h"

namespace virtual_printer {
namespace {

TEST(TextRendition, keeps_lines_and_feeds) {
  EXPECT_EQ(text_of(printed("a\n\nb")), "a\n\nb\n");
}

TEST(TextRendition, alignment_is_spaces_over_42_columns) {
  EXPECT_EQ(text_of(printed(std::string(kRight) + "abc")), std::string(39, ' ') + "abc\n");
  EXPECT_EQ(text_of(printed(std::string(kCentre) + "Hello")), std::string(18, ' ') + "Hello\n");
}

TEST(TextRendition, alignment_of_font_b_is_spaces_over_56_columns) {
  EXPECT_EQ(text_of(printed(std::string(kFontBOn) + std::string(kRight) + "abc")),
            std::string(53, ' ') + "abc\n");
}

TEST(TextRendition, wide_characters_stay_plain_characters) {
  EXPECT_EQ(text_of(printed(std::string(kDoubleWidthOn) + std::string(kRight) + "abc")),
            std::string(36, ' ') + "abc\n");
}

TEST(TextRendition, picture_or_symbol_is_a_line_in_brackets) {
  const std::string picture = "\x1d*\x01\x01" + std::string(8, '\x80') + "\x1d/0";
  const std::string symbol = "\x1dH2\x1dkC\x0c" + std::string("400638133393");
  EXPECT_EQ(text_of(printed("a\n" + std::string(kCentre) + picture + "\n" + symbol + "b")),
            "a\n[picture 8 x 8]\n\n[EAN-13 4006381333931]\n" + std::string(20, ' ') + "b\n");
}

TEST(TextRendition, gap_is_spaces) {
  EXPECT_EQ(text_of(printed("ab\x1d}X\x98\x01"
                            "c")),
            "ab" + std::string(24, ' ') + "c\n");
}

TEST(TextRendition, code_page_becomes_utf8) {
  EXPECT_EQ(text_of(printed("\x84\xe1\xc4\xdb\xff")), "\u00e4\u00df\u2500\u2588\u00a0\n");
}

}  // namespace
}  // namespace virtual_printer
