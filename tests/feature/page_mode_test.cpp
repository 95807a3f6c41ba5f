// Page mode, and text at a position.
#include <gmock/gmock.h>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

class PageMode : public EveryLink {
 protected:
  std::vector<int*> error_flags() const {
    return {state.bCoverOpen, state.bPaperEmpty, state.bOffline, state.bCutterJam};
  }
};
TZV_ON_EVERY_LINK(PageMode);

/// What is sent, in hex, of no text at a position with these bytes in both directions.
std::string nothing_at(const std::string& bytes) {
  return "1D 7D 58 " + bytes + " 1D 7D 59 " + bytes + " 0A";
}

TEST_P(PageMode, start_and_end) {
  EXPECT_EQ(StartPageMode(port), 0);
  EXPECT_EQ(EndPageMode(port), 0);
  EXPECT_THAT(printer.writes, ElementsAre("\x1bL", "\x1b\x0c\x1bS"));
  EXPECT_EQ(hex(sent()), "1B 4C 1B 0C 1B 53");
}

TEST_P(PageMode, text_at_a_position_is_four_writes) {
  EXPECT_EQ(PrintTextXY(port, "Table 5", 300, 20), 0);
  EXPECT_THAT(printer.writes, ElementsAre("\x1d}X\x2c\x01", "\x1d}Y\x14\0"s, "Table 5", "\n"));
  EXPECT_EQ(hex(sent().substr(0, 10)), "1D 7D 58 2C 01 1D 7D 59 14 00");
}

TEST_P(PageMode, positions_are_low_bytes_of_remainder_and_quotient) {
  const std::pair<long, std::string> rows[] = {
      {0, "00 00"},     {1, "01 00"},     {255, "FF 00"}, {256, "00 01"},  {65535, "FF FF"},
      {65536, "00 00"}, {65537, "01 00"}, {-1, "FF 00"},  {-256, "00 FF"}, {-257, "FF FF"}};
  for (const auto& [position, bytes] : rows) {
    printer.output.clear();
    EXPECT_EQ(PrintTextXY(port, "", position, position), 0);
    EXPECT_EQ(hex(sent()), nothing_at(bytes)) << position;
  }
}

TEST_P(PageMode, positions_are_not_converted) {
  *state.MapMode = TZV_MAP_METRIC;
  EXPECT_EQ(PrintTextXY(port, "", 141, 141), 0);
  EXPECT_EQ(hex(sent()), "1D 7D 58 8D 00 1D 7D 59 8D 00 0A");
}

TEST_P(PageMode, text_at_a_position_goes_out_as_it_stands) {
  EXPECT_EQ(PrintTextXY(port, "\x1b|2Cx\n\xff", 0, 0), 0);
  EXPECT_EQ(hex(sent().substr(10)), "1B 7C 32 43 78 0A FF 0A");
  EXPECT_EQ(*state.SaveFlag, 0);
  EXPECT_EQ(*state.RecSidewaysChars, 0);
  EXPECT_EQ(*state.RecSidewaysCharsCur, 0);
}

TEST_P(PageMode, long_text_at_a_position_goes_out_whole) {
  const std::string text(5000, 'x');
  EXPECT_EQ(PrintTextXY(port, text.c_str(), 0, 0), 0);
  EXPECT_EQ(sent().substr(10), text + "\n");
}

TEST_P(PageMode, a_transaction_collects_in_order) {
  *state.TransactionPrint = 1;
  EXPECT_EQ(StartPageMode(port), 0);
  EXPECT_EQ(PrintTextXY(port, "a", 1, 2), 0);
  EXPECT_EQ(EndPageMode(port), 0);
  EXPECT_EQ(state.collected(), "\x1bL\x1d}X\x01\0\x1d}Y\x02\0a\n\x1b\x0c\x1bS"s);
  EXPECT_EQ(sent(), "");
}

TEST_P(PageMode, in_an_error_state_gives_minus_2_and_sends_nothing) {
  for (int* flag : error_flags()) {
    *flag = 1;
    EXPECT_EQ(StartPageMode(port), -2);
    EXPECT_EQ(PrintTextXY(port, "a", 1, 2), -2);
    EXPECT_EQ(EndPageMode(port), -2);
    *flag = 0;
  }
  EXPECT_EQ(sent(), "");
}

TEST_P(PageMode, in_an_error_state_is_still_collected) {
  *state.TransactionPrint = 1;
  for (int* flag : error_flags()) {
    *flag = 1;
    *state.PageSize = 0;
    EXPECT_EQ(StartPageMode(port), -2);
    EXPECT_EQ(PrintTextXY(port, "a", 1, 2), -2);
    EXPECT_EQ(EndPageMode(port), -2);
    EXPECT_EQ(state.collected(), "\x1bL\x1d}X\x01\0\x1d}Y\x02\0a\n\x1b\x0c\x1bS"s);
    *flag = 0;
  }
}

TEST_P(PageMode, a_failed_write_does_not_show) {
  break_writes();
  EXPECT_EQ(StartPageMode(port), 0);
  EXPECT_EQ(PrintTextXY(port, "a", 1, 2), 0);
  EXPECT_EQ(EndPageMode(port), 0);
}

TEST_P(PageMode, a_null_text_gives_minus_1_and_sends_nothing) {
  EXPECT_EQ(PrintTextXY(port, nullptr, 1, 2), -1);
  EXPECT_EQ(sent(), "");
}

TEST_P(PageMode, of_a_port_that_is_not_open_gives_minus_1) {
  ClosePort(port);
  printer.output.clear();
  EXPECT_EQ(StartPageMode(port), -1);
  EXPECT_EQ(PrintTextXY(port, "a", 1, 2), -1);
  EXPECT_EQ(EndPageMode(port), -1);
  EXPECT_EQ(sent(), "");
}

}  // namespace
}  // namespace testkit
