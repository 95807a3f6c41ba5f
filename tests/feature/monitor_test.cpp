// The status monitor over a scripted line: its cycle, what it does to the flags, the hand-over to
// callers, reprints, and its end.
#include <gmock/gmock.h>
#include <sys/ioctl.h>

#include "support/links.h"
#include "tzvio.h"

extern "C" void libDestructor();

namespace testkit {
namespace {

using testing::ElementsAre;

class MonitorTest : public EveryLink {
 protected:
  void claim() {
    ASSERT_EQ(ClaimDevice(port, 0), 0);
    started_ms = kernel.now_ms();
  }
  /// A claimed printer, the first cycle done: its next one is 500 ms later.
  void claim_and_settle() {
    claim();
    kernel.run_for(150);
    printer.output.clear();
    printer.writes.clear();
    kernel.forget_calls();
  }
  void next_cycle() { kernel.run_for(500); }

  int64_t started_ms = 0;
};
TZV_ON_EVERY_LINK(MonitorTest);

// ------------------------------------------------------------------------ claim and release

TEST_P(MonitorTest, claim_starts_a_thread_that_enables_the_reports) {
  claim();
  EXPECT_EQ(*state.StopIt, 1);
  EXPECT_EQ(*state.bOffline, 1);
  EXPECT_EQ(*state.bStopThread, 0);
  EXPECT_EQ(kernel.threads(), 1U);
  kernel.run_for(50);
  EXPECT_EQ(sent(), kEnableReports);
  EXPECT_EQ(*state.bOffline, 0);
  kernel.run_for(2000);
  EXPECT_EQ(sent(), kEnableReports) << "once";
}

TEST_P(MonitorTest, claim_and_release_of_a_closed_port_give_minus_1) {
  ASSERT_EQ(ClosePort(port), 0);
  EXPECT_EQ(ClaimDevice(port, 0), -1);
  EXPECT_EQ(ReleaseDevice(port), -1);
  EXPECT_EQ(*state.StopIt, 0);
  EXPECT_EQ(kernel.threads(), 0U);
}

TEST_P(MonitorTest, release_returns_after_its_pause_and_the_thread_ends_within_a_cycle) {
  claim_and_settle();
  const int64_t released = kernel.now_ms();
  EXPECT_EQ(ReleaseDevice(port), 0);
  EXPECT_EQ(kernel.now_ms(), released + link.release_pause);
  EXPECT_EQ(*state.StopIt, 0);
  next_cycle();
  kernel.forget_calls();
  kernel.run_for(3000);
  EXPECT_THAT(kernel.log(), ElementsAre("test 3000000"));
}

TEST_P(MonitorTest, a_second_claim_sets_the_flags_and_starts_nothing) {
  claim_and_settle();
  *state.bStopThread = 1;
  EXPECT_EQ(ClaimDevice(port, 0), 0);
  EXPECT_EQ(*state.bOffline, 1);
  EXPECT_EQ(*state.bStopThread, 0);
  EXPECT_EQ(kernel.threads(), 1U);
  next_cycle();
  EXPECT_EQ(sent(), kEnableReports);
}

TEST_P(MonitorTest, a_claim_right_after_a_release_keeps_the_monitor) {
  claim_and_settle();
  ReleaseDevice(port);
  EXPECT_EQ(ClaimDevice(port, 0), 0);
  EXPECT_EQ(kernel.threads(), 1U);
  next_cycle();
  printer.input = kCoverOpen;
  kernel.run_for(600);
  EXPECT_EQ(GetError(port), 1);
}

TEST_P(MonitorTest, a_claim_after_the_end_starts_a_new_monitor) {
  claim_and_settle();
  ReleaseDevice(port);
  next_cycle();
  printer.output.clear();
  EXPECT_EQ(ClaimDevice(port, 0), 0);
  EXPECT_EQ(kernel.threads(), 1U) << "the ended one is joined";
  EXPECT_EQ(kernel.count("pthread_join"), 1U);
  kernel.run_for(100);
  EXPECT_EQ(sent(), kEnableReports);
}

TEST_P(MonitorTest, thousands_of_claims_leave_no_thread_behind) {
  for (int i = 0; i < 2000; ++i) {
    ASSERT_EQ(ClaimDevice(port, 0), 0);
    ReleaseDevice(port);
    kernel.run_for(700);
    kernel.forget_calls();
  }
  EXPECT_LE(kernel.threads(), 1U);
}

TEST_P(MonitorTest, without_a_thread_the_process_ends_with_255) {
  EXPECT_EXIT(
      {
        kernel.fail("pthread_create", EAGAIN);
        ClaimDevice(port, 0);
      },
      testing::ExitedWithCode(255), "");
}

TEST_P(MonitorTest, unloading_ends_the_monitor_before_it_closes_the_port) {
  claim_and_settle();
  libDestructor();
  EXPECT_EQ(kernel.threads(), 0U);
  const std::vector<std::string> log = kernel.log();
  const auto joined = std::find(log.begin(), log.end(), "pthread_join");
  const auto closed = std::find(log.begin(), log.end(), "close 700");
  ASSERT_NE(joined, log.end());
  ASSERT_NE(closed, log.end());
  EXPECT_LT(joined - log.begin(), closed - log.begin());
  EXPECT_EQ(*state.StopIt, 0);
}

TEST_P(MonitorTest, a_closed_port_is_not_touched_any_more) {
  claim_and_settle();
  ClosePort(port);
  EXPECT_EQ(*state.StopIt, 1) << "closing does not stop the monitor";
  kernel.forget_calls();
  *state.bOffline = 1;
  kernel.run_for(3000);
  for (const std::string& call : kernel.log()) {
    EXPECT_TRUE(call.starts_with("usleep") || call.starts_with("test")) << call;
  }
  EXPECT_EQ(kernel.threads(), 1U);
}

TEST_P(MonitorTest, a_port_opened_again_is_monitored_again) {
  claim_and_settle();
  ClosePort(port);
  ASSERT_EQ(OpenPort(port, link.settings.c_str()), 0);
  printer.input = kCoverOpen;
  kernel.run_for(1000);
  EXPECT_EQ(GetError(port), 1);
}

// ------------------------------------------------------------------------------- the cycle

TEST_P(MonitorTest, polls_every_500_ms_and_every_10_while_a_transaction_waits) {
  claim_and_settle();
  next_cycle();
  kernel.forget_calls();
  kernel.run_for(5000);
  EXPECT_EQ(kernel.count(link.poll_call), 10U);
  *state.bSleepFlag = 1;
  next_cycle();
  kernel.forget_calls();
  kernel.run_for(1000);
  EXPECT_EQ(kernel.count(link.poll_call), 100U);
}

TEST_P(MonitorTest, while_a_caller_waits_the_line_is_not_read) {
  claim_and_settle();
  *state.bStopThread = 1;
  *state.bOffline = 1;
  printer.input = kCoverOpen;
  next_cycle();
  kernel.run_for(100);
  EXPECT_EQ(kernel.count(link.poll_call), 0U);
  EXPECT_EQ(printer.input, kCoverOpen);
  EXPECT_EQ(sent(), kEnableReports) << "the reports are enabled all the same";
}

TEST_P(MonitorTest, at_most_256_bytes_are_read_at_once) {
  claim_and_settle();
  printer.input = std::string(300, 'x');
  next_cycle();
  EXPECT_EQ(kernel.log(link.read_call), std::vector<std::string>{link.read_call + " 256 = 256"});
}

TEST_P(MonitorTest, failing_reads_leave_the_flags) {
  claim_and_settle();
  *state.bPaperNearEmpty = 1;
  for (int i = 1; i < 10; ++i) kernel.fail("read", EAGAIN, i);
  kernel.run_for(3000);
  EXPECT_EQ(GetError(port), 8);
}

TEST_P(MonitorTest, reports_become_flags) {
  claim_and_settle();
  const std::pair<std::string, long> rows[] = {
      {kCoverOpen, 1},
      {std::string("\x1c\x00\x0c\x0f", 4), 2},
      {std::string("\x14\x00\x03\x0f", 4), 8},
      {kHealthy, 0},
  };
  for (const auto& [report, code] : rows) {
    printer.input = report;
    // Within the cycle that reads it, before the next look at the line.
    *state.bSleepFlag = 1;
    next_cycle();
    printer.input = report;
    kernel.run_for(10);
    EXPECT_EQ(GetError(port), code) << hex(report);
  }
}

TEST_P(MonitorTest, drawer_reports_are_counted) {
  claim_and_settle();
  printer.input = std::string("\x10\x00\x00\x0f\x10\x00\x00\x0f\x14\x00\x00\x0f", 12);
  next_cycle();
  EXPECT_EQ(GetDrawerStatus(port), 1);
  printer.input = kHealthy;
  next_cycle();
  EXPECT_EQ(GetDrawerStatus(port), 0);
}

TEST_P(MonitorTest, a_confirmation_empties_the_sent_job) {
  claim_and_settle();
  *state.PageSize = 5;
  (*state.PageBuffer)[4] = 'x';
  printer.input = kProcessIdAnswer;
  next_cycle();
  EXPECT_EQ(*state.PageSize, 0);
  EXPECT_EQ((*state.PageBuffer)[4], 0);
  EXPECT_EQ(*state.OutputComplemetFlag, 1);
}

// Both came between two reads: the recovery must not be misread.
TEST_P(MonitorTest, a_report_beside_a_confirmation_counts) {
  claim_and_settle();
  printer.input = std::string("\x14\x00\x0c\x0f", 4);
  next_cycle();
  ASSERT_EQ(GetError(port), 2);
  *state.bOffline = 0;
  *state.PageSize = 5;
  printer.input = kHealthy + kProcessIdAnswer;
  next_cycle();
  EXPECT_EQ(GetError(port), 0);
  EXPECT_EQ(*state.OutputComplemetFlag, 1);
  EXPECT_EQ(*state.PageSize, 0);
}

TEST_P(MonitorTest, a_query_gets_its_answer_beside_a_running_monitor) {
  claim_and_settle();
  *state.bSleepFlag = 1;
  next_cycle();
  // The answer comes while the monitor polls every 10 ms.
  printer.answer("\033#SENSOR", std::string("_2\0", 3), 95);
  EXPECT_EQ(GetPrinterStatus(port), 64);
}

// ---------------------------------------------------------------------------------- power

class SerialPower : public MonitorTest {};
INSTANTIATE_TEST_SUITE_P(serial, SerialPower, testing::Values(kLinks.front()),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(SerialPower, a_fallen_dsr_is_power_off_and_refuses_output) {
  claim_and_settle();
  printer.modem_lines = 0;
  next_cycle();
  EXPECT_EQ(GetError(port), 4);
  EXPECT_EQ(*state.bPowerOFF, 1);
  EXPECT_EQ(*state.bOffline, 1);
  EXPECT_EQ(WritePort(port, "x", 1), -2);
}

TEST_P(SerialPower, the_reports_are_enabled_again_when_power_is_back) {
  claim_and_settle();
  printer.modem_lines = 0;
  next_cycle();
  printer.modem_lines = TIOCM_DSR;
  printer.output.clear();
  kernel.run_for(620);
  EXPECT_EQ(sent(), kEnableReports);
  EXPECT_EQ(GetError(port), 0);
  EXPECT_EQ(WritePort(port, "x", 1), 1);
}

TEST_P(SerialPower, a_look_at_dsr_that_fails_tells_nothing) {
  claim_and_settle();
  *state.bPowerOFF = 1;
  for (int i = 1; i < 10; ++i) kernel.fail("TIOCMGET", EIO, i);
  kernel.run_for(2000);
  EXPECT_EQ(*state.bPowerOFF, 1);
  EXPECT_EQ(*state.bOffline, 0);
}

// Asked before its power was back, it would never report again.
TEST_P(SerialPower, that_comes_back_while_reports_are_enabled_has_them_enabled_again) {
  claim_and_settle();
  printer.modem_lines = 0;
  int heard = 0;
  printer.on_write = [this, &heard] {
    if (printer.modem_lines != 0) {
      ++heard;
    } else {
      kernel.at(kernel.now_ms() + 50, [this] { printer.modem_lines = TIOCM_DSR; });
    }
  };
  kernel.run_for(3000);
  EXPECT_EQ(heard, 1);
  EXPECT_EQ(GetError(port), 0);
}

TEST_P(SerialPower, every_cycle_looks_at_dsr_also_while_a_caller_waits) {
  claim_and_settle();
  *state.bStopThread = 1;
  kernel.run_for(5000);
  EXPECT_EQ(kernel.count("TIOCMGET"), 10U);
}

// --------------------------------------------------------------------------------- reprint

class Reprint : public MonitorTest {
 protected:
  /// Holds a job of 7 bytes and lets the printer report itself healthy.
  void hold_and_report() {
    claim_and_settle();
    SetRePrintMode(port, 1);
    ASSERT_EQ(CutPaper(port, 100), 0);
    report();
  }
  /// A healthy report just before the monitor's next look; the clock is at that look then.
  void report() {
    printer.input += kHealthy;
    const int64_t patience = kernel.now_ms() + 1000;
    while (!printer.input.empty() && kernel.now_ms() < patience) kernel.run_for(10);
    reported_ms = kernel.now_ms();
  }
  const std::string job = "\n\n\n\n\n\033i";
  int64_t reported_ms = 0;
};
TZV_ON_EVERY_LINK(Reprint);

TEST_P(Reprint, the_held_job_is_sent_3_s_after_a_healthy_report) {
  hold_and_report();
  kernel.run_for(2900);
  EXPECT_EQ(sent(), "");
  kernel.run_for(200);
  EXPECT_EQ(sent(), job);
  EXPECT_EQ(state.collected(), job) << "until it is confirmed";
}

TEST_P(Reprint, its_confirmation_empties_the_buffer) {
  hold_and_report();
  kernel.run_for(3100);
  printer.input = kProcessIdAnswer;
  kernel.run_for(100);
  EXPECT_EQ(*state.PageSize, 0);
  EXPECT_EQ(*state.OutputComplemetFlag, 1);
  printer.output.clear();
  report();
  kernel.run_for(5000);
  EXPECT_EQ(sent(), "") << "nothing is held any more";
}

TEST_P(Reprint, what_was_added_meanwhile_is_kept) {
  hold_and_report();
  kernel.run_for(3100);
  ASSERT_EQ(WritePortPosition(port, 0), 0);
  printer.input = kProcessIdAnswer;
  kernel.run_for(100);
  EXPECT_EQ(state.collected(), "\033a0");
}

TEST_P(Reprint, the_printer_is_asked_after_41_polls_of_50_ms_and_given_up_at_the_third_time) {
  hold_and_report();
  kernel.run_for(3100 + 2 * 41 * 50 + 25);
  EXPECT_THAT(printer.writes, ElementsAre(job, kProcessIdRequest, kProcessIdRequest));
  kernel.run_for(10000);
  EXPECT_THAT(printer.writes, ElementsAre(job, kProcessIdRequest, kProcessIdRequest));
  EXPECT_EQ(state.collected(), job);
}

// The count of requests goes on over all reprints of a monitor, so only the first gives up.
TEST_P(Reprint, a_later_reprint_is_not_given_up) {
  hold_and_report();
  kernel.run_for(20000);
  printer.writes.clear();
  report();
  kernel.run_for(3100 + 8 * 41 * 50 + 25);
  EXPECT_EQ(printer.writes.size(), 9U);
  EXPECT_EQ(printer.writes[0], job);
}

TEST_P(Reprint, any_other_answer_ends_the_wait) {
  hold_and_report();
  kernel.run_for(3100);
  printer.input = kCoverOpen;
  kernel.run_for(5000);
  EXPECT_THAT(printer.writes, ElementsAre(job));
  EXPECT_EQ(state.collected(), job);
}

TEST_P(Reprint, the_end_of_the_monitor_ends_the_wait) {
  hold_and_report();
  kernel.run_for(3100);
  ReleaseDevice(port);
  kernel.run_for(700);
  kernel.forget_calls();
  kernel.run_for(3000);
  EXPECT_THAT(kernel.log(), ElementsAre("test 3000000"));
}

TEST_P(Reprint, nothing_is_sent_without_the_mode_or_a_job_or_health) {
  claim_and_settle();
  *state.TransactionPrint = 1;
  CutPaper(port, 100);
  report();
  kernel.run_for(5000);
  EXPECT_EQ(sent(), "");

  *state.TransactionPrint = 0;
  *state.PageSize = 0;
  SetRePrintMode(port, 1);
  report();
  kernel.run_for(5000);
  EXPECT_EQ(sent(), "");

  CutPaper(port, 100);
  printer.input = std::string("\x14\x00\x0c\x0f", 4);  // paper out
  kernel.run_for(400);
  EXPECT_EQ(sent(), "");
}

TEST_P(Reprint, a_job_longer_than_one_piece_is_sent_whole) {
  claim_and_settle();
  SetRePrintMode(port, 1);
  const std::string text(100000, 'x');
  PrintNormal(port, text.c_str());
  const std::string held = state.collected();
  report();
  kernel.run_for(3100);
  EXPECT_EQ(sent(), held);
}

// ---------------------------------------------------------------------------- several ports

class SeveralPorts : public ScriptedTest {
 protected:
  Device& plug_and_open(const char* name) {
    Device& printer = kernel.plug(name);
    printer.answer_ready();
    printer.modem_lines = TIOCM_DSR;
    EXPECT_EQ(OpenPort(name, "9600,none,8,1,none"), 0);
    printer.output.clear();
    return printer;
  }
};

TEST_F(SeveralPorts, each_claimed_port_has_its_own_monitor) {
  Device& first = plug_and_open("/dev/ttyS0");
  Device& second = plug_and_open("/dev/ttyS1");
  ASSERT_EQ(ClaimDevice("/dev/ttyS0", 0), 0);
  ASSERT_EQ(ClaimDevice("/dev/ttyS1", 0), 0);
  ASSERT_EQ(ClaimDevice("/dev/ttyS0", 0), 0);
  EXPECT_EQ(kernel.threads(), 2U);
  kernel.run_for(50);
  EXPECT_EQ(first.output, kEnableReports);
  second.input = kCoverOpen;
  kernel.run_for(600);
  EXPECT_EQ(GetError("/dev/ttyS0"), 1) << "the ports of a link share their flags";
}

TEST_F(SeveralPorts, a_descriptor_that_another_port_took_over_is_left_alone) {
  plug_and_open("/dev/ttyS0");
  ASSERT_EQ(ClaimDevice("/dev/ttyS0", 0), 0);
  kernel.run_for(150);
  ClosePort("/dev/ttyS0");
  Device& other = plug_and_open("/dev/ttyS1");
  other.input = kCoverOpen;
  m_bOffline = 1;
  kernel.run_for(3000);
  EXPECT_EQ(other.output, "");
  EXPECT_EQ(other.input, kCoverOpen);
}

}  // namespace
}  // namespace testkit
