#include "guardian.h"

#include <tzvio.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <ctime>
#include <thread>

#include "reporter.h"

namespace cli {
namespace {

std::atomic<long long> last_life_ms = 0;

long long now_ms() {
  using std::chrono::milliseconds;
  return std::chrono::duration_cast<milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

sigset_t ending_signals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
  return signals;
}

[[noreturn]] void end_by(int signal, const std::string& port) {
  ReleaseDevice(port.c_str());
  ClosePort(port.c_str());
  const Outcome outcome = signal == SIGINT ? Outcome::kInterrupted : Outcome::kTerminated;
  _exit(tell({.outcome = outcome,
              .words = "interrupted; the port is released. What was on its way may be printed in "
                       "part"}));
}

[[noreturn]] void end_by_silence(const std::string& port, int timeout_s) {
  _exit(tell({.outcome = Outcome::kTimedOut,
              .words = port + ": nothing moved for " + std::to_string(timeout_s) +
                       " s (--timeout): the printer is there but mute, or takes no data. Is it "
                       "switched on, and not in use by another till?"}));
}

void watch_over(const std::string& port, int timeout_s) {
  const sigset_t signals = ending_signals();
  for (;;) {
    const long long left = last_life_ms + 1000LL * timeout_s - now_ms();
    if (left <= 0) end_by_silence(port, timeout_s);
    const timespec pause{static_cast<time_t>(left / 1000),
                         static_cast<long>(left % 1000) * 1000000};
    const int signal = sigtimedwait(&signals, nullptr, &pause);
    if (signal > 0) end_by(signal, port);
  }
}

}  // namespace

void start_guardian(const std::string& port, int timeout_s) {
  show_life();
  // For all threads to come, the library's too: the guardian alone takes them.
  const sigset_t signals = ending_signals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::thread(watch_over, port, timeout_s).detach();
}

void show_life() {
  last_life_ms = now_ms();
}

}  // namespace cli
