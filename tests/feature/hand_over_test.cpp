// Callers and a live monitor on one line, with real threads. Run under the thread sanitizer, it
// proves the hand-over between them; anywhere, that no answer gets lost.
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <ostream>
#include <thread>

#include "support/exported_state.h"
#include "support/live_printer.h"
#include "support/scripted_kernel.h"
#include "tzvio.h"

extern "C" void libDestructor();

namespace testkit {
namespace {

constexpr int kSpeed = 6;

// The variables as another thread may look at them while the library runs.
template <typename Integer>
Integer value_of(Integer& variable) {
  return std::atomic_ref<Integer>(variable).load();
}
template <typename Integer>
void set(Integer& variable, Integer value) {
  std::atomic_ref<Integer>(variable).store(value);
}

/// A link on which descriptors can be real without hardware.
struct LiveLink {
  const char* name;
  std::unique_ptr<LivePrinter> (*make_printer)();
  const ExportedState& state;
};

void PrintTo(const LiveLink& link, std::ostream* out) {
  *out << link.name;
}

class HandOver : public testing::TestWithParam<LiveLink> {
 protected:
  HandOver() {
    reset_library();
    speed_up_sleeps(kSpeed);
  }
  ~HandOver() override {
    reset_library();
    speed_up_sleeps(1);
  }

  void open() {
    printer.start();
    ASSERT_EQ(OpenPort(port, printer.settings().c_str()), 0);
  }
  void claim_and_wait_until_online();
  void print_and_query(int number);

  const ExportedState& state = GetParam().state;
  const std::unique_ptr<LivePrinter> owned_printer = GetParam().make_printer();
  LivePrinter& printer = *owned_printer;
  const std::string name = printer.port();
  const char* const port = name.c_str();
};

std::unique_ptr<LivePrinter> on_serial_line() {
  return std::make_unique<PtyPrinter>("/dev/ttyS-pty");
}
std::unique_ptr<LivePrinter> on_usb_node() {
  return std::make_unique<PtyPrinter>("/dev/usb/lp-pty");
}
std::unique_ptr<LivePrinter> on_network() {
  return std::make_unique<SocketPrinter>();
}

const LiveLink kSerialLink{"serial", on_serial_line, kSerialState};

INSTANTIATE_TEST_SUITE_P(links, HandOver,
                         testing::Values(kSerialLink, LiveLink{"usb", on_usb_node, kUsbState},
                                         LiveLink{"network", on_network, kNetworkState}),
                         [](const auto& tested) { return tested.param.name; });

// Reads of the other links wait for the printer, whatever becomes of the port.
class SerialHandOver : public HandOver {};
INSTANTIATE_TEST_SUITE_P(links, SerialHandOver, testing::Values(kSerialLink),
                         [](const auto& tested) { return tested.param.name; });

/// Rounds of each of three threads; TZVIO_ROUNDS asks for more, for minutes.
int rounds() {
  const char* asked = std::getenv("TZVIO_ROUNDS");
  return asked != nullptr ? std::atoi(asked) : 5;  // NOLINT(cert-err34-c): 0 is no rounds
}

void doze() {
  std::this_thread::sleep_for(std::chrono::microseconds(200));
}

void HandOver::claim_and_wait_until_online() {
  ASSERT_EQ(ClaimDevice(port, 0), 0);
  // Offline until the monitor has enabled the reports; then it reads the report that this brings.
  while (GetError(port) != 0) doze();
  while (GetDrawerStatus(port) != 0) doze();
}

void HandOver::print_and_query(int number) {
  ASSERT_EQ(TransactionPrint(port, 1), 0);
  ASSERT_EQ(PrintNormal(port, ("<" + std::to_string(number) + ">\n").c_str()), 0);
  ASSERT_EQ(TransactionPrint(port, 0), 0) << number;
  std::array<char, 256> version;
  ASSERT_EQ(GetFWVersion(port, version.data()), 4) << number;
  ASSERT_EQ(GetPrinterStatus(port), 64) << number;
}

TEST_P(HandOver, transactions_and_queries_of_several_threads_get_their_answers) {
  constexpr int kThreads = 3;
  const int each = rounds();
  constexpr int kReceipts = 5;
  printer.answer(kEnableReports, kHealthy);
  printer.answer(kProcessIdRequest, kProcessIdAnswer);
  printer.answer("\035ID", "_ABCDEFGV1.23");
  printer.answer("\033#SENSOR", std::string("_2\0", 3));
  open();

  // One conversation with the printer at a time, from any thread; modes and looks at any time.
  std::mutex conversation;
  std::atomic<bool> done = false;
  std::atomic<int> number = 0;
  std::vector<std::thread> callers;
  callers.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    callers.emplace_back([&] {
      for (int round = 0; round < each; ++round) {
        const std::lock_guard lock(conversation);
        set(*state.bDrawerOpened, 1);
        claim_and_wait_until_online();
        for (int receipt = 0; receipt < kReceipts; ++receipt) print_and_query(number++);
        if (round % 3 == 0) {
          ASSERT_EQ(ReleaseDevice(port), 0);
        }
      }
    });
  }
  std::thread bystander([&] {
    while (!done) {
      SetRePrintMode(port, 0);
      SetProtocol(port, 0);
      GetError(port);
      GetDrawerStatus(port);
      doze();
    }
  });
  for (std::thread& caller : callers) caller.join();
  done = true;
  bystander.join();

  const std::string received = printer.unplug();
  for (int i = 0; i < number; ++i) {
    const std::string mark = "<" + std::to_string(i) + ">";
    const std::size_t at = received.find(mark);
    ASSERT_NE(at, std::string::npos) << mark;
    ASSERT_EQ(received.find(mark, at + 1), std::string::npos) << mark << " printed twice";
  }
}

TEST_P(HandOver, reprint_mode_loses_nothing_that_is_printed_meanwhile) {
  constexpr int kLines = 400;
  printer.answer(kEnableReports, kHealthy);
  printer.answer(kProcessIdRequest, kProcessIdAnswer);
  open();
  ASSERT_EQ(SetRePrintMode(port, 1), 0);
  for (int i = 0; i < kLines; ++i) {
    PrintNormal(port, ("<" + std::to_string(i) + ">\n").c_str());
    if (i == kLines / 4) {
      ASSERT_EQ(ClaimDevice(port, 0), 0);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  // Each claim brings a report, and with it a reprint of what is held.
  while (value_of(*state.PageSize) > 0) {
    ClaimDevice(port, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  const std::string received = printer.unplug();
  std::size_t at = 0;
  for (int i = 0; i < kLines; ++i) {
    const std::string mark = "<" + std::to_string(i) + ">";
    at = received.find(mark, at);
    ASSERT_NE(at, std::string::npos) << mark << " lost or out of order";
  }
}

TEST_P(SerialHandOver, unloading_with_a_monitor_and_a_waiting_query_ends_cleanly) {
  open();
  for (int round = 0; round < 20; ++round) {
    ASSERT_EQ(ClaimDevice(port, 0), 0);
    std::thread query([this] {
      std::array<char, 256> answer;
      // The printer does not know this one, so the query waits until the port is gone.
      EXPECT_EQ(GetData(port, "?", 1, answer.data()), 0);
    });
    while (value_of(*state.bStopThread) == 0) doze();
    libDestructor();
    query.join();
    EXPECT_EQ(value_of(*state.bStopThread), 0);
    set(*state.bOffline, 0);
    ASSERT_EQ(OpenPort(port, printer.settings().c_str()), 0);
  }
}

}  // namespace
}  // namespace testkit
