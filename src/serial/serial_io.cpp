// The bytes of a serial line: writes that wait for the printer, reads that count silence.
#include <sys/ioctl.h>
#include <termios.h>

#include <algorithm>

#include "dispatch/bytes.h"
#include "dispatch/silence_budget.h"
#include "dispatch/system.h"
#include "serial/serial_port.h"

namespace {

constexpr long kWriteBudget = 5000;           // milliseconds without progress
constexpr long kPollPause = 20;               // milliseconds
constexpr std::size_t kHandshakePiece = 256;  // bytes sent between two looks at DSR

enum class Ready { yes, no, failed };

/// Waits for the printer to raise DSR as long as the budget lasts.
Ready wait_for_dsr(int descriptor, SilenceBudget& budget) {
  while (!budget.exhausted()) {
    int lines = 0;
    const int got = retry_interrupted([&] { return ioctl(descriptor, TIOCMGET, &lines); });
    if (got == -1) return Ready::failed;
    if ((lines & TIOCM_DSR) != 0) return Ready::yes;
    pause_ms(kPollPause);
    budget.spend(kPollPause);
  }
  return Ready::no;
}

constexpr long kCallFailed = -1;
constexpr long kLineFull = -2;

/// Writes once and waits until it is on the line. The count written, `kLineFull` or `kCallFailed`.
long write_and_drain(int descriptor, std::string_view bytes) {
  const ssize_t written =
      retry_interrupted([&] { return write(descriptor, bytes.data(), bytes.size()); });
  if (written == -1) return errno == EAGAIN ? kLineFull : kCallFailed;
  if (retry_interrupted([&] { return tcdrain(descriptor); }) == -1) return kCallFailed;
  return static_cast<long>(written);
}

/// How many bytes wait to be read, or -1.
long bytes_waiting(int descriptor) {
  int waiting = 0;
  const int got = retry_interrupted([&] { return ioctl(descriptor, FIONREAD, &waiting); });
  return got == -1 ? -1 : waiting;
}

/// Waits until `min_length` bytes are there or the line was silent for the patience's time. How
/// many bytes wait then, or -1.
long wait_for_bytes(int descriptor, ReadPatience patience) {
  SilenceBudget budget(patience.silence_ms);
  long waiting = bytes_waiting(descriptor);
  while (waiting >= 0 && waiting < patience.min_length && !budget.exhausted()) {
    pause_ms(kPollPause);
    const long now = bytes_waiting(descriptor);
    now == waiting ? budget.spend(kPollPause) : budget.restore();
    waiting = now;
  }
  return waiting;
}

}  // namespace

long SerialWritePort(PortIndex port, std::string_view bytes) {
  const int descriptor = serPorts[port].port;
  const bool handshake = serPorts[port].originalPortSettings.flowControl == 'h';
  SilenceBudget budget(kWriteBudget);
  std::size_t written = 0;
  while (written < bytes.size()) {
    std::string_view piece = rest_of(bytes, written);
    if (handshake) {
      const Ready ready = wait_for_dsr(descriptor, budget);
      if (ready == Ready::failed) return kRefused;
      if (ready == Ready::no) break;
      piece = first_of(piece, kHandshakePiece);
    }
    const long count = write_and_drain(descriptor, piece);
    if (count == kCallFailed) return kRefused;
    if (count == kLineFull) {
      // The descriptor does not block, and a line that cannot be drained (a pseudo-terminal) may
      // be full. That is no failure until the printer has taken nothing for the whole budget.
      pause_ms(kPollPause);
      budget.spend(kPollPause);
      if (budget.exhausted()) return kRefused;
      continue;
    }
    if (count > 0) budget.restore();
    written += static_cast<std::size_t>(count);
  }
  return static_cast<long>(written);
}

void SerialWriteNow(PortIndex port, std::string_view bytes) {
  // Whether it arrived shows in the answer, or in its absence.
  (void)retry_interrupted([&] { return write(serPorts[port].port, bytes.data(), bytes.size()); });
}

long SerialReadPortPrv(PortIndex port, std::span<char> buffer, ReadPatience patience) {
  const int descriptor = serPorts[port].port;
  const long waiting = wait_for_bytes(descriptor, patience);
  if (waiting < 0 || waiting < patience.min_length) return kRefused;
  if (waiting == 0) return 0;
  const std::size_t length = std::min(static_cast<std::size_t>(waiting), buffer.size());
  const ssize_t count = retry_interrupted([&] { return read(descriptor, buffer.data(), length); });
  if (count == -1) return kRefused;
  return static_cast<long>(count);
}
