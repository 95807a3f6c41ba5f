// Every exported operation from several threads on several ports of every link, against live
// monitors and printers that come and go. The rule of the manual is kept: the ports of one link are
// printed on by one thread at a time; looks, closes, claims and releases come from anywhere, at any
// time. Run under the thread sanitizer, this proves that the rule is enough.
//
// TZVIO_SECONDS asks for longer than the few seconds of a test.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <random>
#include <thread>

#include "soak/figures.h"
#include "support/all_operations.h"
#include "support/exported_state.h"
#include "support/live_printer.h"
#include "support/scripted_kernel.h"
#include "tzvio.h"

namespace soak {
namespace {

constexpr int kSpeed = 6;
constexpr int kDisturbers = 3;

using Clock = std::chrono::steady_clock;

struct Port {
  std::unique_ptr<testkit::LivePrinter> printer;
  std::string name;
};

/// The ports that one thread prints on.
struct LinkUnderLoad {
  std::vector<Port> ports;
  std::atomic<std::size_t> calls = 0;
  std::atomic<std::size_t> confirmed = 0;
};

void teach(testkit::LivePrinter& printer) {
  using namespace std::string_literals;
  printer.answer(testkit::kEnableReports, testkit::kHealthy);
  printer.answer(testkit::kProcessIdRequest, testkit::kProcessIdAnswer);
  printer.answer("\035ID", "_ABCDEFGV1.23");
  printer.answer("\035IC", "_AB-123");
  printer.answer("\033#SENSOR", "_2\0"s);
  printer.answer("\033#BM?", "_BM");
  printer.start();
}

class Concurrency : public testing::Test {
 protected:
  Concurrency() {
    testkit::reset_library();
    testkit::speed_up_sleeps(kSpeed);
    add_terminals(links[0], {"/dev/ttyS-a", "/dev/ttyS-b"});
    add_terminals(links[1], {"/dev/parport-a", "/dev/lp-b"});
    add_terminals(links[2], {"/dev/usb/lp-a", "/dev/usblp-b"});
    for (const char* address : {"127.0.0.1", "127.0.0.2"}) {
      const auto host = static_cast<in_addr_t>(INADDR_LOOPBACK + links[3].ports.size());
      auto printer = std::make_unique<testkit::SocketPrinter>(host);
      sockets.push_back(printer.get());
      teach(*printer);
      links[3].ports.push_back({std::move(printer), std::string("SOCKET:") + address});
    }
  }
  ~Concurrency() override {
    testkit::reset_library();
    testkit::speed_up_sleeps(1);
  }

  static void add_terminals(LinkUnderLoad& link, std::initializer_list<const char*> names) {
    for (const char* name : names) {
      auto printer = std::make_unique<testkit::PtyPrinter>(name);
      teach(*printer);
      link.ports.push_back({std::move(printer), name});
    }
  }

  bool goes_on() const { return Clock::now() < end; }
  void print(LinkUnderLoad& link, unsigned seed);
  void disturb(unsigned seed);
  void come_and_go();
  void speak();

  LinkUnderLoad links[4];
  std::vector<testkit::SocketPrinter*> sockets;
  const Clock::time_point end = Clock::now() + std::chrono::seconds(asked("TZVIO_SECONDS", 10));
};

void doze(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

/// Opens it where somebody has closed it, and prints, asks and reconnects at random.
void Concurrency::print(LinkUnderLoad& link, unsigned seed) {
  std::mt19937 random(seed);
  while (goes_on()) {
    const Port& port = link.ports[random() % link.ports.size()];
    const char* const name = port.name.c_str();
    if (GetError(name) == -1) OpenPort(name, port.printer->settings().c_str());
    if (random() % 4 == 0) {
      // Somebody may release or close it at any moment of this.
      ClaimDevice(name, 0);
      for (int looks = 0; looks < 100 && GetError(name) != TZV_STATUS_OK; ++looks) doze(1);
      TransactionPrint(name, TZV_TRANSACTION_BEGIN);
      PrintNormal(name, "a receipt\n");
      link.confirmed += TransactionPrint(name, TZV_TRANSACTION_END) == 0;
    }
    if (random() % 16 == 0) InitNET(name);
    const auto& operation = testkit::kAllOperations[random() % testkit::kAllOperations.size()];
    // Their answers are nobody's: a read would wait for them, or a transaction stay begun.
    const bool left_out = operation.name == "ReadPort" || operation.name == "GetData" ||
                          operation.name == "TransactionPrint" || operation.name == "OpenPort";
    if (!left_out) operation.call(name);
    ++link.calls;
  }
}

void Concurrency::disturb(unsigned seed) {
  std::mt19937 random(seed);
  while (goes_on()) {
    const auto& ports = links[random() % std::size(links)].ports;
    const char* const name = ports[random() % ports.size()].name.c_str();
    switch (random() % 16) {
      case 0:
        ClosePort(name);
        break;
      case 1:
      case 2:
        ReleaseDevice(name);
        break;
      case 3:
        SetRePrintMode(name, 0);
        break;
      case 4:
        SetProtocol(name, 0);
        break;
      case 5:
      case 6:
      case 7:
        ClaimDevice(name, 0);
        break;
      default:
        GetError(name);
        GetDrawerStatus(name);
    }
    doze(1);
  }
}

void Concurrency::come_and_go() {
  for (std::size_t i = 0; goes_on(); ++i) {
    testkit::SocketPrinter& printer = *sockets[i % sockets.size()];
    doze(400);
    printer.disappear();
    doze(50);
    printer.come_back();
  }
}

/// A report now and then ends every read that waits for an answer which another has got.
void Concurrency::speak() {
  for (const LinkUnderLoad& link : links) {
    for (const Port& port : link.ports) port.printer->say(testkit::kHealthy);
  }
  doze(25);
}

TEST_F(Concurrency, every_operation_from_many_threads) {
  for (LinkUnderLoad& link : links) {
    for (const Port& port : link.ports) {
      EXPECT_GE(OpenPort(port.name.c_str(), port.printer->settings().c_str()), -1);
      ClaimDevice(port.name.c_str(), 0);
    }
  }
  std::vector<std::thread> threads;
  unsigned seed = static_cast<unsigned>(asked("SEED", 1));
  for (LinkUnderLoad& link : links) {
    threads.emplace_back([this, &link, seed = seed++] { print(link, seed); });
  }
  for (int i = 0; i < kDisturbers; ++i) {
    threads.emplace_back([this, seed = seed++] { disturb(seed); });
  }
  threads.emplace_back([this] { come_and_go(); });
  std::atomic<bool> done = false;
  std::thread speaker([this, &done] {
    while (!done) speak();
  });
  for (std::thread& thread : threads) thread.join();
  done = true;
  speaker.join();
  std::string figures = "\nconcurrency:";
  for (const LinkUnderLoad& link : links) {
    EXPECT_GT(link.calls, 0U);
    figures += ' ' + link.ports.front().name + ' ' + std::to_string(link.calls) + " rounds, " +
               std::to_string(link.confirmed) + " confirmed;";
  }
  report(figures + '\n');
}

}  // namespace
}  // namespace soak
