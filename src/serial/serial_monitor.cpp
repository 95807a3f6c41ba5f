// The serial line's part of the status monitor: the printer's power shows on DSR.
#include <sys/ioctl.h>

#include "dispatch/system.h"
#include "serial/serial_port.h"

void SerialWatchLine(PortHandle port) {
  const SerialPorts::Use descriptor(port);
  int lines = 0;
  // A line without modem signals tells nothing: the flags stay.
  if (retry_interrupted([&] { return ioctl(descriptor, TIOCMGET, &lines); }) == -1) return;
  const int off = (lines & TIOCM_DSR) == 0;
  serial_state.bPowerOFF = off;
  // Offline until the printer reports again; the monitor's next cycle asks it to.
  serial_state.bOffline = off;
}
