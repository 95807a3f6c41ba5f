// A till in a process of its own, which prints numbered receipts as the manual says. It tells on
// standard output what it does, a line for each step, and takes orders from standard input.
//
//   printing_till PORT SETTINGS
//
// After an order that gives the milliseconds to rest after every failure, it prints one receipt,
// under a new number for every transaction, until that is confirmed; then it says "done". When the
// port does not come right by itself, it says "stuck", waits for an order, and opens the port anew.
// "abandoned" and "unopened" say that this was in vain.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <string>
#include <thread>

#include "soak/receipt_job.h"
#include "tzvio.h"

namespace soak {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int kAttempts = 20;
constexpr milliseconds kLook{20};
constexpr milliseconds kPatience{8000};
constexpr milliseconds kPause{500};

void say(const char* what, std::uint32_t number = 0, long result = 0, milliseconds took = {}) {
  std::printf("%s %u %ld %lld\n", what, static_cast<unsigned>(number), result,
              static_cast<long long>(took.count()));
  std::fflush(stdout);
}

std::string next_order() {
  std::string order;
  if (!std::getline(std::cin, order)) _exit(EXIT_FAILURE);
  return order;
}

class Till {
 public:
  Till(const char* port, const char* settings) : port_(port), settings_(settings) {}

  bool open();
  void print_receipt(milliseconds rest);

 private:
  long transaction(std::uint32_t number);
  void open_anew();
  void wait_until_ready();
  bool is_ready_in_time();

  const char* port_;
  const char* settings_;
  std::uint32_t next_ = 0;
  bool opened_anew_ = false;
  bool lost_memory_ = false;  // perhaps
  milliseconds end_took_{};   // of the last transaction
};

bool Till::open() {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (OpenPort(port_, settings_) == 0 && ClaimDevice(port_, 0) == 0) return is_ready_in_time();
    ClosePort(port_);
    std::this_thread::sleep_for(kPause);
  }
  return false;
}

void Till::print_receipt(milliseconds rest) {
  bool failed_before = false;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const std::uint32_t number = next_++;
    say("begin", number);
    long result = transaction(number);
    say("result", number, result, end_took_);
    if (keeps_data(result)) {
      wait_until_ready();
      // The printer has held what it had received, unless its power has gone meanwhile.
      if (!lost_memory_) {
        result = ask_again(port_);
        say("asked", number, result);
      }
    }
    if (result == 0) return say("done", number);
    if (failed_before && result == TZV_STATUS_OFFLINE) open_anew();
    failed_before = true;
    std::this_thread::sleep_for(std::max(milliseconds(kMonitorHasLooked), rest));
    wait_until_ready();
  }
  say("abandoned");
}

long Till::transaction(std::uint32_t number) {
  do {
    opened_anew_ = false;
    collect(port_, number);
    // In an error state nothing would be sent, and the result would be as of a job that is held.
    if (GetError(port_) != TZV_STATUS_OK) wait_until_ready();
    // What was collected goes when the port is closed.
  } while (opened_anew_);
  const Clock::time_point start = Clock::now();
  const long result = TransactionPrint(port_, TZV_TRANSACTION_END);
  end_took_ = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
  lost_memory_ = end_took_ >= milliseconds(kWriteGivesUp);
  return result;
}

void Till::open_anew() {
  say("stuck");
  next_order();
  ReleaseDevice(port_);
  ClosePort(port_);
  if (!open()) say("unopened");
  opened_anew_ = true;
  lost_memory_ = true;
}

void Till::wait_until_ready() {
  while (!is_ready_in_time()) open_anew();
}

bool Till::is_ready_in_time() {
  const Clock::time_point deadline = Clock::now() + kPatience;
  for (int looks = 1; Clock::now() < deadline; ++looks) {
    const long code = GetError(port_);
    if (is_ready(code)) return true;
    lost_memory_ = lost_memory_ || code == TZV_STATUS_OFFLINE;
    std::this_thread::sleep_for(kLook);
    // Any write makes a lost connection anew, even one of nothing.
    if (looks % 50 == 0) WritePort(port_, "", 0);
  }
  return false;
}

}  // namespace
}  // namespace soak

int main(int argc, char** argv) {
  if (argc != 3) return EXIT_FAILURE;
  soak::Till till(argv[1], argv[2]);
  if (!till.open()) return EXIT_FAILURE;
  soak::say("open");
  while (true) till.print_receipt(std::chrono::milliseconds(std::stoi(soak::next_order())));
}
