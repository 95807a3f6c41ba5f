// Collecting a receipt, sending it, and waiting for its confirmation.
#include <gmock/gmock.h>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::ElementsAre;

const std::string kInitialise = "\033@";
const std::string kCut = "\n\n\n\n\n\033i";

class Transaction : public EveryLink {
 protected:
  /// Ten bytes of receipt: an alignment and a cut.
  void print_ten_bytes() {
    EXPECT_EQ(WritePortPosition(port, TZV_ALIGN_CENTER), 0);
    CutPaper(port, 100);
  }
  const std::string ten_bytes = "\033a1" + kCut;
  const std::string job = kInitialise + ten_bytes + kProcessIdRequest;

  /// A monitor that has enabled the reports and found the printer healthy.
  void claim() {
    ASSERT_EQ(ClaimDevice(port, 0), 0);
    kernel.run_for(200);
    printer.output.clear();
    printer.writes.clear();
  }
};
TZV_ON_EVERY_LINK(Transaction);

TEST_P(Transaction, begin_collects_an_initialise) {
  EXPECT_EQ(TransactionPrint(port, 1), 0);
  EXPECT_EQ(state.collected(), kInitialise);
  EXPECT_EQ(*state.TransactionPrint, 1);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_EQ(TransactionPrint(port, 7), 0);
  EXPECT_EQ(*state.TransactionPrint, 7);
}

TEST_P(Transaction, begin_drops_what_was_collected_before) {
  TransactionPrint(port, 1);
  print_ten_bytes();
  EXPECT_EQ(TransactionPrint(port, 1), 0);
  EXPECT_EQ(state.collected(), kInitialise);
  EXPECT_EQ((*state.PageBuffer)[2], 0);
}

TEST_P(Transaction, without_a_monitor_the_job_is_sent_in_one_write_and_the_result_is_4) {
  TransactionPrint(port, 1);
  print_ten_bytes();
  EXPECT_EQ(sent(), "");
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  EXPECT_THAT(printer.writes, ElementsAre(job));
  EXPECT_EQ(*state.TransactionPrint, 0);
  EXPECT_EQ(*state.bSleepFlag, 0);
  EXPECT_EQ(*state.OutputComplemetFlag, 0);
  EXPECT_EQ(state.collected(), job) << "not confirmed: it stays";
}

TEST_P(Transaction, a_confirmed_transaction_gives_0_and_empties_the_buffer) {
  claim();
  printer.confirm_jobs();
  TransactionPrint(port, 1);
  print_ten_bytes();
  EXPECT_EQ(TransactionPrint(port, 0), 0);
  EXPECT_THAT(printer.writes, ElementsAre(job));
  EXPECT_EQ(*state.PageSize, 0);
  EXPECT_EQ((*state.PageBuffer)[0], 0);
  EXPECT_EQ(*state.bSleepFlag, 0);
}

TEST_P(Transaction, the_next_one_is_confirmed_by_its_own_answer) {
  claim();
  printer.confirm_jobs();
  for (int i = 0; i < 3; ++i) {
    TransactionPrint(port, 1);
    print_ten_bytes();
    EXPECT_EQ(TransactionPrint(port, 0), 0);
  }
  printer.mute();
  TransactionPrint(port, 1);
  EXPECT_EQ(TransactionPrint(port, 0), 4);
}

TEST_P(Transaction, confirmation_is_seen_within_a_fast_cycle_of_the_monitor) {
  claim();
  *state.bSleepFlag = 1;
  kernel.run_for(600);
  printer.confirm_jobs(335);
  TransactionPrint(port, 1);
  const int64_t started = kernel.now_ms();
  EXPECT_EQ(TransactionPrint(port, 0), 0);
  // 335 ms, up to 10 for the monitor, up to 20 for the wait, and 100 to settle.
  EXPECT_GE(kernel.now_ms() - started, 435);
  EXPECT_LE(kernel.now_ms() - started, 465);
}

TEST_P(Transaction, the_request_goes_out_three_times_before_4_is_returned) {
  claim();
  TransactionPrint(port, 1);
  const int64_t started = kernel.now_ms();
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  EXPECT_THAT(printer.writes,
              ElementsAre(kInitialise + kProcessIdRequest, kProcessIdRequest, kProcessIdRequest));
  // Each time 51 polls of 20 ms.
  EXPECT_EQ(kernel.now_ms() - started, 3 * (int64_t{51} * 20 + link.pause_after_write));
  EXPECT_EQ(*state.bSleepFlag, 0);
}

TEST_P(Transaction, an_answer_to_a_repeated_request_confirms) {
  claim();
  printer.on_write = [this] {
    if (printer.writes.size() == 3) printer.input += kProcessIdAnswer;
  };
  TransactionPrint(port, 1);
  EXPECT_EQ(TransactionPrint(port, 0), 0);
  EXPECT_EQ(printer.writes.size(), 3U);
}

TEST_P(Transaction, the_monitor_ending_ends_the_wait) {
  claim();
  TransactionPrint(port, 1);
  kernel.at(kernel.now_ms() + 100, [this] { *state.StopIt = 0; });
  const int64_t started = kernel.now_ms();
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  EXPECT_LE(kernel.now_ms() - started, 120);
}

// The monitor keeps polling fast, so that the end of the error state is seen at once. A jam is
// offline too until the monitor's next cycle, so its code depends on who looks first.
TEST_P(Transaction, an_error_state_ends_the_wait_with_its_code_and_leaves_the_fast_poll_on) {
  const std::pair<std::string, long> reports[] = {{kCoverOpen, 1},
                                                  {std::string("\x1c\x00\x0c\x0f", 4), 2},
                                                  {std::string("\x14\x08\x00\x0f", 4), 16}};
  claim();
  for (const auto& [report, code] : reports) {
    TransactionPrint(port, 1);
    *state.bSleepFlag = 0;
    kernel.at(kernel.now_ms() + 100, [this, report = report] { printer.input += report; });
    const long result = TransactionPrint(port, 0);
    EXPECT_TRUE(result == code || (code == 16 && result == 4)) << result;
    EXPECT_EQ(*state.bSleepFlag, 1);
    EXPECT_EQ(*state.TransactionPrint, 0);
    printer.input = kHealthy;
    kernel.run_for(1100);
    ASSERT_EQ(GetError(port), 0);
  }
}

TEST_P(Transaction, priority_of_error_codes_while_waiting) {
  // With the flags set by hand and a monitor only pretended, each wins over those below it.
  *state.StopIt = 1;
  const std::pair<int*, long> by_priority[] = {
      {state.bCutterJam, 16}, {state.bOffline, 4}, {state.bPaperEmpty, 2}, {state.bCoverOpen, 1}};
  for (const auto& [flag, code] : by_priority) {
    *flag = 1;
    EXPECT_EQ(TransactionPrint(port, 0), code);
  }
  EXPECT_EQ(sent(), "");
}

TEST_P(Transaction, a_confirmation_wins_over_an_error_state) {
  claim();
  printer.on_write = [this] {
    printer.input = kProcessIdAnswer;
    *state.bCutterJam = 1;
  };
  TransactionPrint(port, 1);
  // The flag rises before the first look only if the monitor has read by then.
  *state.bSleepFlag = 1;
  kernel.run_for(510);
  EXPECT_EQ(TransactionPrint(port, 0), 0);
}

TEST_P(Transaction, in_an_error_state_nothing_is_sent) {
  *state.bPaperEmpty = 1;
  EXPECT_EQ(TransactionPrint(port, 1), 0);
  EXPECT_EQ(TransactionPrint(port, 0), 4) << "no monitor, so no wait";
  EXPECT_EQ(sent(), "");
}

TEST_P(Transaction, an_end_without_begin_asks_for_a_confirmation) {
  claim();
  printer.confirm_jobs();
  EXPECT_EQ(TransactionPrint(port, 0), 0);
  EXPECT_THAT(printer.writes, ElementsAre(kProcessIdRequest));
}

TEST_P(Transaction, an_end_after_a_failed_end_sends_the_job_again) {
  TransactionPrint(port, 1);
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  const std::string first = kInitialise + kProcessIdRequest;
  EXPECT_THAT(printer.writes, ElementsAre(first, kProcessIdRequest, first));
}

// The monitor still looks every 10 ms then, and a network write pauses as long.
TEST_P(Transaction, the_request_ahead_of_a_job_that_is_sent_again_does_not_confirm_it) {
  claim();
  TransactionPrint(port, 1);
  print_ten_bytes();
  *state.bCoverOpen = 1;
  EXPECT_EQ(TransactionPrint(port, 0), 1);
  EXPECT_EQ(sent(), "") << "refused";
  *state.bCoverOpen = 0;
  kernel.run_for(600);
  printer.confirm_jobs();
  EXPECT_EQ(TransactionPrint(port, 0), 0);
  EXPECT_THAT(printer.writes, ElementsAre(kProcessIdRequest, job));
}

TEST_P(Transaction, a_job_that_fills_the_buffer_is_confirmed_by_a_repeated_request) {
  claim();
  TransactionPrint(port, 1);
  *state.PageSize = TZV_PAGE_BUFFER_SIZE;
  printer.confirm_jobs();
  EXPECT_EQ(TransactionPrint(port, 0), 0);
  EXPECT_EQ(sent().size(), TZV_PAGE_BUFFER_SIZE + kProcessIdRequest.size());
  EXPECT_EQ(printer.writes.back(), kProcessIdRequest);
}

TEST_P(Transaction, a_page_size_that_cannot_be_sends_nothing) {
  for (const long size : {-1L, long{TZV_PAGE_BUFFER_SIZE} + 1}) {
    *state.TransactionPrint = 1;
    *state.PageSize = size;
    EXPECT_EQ(TransactionPrint(port, 0), 4);
  }
  EXPECT_EQ(sent(), "");
}

// A printer that comes back answers old requests while the receipt is being collected anew.
TEST_P(Transaction, a_late_confirmation_does_not_take_the_next_receipt_away) {
  claim();
  TransactionPrint(port, 1);
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  TransactionPrint(port, 1);
  print_ten_bytes();
  printer.input = kProcessIdAnswer;
  kernel.run_for(600);
  EXPECT_EQ(state.collected(), kInitialise + ten_bytes);
}

TEST_P(Transaction, a_late_confirmation_of_a_sent_job_empties_the_buffer) {
  claim();
  TransactionPrint(port, 1);
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  printer.input = kProcessIdAnswer;
  kernel.run_for(600);
  EXPECT_EQ(*state.PageSize, 0);
  EXPECT_EQ(*state.OutputComplemetFlag, 1);
}

// ----------------------------------------------------------------------------------- frame

TEST_P(Transaction, the_framed_job_has_15_bytes_more) {
  EXPECT_EQ(SetProtocol(port, 1), 0);
  TransactionPrint(port, 1);
  print_ten_bytes();
  printer.on_write = [this] { printer.input = "OK"; };
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  ASSERT_EQ(printer.writes.size(), 1U);
  EXPECT_EQ(printer.writes[0].size(), 38U);
  // Sum of the job: 1B+40, 1B+61+31, 5 x 0A + 1B + 69, 1D+28+48+06+00+30+30 + 4 x 46.
  // = 5B + AD + B6 + (F3 + 118) = 3C9.
  EXPECT_EQ(hex(printer.writes[0]),
            hex("\033#FRAME") + " 01 00 17 02 " + hex(job) + " 03 03 C9 04");
  EXPECT_EQ(std::string(*state.ProtocolBuffer, 38), printer.writes[0]);
  EXPECT_EQ((*state.ProtocolBuffer)[38], 0);
}

TEST_P(Transaction, the_frames_answer_is_kept_from_the_monitor) {
  SetProtocol(port, 1);
  TransactionPrint(port, 1);
  int during = 0;
  printer.on_write = [&] {
    during = *state.bStopThread;
    printer.input = "OK";
  };
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  EXPECT_EQ(during, 1);
  EXPECT_EQ(*state.bStopThread, 0);
  EXPECT_EQ(printer.input, "");
}

TEST_P(Transaction, a_frame_without_answer_is_read_21_times) {
  SetProtocol(port, 1);
  TransactionPrint(port, 1);
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  const auto sleeps = kernel.log("usleep");
  const int after_write = link.pause_after_write == 10 ? 1 : 0;
  EXPECT_EQ(std::count(sleeps.begin(), sleeps.end(), "usleep 10000"), 20 + after_write);
  EXPECT_EQ(*state.bStopThread, 0);
}

TEST_P(Transaction, a_refused_frame_is_not_waited_for) {
  SetProtocol(port, 1);
  TransactionPrint(port, 1);
  *state.bCoverOpen = 1;
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_EQ(*state.bStopThread, 0);
}

TEST_P(Transaction, a_framed_job_is_confirmed_like_a_bare_one) {
  claim();
  SetProtocol(port, 1);
  TransactionPrint(port, 1);
  printer.on_write = [this] {
    printer.input = "OK";
    kernel.at(kernel.now_ms() + 90, [this] { printer.input += kProcessIdAnswer; });
  };
  EXPECT_EQ(TransactionPrint(port, 0), 0);
  EXPECT_EQ(printer.writes.size(), 1U);
}

// ----------------------------------------------------------------------------------- modes

TEST_P(Transaction, modes_are_stored) {
  EXPECT_EQ(SetRePrintMode(port, 5), 0);
  EXPECT_EQ(*state.RePrint, 5);
  EXPECT_EQ(SetProtocol(port, 2), 0);
  EXPECT_EQ(*state.bProtocol, 2);
  EXPECT_EQ(SetRePrintMode(port, 0), 0);
  EXPECT_EQ(*state.RePrint, 0);
}

TEST_P(Transaction, reprint_mode_keeps_what_is_collected) {
  SetRePrintMode(port, 1);
  print_ten_bytes();
  SetRePrintMode(port, 0);
  EXPECT_EQ(state.collected(), ten_bytes);
  SetRePrintMode(port, 1);
  print_ten_bytes();
  EXPECT_EQ(state.collected(), ten_bytes + ten_bytes);
}

}  // namespace
}  // namespace testkit
