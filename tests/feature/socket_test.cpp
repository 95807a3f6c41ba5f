// A network printer for real: TCP on the loopback, a live monitor, and what may become of a
// connection.
#include <dirent.h>
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <ostream>

#include "support/exported_state.h"
#include "support/live_printer.h"
#include "support/scripted_kernel.h"
#include "tzvio.h"

namespace testkit {
namespace {

const std::string kReceipt = "one line\nand another\n";
/// What the library sends before and after the text of a transaction.
const std::string kBeforeReceipt =
    "\x1b@\x1b"
    "E0\x1b-0\x1b!F\x1d"
    "B0\x1b"
    "a0\x1b"
    "3<";
const std::string kJob = kBeforeReceipt + kReceipt + kProcessIdRequest;

int entries_of(const char* folder) {
  DIR* const listing = opendir(folder);
  int count = 0;
  while (readdir(listing) != nullptr) ++count;
  closedir(listing);
  return count;
}

void doze() {
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

class Socket : public testing::Test {
 protected:
  Socket() {
    reset_library();
    printer.answer(kEnableReports, kHealthy);
    printer.answer(kProcessIdRequest, kProcessIdAnswer);
  }
  ~Socket() override {
    reset_library();
    speed_up_sleeps(1);
  }

  /// Open, claimed, and past the first report.
  void open_and_claim() {
    speed_up_sleeps(10);
    printer.start();
    ASSERT_EQ(OpenPort(port, printer.settings().c_str()), 0);
    ASSERT_EQ(ClaimDevice(port, 0), 0);
    wait_for(0);
    ASSERT_EQ(print_receipt(""), 0);
  }
  /// Waits until GetError tells that; false after 10 s.
  bool wait_for(long error) {
    for (int look = 0; look < 10000; ++look) {
      if (GetError(port) == error) return true;
      doze();
    }
    return false;
  }
  long print_receipt(const std::string& text) {
    TransactionPrint(port, 1);
    PrintNormal(port, text.c_str());
    return TransactionPrint(port, 0);
  }

  SocketPrinter printer;
  const std::string name = printer.port();
  const char* port = name.c_str();
};

TEST_F(Socket, opens_asks_prints_and_closes) {
  printer.answer("\x1b#SENSOR", std::string("_2\0", 3));
  printer.start();
  ASSERT_EQ(OpenPort(port, printer.settings().c_str()), 0);
  EXPECT_EQ(PrintNormal(port, "Hello\n"), 0);
  EXPECT_EQ(GetPrinterStatus(port), 64);
  EXPECT_EQ(ClosePort(port), 0);
  EXPECT_EQ(printer.unplug(),
            "\x10\x04\x02\x10\x04\x04" + kBeforeReceipt.substr(2) + "Hello\n\x1b#SENSOR");
}

TEST_F(Socket, a_refused_connection_gives_minus_1) {
  printer.disappear();
  EXPECT_EQ(OpenPort(port, printer.settings().c_str()), -1);
}

TEST_F(Socket, a_mute_printer_is_waited_for) {
  printer.mute();
  printer.start();
  std::atomic<long> result = -100;
  std::thread till([&] { result = OpenPort(port, printer.settings().c_str()); });
  EXPECT_TRUE(printer.waits_for(3));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(result, -100) << "still waiting";
  printer.disappear();
  till.join();
  EXPECT_EQ(result, -1);
  EXPECT_EQ(GetError(port), 0) << "the port stays open";
}

TEST_F(Socket, transactions_are_confirmed) {
  open_and_claim();
  for (int i = 0; i < 5; ++i) EXPECT_EQ(print_receipt(kReceipt), 0);
  EXPECT_EQ(printer.connections(), 1);
}

TEST_F(Socket, split_answers_are_put_together_or_not_taken_for_any) {
  printer.split_answers();
  printer.start();
  const long opened = OpenPort(port, printer.settings().c_str());
  EXPECT_EQ(opened, 0);
  ASSERT_EQ(ClaimDevice(port, 0), 0);
  ASSERT_TRUE(wait_for(0));
  const long result = print_receipt(kReceipt);
  EXPECT_TRUE(result == 0 || result == 4) << result;
}

struct Loss {
  const char* name;
  bool in_order;
  std::size_t at;  ///< of the job's bytes
};

void PrintTo(const Loss& loss, std::ostream* out) {
  *out << loss.name;
}

class LossWithinReceipt : public Socket, public testing::WithParamInterface<Loss> {};

INSTANTIATE_TEST_SUITE_P(at, LossWithinReceipt,
                         testing::Values(Loss{"reset_at_the_first_byte", false, 1},
                                         Loss{"reset_within", false, 30},
                                         Loss{"reset_at_the_last_but_one", false, kJob.size() - 1},
                                         Loss{"reset_before_the_answer", false, kJob.size()},
                                         Loss{"shutdown_at_the_first_byte", true, 1},
                                         Loss{"shutdown_within", true, 30},
                                         Loss{"shutdown_before_the_answer", true, kJob.size()}),
                         [](const auto& tested) { return tested.param.name; });

// A loss that the monitor sees while the receipt is being sent is mended within the end of the
// transaction; one that it sees later is told, and the next end mends it.
TEST_P(LossWithinReceipt, comes_out_whole_over_the_next_connection) {
  open_and_claim();
  const std::size_t before = printer.received_by(0).size();
  if (GetParam().in_order) {
    printer.shut_down_after(before + GetParam().at);
  } else {
    printer.reset_after(before + GetParam().at);
  }
  if (const long result = print_receipt(kReceipt); result != 0) {
    EXPECT_EQ(result, 4);
    EXPECT_EQ(n_PageSize, static_cast<long>(kJob.size())) << "held";
    EXPECT_TRUE(wait_for(4));
    EXPECT_EQ(TransactionPrint(port, 0), 0);
  }
  EXPECT_EQ(printer.connections(), 2);
  EXPECT_EQ(printer.received_by(0).size(), before + GetParam().at);
  const std::string second = printer.received_by(1);
  EXPECT_TRUE(second.starts_with("LINK\n" + kEnableReports)) << hex(second);
  const std::size_t at = second.find(kJob);
  ASSERT_NE(at, std::string::npos);
  EXPECT_EQ(second.find(kReceipt, at + kJob.size()), std::string::npos) << "once";
}

TEST_F(Socket, a_printer_that_is_away_for_a_minute_is_found_again) {
  open_and_claim();
  speed_up_sleeps(50);
  printer.disappear();
  ASSERT_TRUE(wait_for(4));
  for (int second = 0; second < 60; ++second) {
    // Some systems tell of a refused connection only in the first send.
    EXPECT_LT(WritePort(port, "x", 1), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  printer.come_back();
  EXPECT_EQ(WritePort(port, "x", 1), 1);
  EXPECT_TRUE(wait_for(0));
  EXPECT_EQ(print_receipt(kReceipt), 0);
}

TEST_F(Socket, hundreds_of_losses_leak_neither_descriptors_nor_threads) {
  open_and_claim();
  speed_up_sleeps(200);
  const int descriptors = entries_of("/proc/self/fd");
  const int threads = entries_of("/proc/self/task");
  for (int loss = 0; loss < 300; ++loss) {
    ASSERT_TRUE(wait_for(0)) << loss;  // a new monitor starts as offline
    printer.disappear();
    ASSERT_TRUE(wait_for(4)) << loss;
    printer.come_back();
    ASSERT_EQ(WritePort(port, "x", 1), 1) << loss;
  }
  EXPECT_TRUE(wait_for(0));
  EXPECT_LE(entries_of("/proc/self/fd"), descriptors + 1);
  EXPECT_LE(entries_of("/proc/self/task"), threads + 1);
}

TEST_F(Socket, a_printer_that_drains_slowly_gets_every_byte) {
  printer.drain_slowly(2000, 1);
  open_and_claim();
  std::string text;
  for (int i = 0; i < 40000; ++i) text += std::to_string(i) + "\n";
  const std::size_t before = printer.received().size();
  EXPECT_EQ(WritePort(port, text.data(), static_cast<long>(text.size())),
            static_cast<long>(text.size()));
  ASSERT_TRUE(printer.waits_for(before + text.size()));
  EXPECT_EQ(printer.received().substr(before), text);
}

TEST_F(Socket, several_printers_keep_their_own_connections) {
  SocketPrinter second;
  second.answer(kEnableReports, kHealthy);
  second.start();
  open_and_claim();
  // The same address by another name: leading zeros are octal, and 0177 is 127.
  const char* other = "SOCKET:0177.0.0.1";
  ASSERT_EQ(OpenPort(other, second.settings().c_str()), 0);
  EXPECT_EQ(WritePort(other, "two", 3), 3);
  EXPECT_EQ(WritePort(port, "one", 3), 3);
  printer.disappear();
  ASSERT_TRUE(wait_for(4));
  printer.come_back();
  EXPECT_EQ(WritePort(port, "again", 5), 5);
  ASSERT_TRUE(wait_for(0));
  EXPECT_EQ(WritePort(other, "still", 5), 5);
  ClosePort(port);
  ClosePort(other);
  EXPECT_EQ(second.connections(), 1);
  EXPECT_TRUE(second.unplug().ends_with("twostill"));
}

}  // namespace
}  // namespace testkit
