#include "barcode/linear_symbol.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "byte_strings.h"
#include "tzvio.h"

namespace {

constexpr LinearSettings kSettings{.line_width = 640, .line_chars = 42, .map_mode = TZV_MAP_DOTS};

std::string built(const LinearSymbol& symbol, const LinearSettings& settings = kSettings) {
  std::array<char, kLinearBlockSize> block;
  block.fill('~');
  const std::size_t size = build_linear_symbol(symbol, settings, block).size;
  return {block.data(), size};
}

LinearSymbol symbol_of(int32_t symbology, std::string_view data, int32_t width = 300) {
  return {.data = data,
          .symbology = symbology,
          .height = 50,
          .width = width,
          .alignment = TZV_ALIGN_LEFT,
          .text_position = TZV_TEXT_BELOW};
}

/// The byte of GS w; 0 when nothing is built.
int module_of(const LinearSymbol& symbol, const LinearSettings& settings = kSettings) {
  const std::string block = built(symbol, settings);
  return block.empty() ? 0 : block[block.find("\035w") + 2];
}

int height_of(int32_t height, int32_t map_mode = TZV_MAP_DOTS) {
  LinearSymbol symbol = symbol_of(TZV_BARCODE_CODE39, "12");
  symbol.height = height;
  const std::string block =
      built(symbol, {.line_width = 640, .line_chars = 0, .map_mode = map_mode});
  return static_cast<unsigned char>(block[block.find("\035h") + 2]);
}

// ---------------------------------------------------------------------------------- block

TEST(LinearSymbol, block_of_an_ean_13) {
  EXPECT_EQ(built(symbol_of(TZV_BARCODE_EAN13, "400638133393")),
            "\035f0"      // text in font A
            "\035w\003"   // 300 dots: 285 to 379
            "\035h\063"   // 50 dots and one
            "\033a0"      // left
            "\035H2"      // text below
            "\035kC\014"  // 12 bytes follow
            "400638133393");
}

TEST(LinearSymbol, text_font_follows_the_characters_of_a_line) {
  const std::pair<int32_t, std::string> rows[] = {
      {42, "\035f0"}, {56, "\035f1"}, {33, ""}, {40, ""}};
  for (const auto& [chars, font] : rows) {
    const std::string block = built(symbol_of(TZV_BARCODE_CODE39, "12"),
                                    {.line_width = 640, .line_chars = chars, .map_mode = 0});
    EXPECT_EQ(block.substr(0, block.find("\035w")), font) << chars;
  }
}

// Right is the third text font instead; what was set before stays.
TEST(LinearSymbol, right_alignment_is_no_justification) {
  const std::pair<int32_t, std::string> rows[] = {
      {0, "\033a0"}, {1, "\033a1"}, {2, "\035f2"}, {7, "\033a1"}, {-1, "\033a1"}};
  for (const auto& [alignment, bytes] : rows) {
    LinearSymbol symbol = symbol_of(TZV_BARCODE_CODE39, "12");
    symbol.alignment = alignment;
    EXPECT_EQ(built(symbol).substr(9, 3), bytes) << alignment;
  }
}

TEST(LinearSymbol, text_positions) {
  const std::pair<int32_t, std::string> rows[] = {{0, "\035H0"}, {1, "\035H1"}, {2, "\035H2"}};
  for (const auto& [position, bytes] : rows) {
    LinearSymbol symbol = symbol_of(TZV_BARCODE_CODE39, "12");
    symbol.text_position = position;
    EXPECT_EQ(built(symbol).substr(12, 3), bytes);
  }
  for (const int32_t position : {3, -1, 48}) {
    LinearSymbol symbol = symbol_of(TZV_BARCODE_CODE39, "12");
    symbol.text_position = position;
    EXPECT_EQ(built(symbol), "");
  }
}

TEST(LinearSymbol, types_by_symbology) {
  const std::pair<int32_t, char> rows[] = {{101, 65}, {102, 66}, {103, 68}, {104, 67},
                                           {105, 68}, {106, 67}, {107, 70}, {108, 71},
                                           {109, 69}, {110, 72}, {111, 73}};
  for (const auto& [symbology, type] : rows) {
    const std::size_t length = type == 68 ? 8 : 12;
    const std::string data(length, '1');
    const std::string block = built(symbol_of(symbology, data));
    EXPECT_EQ(block.substr(block.find("\035k")),
              std::string("\035k") + type + static_cast<char>(length) + data);
  }
  EXPECT_EQ(built(symbol_of(103, "1234567")), built(symbol_of(105, "1234567")));
  EXPECT_EQ(built(symbol_of(104, "123456789012")), built(symbol_of(106, "123456789012")));
  for (const int32_t symbology : {100, 112, 0, -1, 201}) {
    EXPECT_EQ(built(symbol_of(symbology, "123456789012")), "") << symbology;
  }
}

TEST(LinearSymbol, bytes_of_any_value_pass) {
  const std::string data = "\xff\x01{B\x7f";
  EXPECT_TRUE(built(symbol_of(TZV_BARCODE_CODE128, data)).ends_with("\035kI\005" + data));
}

// --------------------------------------------------------------------------------- length

struct Lengths {
  int32_t symbology;
  std::size_t shortest, longest;
};

TEST(LinearSymbol, lengths_that_are_taken) {
  constexpr Lengths kRows[] = {{101, 11, 12}, {102, 11, 12}, {103, 7, 8},
                               {104, 12, 13}, {105, 7, 8},   {106, 12, 13},
                               {108, 0, 22},  {109, 0, 15},  {110, 0, 22}};
  for (const auto& [symbology, shortest, longest] : kRows) {
    for (std::size_t length = 0; length < 30; ++length) {
      const bool taken = length >= shortest && length <= longest;
      const std::string data(length, '1');
      EXPECT_EQ(!built(symbol_of(symbology, data)).empty(), taken) << symbology << " " << length;
    }
  }
}

TEST(LinearSymbol, interleaved_2_of_5_takes_pairs_up_to_28) {
  for (std::size_t length = 0; length < 34; ++length) {
    const std::string data(length, '1');
    EXPECT_EQ(!built(symbol_of(TZV_BARCODE_ITF, data)).empty(), length % 2 == 0 && length <= 28)
        << length;
  }
}

// The length byte holds the low 8 bits; what does not fit the block is refused.
TEST(LinearSymbol, code_128_is_limited_by_the_block) {
  EXPECT_TRUE(built(symbol_of(TZV_BARCODE_CODE128, std::string(300, 'x')))
                  .ends_with("\035kI\x2c" + std::string(300, 'x')));
  // 3 text font, 3 module, 3 height, 3 justification, 3 text position, 4 head: 19.
  EXPECT_EQ(built(symbol_of(TZV_BARCODE_CODE128, std::string(1005, 'x'))).size(), 1024U);
  EXPECT_EQ(built(symbol_of(TZV_BARCODE_CODE128, std::string(1006, 'x'))), "");
  const LinearSettings no_font{.line_width = 640, .line_chars = 33, .map_mode = 0};
  EXPECT_EQ(built(symbol_of(TZV_BARCODE_CODE128, std::string(1008, 'x')), no_font).size(), 1024U);
  EXPECT_EQ(built(symbol_of(TZV_BARCODE_CODE128, std::string(1009, 'x')), no_font), "");
  EXPECT_EQ(built(symbol_of(TZV_BARCODE_CODE128, std::string(100000, 'x'))), "");
}

// ---------------------------------------------------------------------------------- width

TEST(LinearSymbol, width_is_compared_as_it_stands_with_the_dots_of_a_line) {
  for (const int32_t map_mode : {0, 1, 2, 3, 9}) {
    const LinearSettings settings{.line_width = 640, .line_chars = 42, .map_mode = map_mode};
    EXPECT_NE(built(symbol_of(TZV_BARCODE_CODE39, "12", 640), settings), "");
    EXPECT_EQ(built(symbol_of(TZV_BARCODE_CODE39, "12", 641), settings), "");
  }
  EXPECT_NE(built(symbol_of(TZV_BARCODE_CODE39, "12", -5)), "");
}

struct ThresholdRow {
  int32_t symbology;
  std::string data;
  std::array<int32_t, 4> from;  // of modules 3, 4, 5, 6; 0: never
};

TEST(LinearSymbol, modules_by_threshold) {
  const ThresholdRow rows[] = {
      {101, "12345678901", {285, 380, 475, 0}},  {104, "123456789012", {285, 380, 475, 0}},
      {106, "123456789012", {285, 380, 475, 0}}, {102, "12345678901", {67, 155, 206, 257}},
      {103, "1234567", {201, 268, 335, 402}},    {105, "1234567", {201, 268, 335, 402}}};
  for (const ThresholdRow& row : rows) {
    for (int32_t width = -1; width <= 640; ++width) {
      int expected = 2;
      for (int i = 0; i < 4; ++i) {
        const int32_t from = row.from[static_cast<std::size_t>(i)];
        if (from != 0 && width >= from) expected = 3 + i;
      }
      ASSERT_EQ(module_of(symbol_of(row.symbology, row.data, width)), expected)
          << row.symbology << " " << width;
    }
  }
}

struct FittingRow {
  const char* name;
  int32_t symbology;
  std::size_t length;
  std::array<int32_t, 5> from;  // the narrowest width for each module
};

// Totals are the counted characters times the factor, rounded: Code 39 of 4 characters counts 6:
// 180.708, 279.27, 384, 511.998, 614.4.
TEST(LinearSymbol, modules_by_fitting) {
  const FittingRow rows[] = {
      {"code39", 109, 4, {181, 279, 384, 512, 614}},
      // 10: 182.86 284.44 365.71 512 640
      {"itf", 107, 10, {183, 284, 366, 512, 640}},
      // 8: 186.184 292.568 372.36 455.112 585.144
      {"codabar", 108, 8, {186, 293, 372, 455, 585}},
      // 5 + 2: 149.331 238.931 325.815 448 597.331
      {"code93", 110, 5, {149, 239, 326, 448, 597}},
      // 5: 128 213.335 320 426.665 640
      {"code128", 111, 5, {128, 213, 320, 427, 640}},
  };
  for (const FittingRow& row : rows) {
    const std::string data(row.length, '1');
    for (int32_t width = -1; width <= 640; ++width) {
      int expected = 2;  // also when nothing fits
      for (int i = 0; i < 5; ++i) {
        if (width >= row.from[static_cast<std::size_t>(i)]) expected = 2 + i;
      }
      ASSERT_EQ(module_of(symbol_of(row.symbology, data, width)), expected)
          << row.name << " " << width;
    }
  }
}

// All are 0 dots wide, so the narrower that came first stays.
TEST(LinearSymbol, of_equal_widths_the_narrower_module_is_taken) {
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_ITF, "", 300)), 2);
}

// The spare width is compared from 9999 down.
TEST(LinearSymbol, nothing_is_chosen_beyond_9998_spare_dots) {
  const LinearSettings wide{.line_width = 100000, .line_chars = 42, .map_mode = 0};
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_CODE39, "1", 50000), wide), 2);
  // 3 counted characters: 307.2 at module 6, so 9999 + 307 is the first with too much to spare.
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_CODE39, "1", 10305), wide), 6);
}

// ---------------------------------------------------------------------------------- fault

LinearFault fault_of(const LinearSymbol& symbol) {
  std::array<char, kLinearBlockSize> block;
  return build_linear_symbol(symbol, kSettings, block).fault;
}

// The spare dots of such a width leave 32 bits.
TEST(LinearSymbol, the_narrowest_module_is_taken_below_every_width) {
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_CODE39, "ABC", INT32_MIN)), 2);
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_CODE128, "ABC", INT32_MIN)), 2);
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_EAN13, "400638133393", INT32_MIN)), 2);
}

TEST(LinearSymbol, says_what_keeps_it_from_being_printed) {
  EXPECT_EQ(fault_of(symbol_of(TZV_BARCODE_CODE39, "12")), LinearFault::kNone);
  EXPECT_EQ(fault_of(symbol_of(TZV_BARCODE_CODE39, "12", 641)), LinearFault::kTooWide);
  EXPECT_EQ(fault_of(symbol_of(112, "12")), LinearFault::kUnknownSymbology);
  EXPECT_EQ(fault_of(symbol_of(TZV_BARCODE_EAN8, "12")), LinearFault::kDataLength);
  EXPECT_EQ(fault_of(symbol_of(TZV_BARCODE_ITF, "123")), LinearFault::kDataLength);
  EXPECT_EQ(fault_of(symbol_of(TZV_BARCODE_CODE128, std::string(1006, 'x'))),
            LinearFault::kBlockTooLong);
  LinearSymbol symbol = symbol_of(TZV_BARCODE_CODE39, "12");
  symbol.text_position = 3;
  EXPECT_EQ(fault_of(symbol), LinearFault::kTextPosition);
}

TEST(LinearSymbol, says_how_many_data_a_symbology_takes) {
  const std::optional<DataLengths> itf = data_lengths(TZV_BARCODE_ITF);
  ASSERT_TRUE(itf.has_value());
  EXPECT_EQ(itf->longest, 28U);
  EXPECT_TRUE(itf->even);
  const std::optional<DataLengths> ean = data_lengths(TZV_BARCODE_EAN13);
  ASSERT_TRUE(ean.has_value());
  EXPECT_EQ(ean->shortest, 12U);
  EXPECT_EQ(ean->longest, 13U);
  EXPECT_FALSE(ean->even);
  EXPECT_FALSE(data_lengths(100).has_value());
}

// ---------------------------------------------------------------------------------- units

TEST(LinearSymbol, height_is_a_dot_more_and_at_most_255) {
  const std::pair<int32_t, int> rows[] = {{0, 1},     {1, 2},     {253, 254},
                                          {254, 255}, {255, 255}, {300, 255},
                                          {-1, 0},    {-2, 255},  {INT32_MAX, 0}};
  for (const auto& [height, byte] : rows) EXPECT_EQ(height_of(height), byte) << height;
}

TEST(LinearSymbol, height_by_unit) {
  // 1440 twips: an inch, 180.14 dots. 100 thousandths: 18.01. 100 hundredths of a mm: 7.09.
  EXPECT_EQ(height_of(1440, TZV_MAP_TWIPS), 181);
  EXPECT_EQ(height_of(100, TZV_MAP_ENGLISH), 19);
  EXPECT_EQ(height_of(100, TZV_MAP_METRIC), 8);
  EXPECT_EQ(height_of(100, 4), 101) << "an unknown unit is dots";
  EXPECT_EQ(height_of(100, -1), 101);
}

TEST(LinearSymbol, width_by_unit) {
  const LinearSettings twips{.line_width = 5000, .line_chars = 42, .map_mode = TZV_MAP_TWIPS};
  // An inch is 180 dots; Code 39 of 2 counts 4: 120 at module 2, 186 at module 3.
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_CODE39, "12", 1440), twips), 2);
  // 1484 twips are 185.65 dots.
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_CODE39, "12", 1484), twips), 3);
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_CODE39, "12", 1482), twips), 2);
  const LinearSettings unknown{.line_width = 640, .line_chars = 42, .map_mode = 7};
  EXPECT_EQ(module_of(symbol_of(TZV_BARCODE_CODE39, "12", 186), unknown), 3);
}

}  // namespace
