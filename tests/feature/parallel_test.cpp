// What is a parallel port's own: claiming, the online test before each write, nibble mode.
#include <gmock/gmock.h>

#include <cerrno>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr char kPort[] = "/dev/parport0";

// Status lines.
constexpr unsigned char kNoError = 0x08;
constexpr unsigned char kNotBusy = 0x80;

class Parallel : public OnePrinter {
 protected:
  Parallel() : OnePrinter(kPort) {}

  void open() {
    ASSERT_EQ(OpenPort(kPort, nullptr), 0);
    printer.mute();
    forget();
  }

  /// Busy now, and online again after so long.
  void busy_for(int64_t ms) {
    printer.status_lines = kNoError;
    kernel.at(kernel.now_ms() + ms, [this] { printer.status_lines = kNoError | kNotBusy; });
  }

  const std::string hundred = std::string(60, 'a') + std::string(40, 'b');
};

// ------------------------------------------------------------------------- open and close

TEST_F(Parallel, is_opened_without_blocking_and_claimed) {
  open();
  ClosePort(kPort);
  OpenPort(kPort, "not looked at");
  const std::vector<std::string> log = kernel.log();
  EXPECT_THAT(
      std::vector(log.begin(), log.begin() + 4),
      ElementsAre("PPRELEASE", "close 700", "open /dev/parport0 RDWR|NONBLOCK = 701", "PPCLAIM"));
  EXPECT_EQ(parPorts[0].set, 1);
  EXPECT_STREQ(parPorts[0].portName, kPort);
  EXPECT_EQ(parPorts[0].port, 701);
}

TEST_F(Parallel, a_claim_that_is_refused_gives_minus_1_and_leaves_nothing_behind) {
  kernel.fail("PPCLAIM", ENXIO);
  EXPECT_EQ(OpenPort(kPort, ""), -1);
  EXPECT_EQ(parPorts[0].set, 0);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_TRUE(printer.writes.empty());
  EXPECT_EQ(OpenPort(kPort, ""), 0);
}

TEST_F(Parallel, a_node_that_does_not_open_gives_minus_1) {
  kernel.fail("open", ENODEV);
  EXPECT_EQ(OpenPort(kPort, ""), -1);
  EXPECT_EQ(parPorts[0].set, 0);
  EXPECT_EQ(kernel.count("PPCLAIM"), 0U);
}

TEST_F(Parallel, pending_input_is_discarded_before_the_first_query) {
  printer.input = "\x16";
  EXPECT_EQ(OpenPort(kPort, ""), 0);
  EXPECT_EQ(kernel.log("read").front(), "read 128 = 1");
}

TEST_F(Parallel, closing_succeeds_even_when_its_calls_fail) {
  open();
  kernel.fail("PPRELEASE", EINVAL);
  kernel.fail("close", EIO);
  EXPECT_EQ(ClosePort(kPort), 0);
  EXPECT_EQ(parPorts[0].set, 0);
}

// ------------------------------------------------------------------------------- writing

TEST_F(Parallel, an_online_printer_gets_everything_in_one_write) {
  open();
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_THAT(kernel.log(), ElementsAre("PPNEGOT 256", "PPRSTATUS 88", "write 68 65 6C 6C 6F = 5"));
}

TEST_F(Parallel, both_lines_are_needed_to_be_online) {
  open();
  for (const char lines : {'\0', '\x08', '\x80', '\x77'}) {
    printer.status_lines = static_cast<unsigned char>(lines);
    EXPECT_EQ(WritePort(kPort, "x", 1), 0) << int{lines};
  }
  printer.status_lines = 0xff;
  EXPECT_EQ(WritePort(kPort, "x", 1), 1);
}

TEST_F(Parallel, a_printer_busy_from_the_start_gets_nothing_in_5_seconds) {
  open();
  printer.status_lines = kNoError;
  EXPECT_EQ(WritePort(kPort, hundred.data(), 100), 0);
  EXPECT_EQ(elapsed_ms(), 5000);
  EXPECT_EQ(kernel.count("usleep"), 100U);
  EXPECT_EQ(kernel.count("PPRSTATUS"), 101U) << "the last look is after the last pause";
  EXPECT_TRUE(printer.output.empty());
}

TEST_F(Parallel, in_error_from_the_start_is_the_same) {
  open();
  printer.status_lines = kNotBusy;
  EXPECT_EQ(WritePort(kPort, hundred.data(), 100), 0);
  EXPECT_EQ(elapsed_ms(), 5000);
}

TEST_F(Parallel, forty_bytes_then_busy_for_3_seconds_still_gets_the_rest) {
  open();
  kernel.shorten("write", 40);
  printer.on_write = [this] {
    if (printer.output.size() == 40) busy_for(3000);
  };
  EXPECT_EQ(WritePort(kPort, hundred.data(), 100), 100);
  EXPECT_EQ(printer.output, hundred);
  EXPECT_THAT(printer.writes, ElementsAre(hundred.substr(0, 40), hundred.substr(40)));
  EXPECT_EQ(elapsed_ms(), 3000);
}

TEST_F(Parallel, each_write_that_makes_progress_restores_the_budget) {
  open();
  for (int nth = 1; nth <= 3; ++nth) kernel.shorten("write", 30, nth);
  printer.on_write = [this] {
    if (printer.output.size() < 100) busy_for(4000);
  };
  EXPECT_EQ(WritePort(kPort, hundred.data(), 100), 100);
  EXPECT_EQ(elapsed_ms(), 3 * 4000);
}

TEST_F(Parallel, five_seconds_without_progress_give_the_partial_count) {
  open();
  kernel.shorten("write", 40);
  printer.on_write = [this] { printer.status_lines = 0; };
  EXPECT_EQ(WritePort(kPort, hundred.data(), 100), 40);
  EXPECT_EQ(elapsed_ms(), 5000);
}

TEST_F(Parallel, failing_calls_are_no_progress_and_no_failure) {
  open();
  kernel.fail("write", EIO);
  kernel.fail("write", EAGAIN, 2);
  EXPECT_EQ(WritePort(kPort, "abc", 3), 3);
  EXPECT_EQ(elapsed_ms(), 2 * 50);
  kernel.fail("PPNEGOT", EIO);
  EXPECT_EQ(WritePort(kPort, "abc", 3), 3);
  kernel.fail("PPRSTATUS", EIO);
  EXPECT_EQ(WritePort(kPort, "abc", 3), 3);
  EXPECT_EQ(elapsed_ms(), 4 * 50);
  EXPECT_EQ(printer.output, "abcabcabc");
}

TEST_F(Parallel, an_error_state_refuses_before_anything_is_asked) {
  open();
  p_bOffline = 1;
  EXPECT_EQ(WritePort(kPort, "x", 1), -2);
  EXPECT_TRUE(kernel.calls().empty());
}

// ------------------------------------------------------------------------------- reading

TEST_F(Parallel, a_read_goes_through_compatibility_to_nibble_mode_and_does_not_wait) {
  open();
  printer.input = "abc";
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 3);
  EXPECT_THAT(kernel.log(), ElementsAre("PPNEGOT 256", "PPNEGOT 0", "read 8 = 3"));
  EXPECT_EQ(elapsed_ms(), 0);
}

TEST_F(Parallel, a_refused_nibble_mode_gives_minus_2) {
  open();
  printer.input = "abc";
  printer.has_nibble_mode = false;
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -2);
  EXPECT_EQ(kernel.count("read"), 0U);
}

TEST_F(Parallel, a_refused_compatibility_mode_is_ignored) {
  open();
  printer.input = "abc";
  kernel.fail("PPNEGOT", EIO);
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 3);
}

TEST_F(Parallel, nothing_there_and_a_failing_read_give_minus_2) {
  open();
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -2);
  printer.input = "abc";
  kernel.fail("read", EIO);
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -2);
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 3);
}

TEST_F(Parallel, answers_are_asked_for_21_times) {
  open();
  char buffer[256];
  EXPECT_EQ(GetData(kPort, "ask", 3, buffer), 0);
  EXPECT_EQ(kernel.count("read"), 21U);
  EXPECT_EQ(elapsed_ms(), 20 * 10);
}

// ------------------------------------------------------------------------------- monitor

class ParallelMonitor : public Parallel {
 protected:
  ParallelMonitor() {
    open();
    ClaimDevice(kPort, 0);
    kernel.run_for(150);
    printer.output.clear();
    kernel.forget_calls();
  }
};

TEST_F(ParallelMonitor, each_cycle_changes_the_mode_and_reads_the_data_register) {
  kernel.run_for(500);
  EXPECT_THAT(kernel.log(), ElementsAre("test 500000", "PPNEGOT 256", "PPNEGOT 0", "PPRDATA",
                                        "read 256 = -1", "usleep 500000"));
}

TEST_F(ParallelMonitor, a_waiting_caller_keeps_it_from_reading_only) {
  p_bStopThread = 1;
  kernel.run_for(500);
  EXPECT_THAT(kernel.log(),
              ElementsAre("test 500000", "PPNEGOT 256", "PPNEGOT 0", "PPRDATA", "usleep 500000"));
}

TEST_F(ParallelMonitor, a_refused_nibble_mode_is_power_off_until_it_is_granted) {
  printer.has_nibble_mode = false;
  kernel.run_for(500);
  EXPECT_EQ(p_bPowerOFF, 1);
  EXPECT_EQ(p_bOffline, 1);
  EXPECT_EQ(GetError(kPort), 4);
  EXPECT_EQ(WritePort(kPort, "x", 1), -2);

  printer.has_nibble_mode = true;
  kernel.run_for(620);
  EXPECT_EQ(GetError(kPort), 0);
  EXPECT_EQ(printer.output, kEnableReports) << "the reports are enabled again";
  EXPECT_EQ(WritePort(kPort, "x", 1), 1);
}

TEST_F(ParallelMonitor, neither_failed_reads_nor_a_failed_data_register_matter) {
  for (int nth = 1; nth <= 5; ++nth) {
    kernel.fail("read", EIO, nth);
    kernel.fail("PPRDATA", EIO, nth);
  }
  p_bPaperNearEmpty = 1;
  kernel.run_for(3000);
  EXPECT_EQ(GetError(kPort), 8);
  EXPECT_EQ(kernel.threads(), 1U);
  EXPECT_EQ(kernel.count("close"), 0U) << "the node is never reopened";
}

TEST_F(ParallelMonitor, every_poll_of_a_reprint_changes_the_mode_too) {
  SetRePrintMode(kPort, 1);
  CutPaper(kPort, 100);
  printer.input = kHealthy;
  kernel.run_for(500 + 3000);
  kernel.forget_calls();
  kernel.run_for(50);
  EXPECT_THAT(kernel.log(), Contains("PPNEGOT 0"));
  EXPECT_THAT(kernel.log(), Contains("PPRDATA"));
}

TEST_F(ParallelMonitor, a_release_takes_a_second) {
  EXPECT_EQ(ReleaseDevice(kPort), 0);
  EXPECT_THAT(kernel.log("sleep"), ElementsAre("sleep 1000000"));
}

}  // namespace
}  // namespace testkit
