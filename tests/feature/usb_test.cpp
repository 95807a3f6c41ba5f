// What is a USB node's own: pieces of 64 bytes, reads that block, a plug that is pulled.
#include <gmock/gmock.h>

#include <cerrno>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::ElementsAre;

constexpr char kPort[] = "/dev/usb/lp0";

class Usb : public OnePrinter {
 protected:
  Usb() : OnePrinter(kPort) {}

  void open() {
    ASSERT_EQ(OpenPort(kPort, nullptr), 0);
    printer.mute();
    forget();
  }
};

// ------------------------------------------------------------------------- open and close

TEST_F(Usb, is_opened_to_block_and_asked) {
  ASSERT_EQ(OpenPort(kPort, "not looked at"), 0);
  const std::vector<std::string> log = kernel.log();
  EXPECT_THAT(std::vector(log.begin(), log.begin() + 2),
              ElementsAre("open /dev/usb/lp0 RDWR|NOCTTY = 700", "write 10 04 02 = 3"));
  EXPECT_EQ(usbPorts[0].set, 1);
  EXPECT_STREQ(usbPorts[0].portName, kPort);
  EXPECT_EQ(usbPorts[0].port, 700);
}

TEST_F(Usb, a_node_that_does_not_open_gives_minus_1) {
  kernel.fail("open", ENOENT);
  EXPECT_EQ(OpenPort(kPort, ""), -1);
  EXPECT_EQ(usbPorts[0].set, 0);
}

TEST_F(Usb, a_descriptor_that_cannot_be_waited_for_is_a_failed_open) {
  kernel.number_descriptors_from(1024);
  EXPECT_EQ(OpenPort(kPort, ""), -1);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(usbPorts[0].set, 0);
  kernel.number_descriptors_from(1023);
  EXPECT_EQ(OpenPort(kPort, ""), 0);
}

TEST_F(Usb, closing_flushes_and_succeeds_even_when_its_calls_fail) {
  open();
  kernel.fail("tcflush", ENOTTY);
  kernel.fail("close", EIO);
  EXPECT_EQ(ClosePort(kPort), 0);
  EXPECT_THAT(kernel.log(), ElementsAre("tcflush both = -1", "close 700 = -1"));
  EXPECT_EQ(usbPorts[0].set, 0);
}

// ------------------------------------------------------------------------------- writing

TEST_F(Usb, a_write_goes_out_in_pieces_of_64_bytes_without_pause) {
  open();
  const std::string bytes(150, 'x');
  EXPECT_EQ(WritePort(kPort, bytes.data(), 150), 150);
  ASSERT_EQ(printer.writes.size(), 3U);
  EXPECT_EQ(printer.writes[0].size(), 64U);
  EXPECT_EQ(printer.writes[1].size(), 64U);
  EXPECT_EQ(printer.writes[2].size(), 22U);
  EXPECT_EQ(kernel.calls().size(), 3U);
}

TEST_F(Usb, a_short_write_is_continued_with_the_next_64_bytes) {
  open();
  kernel.shorten("write", 10);
  const std::string bytes(80, 'x');
  EXPECT_EQ(WritePort(kPort, bytes.data(), 80), 80);
  EXPECT_EQ(printer.writes[0].size(), 10U);
  EXPECT_EQ(printer.writes[1].size(), 64U);
  EXPECT_EQ(printer.writes[2].size(), 6U);
}

TEST_F(Usb, a_failing_write_gives_minus_2_also_in_the_middle) {
  open();
  kernel.fail("write", ENODEV);
  EXPECT_EQ(WritePort(kPort, "x", 1), -2);
  kernel.fail("write", ENODEV, 2);
  const std::string bytes(80, 'x');
  EXPECT_EQ(WritePort(kPort, bytes.data(), 80), -2);
}

TEST_F(Usb, a_write_that_takes_nothing_is_repeated_every_20_ms) {
  open();
  for (int nth = 1; nth <= 7; ++nth) kernel.shorten("write", 0, nth);
  EXPECT_EQ(WritePort(kPort, "abc", 3), 3);
  EXPECT_EQ(elapsed_ms(), 7 * 20);
  EXPECT_EQ(printer.output, "abc");
}

TEST_F(Usb, five_seconds_without_progress_give_the_count) {
  open();
  for (int nth = 2; nth <= 300; ++nth) kernel.shorten("write", 0, nth);
  const std::string bytes(150, 'x');
  EXPECT_EQ(WritePort(kPort, bytes.data(), 150), 64);
  EXPECT_EQ(elapsed_ms(), 5000);
}

TEST_F(Usb, progress_restores_the_budget) {
  open();
  for (int nth = 1; nth <= 400; ++nth) {
    if (nth != 200) kernel.shorten("write", 0, nth);
  }
  const std::string bytes(70, 'x');
  EXPECT_EQ(WritePort(kPort, bytes.data(), 70), 70);
  EXPECT_EQ(elapsed_ms(), 399 * 20);
}

TEST_F(Usb, power_off_is_not_consulted_by_writes) {
  open();
  u_bPowerOFF = 1;
  EXPECT_EQ(WritePort(kPort, "x", 1), 1);
  u_bOffline = 1;
  EXPECT_EQ(WritePort(kPort, "x", 1), -2);
}

// ------------------------------------------------------------------------------- reading

TEST_F(Usb, two_hundred_milliseconds_pass_before_a_read) {
  open();
  printer.input = "abc";
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 3);
  EXPECT_EQ(kernel.count("usleep"), 10U);
  EXPECT_EQ(elapsed_ms(), 200);
}

TEST_F(Usb, reading_nothing_returns_0_at_once) {
  open();
  EXPECT_EQ(ReadPort(kPort, nullptr, 0), 0);
  EXPECT_TRUE(kernel.calls().empty());
}

// The pause is no time-out.
TEST_F(Usb, a_read_waits_for_the_printer_without_end) {
  open();
  kernel.at(started_ms + 3600'000, [this] { printer.input = "late"; });
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 4);
  EXPECT_EQ(elapsed_ms(), 3600'000);
  EXPECT_EQ(kernel.count("read"), 1U);
}

TEST_F(Usb, a_failing_read_gives_minus_1) {
  open();
  kernel.fail("read", ENODEV);
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -1);
}

TEST_F(Usb, answers_to_queries_have_their_own_pause) {
  open();
  printer.answer("ask", "x");
  char buffer[256];
  EXPECT_EQ(GetData(kPort, "ask", 3, buffer), 1);
  EXPECT_EQ(elapsed_ms(), 100);
  printer.answer("\x1dID", "_ABCDEFGV1");
  EXPECT_EQ(GetFWVersion(kPort, buffer), 1);
  EXPECT_EQ(elapsed_ms(), 100 + 60) << "50 ms in steps of 20";
}

TEST_F(Usb, a_frames_answer_is_read_after_60_ms_and_clears_the_protocol_status) {
  open();
  SetProtocol(kPort, 1);
  TransactionPrint(kPort, 1);
  u_bProtocolStatus = 1;
  int during = -1;
  printer.on_write = [&] {
    during = u_bProtocolStatus;
    printer.input = "OK";
  };
  EXPECT_EQ(TransactionPrint(kPort, 0), 4);
  EXPECT_EQ(during, 0);
  EXPECT_EQ(elapsed_ms(), 60);
}

// ------------------------------------------------------------------------------- monitor

class UsbMonitor : public Usb {
 protected:
  UsbMonitor() {
    open();
    ClaimDevice(kPort, 0);
    kernel.run_for(150);
    forget();
  }
  void next_cycle() { kernel.run_for(500); }
};

TEST_F(UsbMonitor, looks_before_it_reads) {
  next_cycle();
  EXPECT_THAT(kernel.log(), ElementsAre("test 500000", "select read 0", "usleep 500000"));
  printer.input = kCoverOpen;
  kernel.forget_calls();
  next_cycle();
  EXPECT_THAT(kernel.log(),
              ElementsAre("test 500000", "select read 0 = 1", "read 256 = 4", "usleep 500000"));
  EXPECT_EQ(GetError(kPort), 1);
}

// A caller's read blocks; if the monitor came between, one of the two would wait for ever.
TEST_F(UsbMonitor, leaves_the_node_to_a_caller_that_reads) {
  kernel.at(kernel.now_ms() + 2000, [this] { printer.input = "answer"; });
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 6);
  EXPECT_EQ(kernel.count("select"), 0U);
  next_cycle();
  EXPECT_EQ(kernel.count("select"), 1U);
}

TEST_F(UsbMonitor, a_read_clears_power_off_and_offline) {
  u_bPowerOFF = u_bOffline = 1;
  printer.input = "x";
  kernel.run_for(620);
  EXPECT_EQ(u_bPowerOFF, 0);
  EXPECT_EQ(u_bOffline, 0);
}

TEST_F(UsbMonitor, a_pulled_plug_is_power_off_and_the_node_is_closed) {
  kernel.cut(kPort, ENODEV);
  next_cycle();
  EXPECT_EQ(u_bPowerOFF, 1);
  EXPECT_EQ(u_bOffline, 1);
  EXPECT_EQ(GetError(kPort), 4);
  EXPECT_THAT(kernel.log("close"), ElementsAre("close 700"));
  EXPECT_EQ(WritePort(kPort, "x", 1), -2);
  EXPECT_EQ(usbPorts[0].set, 1) << "the port stays open";
}

TEST_F(UsbMonitor, the_node_is_tried_once_a_second) {
  kernel.cut(kPort, ENODEV);
  next_cycle();
  kernel.forget_calls();
  kernel.run_for(10'000);
  EXPECT_EQ(kernel.count("open"), 10U);
}

TEST_F(UsbMonitor, printing_goes_on_when_the_plug_is_back) {
  kernel.cut(kPort, ENODEV);
  kernel.run_for(60'000);
  kernel.plug_back(kPort);
  for (int tries = 0; tries < 100 && u_bPowerOFF != 0; ++tries) kernel.run_for(10);
  EXPECT_EQ(u_bPowerOFF, 0) << "within a second";
  EXPECT_EQ(u_bOffline, 1) << "until the reports are enabled";
  next_cycle();
  EXPECT_EQ(printer.output, kEnableReports);
  kernel.run_for(100);
  EXPECT_EQ(GetError(kPort), 0);
  EXPECT_EQ(usbPorts[0].port, 701);
  forget();
  EXPECT_EQ(WritePort(kPort, "x", 1), 1);
  printer.input = kCoverOpen;
  next_cycle();
  EXPECT_EQ(GetError(kPort), 1);
}

TEST_F(UsbMonitor, ten_thousand_pulls_leak_nothing) {
  for (int pull = 0; pull < 10'000; ++pull) {
    kernel.cut(kPort, ENODEV);
    next_cycle();
    kernel.plug_back(kPort);
    kernel.number_descriptors_from(700 + pull % 2);
    kernel.run_for(1700);
    ASSERT_EQ(kernel.open_descriptors(), 1U) << pull;
    kernel.forget_calls();
  }
  EXPECT_EQ(kernel.threads(), 1U);
  forget();
  EXPECT_EQ(WritePort(kPort, "x", 1), 1);
}

TEST_F(UsbMonitor, a_release_ends_the_tries) {
  kernel.cut(kPort, ENODEV);
  next_cycle();
  ReleaseDevice(kPort);
  kernel.run_for(2000);
  kernel.forget_calls();
  kernel.run_for(5000);
  EXPECT_THAT(kernel.log(), ElementsAre("test 5000000"));
}

TEST_F(UsbMonitor, a_claim_after_that_takes_them_up_again) {
  kernel.cut(kPort, ENODEV);
  next_cycle();
  ReleaseDevice(kPort);
  kernel.run_for(2000);
  kernel.plug_back(kPort);
  ClaimDevice(kPort, 0);
  kernel.run_for(1500);
  EXPECT_EQ(GetError(kPort), 0);
  EXPECT_EQ(WritePort(kPort, "x", 1), 1);
}

TEST_F(UsbMonitor, closing_the_port_ends_the_tries) {
  kernel.cut(kPort, ENODEV);
  next_cycle();
  EXPECT_EQ(ClosePort(kPort), 0);
  kernel.plug_back(kPort);
  kernel.forget_calls();
  kernel.run_for(5000);
  EXPECT_EQ(kernel.count("open"), 0U);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
}

TEST_F(UsbMonitor, a_node_reopened_with_a_number_too_high_is_tried_again) {
  kernel.number_descriptors_from(1024);
  kernel.cut(kPort, ENODEV);
  next_cycle();
  kernel.plug_back(kPort);
  kernel.run_for(3000);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  kernel.number_descriptors_from(800);
  kernel.run_for(1600);
  EXPECT_EQ(usbPorts[0].port, 800);
}

TEST_F(UsbMonitor, a_plug_pulled_while_a_reprint_waits_is_reopened) {
  SetRePrintMode(kPort, 1);
  CutPaper(kPort, 100);
  printer.input = kHealthy;
  kernel.run_for(500 + 3000 + 200);
  kernel.cut(kPort, ENODEV);
  kernel.run_for(3000);
  EXPECT_EQ(GetError(kPort), 4);
  kernel.plug_back(kPort);
  kernel.run_for(1000);
  EXPECT_EQ(u_bPowerOFF, 0);
  EXPECT_EQ(u_PageSize, 7) << "the job is held";
}

TEST_F(UsbMonitor, a_transaction_that_meets_a_pulled_plug_is_told_so) {
  TransactionPrint(kPort, 1);
  CutPaper(kPort, 100);
  kernel.cut(kPort, ENODEV);
  EXPECT_EQ(TransactionPrint(kPort, 0), 4);
  EXPECT_EQ(kUsbState.collected().substr(0, 2), "\x1b@") << "the job is held";
}

}  // namespace
}  // namespace testkit
