#include "text/escapes.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "byte_strings.h"

namespace {

struct EscapeRow {
  const char* name;
  std::string text;  ///< after ESC '|'
  int32_t number;
  char modifier;
  bool reverse;
  char command;
  std::size_t length;  ///< of the whole sequence but for ESC '|'
};

void PrintTo(const EscapeRow& row, std::ostream* out) {
  *out << row.name;
}

class Escapes : public testing::TestWithParam<EscapeRow> {};

TEST_P(Escapes, parts_of_a_sequence) {
  const EscapeRow& row = GetParam();
  for (const std::string& before : {std::string(), std::string("abc\n")}) {
    const EscapeSequence sequence =
        parse_escape(before + "\x1b|" + row.text + "12zC", before.size());
    SCOPED_TRACE("after the bar: " + hex_dump(row.text));
    EXPECT_EQ(sequence.number, row.number);
    EXPECT_EQ(sequence.modifier, row.modifier);
    EXPECT_EQ(sequence.reverse, row.reverse);
    EXPECT_EQ(sequence.command, row.command);
    EXPECT_EQ(sequence.end, before.size() + 2 + row.length);
  }
}

INSTANTIATE_TEST_SUITE_P(
    shapes, Escapes,
    testing::Values(EscapeRow{"command_only", "N", 0, 0, false, 'N', 1},
                    EscapeRow{"number_and_command", "2C", 2, 0, false, 'C', 2},
                    EscapeRow{"modifier_and_command", "bC", 0, 'b', false, 'C', 2},
                    EscapeRow{"number_modifier_and_command", "15lF", 15, 'l', false, 'F', 4},
                    EscapeRow{"first_letter_as_modifier", "aC", 0, 'a', false, 'C', 2},
                    EscapeRow{"last_letter_as_modifier", "zC", 0, 'z', false, 'C', 2},
                    EscapeRow{"second_letter_is_the_command", "bbC", 0, 'b', false, 'b', 2},
                    EscapeRow{"digit_after_the_modifier_is_the_command", "b2C", 0, 'b', false, '2',
                              2},
                    EscapeRow{"capital_is_never_a_modifier", "BC", 0, 0, false, 'B', 1},
                    EscapeRow{"before_the_letter_a", "`C", 0, 0, false, '`', 1},
                    EscapeRow{"after_the_letter_z", "{C", 0, 0, false, '{', 1},
                    EscapeRow{"before_the_digit_0", "/C", 0, 0, false, '/', 1},
                    EscapeRow{"after_the_digit_9", ":C", 0, 0, false, ':', 1},
                    EscapeRow{"minus_is_the_command", "-1C", 0, 0, false, '-', 1},
                    EscapeRow{"plus_is_the_command", "+1C", 0, 0, false, '+', 1},
                    EscapeRow{"space_is_the_command", " 1C", 0, 0, false, ' ', 1},
                    EscapeRow{"space_after_a_number_is_the_command", "1 C", 1, 0, false, ' ', 2},
                    EscapeRow{"high_byte_is_the_command", "\344C", 0, 0, false, '\xe4', 1},
                    EscapeRow{"high_byte_after_a_modifier", "b\xff", 0, 'b', false, '\xff', 2},
                    EscapeRow{"nul_is_the_command", std::string("\0C", 2), 0, 0, false, '\0', 1},
                    EscapeRow{"line_end_is_the_command", "\nC", 0, 0, false, '\n', 1},
                    EscapeRow{"another_escape_is_the_command", "\x1b|bC", 0, 0, false, '\x1b', 1}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    reverse, Escapes,
    testing::Values(EscapeRow{"rv_before_c", "rvC", 0, 'r', true, 'C', 3},
                    EscapeRow{"number_before_rv", "7rvC", 7, 'r', true, 'C', 4},
                    EscapeRow{"r_alone", "rC", 0, 'r', false, 'C', 2},
                    EscapeRow{"v_alone", "vC", 0, 'v', false, 'C', 2},
                    EscapeRow{"rv_before_another_command", "rvA", 0, 'r', false, 'v', 2},
                    EscapeRow{"rv_before_a_small_c", "rvc", 0, 'r', false, 'v', 2},
                    EscapeRow{"r_before_capital_v", "rVC", 0, 'r', false, 'V', 2},
                    EscapeRow{"vr_is_not_rv", "vrC", 0, 'v', false, 'r', 2},
                    EscapeRow{"rv_with_something_between", "r1vC", 0, 'r', false, '1', 2}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    numbers, Escapes,
    testing::Values(
        EscapeRow{"zero", "0C", 0, 0, false, 'C', 2},
        EscapeRow{"zeros_before", "0042C", 42, 0, false, 'C', 5},
        EscapeRow{"decimal_not_octal", "010C", 10, 0, false, 'C', 4},
        EscapeRow{"every_digit", "1234567890C", 1234567890, 0, false, 'C', 11},
        EscapeRow{"greatest", "2147483647C", 2147483647, 0, false, 'C', 11},
        EscapeRow{"one_too_great", "2147483648C", 2147483647, 0, false, 'C', 11},
        EscapeRow{"two_to_the_32", "4294967296C", 2147483647, 0, false, 'C', 11},
        EscapeRow{"two_to_the_32_plus_1", "4294967297C", 2147483647, 0, false, 'C', 11},
        EscapeRow{"two_to_the_64_plus_2", "18446744073709551618C", 2147483647, 0, false, 'C', 21},
        EscapeRow{"great_after_zeros", "00009999999999C", 2147483647, 0, false, 'C', 15},
        EscapeRow{"thousand_digits", std::string(1000, '9') + "C", 2147483647, 0, false, 'C', 1001},
        EscapeRow{"thousand_zeros", std::string(1000, '0') + "8C", 8, 0, false, 'C', 1002}),
    RowName());

struct CutRow {
  const char* name;
  const char* text;  ///< after ESC '|'; the text ends there
  int32_t number;
  char modifier;
  char command;
};

void PrintTo(const CutRow& row, std::ostream* out) {
  *out << row.name;
}

class CutOffEscapes : public testing::TestWithParam<CutRow> {};

// The bytes that follow in memory would complete the sequence; they are not part of the text.
TEST_P(CutOffEscapes, end_with_the_text) {
  const CutRow& row = GetParam();
  const std::string memory = std::string("\x1b|") + row.text + "vC5bC";
  const std::size_t size = memory.size() - 5;
  const EscapeSequence sequence = parse_escape(std::string_view(memory).substr(0, size), 0);
  EXPECT_EQ(sequence.number, row.number);
  EXPECT_EQ(sequence.modifier, row.modifier);
  EXPECT_FALSE(sequence.reverse);
  EXPECT_EQ(sequence.command, row.command);
}

INSTANTIATE_TEST_SUITE_P(text, CutOffEscapes,
                         testing::Values(CutRow{"after_the_bar", "", 0, 0, 0},
                                         CutRow{"after_a_number", "12", 12, 0, 0},
                                         CutRow{"after_a_modifier", "b", 0, 'b', 0},
                                         CutRow{"after_a_number_and_a_modifier", "3h", 3, 'h', 0},
                                         CutRow{"after_r", "r", 0, 'r', 0},
                                         CutRow{"after_rv", "rv", 0, 'r', 'v'}),
                         RowName());

}  // namespace
