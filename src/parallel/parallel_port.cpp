// Opening and claiming a parallel port, and giving it back.
#include "parallel/parallel_port.h"

#include <linux/ppdev.h>
#include <sys/ioctl.h>

ParPort parPorts[TZV_PORTS] = {};

Opened ParallelOpenPort(int entry, const char* portName, const char* /*portSettings*/) {
  ParPort opened = ParPorts::named(portName);
  opened.port = open_device_file(portName, O_RDWR | O_NONBLOCK);
  if (opened.port == -1) return {kFailed};
  if (retry_interrupted([&] { return ioctl(opened.port, PPCLAIM); }) == -1) {
    close(opened.port);
    return {kFailed};
  }
  return {ParPorts::store(entry, opened)};
}

void parallel_hang_up(int descriptor) {
  ioctl(descriptor, PPRELEASE);
  close(descriptor);
}
