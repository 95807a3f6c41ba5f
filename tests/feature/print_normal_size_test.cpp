// Text of a given length, in what it differs from text up to a NUL.
#include <gmock/gmock.h>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using namespace std::string_literals;

const std::string kPrologue = "\033E0\033-0\033!F\035B0\033a0\0333<";

class SizedText : public EveryLink {};
TZV_ON_EVERY_LINK(SizedText);

TEST_P(SizedText, of_no_bytes_sends_the_prologue) {
  EXPECT_EQ(PrintNormalSize(port, "not looked at", 0), 0);
  EXPECT_EQ(hex(sent()), "1B 45 30 1B 2D 30 1B 21 46 1D 42 30 1B 61 30 1B 33 3C");
}

TEST_P(SizedText, a_nul_is_sent_and_counts_as_a_column) {
  EXPECT_EQ(PrintNormalSize(port, "A\0B", 3), 0);
  EXPECT_EQ(sent(), kPrologue + "A\0B"s);
  EXPECT_EQ(*state.RecSidewaysCharsCur, 3);
}

TEST_P(SizedText, ends_after_its_length) {
  EXPECT_EQ(PrintNormalSize(port, "one two", 3), 0);
  EXPECT_EQ(sent(), kPrologue + "one");
}

TEST_P(SizedText, goes_on_behind_a_nul_in_a_sequence) {
  EXPECT_EQ(PrintNormalSize(port, "\x1b|2\0C", 5), 0);
  EXPECT_EQ(sent(), kPrologue + "\x1b|2\0C"s);
}

TEST_P(SizedText, a_sequence_that_is_cut_off_is_passed_through) {
  const std::string text = "\x1b|12rvC";
  for (long length = 1; length < static_cast<long>(text.size()); ++length) {
    printer.output.clear();
    EXPECT_EQ(PrintNormalSize(port, text.c_str(), length), 0);
    EXPECT_EQ(sent(), kPrologue + text.substr(0, static_cast<std::size_t>(length))) << length;
  }
  printer.output.clear();
  EXPECT_EQ(PrintNormalSize(port, text.c_str(), 7), 0);
  EXPECT_EQ(sent(), kPrologue + "\035B\001");
}

TEST_P(SizedText, is_translated_like_other_text) {
  const std::string text = "\x1b|cAHello\n\x1b|bCx";
  EXPECT_EQ(PrintNormal(port, text.c_str()), 0);
  const std::string expected = sent();
  printer.output.clear();
  EXPECT_EQ(PrintNormalSize(port, text.c_str(), static_cast<long>(text.size())), 0);
  EXPECT_EQ(sent(), expected);
}

TEST_P(SizedText, longer_than_1023_bytes_goes_out_whole) {
  std::string text;
  for (int i = 0; i < 3000; ++i) text += "line "s + '\0' + "\n";
  EXPECT_EQ(PrintNormalSize(port, text.data(), static_cast<long>(text.size())), 0);
  EXPECT_EQ(sent(), kPrologue + text);
}

TEST_P(SizedText, is_not_read_beyond_its_length) {
  // No NUL follows; a sanitizer sees a look at it.
  const std::vector<char> text = {'a', '\x1b', '|'};
  EXPECT_EQ(PrintNormalSize(port, text.data(), 3), 0);
  EXPECT_EQ(sent(), kPrologue + "a\x1b|");
}

TEST_P(SizedText, of_a_negative_length_gives_minus_2_and_sends_nothing) {
  for (const long length : {-1L, -2147483647L - 1}) {
    EXPECT_EQ(PrintNormalSize(port, "text", length), -2);
  }
  EXPECT_EQ(sent(), "");
  EXPECT_EQ(*state.SaveFlag, 0);
}

TEST_P(SizedText, that_is_null_gives_minus_1_and_sends_nothing) {
  EXPECT_EQ(PrintNormalSize(port, nullptr, 0), -1);
  EXPECT_EQ(PrintNormalSize(port, nullptr, 3), -1);
  EXPECT_EQ(sent(), "");
}

TEST_P(SizedText, whose_write_is_refused_or_fails_gives_0) {
  *state.bPaperEmpty = 1;
  EXPECT_EQ(PrintNormalSize(port, "x", 1), 0);
  *state.bPaperEmpty = 0;
  EXPECT_EQ(sent(), "");
  break_writes();
  EXPECT_EQ(PrintNormalSize(port, "x", 1), 0);
}

TEST_P(SizedText, is_collected_by_a_transaction) {
  *state.TransactionPrint = 1;
  EXPECT_EQ(PrintNormalSize(port, "a\0", 2), 0);
  EXPECT_EQ(state.collected(), kPrologue + "a\0"s);
  EXPECT_EQ(sent(), "");
}

TEST_P(SizedText, for_a_port_that_is_not_open_gives_minus_1) {
  ClosePort(port);
  EXPECT_EQ(PrintNormalSize(port, "x", 1), -1);
  EXPECT_EQ(PrintNormalSize(port, "x", -1), -1);
}

}  // namespace
}  // namespace testkit
