// The parallel port's part of the status monitor: a printer that is there takes part in a change of
// mode.
#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include "parallel/parallel_port.h"
#include "status/collected_job.h"

void ParallelWatchLine(PortHandle port) {
  const ParallelTurn descriptor(port);
  const int off = !enter_nibble_mode(descriptor);
  if (off) lose_sent_job(parallel_state);
  parallel_state.bPowerOFF = off;
  // Offline until the printer reports again; the monitor's next cycle asks it to.
  parallel_state.bOffline = off;
  // For its effect on the lines; nobody looks at the byte.
  unsigned char data = 0;
  (void)retry_interrupted([&] { return ioctl(descriptor, PPRDATA, &data); });
}
