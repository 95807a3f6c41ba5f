#include "signal_queue.h"

#include <sys/signalfd.h>

#include <csignal>

namespace virtual_printer {

SignalQueue::SignalQueue(std::initializer_list<int> signals) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : signals) sigaddset(&set, signal);
  check(sigprocmask(SIG_BLOCK, &set, nullptr), "cannot block signals");
  queue_ =
      Descriptor(check(signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC), "cannot queue signals"));
}

std::optional<int> SignalQueue::next() {
  signalfd_siginfo info{};
  if (read(queue_.number(), &info, sizeof info) != static_cast<ssize_t>(sizeof info)) return {};
  return static_cast<int>(info.ssi_signo);
}

}  // namespace virtual_printer
