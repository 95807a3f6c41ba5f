// The parallel port's part of the status monitor: a printer that is there takes part in a change of
// mode.
#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include "parallel/parallel_port.h"
#include "status/collected_job.h"

namespace {

/// The turn ends with the look: whoever holds the collected job's lock may wait for it.
bool grants_nibble_mode(PortHandle port) {
  const ParallelTurn descriptor(port);
  const bool granted = enter_nibble_mode(descriptor);
  // For its effect on the lines; nobody looks at the byte.
  unsigned char data = 0;
  (void)retry_interrupted([&] { return ioctl(descriptor, PPRDATA, &data); });
  return granted;
}

}  // namespace

void ParallelWatchLine(PortHandle port) {
  const int off = !grants_nibble_mode(port);
  if (off) lose_sent_job(parallel_state);
  parallel_state.bPowerOFF = off;
  // Offline until the printer reports again; the monitor's next cycle asks it to.
  parallel_state.bOffline = off;
}
