// The bytes of a USB node: small pieces out, blocking reads in.
#include "dispatch/bytes.h"
#include "dispatch/silence_budget.h"
#include "usb/usb_port.h"

namespace {

constexpr std::size_t kPiece = 64;   // bytes, a packet of the printer class
constexpr long kWriteBudget = 5000;  // milliseconds without progress
constexpr long kPollPause = 20;      // milliseconds

long write_piece(PortHandle port, std::string_view bytes) {
  const UsbPorts::Use node(port);
  return write_once(node, bytes);
}

}  // namespace

long USBWritePort(PortHandle port, std::string_view bytes) {
  SilenceBudget budget(kWriteBudget);
  std::size_t written = 0;
  while (written < bytes.size() && !budget.exhausted()) {
    const long count = write_piece(port, first_of(rest_of(bytes, written), kPiece));
    if (count == -1) return kRefused;
    written += static_cast<std::size_t>(count);
    if (count > 0) {
      budget.restore();
    } else {
      pause_and_spend(budget, kPollPause);
    }
  }
  return static_cast<long>(written);
}

void USBWriteNow(PortHandle port, std::string_view bytes) {
  // Whether it arrived shows in the answer, or in its absence.
  (void)write_piece(port, bytes);
}

long USBReadPortPrv(PortHandle port, std::span<char> buffer, ReadPatience patience) {
  // The pause comes before the read, which then waits for as long as the printer takes.
  SilenceBudget pause(patience.silence_ms);
  while (!pause.exhausted()) pause_and_spend(pause, kPollPause);
  const UsbPorts::Use node(port);
  return read_once(node, buffer);
}

long USBPoll(PortHandle port, std::span<char> buffer) {
  const UsbPorts::Use node(port);
  if (!is_readable(node)) return 0;
  const long count = read_once(node, buffer);
  if (count != -1) {
    usb_state.bPowerOFF = 0;
    usb_state.bOffline = 0;
  }
  return count;
}
