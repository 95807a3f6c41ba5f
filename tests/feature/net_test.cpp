// What is a network port's own: connecting, the send loop, a lost connection and the next one.
#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <thread>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::ElementsAre;
using Connect = Device::Connect;

constexpr char kPort[] = "SOCKET:192.168.0.10";
constexpr char kSecondPort[] = "SOCKET:192.168.0.11";
const std::string kDiagnostic = "LINK\n";

class Net : public OnePrinter {
 protected:
  Net() : OnePrinter(kPort) {}

  void open() {
    ASSERT_EQ(OpenPort(kPort, "9100"), 0);
    forget();
  }

  /// The log without the flag calls and options of a connect.
  std::vector<std::string> main_log() const {
    std::vector<std::string> lines;
    for (const std::string& line : kernel.log()) {
      if (!line.starts_with("fcntl") && !line.starts_with("setsockopt")) lines.push_back(line);
    }
    return lines;
  }
};

// ---------------------------------------------------------------------------- connecting

TEST_F(Net, connects_within_a_second_and_asks) {
  ASSERT_EQ(OpenPort(kPort, "9100"), 0);
  EXPECT_THAT(kernel.log(),
              ElementsAre("socket = 700",
                          "setsockopt " + std::to_string(SO_LINGER) + " 01 00 00 00 00 00 00 00",
                          "setsockopt " + std::to_string(SO_SNDBUF) + " 00 00 00 00",
                          "setsockopt " + std::to_string(SO_SNDTIMEO) + " 01 00 00 00",
                          "fcntl F_GETFL", "fcntl F_SETFL " + std::to_string(O_NONBLOCK),
                          "connect 192.168.0.10:9100 = -1", "select write 1000000 = 1",
                          "fcntl F_GETFL = " + std::to_string(O_NONBLOCK), "fcntl F_SETFL 0",
                          "send 10 04 02 = 3", "recv 32 = 1", "send 10 04 04 = 3", "recv 32 = 1"));
  EXPECT_EQ(netPorts[0].set, 1);
  EXPECT_STREQ(netPorts[0].portName, kPort);
  EXPECT_STREQ(netPorts[0].RealIP, "192.168.0.10");
  EXPECT_EQ(netPorts[0].sock, 700);
  EXPECT_EQ(netPorts[0].portnum, 9100);
}

TEST_F(Net, the_port_number_is_what_the_settings_begin_with) {
  const std::pair<const char*, int> rows[] = {
      {"9100", 9100}, {" 515x", 515}, {"", 0}, {"x", 0}, {nullptr, 0}};
  for (const auto& [settings, number] : rows) {
    EXPECT_EQ(OpenPort(kPort, settings), 0);
    EXPECT_EQ(netPorts[0].portnum, number);
    EXPECT_EQ(kernel.log("connect").back(),
              "connect 192.168.0.10:" + std::to_string(number) + " = -1");
    ClosePort(kPort);
  }
}

TEST_F(Net, refused_options_are_ignored) {
  for (int nth = 1; nth <= 3; ++nth) kernel.fail("setsockopt", EINVAL, nth);
  EXPECT_EQ(OpenPort(kPort, "9100"), 0);
}

// It stays non-blocking, the printer is not asked, and the link's state is not reset.
TEST_F(Net, a_connection_that_comes_about_at_once_is_taken_as_it_is) {
  printer.connect = Connect::at_once;
  n_bProtocol = n_bPowerOFF = 1;
  n_PageSize = 3;
  EXPECT_EQ(OpenPort(kPort, "9100"), 0);
  EXPECT_EQ(printer.output, "");
  EXPECT_EQ(kernel.log("fcntl").size(), 2U);
  EXPECT_EQ(n_bProtocol + n_bPowerOFF, 2);
  EXPECT_EQ(n_PageSize, 3);
  EXPECT_EQ(netPorts[0].set, 1);
}

TEST_F(Net, a_refused_connection_gives_minus_1_and_leaves_nothing_behind) {
  printer.connect = Connect::refused;
  EXPECT_EQ(OpenPort(kPort, "9100"), -1);
  EXPECT_EQ(elapsed_ms(), 0);
  EXPECT_EQ(kernel.log("fcntl").size(), 4U) << "blocking again before it is closed";
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(netPorts[0].set, 0);
}

TEST_F(Net, a_printer_that_does_not_answer_gives_minus_1_after_a_second) {
  printer.connect = Connect::never;
  EXPECT_EQ(OpenPort(kPort, "9100"), -1);
  EXPECT_EQ(elapsed_ms(), 1000);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(netPorts[0].set, 0);
}

TEST_F(Net, failing_calls_of_a_connect_give_minus_1) {
  kernel.fail("socket", EMFILE);
  EXPECT_EQ(OpenPort(kPort, "9100"), -1);
  kernel.fail("connect", ENETUNREACH);
  EXPECT_EQ(OpenPort(kPort, "9100"), -1);
  kernel.fail("select", ENOMEM);
  EXPECT_EQ(OpenPort(kPort, "9100"), -1);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(netPorts[0].set, 0);
  EXPECT_EQ(OpenPort(kPort, "9100"), 0);
}

TEST_F(Net, a_wait_that_a_signal_interrupts_goes_on) {
  kernel.fail("select", EINTR);
  EXPECT_EQ(OpenPort(kPort, "9100"), 0);
}

TEST_F(Net, a_descriptor_that_select_cannot_hold_is_a_failed_connect) {
  kernel.number_descriptors_from(1024);
  EXPECT_EQ(OpenPort(kPort, "9100"), -1);
  EXPECT_THAT(kernel.log(), ElementsAre("socket = 1024", "close 1024"));
}

TEST_F(Net, addresses_of_63_characters_are_the_longest) {
  const std::string digits(63, '1');
  EXPECT_EQ(OpenPort(("SOCKET:" + digits + "1").c_str(), "9100"), -1);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_EQ(OpenPort(("SOCKET:" + digits).c_str(), "9100"), -1);
  EXPECT_THAT(kernel.log("connect"), ElementsAre("connect 255.255.255.255:9100 = -1"));
}

// Both texts, in every type of build.
TEST_F(Net, flags_that_cannot_be_had_end_the_process) {
  for (int nth = 1; nth <= 4; ++nth) {
    EXPECT_DEATH(
        {
          kernel.fail("fcntl", EIO, nth);
          OpenPort(kPort, "9100");
        },
        "Assertion `val != -1' failed");
  }
  printer.connect = Connect::refused;
  for (int nth = 3; nth <= 4; ++nth) {
    EXPECT_DEATH(
        {
          kernel.fail("fcntl", EIO, nth);
          OpenPort(kPort, "9100");
        },
        "Assertion `valv != -1' failed");
  }
}

TEST_F(Net, closing_closes_the_socket) {
  open();
  EXPECT_EQ(ClosePort(kPort), 0);
  EXPECT_THAT(kernel.log(), ElementsAre("close 700"));
  EXPECT_STREQ(netPorts[0].RealIP, "");
}

// ------------------------------------------------------------------------------- writing

TEST_F(Net, a_write_goes_out_in_one_send_and_10_ms_pass) {
  open();
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_THAT(kernel.log(), ElementsAre("send 68 65 6C 6C 6F = 5", "usleep 10000"));
}

TEST_F(Net, sends_never_raise_a_signal) {
  open();
  WritePort(kPort, "hello", 5);
  ClaimDevice(kPort, 0);
  kernel.run_for(200);
  ReleaseDevice(kPort);
  EXPECT_GE(kernel.count("send"), 3U);
  EXPECT_EQ(kernel.count("SIGPIPE"), 0U);
}

// Each send has the full length; what lies behind the text goes as zero bytes.
TEST_F(Net, after_a_short_send_the_full_length_is_sent_again_from_there) {
  open();
  kernel.shorten("send", 40);
  const std::string text = std::string(40, 'a') + std::string(60, 'b');
  EXPECT_EQ(WritePort(kPort, text.data(), 100), 140);
  EXPECT_THAT(printer.writes,
              ElementsAre(std::string(40, 'a'), std::string(60, 'b') + std::string(40, '\0')));
  EXPECT_EQ(elapsed_ms(), 2 * 10);
}

// The count goes below 0, and what lies before the text goes as zero bytes, too.
TEST_F(Net, a_failed_send_is_counted_as_it_is) {
  open();
  kernel.fail("send", EIO);
  EXPECT_EQ(WritePort(kPort, "abcdef", 6), 11);
  EXPECT_THAT(printer.writes,
              ElementsAre(std::string("\0abcde", 6), std::string("f\0\0\0\0\0", 6)));
}

TEST_F(Net, five_seconds_without_progress_give_minus_2) {
  open();
  for (int nth = 1; nth <= 600; ++nth) kernel.fail("send", EIO, nth);
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
  EXPECT_EQ(elapsed_ms(), 5000);
}

TEST_F(Net, progress_restores_the_time) {
  open();
  for (int nth = 1; nth <= 800; ++nth) {
    if (nth % 400 == 0) {
      kernel.shorten("send", 1, nth);
    } else {
      kernel.shorten("send", 0, nth);
    }
  }
  EXPECT_EQ(WritePort(kPort, "ab", 2), 2);
  EXPECT_EQ(elapsed_ms(), 8000);
}

TEST_F(Net, an_error_state_refuses_the_write) {
  open();
  for (int* flag : {&n_bCoverOpen, &n_bPaperEmpty, &n_bOffline, &n_bCutterJam}) {
    *flag = 1;
    EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
    *flag = 0;
  }
  EXPECT_TRUE(kernel.calls().empty());
}

// ------------------------------------------------------------------------------- reading

TEST_F(Net, a_read_waits_for_the_printer_without_end) {
  open();
  kernel.at(started_ms + 3600'000, [this] { printer.input = "late"; });
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 4);
  EXPECT_EQ(elapsed_ms(), 3600'000);
  EXPECT_EQ(kernel.count("recv"), 1U);
}

TEST_F(Net, a_shutdown_reads_as_0_and_an_error_as_minus_1) {
  open();
  char buffer[8];
  kernel.cut(kPort, 0);
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 0);
  kernel.cut(kPort, ECONNRESET);
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -1);
}

TEST_F(Net, reading_nothing_returns_0_without_touching_the_socket) {
  open();
  EXPECT_EQ(ReadPort(kPort, nullptr, 0), 0);
  EXPECT_TRUE(kernel.calls().empty());
}

// --------------------------------------------------------------------- the lost connection

class NetMonitor : public Net {
 protected:
  NetMonitor() {
    open();
    ClaimDevice(kPort, 0);
    kernel.run_for(150);
    forget();
  }
  void next_cycle() { kernel.run_for(500); }
  /// Lost, seen by the monitor, and there again.
  void lose(int error) {
    kernel.cut(kPort, error);
    next_cycle();
    kernel.plug_back(kPort);
    forget();
  }
};

TEST_F(NetMonitor, looks_before_it_reads) {
  next_cycle();
  EXPECT_THAT(kernel.log(), ElementsAre("test 500000", "select read 0", "usleep 500000"));
  printer.input = kCoverOpen;
  kernel.forget_calls();
  next_cycle();
  EXPECT_THAT(kernel.log(),
              ElementsAre("test 500000", "select read 0 = 1", "recv 256 = 4", "usleep 500000"));
  EXPECT_EQ(GetError(kPort), 1);
}

TEST_F(NetMonitor, a_receive_clears_power_off_and_offline) {
  n_bPowerOFF = n_bOffline = 1;
  printer.input = "x";
  kernel.run_for(620);
  EXPECT_EQ(n_bPowerOFF, 0);
  EXPECT_EQ(n_bOffline, 0);
}

TEST_F(NetMonitor, nothing_to_receive_after_all_is_no_loss) {
  printer.input = "x";
  kernel.fail("recv", EAGAIN);
  next_cycle();
  EXPECT_EQ(GetError(kPort), 0);
  EXPECT_EQ(kernel.threads(), 1U);
}

TEST_F(NetMonitor, an_error_and_an_orderly_shutdown_are_a_loss_and_end_it) {
  for (const int error : {ECONNRESET, 0}) {
    kernel.cut(kPort, error);
    next_cycle();
    EXPECT_EQ(n_bPowerOFF, 1);
    EXPECT_EQ(n_bOffline, 1);
    EXPECT_EQ(NStopIt, 0);
    EXPECT_EQ(GetError(kPort), 4);
    EXPECT_EQ(kernel.count("usleep"), 0U) << "it ends at once";
    kernel.plug_back(kPort);
    ClosePort(kPort);
    ASSERT_EQ(OpenPort(kPort, "9100"), 0);
    ClaimDevice(kPort, 0);
    kernel.run_for(150);
    EXPECT_EQ(kernel.threads(), 1U);
    forget();
  }
}

TEST_F(NetMonitor, the_next_write_connects_anew_and_sends_everything_once) {
  lose(ECONNRESET);
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_THAT(
      main_log(),
      ElementsAre("socket = 701", "connect 192.168.0.10:9100 = -1", "select write 1000000 = 1",
                  "send 4C 49 4E 4B 0A = 5", "pthread_join", "pthread_create", "sleep 1000000",
                  "send 1D 61 FF = 3", "usleep 100000", "select read 0", "usleep 500000",
                  "select read 0", "usleep 500000", "send 68 65 6C 6C 6F = 5"));
  EXPECT_EQ(printer.output, kDiagnostic + kEnableReports + "hello");
  EXPECT_EQ(n_bPowerOFF, 0);
  EXPECT_EQ(n_bOffline, 0);
  EXPECT_EQ(NStopIt, 1);
  EXPECT_EQ(netPorts[0].sock, 701);
  EXPECT_EQ(kernel.threads(), 1U);
  printer.input = kCoverOpen;
  next_cycle();
  EXPECT_EQ(GetError(kPort), 1) << "the new connection is monitored";
}

TEST_F(NetMonitor, the_send_after_a_reconnection_gives_its_own_result) {
  lose(ECONNRESET);
  kernel.shorten("send", 2, 3);  // after the diagnostic line and the reports
  EXPECT_EQ(WritePort(kPort, "hello", 5), 2);
  lose(ECONNRESET);
  kernel.fail("send", EPIPE, 3);
  EXPECT_EQ(WritePort(kPort, "hello", 5), -1);
}

TEST_F(NetMonitor, a_reconnection_that_fails_gives_minus_2_and_is_tried_again) {
  kernel.cut(kPort, ECONNRESET);
  next_cycle();
  forget();
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
  EXPECT_EQ(kernel.count("connect"), 2U);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(n_bPowerOFF, 1);
  EXPECT_EQ(NStopIt, 0);
  kernel.run_for(60'000);
  kernel.plug_back(kPort);
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_EQ(kernel.open_descriptors(), 1U);
}

TEST_F(NetMonitor, reads_of_a_lost_port_fail) {
  kernel.cut(kPort, ECONNRESET);
  next_cycle();
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -1);
}

TEST_F(NetMonitor, a_lost_port_still_collects) {
  lose(ECONNRESET);
  n_TransactionPrint = 1;
  EXPECT_EQ(CutPaper(kPort, 100), -2);
  EXPECT_EQ(kNetworkState.collected().size(), 7U);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_F(NetMonitor, a_transaction_is_printed_after_a_reconnection) {
  lose(0);
  printer.confirm_jobs();
  TransactionPrint(kPort, 1);
  PrintNormal(kPort, "x\n");
  EXPECT_EQ(TransactionPrint(kPort, 0), 0);
  EXPECT_EQ(n_PageSize, 0);
}

TEST_F(NetMonitor, ten_thousand_losses_leak_nothing) {
  for (int loss = 0; loss < 10'000; ++loss) {
    lose(loss % 2 == 0 ? ECONNRESET : 0);
    kernel.number_descriptors_from(700 + loss % 2);
    ASSERT_EQ(WritePort(kPort, "x", 1), 1) << loss;
    ASSERT_EQ(kernel.open_descriptors(), 1U) << loss;
    ASSERT_LE(kernel.threads(), 1U) << loss;
    kernel.run_for(700);
  }
}

// Offline may be a cover: the text asks for the new connection all the same.
TEST_F(NetMonitor, offline_during_a_send_connects_anew_and_sends_everything_again) {
  printer.on_write = [this] {
    if (printer.writes.size() == 1) n_bOffline = 1;
  };
  kernel.shorten("send", 3);
  EXPECT_EQ(WritePort(kPort, "hello", 5), 3) << "the count before the reconnection";
  EXPECT_THAT(printer.writes, ElementsAre("hel", kDiagnostic, kEnableReports, "hello"));
  EXPECT_THAT(kernel.log("close"), ElementsAre("close 700"));
  EXPECT_EQ(kernel.threads(), 1U);
}

TEST_F(NetMonitor, offline_during_a_send_without_a_way_back_gives_minus_2) {
  printer.on_write = [this] {
    n_bOffline = 1;
    kernel.cut(kPort, ECONNRESET);
  };
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
  EXPECT_EQ(NStopIt, 0);
  kernel.run_for(1000);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
}

TEST_F(NetMonitor, power_off_without_a_loss_of_its_own_connects_anew) {
  n_bPowerOFF = 1;
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_THAT(kernel.log("close"), ElementsAre("close 700"));
  EXPECT_EQ(kernel.threads(), 1U);
  EXPECT_EQ(n_bPowerOFF, 0);
}

TEST_F(NetMonitor, a_loss_while_a_reprint_waits_ends_it) {
  SetRePrintMode(kPort, 1);
  CutPaper(kPort, 100);
  printer.input = kHealthy;
  kernel.run_for(500 + 3000 + 200);
  EXPECT_EQ(printer.output, "\n\n\n\n\n\033i");
  kernel.cut(kPort, ECONNRESET);
  kernel.run_for(100);
  EXPECT_EQ(n_bPowerOFF, 1);
  EXPECT_EQ(NStopIt, 0);
  EXPECT_EQ(n_PageSize, 7) << "the job is held";
}

TEST_F(NetMonitor, a_reprint_over_a_full_connection_ends_with_the_release) {
  SetRePrintMode(kPort, 1);
  CutPaper(kPort, 100);
  for (int nth = 1; nth <= 1000; ++nth) kernel.fail("send", EAGAIN, nth);
  printer.input = kHealthy;
  kernel.run_for(500 + 3000 + 200);
  ReleaseDevice(kPort);
  kernel.run_for(1000);
  kernel.forget_calls();
  kernel.run_for(1000);
  EXPECT_EQ(kernel.calls().size(), 1U);
}

TEST_F(NetMonitor, a_reprint_over_a_full_connection_is_given_up_after_5_s) {
  SetRePrintMode(kPort, 1);
  ASSERT_EQ(CutPaper(kPort, 100), 0);
  printer.take = [](std::string_view) {
    errno = EAGAIN;
    return -1L;
  };
  printer.input = kHealthy;
  // A cycle until the report is read, 3 s until the job is sent, and 5 s in vain.
  kernel.run_for(500 + 3000 + 5000);
  printer.take = nullptr;
  kernel.run_for(1000);
  EXPECT_EQ(printer.output, "");
  EXPECT_EQ(kNetworkState.collected(), "\n\n\n\n\n\033i") << "it is still held";
}

TEST_F(NetMonitor, a_release_has_the_printer_report_and_takes_300_ms) {
  EXPECT_EQ(ReleaseDevice(kPort), 0);
  EXPECT_EQ(elapsed_ms(), 300);
  EXPECT_EQ(printer.output, kEnableReports);
}

// --------------------------------------------------------------------------------- InitNET

TEST_F(NetMonitor, InitNET_replaces_a_connection_and_keeps_its_monitor) {
  EXPECT_EQ(InitNET(kPort), 0);
  EXPECT_EQ(printer.output, kDiagnostic);
  EXPECT_EQ(NStopIt, 1);
  EXPECT_EQ(n_bOffline, 1);
  EXPECT_EQ(kernel.threads(), 1U);
  EXPECT_EQ(kernel.open_descriptors(), 1U);
  next_cycle();
  EXPECT_EQ(printer.output, kDiagnostic + kEnableReports);
}

TEST_F(Net, InitNET_starts_a_monitor) {
  open();
  EXPECT_EQ(InitNET(kPort), 0);
  EXPECT_EQ(kernel.threads(), 1U);
}

TEST_F(Net, InitNET_failures_give_minus_1) {
  EXPECT_EQ(InitNET(nullptr), -1);
  EXPECT_EQ(InitNET(kPort), -1);
  EXPECT_EQ(InitNET("/dev/ttyS0"), -1);
  EXPECT_TRUE(kernel.calls().empty());
  open();
  kernel.fail("pthread_create", EAGAIN);
  EXPECT_EQ(InitNET(kPort), -1);
  for (const Connect how : {Connect::refused, Connect::never}) {
    printer.connect = how;
    EXPECT_EQ(InitNET(kPort), -1);
    EXPECT_EQ(kernel.open_descriptors(), 0U);
  }
  EXPECT_EQ(netPorts[0].set, 1) << "the port stays open";
  printer.connect = Connect::pending;
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5) << "and the next write tries again";
}

TEST_F(Net, InitNET_of_a_port_that_is_closed_meanwhile_leaves_it_closed) {
  open();
  printer.connect = Connect::never;
  kernel.at(kernel.now_ms() + 500, [this] {
    ClosePort(kPort);
    printer.connect = Connect::pending;
  });
  EXPECT_EQ(InitNET(kPort), -1);
  EXPECT_EQ(GetError(kPort), -1);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
}

// Each keeps its descriptor for as long as somebody reads it; there is room for 120.
TEST_F(Net, connections_that_are_given_up_while_they_are_read_run_out_without_harm) {
  open();
  kernel.plug(kSecondPort).connect = Connect::at_once;
  kernel.at(10000, [] {});  // for which the reads wait
  std::vector<std::thread> readers;
  long result = 0;
  while (result == 0 && readers.size() < 200) {
    readers.emplace_back([] {
      char byte;
      EXPECT_EQ(ReadPort(kPort, &byte, 1), -1);
    });
    kernel.run_for(1);
    result = InitNET(kPort);
  }
  EXPECT_EQ(result, -1);
  EXPECT_EQ(readers.size(), 120U);
  EXPECT_EQ(OpenPort(kSecondPort, "9100"), -1);
  EXPECT_EQ(kernel.open_descriptors(), readers.size());
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(InitNET(kPort), 0) << "there is room again";
}

TEST_F(Net, InitNET_does_nothing_about_a_connection_that_comes_about_at_once) {
  open();
  printer.connect = Connect::at_once;
  EXPECT_EQ(InitNET(kPort), 0);
  EXPECT_EQ(printer.output, "");
  EXPECT_EQ(NStopIt, 0);
  EXPECT_EQ(kernel.threads(), 0U);
  EXPECT_EQ(netPorts[0].sock, 701);
}

TEST_F(Net, NetStatusHandler_monitors_on_the_calling_thread_until_told_to_end) {
  open();
  NStopIt = 1;
  kernel.at(200, [this] { printer.input = kCoverOpen; });
  kernel.at(1400, [] { NStopIt = 0; });
  EXPECT_EQ(NetStatusHandler(&netPorts[0]), nullptr);
  // Cycles at 0, 500, and with the reports enabled again at 1000 to 1600.
  EXPECT_EQ(elapsed_ms(), 1600);
  EXPECT_EQ(GetError(kPort), 1);
  EXPECT_EQ(NetStatusHandler(nullptr), nullptr);
  NStopIt = 1;
  kernel.cut(kPort, ECONNRESET);
  EXPECT_EQ(NetStatusHandler(&netPorts[0]), nullptr) << "the loss ends it";
  EXPECT_EQ(NStopIt, 0);
}

TEST_F(NetMonitor, NetStatusHandler_leaves_a_monitored_port_alone) {
  EXPECT_EQ(NetStatusHandler(&netPorts[0]), nullptr);
  EXPECT_EQ(elapsed_ms(), 0);
}

TEST_F(NetMonitor, NetStatusHandler_monitors_a_port_whose_own_monitor_has_ended) {
  ReleaseDevice(kPort);
  kernel.run_for(700);
  forget();
  NStopIt = 1;
  kernel.at(started_ms + 1400, [] { NStopIt = 0; });
  EXPECT_EQ(NetStatusHandler(&netPorts[0]), nullptr);
  EXPECT_EQ(elapsed_ms(), 1500) << "a cycle of 500 ms is gone on with";
}

// ------------------------------------------------------------------------ several printers

class TwoPrinters : public NetMonitor {
 protected:
  TwoPrinters() {
    second.answer_ready();
    EXPECT_EQ(OpenPort(kSecondPort, "9101"), 0);
    ClaimDevice(kSecondPort, 0);
    kernel.run_for(150);
    second.output.clear();
    forget();
  }
  Device& second = kernel.plug(kSecondPort);
};

TEST_F(TwoPrinters, each_has_its_own_connection) {
  EXPECT_EQ(WritePort(kPort, "one", 3), 3);
  EXPECT_EQ(WritePort(kSecondPort, "two", 3), 3);
  EXPECT_EQ(printer.output, "one");
  EXPECT_EQ(second.output, "two");
}

TEST_F(TwoPrinters, the_loss_of_one_leaves_the_others_connection_and_monitor) {
  kernel.cut(kPort, ECONNRESET);
  kernel.run_for(1000);
  EXPECT_EQ(NStopIt, 1) << "a monitor still runs";
  second.output.clear();
  EXPECT_EQ(WritePort(kSecondPort, "two", 3), 3);
  EXPECT_EQ(second.output, "two");
  EXPECT_EQ(netPorts[1].sock, 701) << "not connected anew";
  second.input = kCoverOpen;
  next_cycle();
  EXPECT_EQ(GetError(kSecondPort), 1);
}

TEST_F(TwoPrinters, the_lost_one_is_connected_anew_by_its_own_write) {
  kernel.cut(kPort, ECONNRESET);
  kernel.run_for(1000);
  kernel.plug_back(kPort);
  // The other's report has cleared the flags, which they share.
  second.input = kHealthy;
  kernel.run_for(1000);
  EXPECT_EQ(n_bPowerOFF, 0);
  forget();
  EXPECT_EQ(WritePort(kPort, "one", 3), 3);
  EXPECT_EQ(printer.output, kDiagnostic + kEnableReports + "one");
  EXPECT_EQ(netPorts[1].sock, 701);
  EXPECT_EQ(kernel.threads(), 2U);
  printer.input = kCoverOpen;
  next_cycle();
  EXPECT_EQ(GetError(kPort), 1);
}

TEST_F(TwoPrinters, a_reconnection_that_fails_leaves_the_others_monitor) {
  kernel.cut(kPort, ECONNRESET);
  kernel.run_for(1000);
  EXPECT_EQ(WritePort(kPort, "one", 3), -2);
  EXPECT_EQ(NStopIt, 1);
  second.input = kCoverOpen;
  next_cycle();
  EXPECT_EQ(GetError(kSecondPort), 1);
}

}  // namespace
}  // namespace testkit
