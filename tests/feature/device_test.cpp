// Cut, position, drawer, beeper, self-test and black mark.
#include <gmock/gmock.h>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::ElementsAre;

const std::string kFullCut = "\n\n\n\n\n\033i";
const std::string kPartialCut = "\n\n\n\n\n\033m";
const std::string kPulse = "\033p\x30\x64\xc8";

class DeviceServices : public EveryLink {
 protected:
  std::vector<int*> error_flags() const {
    return {state.bCoverOpen, state.bPaperEmpty, state.bOffline, state.bCutterJam};
  }
};
TZV_ON_EVERY_LINK(DeviceServices);

// ------------------------------------------------------------------------------------- cut

TEST_P(DeviceServices, percent_100_cuts_fully_and_any_other_partially) {
  EXPECT_EQ(CutPaper(port, 100), 0);
  for (const long percent : {50L, 0L, -1L, 99L, 101L}) EXPECT_EQ(CutPaper(port, percent), 0);
  EXPECT_THAT(printer.writes, ElementsAre(kFullCut, kPartialCut, kPartialCut, kPartialCut,
                                          kPartialCut, kPartialCut));
  EXPECT_EQ(hex(kFullCut), "0A 0A 0A 0A 0A 1B 69");
  EXPECT_EQ(hex(kPartialCut), "0A 0A 0A 0A 0A 1B 6D");
}

TEST_P(DeviceServices, a_cut_within_a_transaction_is_collected) {
  *state.TransactionPrint = 1;
  EXPECT_EQ(CutPaper(port, 100), 0);
  EXPECT_EQ(state.collected(), kFullCut);
  EXPECT_EQ(sent(), "");
}

TEST_P(DeviceServices, a_cut_in_an_error_state_gives_minus_2) {
  for (int* flag : error_flags()) {
    *flag = 1;
    EXPECT_EQ(CutPaper(port, 100), -2);
    EXPECT_EQ(sent(), "");
    *flag = 0;
  }
}

TEST_P(DeviceServices, a_cut_in_an_error_state_is_still_collected) {
  *state.TransactionPrint = 1;
  *state.bCoverOpen = 1;
  EXPECT_EQ(CutPaper(port, 100), -2);
  EXPECT_EQ(state.collected(), kFullCut);
}

// USB alone tells success.
TEST_P(DeviceServices, a_cut_that_does_not_fit_the_transaction) {
  *state.TransactionPrint = 1;
  *state.PageSize = TZV_PAGE_BUFFER_SIZE - 6;
  EXPECT_EQ(CutPaper(port, 100), link.short_cut);
}

TEST_P(DeviceServices, a_cut_that_fails) {
  break_writes();
  EXPECT_EQ(CutPaper(port, 100), link.short_cut);
}

// -------------------------------------------------------------------------------- position

TEST_P(DeviceServices, position_0_is_left_2_is_right_and_any_other_is_centre) {
  for (const long position : {0L, 1L, 2L, 7L, -1L}) EXPECT_EQ(WritePortPosition(port, position), 0);
  EXPECT_THAT(printer.writes, ElementsAre("\033a0", "\033a1", "\033a2", "\033a1", "\033a1"));
}

TEST_P(DeviceServices, position_is_collected_and_its_write_is_not_looked_at) {
  *state.bCoverOpen = 1;
  EXPECT_EQ(WritePortPosition(port, 0), 0);
  EXPECT_EQ(sent(), "");
  *state.TransactionPrint = 1;
  EXPECT_EQ(WritePortPosition(port, 2), 0);
  EXPECT_EQ(state.collected(), "\033a2");
}

// ---------------------------------------------------------------------------------- drawer

TEST_P(DeviceServices, drawer_pulse) {
  EXPECT_EQ(OpenCashDrawer(port), 0);
  EXPECT_EQ(hex(sent()), "1B 70 30 64 C8");
}

TEST_P(DeviceServices, an_open_drawer_is_left_alone) {
  *state.bDrawerOpened = 1;
  EXPECT_EQ(OpenCashDrawer(port), 0);
  *state.bCutterJam = 1;
  EXPECT_EQ(OpenCashDrawer(port), -2);
  EXPECT_EQ(sent(), "");
}

TEST_P(DeviceServices, drawer_in_an_error_state_gives_minus_2_and_is_still_collected) {
  for (int* flag : error_flags()) {
    *flag = 1;
    EXPECT_EQ(OpenCashDrawer(port), -2);
    *flag = 0;
  }
  EXPECT_EQ(sent(), "");
  *state.bPaperEmpty = 1;
  *state.TransactionPrint = 1;
  EXPECT_EQ(OpenCashDrawer(port), -2);
  EXPECT_EQ(state.collected(), kPulse);
}

// USB and network tell success.
TEST_P(DeviceServices, a_pulse_that_fails) {
  break_writes();
  EXPECT_EQ(OpenCashDrawer(port), link.short_pulse);
}

// --------------------------------------------------------------------------------- signals

TEST_P(DeviceServices, beep_and_self_tests_are_sent_at_once) {
  *state.TransactionPrint = 1;
  EXPECT_EQ(WarningBeep(port), 0);
  EXPECT_EQ(SelfTest(port, 1), 0);
  EXPECT_EQ(SelfTest(port, 2), 0);
  EXPECT_THAT(printer.writes, ElementsAre("\033#ERROR", "\033#MENU1", "\033#MENU2"));
  EXPECT_EQ(*state.PageSize, 0);
}

TEST_P(DeviceServices, other_self_tests_give_minus_1) {
  for (const long number : {0L, 3L, -1L}) EXPECT_EQ(SelfTest(port, number), -1);
  EXPECT_EQ(sent(), "");
}

TEST_P(DeviceServices, signals_without_paper_or_with_the_cover_open_give_minus_1) {
  for (int* flag : {state.bPaperEmpty, state.bCoverOpen}) {
    *flag = 1;
    EXPECT_EQ(WarningBeep(port), -1);
    EXPECT_EQ(SelfTest(port, 1), -1);
    EXPECT_EQ(CheckBlackMark(port), -1);
    *flag = 0;
  }
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(DeviceServices, signals_while_offline_or_jammed_are_refused_by_the_write) {
  for (int* flag : {state.bOffline, state.bCutterJam}) {
    *flag = 1;
    EXPECT_EQ(WarningBeep(port), -1);
    EXPECT_EQ(SelfTest(port, 2), -1);
    *flag = 0;
  }
  EXPECT_EQ(sent(), "");
}

// A parallel port tells the count, 0, which is no failure of a signal.
TEST_P(DeviceServices, a_signal_that_fails) {
  break_writes();
  EXPECT_EQ(WarningBeep(port), link.dead_write < 0 ? -1 : 0);
}

TEST_P(DeviceServices, black_mark_answers) {
  const std::pair<std::string, long> rows[] = {{"_BM", 0}, {"_BB", 1}, {"_XX", 2},    {"_BX", 2},
                                               {"_B", 2},  {"_", 2},   {"xBMxxxx", 0}};
  for (const auto& [reply, result] : rows) {
    printer.mute();
    printer.output.clear();
    printer.answer("\033#BM?", reply);
    EXPECT_EQ(CheckBlackMark(port), result) << reply;
    EXPECT_EQ(hex(sent()), "1B 23 42 4D 3F");
  }
}

TEST_P(DeviceServices, a_mute_printer_knows_of_no_black_mark) {
  EXPECT_EQ(CheckBlackMark(port), -1);
  EXPECT_EQ(*state.bStopThread, 0);
}

}  // namespace
}  // namespace testkit
