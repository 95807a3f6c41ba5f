// The serial line's part of the status monitor: the printer's power shows on DSR.
#include <sys/ioctl.h>

#include "dispatch/system.h"
#include "serial/serial_port.h"
#include "status/collected_job.h"

Dsr read_dsr(PortHandle port) {
  const SerialPorts::Use descriptor(port);
  int lines = 0;
  const int got = retry_interrupted([&] { return ioctl(descriptor, TIOCMGET, &lines); });
  if (got == -1) return Dsr::unknown;
  return (lines & TIOCM_DSR) != 0 ? Dsr::up : Dsr::down;
}

void SerialWatchLine(PortHandle port) {
  const Dsr dsr = read_dsr(port);
  // A line without modem signals tells nothing: the flags stay.
  if (dsr == Dsr::unknown) return;
  const int off = dsr == Dsr::down;
  // With a handshake this may be no more than a full buffer.
  if (off && !has_handshake(port)) lose_sent_job(serial_state);
  serial_state.bPowerOFF = off;
  // Offline until the printer reports again; the monitor's next cycle asks it to.
  serial_state.bOffline = off;
}
