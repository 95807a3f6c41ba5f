// PrintNormal through the library: one write, the link's settings, refusals. What each sequence
// becomes is tested with the translation itself.
#include <gmock/gmock.h>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

const std::string kReset42 = "\033E0\033-0\033!F\035B0\033a0";
const std::string kReset56 = "\033E0\033-0\033!G\035B0\033a0";
const std::string kSpacing60 = "\0333<";
const std::string kPrologue = kReset42 + kSpacing60;

class PrintText : public EveryLink {};
TZV_ON_EVERY_LINK(PrintText);

TEST_P(PrintText, empty_text_sends_the_prologue_of_18_bytes) {
  EXPECT_EQ(PrintNormal(port, ""), 0);
  EXPECT_EQ(hex(sent()), "1B 45 30 1B 2D 30 1B 21 46 1D 42 30 1B 61 30 1B 33 3C");
}

TEST_P(PrintText, all_commands_go_out_in_one_write) {
  EXPECT_EQ(PrintNormal(port, "\x1b|cAHello\n"), 0);
  EXPECT_THAT(printer.writes, ElementsAre(kPrologue + "\x1b"
                                                      "a1Hello\n"));
}

TEST_P(PrintText, settings_of_the_link_apply) {
  *state.RecLineChars = 56;
  *state.MapMode = TZV_MAP_TWIPS;
  *state.RecLineSpacing = 240;
  *state.RecLinesToPaperCut = 2;
  EXPECT_EQ(PrintNormal(port, "x\x1b|fP"), 0);
  EXPECT_EQ(hex(sent()), hex(kReset56 + "\x1b"
                                        "3<x\n\n\x1bm"));
}

TEST_P(PrintText, rotated_text_sets_no_line_spacing) {
  *state.RotateCtrl = 1;
  EXPECT_EQ(PrintNormal(port, "x\x1b|60uFy"), 0);
  EXPECT_EQ(hex(sent()), hex(kReset42 + "xy"));
}

TEST_P(PrintText, attributes_do_not_carry_over_to_the_next_call) {
  PrintNormal(port, "\x1b|bC\x1b|2C\x1b|uCloud");
  printer.output.clear();
  PrintNormal(port, "\x1b|1C");
  EXPECT_EQ(hex(sent()), hex(kPrologue + "\x1b!\x40"));
}

TEST_P(PrintText, columns_of_an_open_line_are_resumed_by_the_next_call) {
  EXPECT_EQ(PrintNormal(port, "abc"), 0);
  EXPECT_EQ(*state.SaveFlag, 1);
  EXPECT_EQ(*state.RecSidewaysCharsCur, 3);
  EXPECT_EQ(*state.RecSidewaysChars, 0);
  EXPECT_EQ(PrintNormal(port, "de\n"), 0);
  EXPECT_EQ(*state.SaveFlag, 0);
  EXPECT_EQ(*state.RecSidewaysCharsCur, 0);
  EXPECT_EQ(*state.RecSidewaysChars, 5);
}

TEST_P(PrintText, an_open_transaction_collects_instead_of_sending) {
  *state.TransactionPrint = 1;
  EXPECT_EQ(PrintNormal(port, "one"), 0);
  EXPECT_EQ(PrintNormal(port, "two"), 0);
  EXPECT_EQ(state.collected(), kPrologue + "one" + kPrologue + "two");
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(PrintText, reprint_mode_collects_too) {
  *state.RePrint = 1;
  EXPECT_EQ(PrintNormal(port, "one"), 0);
  EXPECT_EQ(state.collected(), kPrologue + "one");
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(PrintText, collecting_does_not_look_at_the_error_flags) {
  *state.bCoverOpen = 1;
  *state.TransactionPrint = 1;
  EXPECT_EQ(PrintNormal(port, "one"), 0);
  EXPECT_EQ(state.collected(), kPrologue + "one");
}

// Callers learn from a transaction whether it printed.
TEST_P(PrintText, a_refused_or_failed_write_still_gives_0) {
  for (int* flag : {state.bCoverOpen, state.bPaperEmpty, state.bOffline, state.bCutterJam}) {
    *flag = 1;
    EXPECT_EQ(PrintNormal(port, "x"), 0);
    *flag = 0;
  }
  EXPECT_EQ(sent(), "");
  break_writes();
  EXPECT_EQ(PrintNormal(port, "x"), 0);
  EXPECT_EQ(sent(), "");
}

TEST_P(PrintText, a_null_text_gives_minus_1_and_sends_nothing) {
  *state.SaveFlag = 0;
  EXPECT_EQ(PrintNormal(port, nullptr), -1);
  EXPECT_EQ(*state.SaveFlag, 0);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(PrintText, long_text_is_translated_whole) {
  std::string text, expected = kPrologue;
  for (int i = 0; i < 20000; ++i) {
    text += "line " + std::to_string(i) + "\n";
    expected += "line " + std::to_string(i) + "\n";
  }
  EXPECT_EQ(PrintNormal(port, text.c_str()), 0);
  EXPECT_EQ(sent(), expected);
}

TEST_P(PrintText, output_of_1664000_bytes_is_the_longest) {
  const std::string longest(TZV_PAGE_BUFFER_SIZE - kPrologue.size(), 'x');
  *state.TransactionPrint = 1;
  EXPECT_EQ(PrintNormal(port, (longest + "x").c_str()), -2);
  EXPECT_EQ(*state.SaveFlag, 0) << "column bookkeeping unchanged";
  EXPECT_EQ(*state.PageSize, 0);
  EXPECT_EQ(PrintNormal(port, longest.c_str()), 0);
  EXPECT_EQ(*state.PageSize, TZV_PAGE_BUFFER_SIZE);
}

TEST_P(PrintText, a_number_of_lines_beyond_all_paper_is_refused) {
  *state.RecSidewaysChars = 7;
  EXPECT_EQ(PrintNormal(port, "a longer line\n\x1b|99999999999lF"), -2);
  EXPECT_EQ(*state.RecSidewaysChars, 7);
  EXPECT_EQ(PrintNormal(port, "\x1b|2147483647uF"), -2);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(PrintText, what_does_not_fit_the_page_buffer_is_left_out_and_the_rest_stays) {
  *state.TransactionPrint = 1;
  EXPECT_EQ(PrintNormal(port, "one"), 0);
  const std::string held = state.collected();
  const std::string large(TZV_PAGE_BUFFER_SIZE - kPrologue.size(), 'x');
  EXPECT_EQ(PrintNormal(port, large.c_str()), 0);
  EXPECT_EQ(state.collected(), held);
}

TEST_P(PrintText, a_page_size_that_cannot_be_is_refused_without_a_byte_written) {
  *state.TransactionPrint = 1;
  for (const long size : {-1L, long{TZV_PAGE_BUFFER_SIZE} + 1, 2147483647L}) {
    *state.PageSize = size;
    EXPECT_EQ(PrintNormal(port, "x"), 0);
    EXPECT_EQ(*state.PageSize, size);
  }
  *state.PageSize = 0;
  EXPECT_EQ((*state.PageBuffer)[0], 0);
}

}  // namespace
}  // namespace testkit
