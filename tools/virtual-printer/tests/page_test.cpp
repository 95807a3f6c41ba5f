// Pictures, symbols and pages: where they stand on paper.

#include <gmock/gmock.h>

#include <string>

#include "command.h"
#include "paper.h"
#include "text_rendition.h"
#include "typesetter.h"

namespace virtual_printer {
namespace {

using testing::IsEmpty;
using testing::SizeIs;
using namespace std::string_literals;

const std::string kPage = "\x1bL";
const std::string kPrintPage = "\x1b\f";
const std::string kLeavePage = "\x1bS";
const std::string kRow(8, '\xff');  // of one band: eight columns

std::string at(char command, int dots) {
  return {'\x1d', '}', command, static_cast<char>(dots), static_cast<char>(dots / 256)};
}

std::string at(int x, int y) {
  return at('X', x) + at('Y', y);
}

// Eight dots wide, so many bands high.
std::string picture(int bands) {
  std::string bytes = "\x1d*\x01"s + static_cast<char>(bands);
  for (int i = 0; i < bands; ++i) bytes += kRow;
  return bytes + "\x1d/0";
}

const std::string kEan8 = "\x1dk\x44\x07"s + "9638507";                            // 67 modules
const std::string kQrCode = "\x1d(k\x04\0\x31\x50\x30Q\x1d(k\x03\0\x31\x51\x30"s;  // 21 modules

std::string refusal_of(const std::string& bytes) {
  try {
    printed(bytes);
    return "";
  } catch (const Refused& refused) {
    return refused.what();
  }
}

TEST(Picture, has_a_line_of_its_own_as_high_as_it_is) {
  const Receipt receipt = printed("a" + picture(2) + "b\n");
  ASSERT_THAT(receipt.lines, SizeIs(3));
  EXPECT_EQ(receipt.lines[1].top, 60);
  EXPECT_EQ(receipt.lines[1].picture->dots.height(), 16);
  EXPECT_EQ(receipt.lines[2].top, 60 + 2 * 16);
}

TEST(Picture, stands_by_the_justification_or_at_its_position) {
  const auto left_of = [](const std::string& bytes) {
    return printed(bytes).lines.back().picture->left;
  };
  EXPECT_EQ(left_of(picture(1)), 0);
  EXPECT_EQ(left_of(std::string(kCentre) + picture(1)), (kPaperUnits - 8 * kUnitsPerDot) / 2);
  EXPECT_EQ(left_of(std::string(kRight) + picture(1)), kPaperUnits - 8 * kUnitsPerDot);
  EXPECT_EQ(left_of(std::string(kRight) + at('X', 300) + picture(1)), 300 * kUnitsPerDot);
  EXPECT_EQ(left_of("text" + at('X', 300) + picture(1)), 300 * kUnitsPerDot);
  EXPECT_EQ(left_of(at('X', 300) + "\n" + picture(1)), 0);
}

TEST(Picture, downloaded_prints_again_and_in_double_size) {
  const Receipt receipt = printed(picture(1) + "\x1d/\x03\x1d/1\x1d/2");
  ASSERT_THAT(receipt.lines, SizeIs(4));
  EXPECT_EQ(receipt.lines[1].picture->caption, "picture 16 x 16");
  EXPECT_EQ(receipt.lines[2].picture->caption, "picture 16 x 8");
  EXPECT_EQ(receipt.lines[3].picture->caption, "picture 8 x 16");
}

TEST(Picture, is_refused_when_there_is_none_or_it_is_too_long) {
  EXPECT_EQ(refusal_of("\x1d/0"), "picture: none is downloaded");
  EXPECT_EQ(refusal_of(picture(1) + "\x1b@\x1d/0"), "picture: none is downloaded");
  EXPECT_EQ(refusal_of(picture(200)), "");
  EXPECT_EQ(refusal_of(picture(200) + "\x1d/2"), "picture 8 x 3200: too long");
}

TEST(SymbolOnPaper, has_the_set_modules_height_and_text) {
  const Line plain = printed("\x1dw\x04\x1dh\x32" + kEan8).lines[0];
  EXPECT_EQ(plain.picture->dots.width(), 67 * 4);
  EXPECT_EQ(plain.height(), 0x32);
  EXPECT_THAT(plain.cells, IsEmpty());

  const Line below = printed("\x1dh\x32\x1dH\x32" + kEan8).lines[0];
  EXPECT_THAT(below.cells, SizeIs(8));
  EXPECT_EQ(below.picture->top, 0);
  EXPECT_EQ(below.ascent, 0x32 + kFontA.ascent_dots);
  EXPECT_EQ(below.descent, kFontA.descent_dots);

  const Line above = printed("\x1dh\x32\x1dH\x01\x1d\x66\x31" + kEan8).lines[0];
  EXPECT_EQ(above.cells[0].style.font, Font::kB);
  EXPECT_EQ(above.picture->top, kFontB.ascent_dots + kFontB.descent_dots);
  EXPECT_EQ(above.ascent, kFontB.ascent_dots);
  EXPECT_EQ(above.descent, kFontB.descent_dots + 0x32);
}

TEST(SymbolOnPaper, has_its_text_in_its_middle_and_on_the_paper) {
  const Line line = printed(std::string(kCentre) + "\x1dw\x06\x1dH\x02" + kEan8).lines[0];
  EXPECT_EQ(line.cells.front().left + line.cells.back().right(), kPaperUnits);
  const Line narrow = printed("\x1dw\x01\x1dH\x02" + kEan8).lines[0];
  EXPECT_EQ(narrow.cells.front().left, 0);
  const std::string long_data(50, '1');
  const Line wide = printed("\x1dw\x02\x1dH\x02\x1dkI\x32" + long_data).lines[0];
  EXPECT_EQ(wide.cells[0].style.font, Font::kB);
  EXPECT_LE(wide.cells.back().right(), kPaperUnits);
}

TEST(SymbolOnPaper, of_two_dimensions_has_the_set_modules) {
  EXPECT_EQ(printed("\x1d(k\x03\0\x31\x43\x05"s + kQrCode).lines[0].height(), 21 * 5);
  const std::string pdf417 = "\x1d(k\x06\0\x30\x50\x30PDF\x1d(k\x03\0\x30\x51\x30"s;
  EXPECT_EQ(printed("\x1d(k\x03\0\x30\x41\x02\x1d(k\x03\0\x30\x43\x04"s + pdf417)
                .lines[0]
                .picture->dots.width(),
            (69 + 2 * 17) * 4);
}

TEST(SymbolOnPaper, of_another_qr_model_is_chosen_by_digit_alone) {
  const std::string model = "\x1d(k\x03\0\x31\x41"s;
  EXPECT_EQ(printed(model + "\x03" + kQrCode).lines[0].picture->caption, "QR Code \"Q\"");
  EXPECT_EQ(printed(model + "\x33" + kQrCode).lines[0].picture->caption, "Micro QR Code \"Q\"");
  EXPECT_EQ(refusal_of(model + "\x31" + kQrCode), "QR Code \"Q\": model 1 cannot be printed");
}

TEST(SymbolOnPaper, settings_end_with_an_initialise) {
  EXPECT_EQ(printed("\x1dw\x06\x1dh\x01\x1dH\x02\x1b@" + kEan8).lines[0].height(), 162);
  EXPECT_EQ(printed("\x1dw\x06\x1b@" + kEan8).lines[0].picture->dots.width(), 67 * 3);
  EXPECT_EQ(refusal_of("\x1d(k\x04\0\x31\x50\x30Q\x1b@\x1d(k\x03\0\x31\x51\x30"s),
            "QR Code \"\": no data");
}

TEST(SymbolOnPaper, is_not_printed_where_the_edge_would_cut_it) {
  const std::string fits = at('X', 640 - 67 * 2);
  const std::string cut = at('X', 640 - 67 * 2 + 1);
  EXPECT_EQ(refusal_of("\x1dw\x02" + fits + kEan8), "");
  EXPECT_EQ(refusal_of("\x1dw\x02" + cut + kEan8), "EAN-8 96385074: reaches beyond the paper");
  EXPECT_EQ(refusal_of(at('X', 65535) + kQrCode), "QR Code \"Q\": reaches beyond the paper");
}

TEST(Position, moves_text_within_a_line_and_past_the_justification) {
  const Line line = printed(std::string(kRight) + "a" + at('X', 100) + "b\n").lines[0];
  EXPECT_EQ(line.cells[0].left, 0);
  EXPECT_EQ(line.cells[1].left, 100 * kUnitsPerDot);
  const Receipt after = printed(std::string(kRight) + at('X', 100) + "a\nb\n");
  EXPECT_EQ(after.lines[1].cells[0].right(), kPaperUnits);
}

TEST(Position, beyond_the_paper_goes_to_the_next_line) {
  const Receipt receipt = printed("a" + at('X', 65535) + "b\n");
  ASSERT_THAT(receipt.lines, SizeIs(2));
  EXPECT_EQ(receipt.lines[1].cells[0].left, 0);
}

TEST(Position, beyond_the_paper_feeds_nothing_by_itself) {
  EXPECT_THAT(printed(at('X', 65535) + "b\n").lines, SizeIs(1));
}

TEST(Position, down_the_paper_has_no_effect_outside_a_page) {
  EXPECT_EQ(printed(at('Y', 500) + "a\n").lines[0].top, 0);
}

TEST(Page, holds_items_at_their_positions_until_it_is_printed) {
  const std::string page =
      "\n" + kPage + at(300, 20) + "low\n" + at(0, 100) + picture(1) + "\n" + at(17, 0) + "high\n";
  EXPECT_THAT(printed(page).lines, SizeIs(1));
  const Receipt receipt = printed(page + kPrintPage + kLeavePage);
  ASSERT_THAT(receipt.lines, SizeIs(4));
  EXPECT_EQ(receipt.lines[1].top, 60);
  EXPECT_EQ(receipt.lines[1].cells[0].left, 17 * kUnitsPerDot);
  EXPECT_EQ(receipt.lines[2].top, 60 + 2 * 20);
  EXPECT_EQ(receipt.lines[2].cells[0].left, 300 * kUnitsPerDot);
  EXPECT_EQ(receipt.lines[3].top, 60 + 2 * 100);
  EXPECT_EQ(receipt.length, 60 + 2 * 108);
}

TEST(Page, reads_as_columns_from_top_to_bottom) {
  EXPECT_EQ(text_of(printed(kPage + at(305, 40) + "right\n" + at(0, 0) + "top\n" + at(0, 40) +
                            "left\n" + kPrintPage)),
            "top\nleft                right\n");
}

TEST(Page, goes_on_below_what_it_holds_without_positions) {
  const Receipt receipt =
      printed(kPage + std::string(kRight) + "a\n" + picture(1) + "b\n\nc" + kPrintPage);
  ASSERT_THAT(receipt.lines, SizeIs(4));
  EXPECT_EQ(receipt.lines[0].cells[0].left, 0);
  EXPECT_EQ(receipt.lines[1].top, 60);
  EXPECT_EQ(receipt.lines[2].top, 60 + 2 * 8);
  EXPECT_EQ(receipt.lines[3].top, 60 + 2 * 8 + 2 * 60);
}

TEST(Page, is_blank_again_when_it_is_printed) {
  const Receipt receipt = printed(kPage + "a\n" + kPrintPage + "b\n" + kPrintPage + kPrintPage);
  ASSERT_THAT(receipt.lines, SizeIs(2));
  EXPECT_EQ(receipt.lines[1].top, 2 * 24);
}

TEST(Page, that_is_left_is_forgotten) {
  Typesetter typesetter;
  typesetter.execute({CommandKind::kPageMode});
  typesetter.execute({CommandKind::kText, 'a'});
  typesetter.execute({CommandKind::kLineFeed});
  typesetter.execute({CommandKind::kText, 'b'});
  EXPECT_EQ(typesetter.unprinted(), 2U);
  typesetter.execute({CommandKind::kStandardMode});
  EXPECT_EQ(typesetter.unprinted(), 0U);
  typesetter.execute({CommandKind::kPrintPage});
  EXPECT_FALSE(typesetter.has_fed());
}

TEST(Page, ends_where_it_is_longest) {
  const std::string beyond = "lines beyond the end of the page: 1";
  EXPECT_EQ(refusal_of(kPage + at(0, kLongestPage - 24) + "a\n" + kPrintPage), "");
  EXPECT_EQ(refusal_of(kPage + at(0, kLongestPage - 23) + "a\n" + kPrintPage), beyond);
  EXPECT_EQ(refusal_of(kPage + at(0, 65535) + picture(1) + kPrintPage), beyond);
  EXPECT_EQ(refusal_of(kPage + std::string(100000, '\n') + "a" + kPrintPage), beyond);
  EXPECT_EQ(refusal_of(kPage + at(0, 65535) + "a\n" + kLeavePage + kPage + kPrintPage), "");
}

TEST(Page, prints_what_stands_on_it_although_something_does_not) {
  Typesetter typesetter;
  CommandParser parser;
  parser.feed(kPage + at(0, 65535) + "lost" + at(0, 0) + "kept" + at(0, 65535) + "lost");
  while (const auto decoded = parser.next()) typesetter.execute(std::get<Command>(*decoded));
  EXPECT_THROW(typesetter.execute({CommandKind::kPrintPage}), Refused);
  EXPECT_EQ(text_of(typesetter.tear_off()), "kept\n");
}

}  // namespace
}  // namespace virtual_printer
