#include "symbols.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "command.h"

namespace virtual_printer {
namespace {

using testing::HasSubstr;
using namespace std::string_literals;

constexpr int kBars = 40;

// Why it is refused; empty when it is not.
template <typename Make>
std::string refusal_of(Make make) {
  try {
    make();
    return "";
  } catch (const Refused& refused) {
    return refused.what();
  }
}

std::string refusal_of(char symbology, const std::string& data) {
  return refusal_of([&] { linear_symbol(symbology, data, 2, kBars); });
}

struct Good {
  char symbology;
  std::string data;
  std::string caption;
  int modules;
};

// Modules by the standards: 95 and 67 of EAN, 51 of UPC-E; 9 a pair of ITF and 8 at its ends; 13 a
// character of Code 39 with its gap, but none after the last; 9 a character of Code 93 and one bar;
// 11 a character of Code 128 and 2 more of its stop.
TEST(Symbols, are_as_wide_as_their_standards_say_at_every_module_width) {
  const std::vector<Good> rows{
      {'A', "03600029145", "UPC-A 036000291452", 95},
      {'A', "036000291452", "UPC-A 036000291452", 95},
      {'B', "01234500005", "UPC-E 01234558", 51},
      {'C', "400638133393", "EAN-13 4006381333931", 95},
      {'C', "4006381333931", "EAN-13 4006381333931", 95},
      {'D', "9638507", "EAN-8 96385074", 67},
      {'D', "96385074", "EAN-8 96385074", 67},
      {'E', "TZ-9", "Code 39 *TZ-9*", 6 * 13 - 1},
      {'E', "*TZ-9*", "Code 39 *TZ-9*", 6 * 13 - 1},
      {'F', "123456", "ITF 123456", 3 * 18 + 9},
      {'H', "TZ93", "Code 93 TZ93", (4 + 4) * 9 + 1},
      {'I', "AB", "Code 128 AB", (2 + 3) * 11 + 2},
      {'I', "123456", "Code 128 123456", (3 + 3) * 11 + 2},
  };
  for (const Good& row : rows) {
    for (int module = 1; module <= 6; ++module) {
      const Symbol symbol = linear_symbol(row.symbology, row.data, module, kBars);
      EXPECT_EQ(symbol.caption, row.caption);
      EXPECT_EQ(symbol.dots.width(), row.modules * module) << row.caption;
      EXPECT_EQ(symbol.dots.height(), kBars);
    }
  }
}

TEST(Symbols, bars_are_whole_modules_from_top_to_bottom) {
  const DotImage dots = linear_symbol('C', "400638133393", 3, kBars).dots;
  // The guard at each end is bar, space, bar.
  for (int y = 0; y < kBars; ++y) {
    for (int x = 0; x < 9; ++x) {
      EXPECT_EQ(dots.ink(x, y), x / 3 != 1) << x << ", " << y;
      EXPECT_EQ(dots.ink(dots.width() - 1 - x, y), x / 3 != 1) << x << ", " << y;
    }
  }
}

TEST(Symbols, of_upc_e_squeeze_every_number_that_is_short_enough) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"01200000345", "UPC-E 01234505"}, {"01210000345", "UPC-E 01234514"},
      {"01220000345", "UPC-E 01234523"}, {"01230000045", "UPC-E 01234531"},
      {"01234000005", "UPC-E 01234543"}, {"01234500009", "UPC-E 01234596"},
  };
  for (const auto& [sent, caption] : rows) {
    EXPECT_EQ(linear_symbol('B', sent, 2, kBars).caption, caption) << sent;
  }
  for (const char* sent :
       {"01234500004", "01234000015", "01230000345", "01200001345", "21200000345", "01234510005"}) {
    EXPECT_THAT(refusal_of('B', sent), HasSubstr("short enough")) << sent;
  }
}

TEST(Symbols, of_codabar_have_ends_of_their_own_or_those_of_the_data) {
  EXPECT_EQ(linear_symbol('G', "40156", 2, kBars).text, "A40156A");
  EXPECT_EQ(linear_symbol('G', "C40156d", 2, kBars).text, "C40156D");
}

TEST(Symbols, of_code_128_take_data_by_code_set_or_as_it_is) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"AB{C", "AB{C"},           {"{BAb{C\x0c\x22", "Ab1234"}, {"{C\x01\x00\x63"s, "010099"},
      {"{AAB\x09", "AB "},  // text has blanks for control characters
      {"{Ba{S\x09z{{1", "a z{1"}, {"{C\x15{Bx", "21x"},
  };
  for (const auto& [sent, text] : rows) {
    EXPECT_EQ(linear_symbol('I', sent, 2, kBars).text, text) << sent;
  }
}

TEST(Symbols, that_their_symbology_cannot_say_are_refused) {
  const std::vector<std::pair<char, std::string>> rows{
      {'A', ""},
      {'A', "0360002914"},
      {'A', "036000291453"},
      {'A', "0360002914X"},
      {'B', "1234567"},
      {'B', "012345000057"},
      {'C', "40063813339"},
      {'C', "4006381333932"},
      {'C', "12345678+1234"},
      {'D', "963850"},
      {'D', "96385075"},
      {'E', "tz"},
      {'E', "T*9"},
      {'F', "123"},
      {'F', "12A4"},
      {'G', "A1B2C"},
      {'G', "12E"},
      {'H', "\xe4"},
      {'I', "\x80"},
      {'I', "{1ABC"},
      {'I', "{Bx{"},
      {'I', "{C\x64"},
      {'I', "{C{S\x01"},
      {'I', "{C"},
      {'I', std::string(255, 'x')},
  };
  for (const auto& [symbology, data] : rows) {
    EXPECT_NE(refusal_of(symbology, data), "") << symbology << " " << data;
  }
  EXPECT_EQ(refusal_of('A', "0\n\""), R"(UPC-A "0\x0A\"": needs 11 digits, or one more)");
}

TEST(Symbols, of_pdf417_have_the_columns_and_modules_that_are_asked_for) {
  for (const int columns : {1, 3, 6}) {
    for (const int module : {1, 2, 5}) {
      const Symbol symbol = pdf417_symbol("Till 3, receipt 4711", columns, module);
      EXPECT_EQ(symbol.dots.width(), (69 + 17 * columns) * module);
      EXPECT_EQ(symbol.dots.height() % (3 * module), 0);
    }
  }
  EXPECT_EQ(pdf417_symbol("a\"b", 2, 2).caption, R"(PDF417 "a\"b")");
}

TEST(Symbols, of_pdf417_with_no_columns_asked_for_fit_the_paper) {
  EXPECT_LE(pdf417_symbol(std::string(600, 'x'), 0, 2).dots.width(), 640);
  EXPECT_LE(pdf417_symbol(std::string(60, 'x'), 0, 6).dots.width(), 640);
}

TEST(Symbols, of_qr_code_have_square_modules_and_grow_with_the_level) {
  EXPECT_EQ(qr_code_symbol("0123456789", QrModel::kTwo, 0, 5).dots.width(), 21 * 5);
  EXPECT_EQ(qr_code_symbol("0123456789", QrModel::kTwo, 0, 5).dots.height(), 21 * 5);
  EXPECT_EQ(qr_code_symbol(std::string(17, 'x'), QrModel::kTwo, 0, 1).dots.width(), 21);
  EXPECT_EQ(qr_code_symbol(std::string(17, 'x'), QrModel::kTwo, 3, 1).dots.width(), 29);
  EXPECT_EQ(qr_code_symbol("1", QrModel::kMicro, 0, 2).caption, "Micro QR Code \"1\"");
}

TEST(Symbols, of_two_dimensions_refuse_what_no_symbol_holds) {
  const std::string longest(8092, 'x');
  for (const std::string& data : {""s, longest}) {
    EXPECT_NE(refusal_of([&] { pdf417_symbol(data, 0, 2); }), "");
    EXPECT_NE(refusal_of([&] { qr_code_symbol(data, QrModel::kTwo, 0, 1); }), "");
  }
  EXPECT_EQ(refusal_of([] { qr_code_symbol(std::string(2953, 'x'), QrModel::kTwo, 0, 1); }), "");
  EXPECT_NE(refusal_of([] { qr_code_symbol(std::string(2954, 'x'), QrModel::kTwo, 0, 1); }), "");
  EXPECT_NE(refusal_of([] { pdf417_symbol(std::string(1000, 'x'), 1, 1); }), "");
  EXPECT_THAT(refusal_of([] { qr_code_symbol("x", QrModel::kOne, 0, 1); }), HasSubstr("model 1"));
}

}  // namespace
}  // namespace virtual_printer
