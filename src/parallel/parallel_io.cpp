// The bytes of a parallel port: writes while the printer is online, reads in nibble mode.
#include <linux/parport.h>
#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include <algorithm>

#include "dispatch/bytes.h"
#include "dispatch/silence_budget.h"
#include "parallel/parallel_port.h"

namespace {

constexpr long kWriteBudget = 5000;  // milliseconds without progress
constexpr long kStallPause = 50;     // milliseconds

bool negotiate(int descriptor, int mode) {
  return retry_interrupted([&] { return ioctl(descriptor, PPNEGOT, &mode); }) != -1;
}

/// Whether the printer is online: neither busy nor in error, by its status lines.
bool getOnlineStatus(int descriptor) {
  constexpr unsigned char kOnline = PARPORT_STATUS_ERROR | PARPORT_STATUS_BUSY;
  if (!negotiate(descriptor, IEEE1284_MODE_COMPAT)) return false;
  unsigned char lines = 0;
  const int got = retry_interrupted([&] { return ioctl(descriptor, PPRSTATUS, &lines); });
  return got != -1 && (lines & kOnline) == kOnline;
}

/// The count written; 0 when the printer is not online or takes nothing.
std::size_t write_when_online(PortHandle port, std::string_view bytes) {
  const ParallelTurn descriptor(port);
  if (!getOnlineStatus(descriptor)) return 0;
  return static_cast<std::size_t>(std::max(write_once(descriptor, bytes), 0L));
}

}  // namespace

bool enter_nibble_mode(int descriptor) {
  negotiate(descriptor, IEEE1284_MODE_COMPAT);
  return negotiate(descriptor, IEEE1284_MODE_NIBBLE);
}

long ParallelWritePort(PortHandle port, std::string_view bytes) {
  SilenceBudget budget(kWriteBudget);
  std::size_t last = write_when_online(port, bytes);
  std::size_t written = last;
  while (written < bytes.size() && !budget.exhausted()) {
    if (last == 0) {
      pause_and_spend(budget, kStallPause);
    } else {
      budget.restore();
    }
    last = write_when_online(port, rest_of(bytes, written));
    written += last;
  }
  return static_cast<long>(written);
}

void ParallelWriteNow(PortHandle port, std::string_view bytes) {
  const ParallelTurn descriptor(port);
  // Whether it arrived shows in the answer, or in its absence.
  (void)write_once(descriptor, bytes);
}

long ParallelReadPort(PortHandle port, std::span<char> buffer, ReadPatience /*patience*/) {
  const ParallelTurn descriptor(port);
  if (!enter_nibble_mode(descriptor)) return kRefused;
  const long count = read_once(descriptor, buffer);
  return count == -1 ? kRefused : count;
}

long ParallelPoll(PortHandle port, std::span<char> buffer) {
  const ParallelTurn descriptor(port);
  return read_once(descriptor, buffer);
}
