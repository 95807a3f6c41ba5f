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

enum class Line { ready, busy, failed };

/// Waits for the printer to raise DSR as long as the budget lasts.
Line wait_for_dsr(PortHandle port, SilenceBudget& budget) {
  while (!budget.exhausted()) {
    const Dsr dsr = read_dsr(port);
    if (dsr == Dsr::unknown) return Line::failed;
    if (dsr == Dsr::up) return Line::ready;
    pause_and_spend(budget, kPollPause);
  }
  return Line::busy;
}

struct Written {
  Line line;
  std::size_t count;
};

/// Writes once and waits until it is on the line; busy when the line takes nothing now.
Written write_and_drain(PortHandle port, std::string_view bytes) {
  const SerialPorts::Use descriptor(port);
  const long count = write_once(descriptor, bytes);
  if (count == -1) return {errno == EAGAIN ? Line::busy : Line::failed, 0};
  if (retry_interrupted([&] { return tcdrain(descriptor); }) == -1) return {Line::failed, 0};
  return {Line::ready, static_cast<std::size_t>(count)};
}

/// How many bytes wait to be read, or -1.
long bytes_waiting(PortHandle port) {
  const SerialPorts::Use descriptor(port);
  int waiting = 0;
  const int got = retry_interrupted([&] { return ioctl(descriptor, FIONREAD, &waiting); });
  return got == -1 ? -1 : waiting;
}

/// Waits until `min_length` bytes are there or the line was silent for the patience's time. How
/// many bytes wait then, or -1.
long wait_for_bytes(PortHandle port, ReadPatience patience) {
  SilenceBudget budget(patience.silence_ms);
  long waiting = bytes_waiting(port);
  while (waiting >= 0 && waiting < patience.min_length && !budget.exhausted()) {
    pause_ms(kPollPause);
    const long now = bytes_waiting(port);
    now == waiting ? budget.spend(kPollPause) : budget.restore();
    waiting = now;
  }
  return waiting;
}

}  // namespace

long SerialWritePort(PortHandle port, std::string_view bytes) {
  const bool handshake = has_handshake(port);
  SilenceBudget budget(kWriteBudget);
  std::size_t written = 0;
  while (written < bytes.size()) {
    std::string_view piece = rest_of(bytes, written);
    if (handshake) {
      const Line line = wait_for_dsr(port, budget);
      if (line == Line::failed) return kRefused;
      if (line == Line::busy) break;
      piece = first_of(piece, kHandshakePiece);
    }
    const auto [line, count] = write_and_drain(port, piece);
    if (line == Line::failed) return kRefused;
    if (line == Line::busy) {
      // The descriptor does not block, and a line that cannot be drained (a pseudo-terminal) may
      // be full. That is no failure until the printer has taken nothing for the whole budget.
      pause_and_spend(budget, kPollPause);
      if (budget.exhausted()) return kRefused;
      continue;
    }
    if (count > 0) budget.restore();
    written += count;
  }
  return static_cast<long>(written);
}

void SerialWriteNow(PortHandle port, std::string_view bytes) {
  const SerialPorts::Use descriptor(port);
  // Whether it arrived shows in the answer, or in its absence.
  (void)write_once(descriptor, bytes);
}

long SerialReadPortPrv(PortHandle port, std::span<char> buffer, ReadPatience patience) {
  const long waiting = wait_for_bytes(port, patience);
  if (waiting < 0 || waiting < patience.min_length) return kRefused;
  if (waiting == 0) return 0;
  const std::size_t length = std::min(static_cast<std::size_t>(waiting), buffer.size());
  const long count = SerialPoll(port, buffer.first(length));
  return count == -1 ? kRefused : count;
}

long SerialPoll(PortHandle port, std::span<char> buffer) {
  const SerialPorts::Use descriptor(port);
  return read_once(descriptor, buffer);
}
