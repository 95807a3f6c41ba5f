#include "text/translate.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>
#include <string_view>

#include "byte_strings.h"
#include "tzvio.h"

namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr std::size_t kTransaction = 1664000;

constexpr TextSettings kDefaults{.line_chars = 42,
                                 .line_spacing = 30,
                                 .lines_to_paper_cut = 5,
                                 .map_mode = TZV_MAP_DOTS,
                                 .rotated = false};
constexpr LineColumns kNewLine{.line_is_open = 0, .current = 0, .widest = 0};

/// What stands before the text with the default settings: the reset and the line spacing.
const std::string kPrologue = hex("1b 45 30 1b 2d 30 1b 21 46 1d 42 30 1b 61 30") + hex("1b 33 3c");

constexpr TextSettings with_line_chars(int32_t line_chars) {
  TextSettings settings = kDefaults;
  settings.line_chars = line_chars;
  return settings;
}

constexpr TextSettings with_map_mode(int32_t map_mode) {
  TextSettings settings = kDefaults;
  settings.map_mode = map_mode;
  return settings;
}

constexpr TextSettings with_lines_to_paper_cut(int32_t lines) {
  TextSettings settings = kDefaults;
  settings.lines_to_paper_cut = lines;
  return settings;
}

constexpr TextSettings rotated() {
  TextSettings settings = kDefaults;
  settings.rotated = true;
  return settings;
}

struct Translation {
  bool ok;
  std::string output;
  LineColumns columns;
};

Translation translation(std::string_view text, const TextSettings& settings = kDefaults,
                        const LineColumns& before = kNewLine, std::size_t limit = kTransaction) {
  ByteBuffer output(limit);
  LineColumns columns = before;
  translate(text, settings, columns, output);
  return {output.ok(), std::string(output.bytes()), columns};
}

/// Expects the output with room for exactly that much, and a refusal with one byte less.
void expect_output(std::string_view text, const std::string& expected,
                   const TextSettings& settings = kDefaults) {
  const Translation result = translation(text, settings, kNewLine, expected.size());
  EXPECT_TRUE(result.ok) << hex_dump(text);
  EXPECT_THAT(result.output, BytesAre(expected)) << "text: " << hex_dump(text);
  if (!expected.empty()) {
    EXPECT_FALSE(translation(text, settings, kNewLine, expected.size() - 1).ok) << hex_dump(text);
  }
}

// ------------------------------------------------------------------ before the text

struct PrologueRow {
  const char* name;
  TextSettings settings;
  std::string output;
};

void PrintTo(const PrologueRow& row, std::ostream* out) {
  *out << row.name;
}

class Prologue : public testing::TestWithParam<PrologueRow> {};

TEST_P(Prologue, stands_before_the_text) {
  expect_output("", GetParam().output, GetParam().settings);
  expect_output("ab\n", GetParam().output + "ab\n", GetParam().settings);
}

const std::string kDefaultSpacing = hex("1b 33 3c");

INSTANTIATE_TEST_SUITE_P(
    reset_strings, Prologue,
    testing::Values(
        PrologueRow{"reset_for_42_columns", with_line_chars(42),
                    hex("1b 45 30 1b 2d 30 1b 21 46 1d 42 30 1b 61 30") + kDefaultSpacing},
        PrologueRow{"reset_for_56_columns", with_line_chars(56),
                    hex("1b 45 30 1b 2d 30 1b 21 47 1d 42 30 1b 61 30") + kDefaultSpacing},
        PrologueRow{"reset_for_33_columns", with_line_chars(33),
                    hex("1b 45 30 1b 2d 30 1b 21 46 1b 72 30 1b 61 30") + kDefaultSpacing},
        PrologueRow{"reset_for_40_columns", with_line_chars(40),
                    hex("1b 45 30 1b 2d 30 1b 21 47 1b 72 30 1b 61 30") + kDefaultSpacing}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    no_reset_for_other_columns, Prologue,
    testing::Values(PrologueRow{"columns_0", with_line_chars(0), kDefaultSpacing},
                    PrologueRow{"columns_41", with_line_chars(41), kDefaultSpacing},
                    PrologueRow{"columns_43", with_line_chars(43), kDefaultSpacing},
                    PrologueRow{"columns_80", with_line_chars(80), kDefaultSpacing},
                    PrologueRow{"columns_298", with_line_chars(298), kDefaultSpacing},
                    PrologueRow{"columns_minus_42", with_line_chars(-42), kDefaultSpacing}),
    RowName());

TextSettings rotated_with(int32_t line_chars) {
  TextSettings settings = rotated();
  settings.line_chars = line_chars;
  return settings;
}

INSTANTIATE_TEST_SUITE_P(
    rotated_text_has_no_line_spacing, Prologue,
    testing::Values(PrologueRow{"rotated_42", rotated_with(42),
                                hex("1b 45 30 1b 2d 30 1b 21 46 1d 42 30 1b 61 30")},
                    PrologueRow{"rotated_40", rotated_with(40),
                                hex("1b 45 30 1b 2d 30 1b 21 47 1b 72 30 1b 61 30")},
                    PrologueRow{"rotated_without_reset", rotated_with(0), ""}),
    RowName());

struct SpacingRow {
  const char* name;
  int32_t map_mode;
  int32_t spacing;
  const char* argument;  ///< of ESC 3, in hex
};

void PrintTo(const SpacingRow& row, std::ostream* out) {
  *out << row.name;
}

class LineSpacing : public testing::TestWithParam<SpacingRow> {};

TEST_P(LineSpacing, is_sent_doubled) {
  TextSettings settings = with_line_chars(0);
  settings.map_mode = GetParam().map_mode;
  settings.line_spacing = GetParam().spacing;
  expect_output("", hex("1b 33") + hex(GetParam().argument), settings);
}

INSTANTIATE_TEST_SUITE_P(
    in_dots, LineSpacing,
    testing::Values(SpacingRow{"thirty", TZV_MAP_DOTS, 30, "3c"},
                    SpacingRow{"zero_becomes_1", TZV_MAP_DOTS, 0, "01"},
                    SpacingRow{"one", TZV_MAP_DOTS, 1, "02"},
                    SpacingRow{"largest_below_the_clamp", TZV_MAP_DOTS, 127, "fe"},
                    SpacingRow{"smallest_clamped", TZV_MAP_DOTS, 128, "ff"},
                    SpacingRow{"one_thousand_clamped", TZV_MAP_DOTS, 1000, "ff"},
                    SpacingRow{"largest_that_doubles", TZV_MAP_DOTS, 0x3fffffff, "ff"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(negative_keeps_its_low_byte, LineSpacing,
                         testing::Values(SpacingRow{"minus_1", TZV_MAP_DOTS, -1, "fe"},
                                         SpacingRow{"minus_5", TZV_MAP_DOTS, -5, "f6"},
                                         SpacingRow{"minus_128", TZV_MAP_DOTS, -128, "00"},
                                         SpacingRow{"minus_200", TZV_MAP_DOTS, -200, "70"}),
                         RowName());

// 2^30 doubles to the smallest negative number, and so on round the circle.
INSTANTIATE_TEST_SUITE_P(
    doubling_wraps_at_32_bits, LineSpacing,
    testing::Values(SpacingRow{"to_the_smallest", TZV_MAP_DOTS, 0x40000000, "00"},
                    SpacingRow{"to_a_negative_one", TZV_MAP_DOTS, 0x40000005, "0a"},
                    SpacingRow{"greatest_to_minus_2", TZV_MAP_DOTS, kMax, "fe"},
                    SpacingRow{"smallest_to_zero_to_1", TZV_MAP_DOTS, kMin, "01"},
                    SpacingRow{"to_a_small_positive_one", TZV_MAP_DOTS, kMin + 1, "02"},
                    SpacingRow{"to_a_clamped_one", TZV_MAP_DOTS, -0x40000001, "ff"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    in_other_units, LineSpacing,
    testing::Values(SpacingRow{"sixth_of_an_inch", TZV_MAP_TWIPS, 240, "3c"},
                    SpacingRow{"twips_below_half_a_dot", TZV_MAP_TWIPS, 3, "01"},
                    SpacingRow{"twips_above_half_a_dot", TZV_MAP_TWIPS, 4, "02"},
                    SpacingRow{"twips_of_minus_1_5_dots", TZV_MAP_TWIPS, -12, "fe"},
                    SpacingRow{"inches_of_24_4993_dots", TZV_MAP_ENGLISH, 136, "30"},
                    SpacingRow{"inches_of_102_5007_dots", TZV_MAP_ENGLISH, 569, "ce"},
                    SpacingRow{"millimetres_of_9_504_dots", TZV_MAP_METRIC, 134, "14"},
                    SpacingRow{"millimetres_of_10_496_dots", TZV_MAP_METRIC, 148, "14"},
                    SpacingRow{"unit_4_gives_no_dots", 4, 30, "01"},
                    SpacingRow{"unit_minus_1_gives_no_dots", -1, 30, "01"}),
    RowName());

TEST(Translate, appends_to_what_the_output_holds) {
  ByteBuffer output(kTransaction);
  output.append("before");
  LineColumns columns = kNewLine;
  translate("text", kDefaults, columns, output);
  EXPECT_THAT(output.bytes(), BytesAre("before" + kPrologue + "text"));
}

// ------------------------------------------------------------------ sequences

struct SequenceRow {
  const char* name;
  std::string text;
  std::string output;  ///< after the prologue
};

void PrintTo(const SequenceRow& row, std::ostream* out) {
  *out << row.name;
}

class Sequences : public testing::TestWithParam<SequenceRow> {};

TEST_P(Sequences, become_commands) {
  expect_output(GetParam().text, kPrologue + GetParam().output);
}

INSTANTIATE_TEST_SUITE_P(
    looks, Sequences,
    testing::Values(SequenceRow{"normal", "\x1b|1C", hex("1b 21 40")},
                    SequenceRow{"double_width", "\x1b|2C", hex("1b 21 60")},
                    SequenceRow{"double_height", "\x1b|3C", hex("1b 21 50")},
                    SequenceRow{"double_both", "\x1b|4C", hex("1b 21 70")},
                    SequenceRow{"zeros_before_the_number", "\x1b|002C", hex("1b 21 60")},
                    SequenceRow{"bold", "\x1b|bC", hex("1b 45 31")},
                    SequenceRow{"reversed", "\x1b|rvC", hex("1d 42 01")},
                    SequenceRow{"width_1", "\x1b|1hC", hex("1b 21 40")},
                    SequenceRow{"width_2", "\x1b|2hC", hex("1b 21 60")},
                    SequenceRow{"height_1", "\x1b|1vC", hex("1b 21 40")},
                    SequenceRow{"height_2", "\x1b|2vC", hex("1b 21 50")},
                    SequenceRow{"back_to_normal", "\x1b|N",
                                hex("1b 61 30 1b 45 30 1b 2d 30 1b 21 40")},
                    SequenceRow{"text_around", "a\x1b|bCb\x1b|2Cc\n",
                                "a" + hex("1b 45 31") + "b" + hex("1b 21 68") + "c\n"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    underline, Sequences,
    testing::Values(SequenceRow{"no_number", "\x1b|uC", hex("1b 2d 31")},
                    SequenceRow{"number_0", "\x1b|0uC", hex("1b 2d 31")},
                    SequenceRow{"number_1", "\x1b|1uC", hex("1b 2d 31")},
                    SequenceRow{"number_2", "\x1b|2uC", hex("1b 2d 32")},
                    SequenceRow{"number_02", "\x1b|02uC", hex("1b 2d 32")},
                    SequenceRow{"number_3", "\x1b|3uC", hex("1b 2d 31")},
                    SequenceRow{"number_258_is_not_2", "\x1b|258uC", hex("1b 2d 31")},
                    SequenceRow{"two_to_the_32_plus_2_is_not_2", "\x1b|4294967298uC",
                                hex("1b 2d 31")},
                    SequenceRow{"single_after_double", "\x1b|2uC\x1b|uC\x1b|1C",
                                hex("1b 2d 32 1b 2d 31 1b 21 40 1b 2d 31")},
                    SequenceRow{"double_after_single", "\x1b|uC\x1b|2uC\x1b|1C",
                                hex("1b 2d 31 1b 2d 32 1b 21 40 1b 2d 32")}),
    RowName());

// The number is no part of these sequences; one that stands there changes nothing.
INSTANTIATE_TEST_SUITE_P(number_without_meaning, Sequences,
                         testing::Values(SequenceRow{"centre_3", "\x1b|3cA", hex("1b 61 31")},
                                         SequenceRow{"right_3", "\x1b|3rA", hex("1b 61 32")},
                                         SequenceRow{"bold_3", "\x1b|3bC", hex("1b 45 31")},
                                         SequenceRow{"bold_0", "\x1b|0bC", hex("1b 45 31")},
                                         SequenceRow{"reversed_3", "\x1b|3rvC", hex("1d 42 01")},
                                         SequenceRow{"number_normal", "\x1b|3N",
                                                     hex("1b 61 30 1b 45 30 1b 2d 30 1b 21 40")},
                                         SequenceRow{"modifier_normal", "\x1b|qN",
                                                     hex("1b 61 30 1b 45 30 1b 2d 30 1b 21 40")},
                                         SequenceRow{"number_and_modifier_normal", "\x1b|12rN",
                                                     hex("1b 61 30 1b 45 30 1b 2d 30 1b 21 40")}),
                         RowName());

INSTANTIATE_TEST_SUITE_P(
    look_seen_through_later_sequences, Sequences,
    testing::Values(
        SequenceRow{"bold_stays_in_the_mode", "\x1b|bC\x1b|1C\x1b|2C\x1b|3C\x1b|4C",
                    hex("1b 45 31 1b 21 48 1b 21 68 1b 21 58 1b 21 78")},
        SequenceRow{"reverse_is_not_in_the_mode", "\x1b|rvC\x1b|1C", hex("1d 42 01 1b 21 40")},
        SequenceRow{"normal_ends_double_both", "\x1b|4C\x1b|1C", hex("1b 21 70 1b 21 40")},
        SequenceRow{"width_ends_height", "\x1b|3C\x1b|2C", hex("1b 21 50 1b 21 60")},
        SequenceRow{"height_ends_width", "\x1b|2C\x1b|3C", hex("1b 21 60 1b 21 50")},
        SequenceRow{"width_1_keeps_double_height", "\x1b|4C\x1b|1hC", hex("1b 21 70 1b 21 50")},
        SequenceRow{"height_1_keeps_double_width", "\x1b|4C\x1b|1vC", hex("1b 21 70 1b 21 60")},
        SequenceRow{"width_2_joins_double_height", "\x1b|3C\x1b|2hC", hex("1b 21 50 1b 21 70")},
        SequenceRow{"height_2_joins_double_width", "\x1b|2C\x1b|2vC", hex("1b 21 60 1b 21 70")},
        SequenceRow{"width_and_height_2", "\x1b|2hC\x1b|2vC", hex("1b 21 60 1b 21 70")},
        SequenceRow{"line_end_keeps_the_mode", "\x1b|bC\x1b|2Ca\n\x1b|2vC",
                    hex("1b 45 31 1b 21 68") + "a\n" + hex("1b 21 78")}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    back_to_normal, Sequences,
    testing::Values(SequenceRow{"ends_mode_and_underline", "\x1b|4C\x1b|bC\x1b|2uC\x1b|N\x1b|1hC",
                                hex("1b 21 70 1b 45 31 1b 2d 32") +
                                    hex("1b 61 30 1b 45 30 1b 2d 30 1b 21 40") + hex("1b 21 40")},
                    SequenceRow{"keeps_the_scaled_size", "\x1b|3hC\x1b|N\x1b|2hC",
                                hex("1b 21 20") + hex("1b 61 30 1b 45 30 1b 2d 30 1b 21 40") +
                                    hex("1b 21 30")},
                    SequenceRow{"keeps_the_start_of_the_line", "\x1b|N\x1b|N\x1b|cA",
                                hex("1b 61 30 1b 45 30 1b 2d 30 1b 21 40") +
                                    hex("1b 61 30 1b 45 30 1b 2d 30 1b 21 40") + hex("1b 61 31")},
                    SequenceRow{"does_not_align_after_text", "a\x1b|N",
                                "a" + hex("1b 45 30 1b 2d 30 1b 21 40")},
                    SequenceRow{"does_not_align_after_an_alignment", "\x1b|cA\x1b|N",
                                hex("1b 61 31 1b 45 30 1b 2d 30 1b 21 40")},
                    SequenceRow{"aligns_after_a_line_end", "a\n\x1b|N",
                                "a\n" + hex("1b 61 30 1b 45 30 1b 2d 30 1b 21 40")}),
    RowName());

// The two alignments share one chance per line, which any byte of text takes away.
INSTANTIATE_TEST_SUITE_P(
    alignment, Sequences,
    testing::Values(
        SequenceRow{"centre", "\x1b|cAHello\n", hex("1b 61 31") + "Hello\n"},
        SequenceRow{"right", "\x1b|rAHello\n", hex("1b 61 32") + "Hello\n"},
        SequenceRow{"not_after_text", "Hi\x1b|cA\x1b|rA", "Hi"},
        SequenceRow{"first_of_two_counts", "\x1b|cA\x1b|rAa", hex("1b 61 31") + "a"},
        SequenceRow{"first_of_two_counts_right", "\x1b|rA\x1b|cAa", hex("1b 61 32") + "a"},
        SequenceRow{"again_on_the_next_line", "\x1b|cAa\n\x1b|rAb\r\x1b|cAc",
                    hex("1b 61 31") + "a\n" + hex("1b 61 32") + "b\r" + hex("1b 61 31") + "c"},
        SequenceRow{"on_an_empty_line", "\x1b|cA\n\x1b|rA", hex("1b 61 31 0a 1b 61 32")},
        SequenceRow{"between_cr_and_lf", "a\r\x1b|cA\n\x1b|cA",
                    "a\r" + hex("1b 61 31") + "\n" + hex("1b 61 31")},
        SequenceRow{"looks_do_not_take_the_chance", "\x1b|bC\x1b|2C\x1b|uC\x1b|rvC\x1b|3hC\x1b|cA",
                    hex("1b 45 31 1b 21 68 1b 2d 31 1d 42 01 1b 21 20 1b 61 31")},
        SequenceRow{"feeds_do_not_take_the_chance", "\x1b|lF\x1b|20uF\x1b|P\x1b|cA",
                    hex("0a") + hex("1b 33 28 0a 1b 33 3c") + hex("1b 6d") + hex("1b 61 31")},
        SequenceRow{"feeds_do_not_give_it_back", "a\x1b|2lF\x1b|20uF\x1b|P\x1b|cA",
                    "a\n\n" + hex("1b 33 28 0a 1b 33 3c") + hex("1b 6d")},
        SequenceRow{"space_takes_it", " \x1b|cA", " "},
        SequenceRow{"bare_escape_takes_it", "\x1b\x1b|cA", "\x1b"},
        SequenceRow{"passed_on_escape_alone_does_not", "\x1b|\x1b|cA", hex("1b 7c 1b 61 31")},
        SequenceRow{"letters_of_an_unknown_sequence_do", "\x1b|lA\x1b|cA", "\x1b|lA"}),
    RowName());

TEST(Translate, a_line_left_open_by_an_earlier_call_can_still_be_aligned) {
  const LineColumns open{.line_is_open = 1, .current = 7, .widest = 0};
  EXPECT_THAT(translation("\x1b|cAa", kDefaults, open).output,
              BytesAre(kPrologue + hex("1b 61 31") + "a"));
}

// ------------------------------------------------------------------ underline comes back

struct ResendRow {
  const char* name;
  std::string sequence;
  std::string mode_command;
};

void PrintTo(const ResendRow& row, std::ostream* out) {
  *out << row.name;
}

class UnderlineAgain : public testing::TestWithParam<ResendRow> {};

// The mode command clears the printer's underline.
TEST_P(UnderlineAgain, follows_the_mode_command) {
  const ResendRow& row = GetParam();
  expect_output(row.sequence, kPrologue + row.mode_command);
  expect_output("\x1b|uC" + row.sequence,
                kPrologue + hex("1b 2d 31") + row.mode_command + hex("1b 2d 31"));
  expect_output("\x1b|2uC" + row.sequence + row.sequence, kPrologue + hex("1b 2d 32") +
                                                              row.mode_command + hex("1b 2d 32") +
                                                              row.mode_command + hex("1b 2d 32"));
}

INSTANTIATE_TEST_SUITE_P(sequences, UnderlineAgain,
                         testing::Values(ResendRow{"normal", "\x1b|1C", hex("1b 21 40")},
                                         ResendRow{"double_width", "\x1b|2C", hex("1b 21 60")},
                                         ResendRow{"double_height", "\x1b|3C", hex("1b 21 50")},
                                         ResendRow{"double_both", "\x1b|4C", hex("1b 21 70")},
                                         ResendRow{"width_1", "\x1b|1hC", hex("1b 21 40")},
                                         ResendRow{"height_1", "\x1b|1vC", hex("1b 21 40")},
                                         ResendRow{"height_2", "\x1b|2vC", hex("1b 21 50")}),
                         RowName());

// Required as it is: width 2 sends its mode command twice when text is underlined, and scaled
// sizes leave the underline cleared.
INSTANTIATE_TEST_SUITE_P(
    underline_oddities, Sequences,
    testing::Values(SequenceRow{"width_2_is_sent_twice", "\x1b|uC\x1b|2hC",
                                hex("1b 2d 31 1b 21 60 1b 21 60 1b 2d 31")},
                    SequenceRow{"width_2_is_sent_twice_with_double_underline", "\x1b|2uC\x1b|2hC",
                                hex("1b 2d 32 1b 21 60 1b 21 60 1b 2d 32")},
                    SequenceRow{"width_2_is_sent_once_after_a_reset", "\x1b|uC\x1b|N\x1b|2hC",
                                hex("1b 2d 31 1b 61 30 1b 45 30 1b 2d 30 1b 21 40 1b 21 60")},
                    SequenceRow{"scaled_width_2_is_sent_once", "\x1b|uC\x1b|3vC\x1b|2hC",
                                hex("1b 2d 31 1b 21 02 1b 21 12")},
                    SequenceRow{"scaled_width", "\x1b|uC\x1b|3hC", hex("1b 2d 31 1b 21 20")},
                    SequenceRow{"scaled_height", "\x1b|2uC\x1b|8vC", hex("1b 2d 32 1b 21 07")},
                    SequenceRow{"underline_outlasts_scaled_sizes", "\x1b|2uC\x1b|3hC\x1b|1hC",
                                hex("1b 2d 32 1b 21 20 1b 21 40 1b 2d 32")}),
    RowName());

// ------------------------------------------------------------------ scaled sizes

INSTANTIATE_TEST_SUITE_P(scaled, Sequences,
                         testing::Values(SequenceRow{"width_3", "\x1b|3hC", hex("1b 21 20")},
                                         SequenceRow{"width_4", "\x1b|4hC", hex("1b 21 30")},
                                         SequenceRow{"width_5", "\x1b|5hC", hex("1b 21 40")},
                                         SequenceRow{"width_6", "\x1b|6hC", hex("1b 21 50")},
                                         SequenceRow{"width_7", "\x1b|7hC", hex("1b 21 60")},
                                         SequenceRow{"width_8", "\x1b|8hC", hex("1b 21 70")},
                                         SequenceRow{"height_3", "\x1b|3vC", hex("1b 21 02")},
                                         SequenceRow{"height_4", "\x1b|4vC", hex("1b 21 03")},
                                         SequenceRow{"height_5", "\x1b|5vC", hex("1b 21 04")},
                                         SequenceRow{"height_6", "\x1b|6vC", hex("1b 21 05")},
                                         SequenceRow{"height_7", "\x1b|7vC", hex("1b 21 06")},
                                         SequenceRow{"height_8", "\x1b|8vC", hex("1b 21 07")}),
                         RowName());

INSTANTIATE_TEST_SUITE_P(
    scaled_state, Sequences,
    testing::Values(
        SequenceRow{"new_width_replaces_the_old", "\x1b|8hC\x1b|3hC", hex("1b 21 70 1b 21 20")},
        SequenceRow{"new_height_replaces_the_old", "\x1b|8vC\x1b|3vC", hex("1b 21 07 1b 21 02")},
        SequenceRow{"double_height_becomes_part_of_it", "\x1b|3C\x1b|3hC\x1b|1hC",
                    hex("1b 21 50 1b 21 21 1b 21 40")},
        SequenceRow{"height_2_becomes_part_of_it", "\x1b|2vC\x1b|8hC", hex("1b 21 50 1b 21 71")},
        SequenceRow{"double_width_becomes_part_of_it", "\x1b|2C\x1b|3vC\x1b|1vC",
                    hex("1b 21 60 1b 21 12 1b 21 40")},
        SequenceRow{"scaled_width_ends_double_width", "\x1b|2C\x1b|3hC\x1b|2vC",
                    hex("1b 21 60 1b 21 20 1b 21 50")},
        SequenceRow{"scaled_height_ends_double_height", "\x1b|3C\x1b|3vC\x1b|1hC",
                    hex("1b 21 50 1b 21 02 1b 21 40")},
        SequenceRow{"double_both_then_scaled_width", "\x1b|4C\x1b|3hC\x1b|1C",
                    hex("1b 21 70 1b 21 21 1b 21 40")},
        SequenceRow{"double_both_then_scaled_height", "\x1b|4C\x1b|3vC\x1b|1C",
                    hex("1b 21 70 1b 21 12 1b 21 40")},
        SequenceRow{"height_2_adds_to_a_scaled_height", "\x1b|5vC\x1b|2vC\x1b|3hC",
                    hex("1b 21 04 1b 21 50 1b 21 25")},
        SequenceRow{"width_2_adds_to_a_scaled_width", "\x1b|3hC\x1b|2hC\x1b|2hC",
                    hex("1b 21 20 1b 21 30 1b 21 40")},
        SequenceRow{"width_2_is_then_counted_again", "\x1b|8hC\x1b|2hC\x1b|3vC",
                    hex("1b 21 70 1b 21 80 1b 21 92")},
        SequenceRow{"normal_mode_keeps_the_scaled_size", "\x1b|3hC\x1b|1C\x1b|2hC",
                    hex("1b 21 20 1b 21 40 1b 21 30")},
        SequenceRow{"width_1_keeps_the_scaled_size", "\x1b|3hC\x1b|1hC\x1b|3vC",
                    hex("1b 21 20 1b 21 40 1b 21 22")},
        SequenceRow{"height_1_keeps_the_scaled_size", "\x1b|3vC\x1b|1vC\x1b|3hC",
                    hex("1b 21 02 1b 21 40 1b 21 22")},
        SequenceRow{"line_end_keeps_the_scaled_size", "\x1b|3hC\n\x1b|3vC",
                    hex("1b 21 20") + "\n" + hex("1b 21 22")},
        SequenceRow{"bold_is_not_part_of_it", "\x1b|bC\x1b|3hC\x1b|1hC",
                    hex("1b 45 31 1b 21 20 1b 21 48")}),
    RowName());

TEST(ScaledSizes, every_width_joins_every_height) {
  for (int width = 3; width <= 8; ++width) {
    for (int height = 3; height <= 8; ++height) {
      const std::string set_width = "\x1b|" + std::to_string(width) + "hC";
      const std::string set_height = "\x1b|" + std::to_string(height) + "vC";
      const auto wide = static_cast<char>((width - 1) * 16);
      const auto high = static_cast<char>(height - 1);
      const auto both = static_cast<char>(wide + high);
      expect_output(set_width + set_height, kPrologue + "\x1b!" + wide + "\x1b!" + both);
      expect_output(set_height + set_width, kPrologue + "\x1b!" + high + "\x1b!" + both);
    }
  }
}

// The size is one byte: its ninth step above width 8 comes round to nothing, and width 2 is then
// the mode's own again.
TEST(ScaledSizes, width_wraps_within_its_byte) {
  expect_output("\x1b|8hC" + times(10, "\x1b|2hC"),
                kPrologue + hex("1b 21 70") +
                    hex("1b 21 80 1b 21 90 1b 21 a0 1b 21 b0 1b 21 c0 1b 21 d0 1b 21 e0 1b 21 f0") +
                    hex("1b 21 00") + hex("1b 21 60"));
}

TEST(ScaledSizes, height_above_15_carries_into_the_width) {
  const std::string raise = "\x1b|2vC\x1b|3hC";
  std::string expected = kPrologue + hex("1b 21 07");
  for (int low_nibble = 8; low_nibble <= 15; ++low_nibble) {
    expected += hex("1b 21 50 1b 21") + static_cast<char>(0x20 + low_nibble);
  }
  expected += hex("1b 21 50 1b 21 30");
  expect_output("\x1b|8vC" + times(9, raise), expected);
}

// ------------------------------------------------------------------ accepted, without effect

class WithoutEffect : public testing::TestWithParam<SequenceRow> {};

TEST_P(WithoutEffect, nothing_is_sent) {
  expect_output(GetParam().text, kPrologue);
}

TEST_P(WithoutEffect, no_columns_are_used_and_the_line_can_still_be_aligned) {
  const Translation result = translation(GetParam().text + "\x1b|cAx" + GetParam().text);
  EXPECT_THAT(result.output, BytesAre(kPrologue + hex("1b 61 31") + "x"));
  EXPECT_EQ(result.columns.current, 1);
}

TEST_P(WithoutEffect, no_look_is_changed) {
  const std::string before = "\x1b|4C\x1b|5hC\x1b|2uC";
  const std::string after = "x\x1b|3C\x1b|2hC";
  const Translation result = translation(before + GetParam().text + after);
  EXPECT_THAT(result.output, BytesAre(kPrologue + hex("1b 21 70 1b 21 41 1b 2d 32") + "x" +
                                      hex("1b 21 50 1b 2d 32") + hex("1b 21 51")));
  EXPECT_EQ(result.columns.current, 5);
}

INSTANTIATE_TEST_SUITE_P(
    sequences, WithoutEffect,
    testing::Values(
        SequenceRow{"italic", "\x1b|iC", ""}, SequenceRow{"number_ic", "\x1b|5iC", ""},
        SequenceRow{"shading", "\x1b|sC", ""}, SequenceRow{"shading_50", "\x1b|50sC", ""},
        SequenceRow{"alternate_colour", "\x1b|rC", ""},
        SequenceRow{"alternate_colour_2", "\x1b|2rC", ""},
        SequenceRow{"width_without_number", "\x1b|hC", ""}, SequenceRow{"width_0", "\x1b|0hC", ""},
        SequenceRow{"width_9", "\x1b|9hC", ""}, SequenceRow{"width_256_plus_2", "\x1b|258hC", ""},
        SequenceRow{"width_two_to_the_32_plus_3", "\x1b|4294967299hC", ""},
        SequenceRow{"height_without_number", "\x1b|vC", ""},
        SequenceRow{"height_0", "\x1b|0vC", ""}, SequenceRow{"height_9", "\x1b|9vC", ""},
        SequenceRow{"height_256_plus_2", "\x1b|258vC", ""},
        SequenceRow{"height_two_to_the_32_plus_3", "\x1b|4294967299vC", ""},
        SequenceRow{"reverse_feed", "\x1b|rF", ""}, SequenceRow{"reverse_feed_5", "\x1b|5rF", ""},
        SequenceRow{"bottom_logo", "\x1b|bL", ""}, SequenceRow{"stamp", "\x1b|sL", ""},
        SequenceRow{"top_logo", "\x1b|tL", ""}, SequenceRow{"stamp_cut", "\x1b|sP", ""},
        SequenceRow{"stamp_cut_75", "\x1b|75sP", ""}, SequenceRow{"typeface", "\x1b|fT", ""},
        SequenceRow{"typeface_1", "\x1b|1fT", ""}),
    RowName());

// ------------------------------------------------------------------ passed on as text

struct PassedOnRow {
  const char* name;
  std::string text;
  int32_t columns;
};

void PrintTo(const PassedOnRow& row, std::ostream* out) {
  *out << row.name;
}

class PassedOn : public testing::TestWithParam<PassedOnRow> {};

TEST_P(PassedOn, byte_for_byte) {
  expect_output(GetParam().text, kPrologue + GetParam().text);
}

TEST_P(PassedOn, all_but_escape_and_bar_use_columns) {
  const Translation result = translation(GetParam().text);
  EXPECT_EQ(result.columns.line_is_open, 1);
  EXPECT_EQ(result.columns.current, GetParam().columns) << hex_dump(GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    unknown_sequences, PassedOn,
    testing::Values(
        PassedOnRow{"left_alignment", "\x1b|lA", 2},
        PassedOnRow{"alignment_without_modifier", "\x1b|A", 1},
        PassedOnRow{"look_without_number", "\x1b|C", 1}, PassedOnRow{"look_0", "\x1b|0C", 2},
        PassedOnRow{"look_5", "\x1b|5C", 2}, PassedOnRow{"look_10", "\x1b|10C", 3},
        PassedOnRow{"look_257", "\x1b|257C", 4},
        PassedOnRow{"look_two_to_the_32_plus_1", "\x1b|4294967297C", 11},
        PassedOnRow{"look_two_to_the_64_plus_1", "\x1b|18446744073709551617C", 21},
        PassedOnRow{"look_x", "\x1b|xC", 2}, PassedOnRow{"look_1x", "\x1b|1xC", 3},
        PassedOnRow{"feed_without_modifier", "\x1b|F", 1}, PassedOnRow{"feed_3", "\x1b|3F", 2},
        PassedOnRow{"feed_b", "\x1b|bF", 2}, PassedOnRow{"logo_l", "\x1b|lL", 2},
        PassedOnRow{"logo_without_modifier", "\x1b|L", 1}, PassedOnRow{"cut_x", "\x1b|xP", 2},
        PassedOnRow{"cut_100_l", "\x1b|100lP", 5},
        PassedOnRow{"typeface_without_modifier", "\x1b|T", 1},
        PassedOnRow{"typeface_1_without_modifier", "\x1b|1T", 2},
        PassedOnRow{"typeface_s", "\x1b|sT", 2}, PassedOnRow{"capital_modifier", "\x1b|BC", 2},
        PassedOnRow{"two_modifiers", "\x1b|bbC", 3}, PassedOnRow{"reverse_twice", "\x1b|rvrvC", 5},
        PassedOnRow{"reverse_before_a", "\x1b|rvA", 3},
        PassedOnRow{"reverse_before_n", "\x1b|rvN", 3}, PassedOnRow{"turned_round", "\x1b|vrC", 3},
        PassedOnRow{"number_after_the_modifier", "\x1b|b2C", 3},
        PassedOnRow{"minus_before_the_number", "\x1b|-1C", 3},
        PassedOnRow{"plus_before_the_number", "\x1b|+1C", 3},
        PassedOnRow{"space_before_the_number", "\x1b| 1C", 3},
        PassedOnRow{"space_after_the_number", "\x1b|1 C", 3},
        PassedOnRow{"second_bar", "\x1b||bC", 3}, PassedOnRow{"high_byte", "\x1b|\344C", 2},
        PassedOnRow{"nul_as_the_command", std::string("\x1b|\0C", 4), 2},
        PassedOnRow{"nul_after_a_modifier", std::string("\x1b|b\0C", 5), 3}),
    RowName());

INSTANTIATE_TEST_SUITE_P(cut_off_at_the_end, PassedOn,
                         testing::Values(PassedOnRow{"after_the_bar", "\x1b|", 0},
                                         PassedOnRow{"after_the_bar_with_text", "ab\x1b|", 2},
                                         PassedOnRow{"after_a_number", "\x1b|12", 2},
                                         PassedOnRow{"after_a_modifier", "\x1b|b", 1},
                                         PassedOnRow{"after_a_number_and_a_modifier", "\x1b|3h", 2},
                                         PassedOnRow{"after_r", "\x1b|r", 1},
                                         PassedOnRow{"after_rv", "\x1b|rv", 2},
                                         PassedOnRow{"twice", "\x1b|\x1b|", 0},
                                         PassedOnRow{"before_the_bar", "ab\x1b", 3}),
                         RowName());

INSTANTIATE_TEST_SUITE_P(
    plain_text, PassedOn,
    testing::Values(PassedOnRow{"ascii", "Total  12.30", 12}, PassedOnRow{"tab", "a\tb", 3},
                    PassedOnRow{"bar", "a|bC", 4}, PassedOnRow{"bare_escape", "\x1b", 1},
                    PassedOnRow{"escape_before_another_byte", "\x1b[1m", 4},
                    PassedOnRow{"escape_before_a_capital", "\033E1", 3},
                    PassedOnRow{"high_bytes", "\x80\xe4\xff", 3},
                    PassedOnRow{"multibyte_character", "\xe2\x82\xac", 3},
                    PassedOnRow{"nul", std::string("A\0B", 3), 3},
                    PassedOnRow{"only_nul", std::string(1, '\0'), 1},
                    PassedOnRow{"nul_at_the_end", std::string("A\0", 2), 2},
                    PassedOnRow{"escape_before_nul", std::string("\x1b\0|bC", 5), 5}),
    RowName());

TEST(Translate, copies_every_byte_that_is_no_sequence) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(3, static_cast<char>(byte));
    expect_output(text, kPrologue + text);
  }
}

// What follows an unknown sequence's ESC '|' is scanned afresh.
INSTANTIATE_TEST_SUITE_P(
    after_an_unknown_sequence, Sequences,
    testing::Values(
        SequenceRow{"sequence_as_the_command", "\x1b|\x1b|bC", hex("1b 7c 1b 45 31")},
        SequenceRow{"sequence_at_third_try", "\x1b|\x1b|\x1b|bC", hex("1b 7c 1b 7c 1b 45 31")},
        SequenceRow{"sequence_after_a_number", "\x1b|5\x1b|bC", "\x1b|5" + hex("1b 45 31")},
        SequenceRow{"sequence_after_a_modifier", "\x1b|b\x1b|bC", "\x1b|b" + hex("1b 45 31")},
        SequenceRow{"sequence_after_a_bare_escape", "\x1b\x1b|bC", hex("1b 1b 45 31")},
        SequenceRow{"line_end_as_the_command", "a\x1b|\n\x1b|cA", "a\x1b|\n" + hex("1b 61 31")},
        SequenceRow{"line_end_after_a_number", "a\x1b|5\r\x1b|cA", "a\x1b|5\r" + hex("1b 61 31")}),
    RowName());

// The bytes that follow in memory would complete the sequence; they are not part of the text.
TEST(Translate, ends_where_the_text_ends) {
  const std::string memory = "ab\x1b|2hCcd";
  expect_output(std::string_view(memory).substr(0, 6), kPrologue + "ab\x1b|2h");
  expect_output(std::string_view(memory).substr(0, 5), kPrologue + "ab\x1b|2");
  expect_output(std::string_view(memory).substr(0, 4), kPrologue + "ab\x1b|");
  expect_output(std::string_view(memory).substr(0, 3), kPrologue + "ab\x1b");
  expect_output(std::string_view(memory).substr(0, 7), kPrologue + "ab" + hex("1b 21 60"));
}

// ------------------------------------------------------------------ which sequences are known

bool contains(std::string_view set, char byte) {
  return set.find(byte) != std::string_view::npos;
}

bool is_known(char modifier, char command) {
  switch (command) {
    case 'A':
      return contains("cr", modifier);
    case 'C':
      return contains("bhirsuv", modifier);
    case 'F':
      return contains("lur", modifier);
    case 'L':
      return contains("bst", modifier);
    case 'N':
      return true;
    case 'P':
      return contains("fs", modifier);
    case 'T':
      return modifier == 'f';
    default:
      return false;
  }
}

/// An unknown sequence goes to the printer as it stands; a known one is consumed.
void expect_known(const std::string& sequence, bool known) {
  const Translation result = translation(sequence);
  ASSERT_EQ(result.output.substr(0, kPrologue.size()), kPrologue);
  const std::string output = result.output.substr(kPrologue.size());
  if (known) {
    EXPECT_EQ(output.find("\x1b|"), std::string::npos) << hex_dump(sequence);
    EXPECT_EQ(result.columns.current, 0) << hex_dump(sequence);
  } else {
    EXPECT_THAT(output, BytesAre(sequence));
  }
}

TEST(KnownSequences, without_number_and_modifier_are_normal_and_cut) {
  for (int command = 0; command < 256; ++command) {
    expect_known(std::string("\x1b|") + static_cast<char>(command),
                 command == 'N' || command == 'P');
  }
}

TEST(KnownSequences, with_a_number_are_the_looks_1_to_4_too) {
  for (int command = 0; command < 256; ++command) {
    for (const char number : {'0', '1', '2', '3', '4', '5', '9'}) {
      const bool look = command == 'C' && number >= '1' && number <= '4';
      expect_known(std::string("\x1b|") + number + static_cast<char>(command),
                   command == 'N' || command == 'P' || look);
    }
  }
}

TEST(KnownSequences, depend_on_modifier_and_command) {
  for (char modifier = 'a'; modifier <= 'z'; ++modifier) {
    for (int byte = 0; byte < 256; ++byte) {
      const auto command = static_cast<char>(byte);
      const std::string end = std::string(1, modifier) + command;
      expect_known("\x1b|" + end, is_known(modifier, command));
      expect_known("\x1b|7" + end, is_known(modifier, command));
    }
  }
}

TEST(KnownSequences, with_two_modifiers_are_reverse_only) {
  for (int command = 0; command < 256; ++command) {
    expect_known(std::string("\x1b|rv") + static_cast<char>(command), command == 'C');
  }
  for (char modifier = 'a'; modifier <= 'z'; ++modifier) {
    expect_known(std::string("\x1b|r") + modifier + "C", modifier == 'v');
    expect_known(std::string("\x1b|") + modifier + "vC", modifier == 'r');
  }
}

// ------------------------------------------------------------------ feeds and cuts

struct SettingsRow {
  const char* name;
  TextSettings settings;
  std::string text;
  std::string output;  ///< after what stands before the text
};

void PrintTo(const SettingsRow& row, std::ostream* out) {
  *out << row.name;
}

INSTANTIATE_TEST_SUITE_P(
    line_feeds, Sequences,
    testing::Values(SequenceRow{"one_without_number", "\x1b|lF", "\n"},
                    SequenceRow{"one_for_0", "\x1b|0lF", "\n"},
                    SequenceRow{"one", "\x1b|1lF", "\n"},
                    SequenceRow{"three", "\x1b|3lF", "\n\n\n"},
                    SequenceRow{"three_hundred", "\x1b|300lF", std::string(300, '\n')},
                    SequenceRow{"zeros_before", "\x1b|0002lF", "\n\n"},
                    SequenceRow{"looks_stay", "\x1b|uC\x1b|3hC\x1b|2lF\x1b|2vC",
                                hex("1b 2d 31 1b 21 20") + "\n\n" + hex("1b 21 50 1b 2d 31")}),
    RowName());

// Every pass doubles the spacing again, and only its low byte is sent: applications have adjusted
// their receipts to it.
INSTANTIATE_TEST_SUITE_P(
    unit_feeds_in_dots, Sequences,
    testing::Values(
        SequenceRow{"no_dots_without_number", "\x1b|uF", hex("1b 33 01 0a 1b 33 3c")},
        SequenceRow{"no_dots", "\x1b|0uF", hex("1b 33 01 0a 1b 33 3c")},
        SequenceRow{"dots_1", "\x1b|1uF", hex("1b 33 02 0a 1b 33 3c")},
        SequenceRow{"dots_20", "\x1b|20uF", hex("1b 33 28 0a 1b 33 3c")},
        SequenceRow{"dots_49", "\x1b|49uF", hex("1b 33 62 0a 1b 33 3c")},
        SequenceRow{"dots_50_are_one_pass", "\x1b|50uF", hex("1b 33 64 0a 1b 33 3c")},
        SequenceRow{"dots_51_are_two", "\x1b|51uF", hex("1b 33 cc 0a 1b 33 98 0a 1b 33 3c")},
        SequenceRow{"dots_60", "\x1b|60uF", hex("1b 33 f0 0a 1b 33 e0 0a 1b 33 3c")},
        SequenceRow{"dots_99", "\x1b|99uF", hex("1b 33 8c 0a 1b 33 18 0a 1b 33 3c")},
        SequenceRow{"dots_100", "\x1b|100uF", hex("1b 33 90 0a 1b 33 20 0a 1b 33 40 0a 1b 33 3c")},
        SequenceRow{"dots_127", "\x1b|127uF", hex("1b 33 fc 0a 1b 33 f8 0a 1b 33 f0 0a 1b 33 3c")},
        SequenceRow{"dots_128", "\x1b|128uF", hex("1b 33 00 0a 1b 33 00 0a 1b 33 00 0a 1b 33 3c")},
        SequenceRow{"dots_150", "\x1b|150uF",
                    hex("1b 33 58 0a 1b 33 b0 0a 1b 33 60 0a 1b 33 c0 0a 1b 33 3c")},
        SequenceRow{"two_feeds", "\x1b|20uF\x1b|60uF",
                    hex("1b 33 28 0a 1b 33 3c") + hex("1b 33 f0 0a 1b 33 e0 0a 1b 33 3c")}),
    RowName());

/// The feed of one pass.
std::string pass(const char* argument) {
  return hex("1b 33") + hex(argument) + "\n";
}

// 4000 = 125 * 2^5: after 27 doublings nothing of it is left, and 1 takes its place.
TEST(UnitFeed, spacing_that_wraps_to_nothing_in_a_pass_becomes_1_and_doubles_on) {
  expect_output("\x1b|2000uF", kPrologue + pass("40") + pass("80") + times(24, pass("00")) +
                                   pass("01") + pass("02") + pass("04") + pass("08") + pass("10") +
                                   pass("20") + pass("40") + pass("80") + times(6, pass("00")) +
                                   pass("00") + hex("1b 33 3c"));
}

// 3002 = 1501 * 2: after 30 passes 2^31 is left, and the doubling after the last makes it nothing.
TEST(UnitFeed, spacing_that_wraps_to_nothing_at_the_end_becomes_1) {
  expect_output("\x1b|1501uF", kPrologue + pass("74") + pass("e8") + pass("d0") + pass("a0") +
                                   pass("40") + pass("80") + times(24, pass("00")) + pass("01") +
                                   hex("1b 33 3c"));
}

class FeedsWithSettings : public testing::TestWithParam<SettingsRow> {};

TEST_P(FeedsWithSettings, feed_and_cut) {
  TextSettings settings = GetParam().settings;
  settings.line_chars = 0;
  const std::string spacing = settings.rotated ? "" : kDefaultSpacing;
  // The line spacing is the same 30 dots in whatever unit.
  switch (settings.map_mode) {
    case TZV_MAP_TWIPS:
      settings.line_spacing = 240;
      break;
    case TZV_MAP_ENGLISH:
      settings.line_spacing = 167;
      break;
    case TZV_MAP_METRIC:
      settings.line_spacing = 423;
      break;
    default:
      break;
  }
  expect_output(GetParam().text, spacing + GetParam().output, settings);
}

INSTANTIATE_TEST_SUITE_P(
    unit_feeds_in_other_units, FeedsWithSettings,
    testing::Values(SettingsRow{"a_sixth_of_an_inch", with_map_mode(TZV_MAP_TWIPS), "\x1b|240uF",
                                hex("1b 33 3c 0a 1b 33 3c")},
                    SettingsRow{"twips_of_50_4_dots", with_map_mode(TZV_MAP_TWIPS), "\x1b|403uF",
                                hex("1b 33 64 0a 1b 33 3c")},
                    SettingsRow{"twips_of_50_54_dots", with_map_mode(TZV_MAP_TWIPS), "\x1b|404uF",
                                hex("1b 33 cc 0a 1b 33 98 0a 1b 33 3c")},
                    SettingsRow{"an_inch", with_map_mode(TZV_MAP_TWIPS), "\x1b|1440uF",
                                hex("1b 33 d0 0a 1b 33 a0 0a 1b 33 40 0a 1b 33 80 0a 1b 33 3c")},
                    SettingsRow{"inches_of_24_4993_dots", with_map_mode(TZV_MAP_ENGLISH),
                                "\x1b|136uF", hex("1b 33 30 0a 1b 33 3c")},
                    SettingsRow{"millimetres_of_9_504_dots", with_map_mode(TZV_MAP_METRIC),
                                "\x1b|134uF", hex("1b 33 14 0a 1b 33 3c")},
                    SettingsRow{"millimetres_of_less_than_half_a_dot",
                                with_map_mode(TZV_MAP_METRIC), "\x1b|7uF",
                                hex("1b 33 01 0a 1b 33 3c")}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    rotated_text, FeedsWithSettings,
    testing::Values(SettingsRow{"units_are_not_fed", rotated(),
                                "a\x1b|60uF\x1b|uF"
                                "b",
                                "ab"},
                    SettingsRow{"not_even_the_greatest_number", rotated(), "\x1b|2147483647uF", ""},
                    SettingsRow{"lines_are_fed", rotated(), "\x1b|2lF", "\n\n"},
                    SettingsRow{"paper_is_cut", rotated(), "\x1b|fP", "\n\n\n\n\n\x1bm"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    cuts, FeedsWithSettings,
    testing::Values(
        SettingsRow{"without_number", kDefaults, "\x1b|P", "\x1bm"},
        SettingsRow{"percent_0", kDefaults, "\x1b|0P", "\x1bm"},
        SettingsRow{"percent_50", kDefaults, "\x1b|50P", "\x1bm"},
        SettingsRow{"percent_100", kDefaults, "\x1b|100P", "\x1bm"},
        SettingsRow{"percent_too_great_for_32_bits", kDefaults, "\x1b|9999999999P", "\x1bm"},
        SettingsRow{"feed_5_and_cut", kDefaults, "\x1b|fP", "\n\n\n\n\n\x1bm"},
        SettingsRow{"percent_does_not_feed", kDefaults, "\x1b|90fP", "\n\n\n\n\n\x1bm"},
        SettingsRow{"feed_nothing_and_cut", with_lines_to_paper_cut(0), "\x1b|fP", "\x1bm"},
        SettingsRow{"feed_1_and_cut", with_lines_to_paper_cut(1), "\x1b|fP", "\n\x1bm"},
        SettingsRow{"feed_300_and_cut", with_lines_to_paper_cut(300), "\x1b|fP",
                    std::string(300, '\n') + "\x1bm"},
        SettingsRow{"negative_feeds_nothing", with_lines_to_paper_cut(-1), "\x1b|fP", "\x1bm"},
        SettingsRow{"most_negative_feeds_nothing", with_lines_to_paper_cut(kMin), "\x1b|fP",
                    "\x1bm"}),
    RowName());

TEST(UnitFeed, of_a_unit_that_does_not_exist_is_no_dots) {
  for (const int32_t map_mode : {4, -1, 256, kMax, kMin}) {
    TextSettings settings = with_map_mode(map_mode);
    settings.line_chars = 0;
    expect_output("\x1b|9999999999uF", hex("1b 33 01") + hex("1b 33 01 0a 1b 33 3c"), settings);
  }
}

// ------------------------------------------------------------------ other fonts

class Fonts : public testing::TestWithParam<SettingsRow> {};

TEST_P(Fonts, are_part_of_the_mode) {
  const Translation result = translation(GetParam().text, GetParam().settings);
  const Translation nothing = translation("", GetParam().settings);
  EXPECT_THAT(result.output, BytesAre(nothing.output + GetParam().output));
}

const char* const kEveryMode = "\x1b|1C\x1b|2C\x1b|3C\x1b|4C\x1b|1hC\x1b|1vC\x1b|2hC\x1b|2vC";
const std::string kEveryModeOfTheFirstFont =
    hex("1b 21 40 1b 21 60 1b 21 50 1b 21 70 1b 21 50 1b 21 40 1b 21 60 1b 21 70");
const std::string kEveryModeOfTheSecondFont =
    hex("1b 21 41 1b 21 61 1b 21 51 1b 21 71 1b 21 51 1b 21 41 1b 21 61 1b 21 71");

INSTANTIATE_TEST_SUITE_P(
    every_mode, Fonts,
    testing::Values(
        SettingsRow{"columns_42", with_line_chars(42), kEveryMode, kEveryModeOfTheFirstFont},
        SettingsRow{"columns_33", with_line_chars(33), kEveryMode, kEveryModeOfTheFirstFont},
        SettingsRow{"columns_56", with_line_chars(56), kEveryMode, kEveryModeOfTheSecondFont},
        SettingsRow{"columns_40", with_line_chars(40), kEveryMode, kEveryModeOfTheSecondFont},
        SettingsRow{"other_columns", with_line_chars(48), kEveryMode, kEveryModeOfTheFirstFont}),
    RowName());

const char* const kLooksThenNormal = "\x1b|bC\x1b|4C\x1b|2uC\x1b|N\x1b|1hC";
const std::string kLooks = hex("1b 45 31 1b 21 78 1b 2d 32 1b 61 30 1b 45 30 1b 2d 30");
const std::string kLooksOfTheSecondFont =
    hex("1b 45 31 1b 21 79 1b 2d 32 1b 61 30 1b 45 30 1b 2d 30");

INSTANTIATE_TEST_SUITE_P(
    back_to_normal, Fonts,
    testing::Values(SettingsRow{"normal_42", with_line_chars(42), kLooksThenNormal,
                                kLooks + hex("1b 21 40 1b 21 40")},
                    SettingsRow{"normal_33", with_line_chars(33), kLooksThenNormal,
                                kLooks + hex("1b 21 40 1b 21 40")},
                    SettingsRow{"normal_56", with_line_chars(56), kLooksThenNormal,
                                kLooksOfTheSecondFont + hex("1b 21 41 1b 21 41")},
                    SettingsRow{"normal_40", with_line_chars(40), kLooksThenNormal,
                                kLooksOfTheSecondFont + hex("1b 21 41 1b 21 41")},
                    SettingsRow{"other_columns_keep_mode_and_underline", with_line_chars(48),
                                kLooksThenNormal, kLooks + hex("1b 21 78 1b 21 58 1b 2d 32")}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    scaled, Fonts,
    testing::Values(SettingsRow{"font_is_not_part_of_the_size", with_line_chars(56),
                                "\x1b|3hC\x1b|4vC\x1b|1hC", hex("1b 21 20 1b 21 23 1b 21 41")},
                    SettingsRow{"other_columns", with_line_chars(0), "\x1b|4C\x1b|3hC\x1b|1C",
                                hex("1b 21 70 1b 21 21 1b 21 40")}),
    RowName());

TEST(Translate, looks_last_for_one_call) {
  LineColumns columns = kNewLine;
  ByteBuffer first(kTransaction);
  translate("\x1b|4C\x1b|bC\x1b|2uC\x1b|5hCab", kDefaults, columns, first);
  ByteBuffer second(kTransaction);
  translate("\x1b|1hC\x1b|2hC\x1b|1hCcd", kDefaults, columns, second);
  EXPECT_THAT(second.bytes(), BytesAre(kPrologue + hex("1b 21 40 1b 21 60 1b 21 40") + "cd"));
  EXPECT_EQ(columns.current, 5 + 5 + 1 + 1);
}

// ------------------------------------------------------------------ columns

struct ColumnsRow {
  const char* name;
  LineColumns before;
  std::string text;
  LineColumns after;
};

void PrintTo(const ColumnsRow& row, std::ostream* out) {
  *out << row.name;
}

void expect_columns(const LineColumns& actual, const LineColumns& expected) {
  EXPECT_EQ(actual.line_is_open, expected.line_is_open);
  EXPECT_EQ(actual.current, expected.current);
  EXPECT_EQ(actual.widest, expected.widest);
}

class Columns : public testing::TestWithParam<ColumnsRow> {};

TEST_P(Columns, are_counted) {
  const ColumnsRow& row = GetParam();
  SCOPED_TRACE("text: " + hex_dump(row.text));
  expect_columns(translation(row.text, kDefaults, row.before).columns, row.after);
}

INSTANTIATE_TEST_SUITE_P(
    lines, Columns,
    testing::Values(ColumnsRow{"nothing_opens_a_line", {0, 0, 0}, "", {1, 0, 0}},
                    ColumnsRow{"text_opens_a_line", {0, 0, 0}, "abc", {1, 3, 0}},
                    ColumnsRow{"line_feed_ends_it", {0, 0, 0}, "abc\n", {0, 0, 3}},
                    ColumnsRow{"carriage_return_ends_it", {0, 0, 0}, "abc\r", {0, 0, 3}},
                    ColumnsRow{"both_end_it_once", {0, 0, 0}, "abc\r\n", {0, 0, 3}},
                    ColumnsRow{"line_end_alone", {0, 0, 0}, "\n", {0, 0, 0}},
                    ColumnsRow{"after_the_last_line_end_nothing_is_carried",
                               {0, 0, 0},
                               "abc\ndefgh",
                               {0, 0, 3}},
                    ColumnsRow{"widest_of_three", {0, 0, 0}, "abc\nabcdef\na\n", {0, 0, 6}},
                    ColumnsRow{"last_is_widest", {0, 0, 0}, "a\nab\nabc\n", {0, 0, 3}}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    across_calls, Columns,
    testing::Values(
        ColumnsRow{"open_line_is_resumed_and_ended", {1, 3, 0}, "de\n", {0, 0, 5}},
        ColumnsRow{"open_line_is_resumed_and_left_open", {1, 3, 0}, "de", {1, 5, 0}},
        ColumnsRow{"open_line_stays_with_nothing", {1, 3, 2}, "", {1, 3, 2}},
        ColumnsRow{"open_line_is_ended_by_a_line_end_alone", {1, 3, 2}, "\n", {0, 0, 3}},
        ColumnsRow{"second_line_starts_at_nothing", {1, 30, 0}, "\nab\n", {0, 0, 30}},
        ColumnsRow{"ended_line_is_not_resumed", {0, 9, 0}, "de", {1, 2, 0}},
        ColumnsRow{"ended_line_does_not_count", {0, 9, 0}, "de\n", {0, 0, 2}},
        ColumnsRow{"widest_is_kept_by_a_shorter_line", {0, 0, 10}, "abc\n", {0, 0, 10}},
        ColumnsRow{"widest_is_kept_by_an_equal_line", {0, 0, 3}, "abc\n", {0, 0, 3}},
        ColumnsRow{"widest_grows_by_a_longer_line", {0, 0, 3}, "abcd\n", {0, 0, 4}},
        ColumnsRow{"widest_does_not_grow_before_the_line_ends", {0, 0, 3}, "abcd", {1, 4, 3}},
        ColumnsRow{"widest_below_nothing_grows_to_nothing", {0, 0, -5}, "\n", {0, 0, 0}}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    wide_characters, Columns,
    testing::Values(
        ColumnsRow{"double_width", {0, 0, 0}, "\x1b|2Cab", {1, 4, 0}},
        ColumnsRow{"double_both", {0, 0, 0}, "\x1b|4Cab", {1, 4, 0}},
        ColumnsRow{"double_height", {0, 0, 0}, "\x1b|2Ca\x1b|3Cb", {1, 3, 0}},
        ColumnsRow{"normal_again", {0, 0, 0}, "\x1b|2Ca\x1b|1Cb", {1, 3, 0}},
        ColumnsRow{"width_1", {0, 0, 0}, "\x1b|2Ca\x1b|1hCb", {1, 3, 0}},
        ColumnsRow{"width_2", {0, 0, 0}, "\x1b|2hCab", {1, 4, 0}},
        ColumnsRow{"width_2_of_a_scaled_size", {0, 0, 0}, "\x1b|5hC\x1b|2hCab", {1, 4, 0}},
        ColumnsRow{"width_3", {0, 0, 0}, "\x1b|3hCab", {1, 6, 0}},
        ColumnsRow{"width_4", {0, 0, 0}, "\x1b|4hCab", {1, 8, 0}},
        ColumnsRow{"width_5", {0, 0, 0}, "\x1b|5hCab", {1, 10, 0}},
        ColumnsRow{"width_6", {0, 0, 0}, "\x1b|6hCab", {1, 12, 0}},
        ColumnsRow{"width_7", {0, 0, 0}, "\x1b|7hCab", {1, 14, 0}},
        ColumnsRow{"width_8", {0, 0, 0}, "\x1b|8hCab", {1, 16, 0}},
        ColumnsRow{"width_9_changes_nothing", {0, 0, 0}, "\x1b|3hC\x1b|9hCa", {1, 3, 0}},
        ColumnsRow{"height_9_changes_nothing", {0, 0, 0}, "\x1b|3hC\x1b|9vCa", {1, 3, 0}},
        ColumnsRow{"height_1_counts_one", {0, 0, 0}, "\x1b|3hCa\x1b|1vCb", {1, 4, 0}},
        ColumnsRow{"height_2_counts_one", {0, 0, 0}, "\x1b|3hCa\x1b|2vCb", {1, 4, 0}},
        ColumnsRow{"height_3_counts_one", {0, 0, 0}, "\x1b|3hCa\x1b|3vCb", {1, 4, 0}},
        ColumnsRow{"height_8_counts_one", {0, 0, 0}, "\x1b|2Ca\x1b|8vCb", {1, 3, 0}},
        ColumnsRow{"line_end_counts_one_again", {0, 0, 0}, "\x1b|2Ca\nbcde\n", {0, 0, 4}},
        ColumnsRow{"back_to_normal_keeps_the_width", {0, 0, 0}, "\x1b|2C\x1b|Na", {1, 2, 0}},
        ColumnsRow{"letters_of_an_unknown_sequence", {0, 0, 0}, "\x1b|2C\x1b|lA", {1, 4, 0}},
        ColumnsRow{"resumed_line", {1, 3, 0}, "\x1b|2Cab\n", {0, 0, 7}}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    sequences_use_none, Columns,
    testing::Values(
        ColumnsRow{"alignment", {0, 0, 0}, "\x1b|cAab", {1, 2, 0}},
        ColumnsRow{"looks", {0, 0, 0}, "\x1b|bC\x1b|uC\x1b|rvCab\x1b|N", {1, 2, 0}},
        ColumnsRow{"line_feeds_do_not_end_the_line", {0, 0, 0}, "ab\x1b|2lFcd", {1, 4, 0}},
        ColumnsRow{"unit_feeds_do_not_end_the_line", {0, 0, 0}, "ab\x1b|60uFcd", {1, 4, 0}},
        ColumnsRow{"cuts_do_not_end_the_line", {0, 0, 0}, "ab\x1b|P\x1b|fPcd", {1, 4, 0}},
        ColumnsRow{"line_end_within_an_unknown_sequence", {0, 0, 0}, "ab\x1b|5\n", {0, 0, 3}}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    wrap_at_32_bits, Columns,
    testing::Values(ColumnsRow{"one_more_than_the_greatest", {1, kMax, 0}, "a", {1, kMin, 0}},
                    ColumnsRow{"wrapped_line_is_not_the_widest", {1, kMax, 7}, "a\n", {0, 0, 7}},
                    ColumnsRow{"greatest_can_be_the_widest", {1, kMax, 7}, "\n", {0, 0, kMax}}),
    RowName());

TEST(Translate, two_calls_for_one_line_count_together) {
  const LineColumns first = translation("abc").columns;
  expect_columns(first, {1, 3, 0});
  expect_columns(translation("de\n", kDefaults, first).columns, {0, 0, 5});
}

TEST(Translate, text_after_the_last_line_end_does_not_count_in_the_next_call) {
  const LineColumns first = translation("abc\ndefgh").columns;
  expect_columns(translation("ij\n", kDefaults, first).columns, {0, 0, 3});
}

TEST(Translate, columns_are_counted_whatever_the_settings) {
  for (const int32_t line_chars : {42, 56, 33, 40, 48, 0}) {
    const LineColumns open{.line_is_open = 1, .current = 3, .widest = 0};
    expect_columns(translation("de\n", with_line_chars(line_chars), open).columns, {0, 0, 5});
    expect_columns(translation("de", rotated_with(line_chars), open).columns, {1, 5, 0});
  }
}

TEST(Columns, of_an_earlier_call_are_carried_over_by_the_flag_1_alone) {
  // The flag is the application's, too.
  const LineColumns odd{.line_is_open = 2, .current = 7, .widest = 0};
  expect_columns(translation("ab", kDefaults, odd).columns, {2, 7, 0});
  expect_columns(translation("ab\n", kDefaults, odd).columns, {0, 0, 2});
}

// ------------------------------------------------------------------ long output

TEST(LongOutput, fills_a_transaction_exactly) {
  const std::string text(kTransaction - kPrologue.size(), 'x');
  expect_output(text, kPrologue + text);
  EXPECT_FALSE(translation(text + "x").ok);
}

TEST(LongOutput, a_command_is_refused_when_only_part_of_it_fits) {
  const std::string text(kTransaction - kPrologue.size() - 2, 'x');
  EXPECT_TRUE(translation(text).ok);
  EXPECT_TRUE(translation(text + "\x1b|P").ok);
  EXPECT_FALSE(translation(text + "\x1b|bC").ok);
}

TEST(LongOutput, the_prologue_itself_needs_room) {
  EXPECT_TRUE(translation("", kDefaults, kNewLine, 18).ok);
  EXPECT_FALSE(translation("", kDefaults, kNewLine, 17).ok);
  EXPECT_FALSE(translation("", kDefaults, kNewLine, 0).ok);
}

TEST(LongOutput, a_hundred_thousand_lines_keep_every_look) {
  constexpr std::size_t kLines = 100000;
  const std::string text = times(kLines, "\x1b|cA\x1b|bCab\n");
  const Translation result = translation(text);
  EXPECT_TRUE(result.ok);
  EXPECT_THAT(result.output,
              BytesAre(kPrologue + times(kLines, hex("1b 61 31 1b 45 31") + "ab\n")));
  expect_columns(result.columns, {0, 0, 2});
}

TEST(LongOutput, a_long_line_counts_every_column) {
  EXPECT_EQ(translation(std::string(1600000, 'x')).columns.current, 1600000);
  EXPECT_EQ(translation("\x1b|8hC" + std::string(1600000, 'x')).columns.current, 12800000);
}

TEST(LongOutput, text_that_is_all_sequences_without_effect_sends_nothing) {
  expect_output(times(400000, "\x1b|iC"), kPrologue);
}

TEST(LongOutput, a_million_digits_are_text_when_no_sequence_follows) {
  const std::string text = "\x1b|" + std::string(1000000, '9') + "C";
  const Translation result = translation(text);
  EXPECT_THAT(result.output, BytesAre(kPrologue + text));
  EXPECT_EQ(result.columns.current, 1000001);
}

TEST(LongOutput, line_feeds_fill_a_transaction_exactly) {
  EXPECT_TRUE(translation("\x1b|1663982lF").ok);
  EXPECT_FALSE(translation("\x1b|1663983lF").ok);
  EXPECT_FALSE(translation("\x1b|1663982lFx").ok);
}

TEST(LongOutput, feeds_before_a_cut_fill_a_transaction_exactly) {
  EXPECT_TRUE(translation("\x1b|fP", with_lines_to_paper_cut(1663980)).ok);
  EXPECT_FALSE(translation("\x1b|fP", with_lines_to_paper_cut(1663981)).ok);
  EXPECT_FALSE(translation("\x1b|fP", with_lines_to_paper_cut(kMax)).ok);
}

// 50 * 415993 dots are 415993 passes and the last one, 4 bytes each, and 3 bytes at the end; with
// the prologue that leaves 3 bytes. One more pass does not fit.
TEST(LongOutput, unit_feeds_reach_the_limit_pass_by_pass) {
  const Translation fits = translation("\x1b|20799650uF");
  EXPECT_TRUE(fits.ok);
  EXPECT_EQ(fits.output.size(), kTransaction - 3);
  EXPECT_FALSE(translation("\x1b|20799700uF").ok);
}

TEST(LongOutput, numbers_of_any_size_are_refused_when_they_expand_too_far) {
  for (const char* number : {"2147483647", "2147483648", "4294967296", "4294967297",
                             "18446744073709551617", "99999999999999999999999999999999"}) {
    EXPECT_FALSE(translation(std::string("\x1b|") + number + "lF").ok) << number;
    EXPECT_FALSE(translation(std::string("\x1b|") + number + "uF").ok) << number;
  }
}

TEST(LongOutput, feeds_that_add_up_beyond_the_limit_are_refused) {
  EXPECT_FALSE(translation(times(1000, "\x1b|2000000000lF")).ok);
  EXPECT_FALSE(translation(times(20, "\x1b|100000lF")).ok);
}

}  // namespace
