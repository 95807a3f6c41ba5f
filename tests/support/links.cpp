#include "support/links.h"

#include <sys/ioctl.h>

#include <cerrno>

#include "tzvio.h"

namespace testkit {

const std::vector<Link> kLinks = {
    {.name = "serial",
     .port = "/dev/ttyS0",
     .second_port = "/dev/ttyS1",
     .settings = "9600,none,8,1,none",
     .state = kSerialState},
    {.name = "parallel",
     .port = "/dev/parport0",
     .second_port = "/dev/lp1",
     .settings = "",
     .state = kParallelState,
     .dead_write = 0,
     .release_pause = 1000},
    {.name = "usb",
     .port = "/dev/usb/lp0",
     .second_port = "/dev/usblp1",
     .settings = "",
     .state = kUsbState,
     .poll_call = "select",
     .short_cut = 0,
     .short_pulse = 0,
     .pause_before_read = 100},
    {.name = "network",
     .port = "SOCKET:192.168.0.10",
     .second_port = "SOCKET:192.168.0.11",
     .settings = "9100",
     .state = kNetworkState,
     .write_call = "send",
     .read_call = "recv",
     .poll_call = "select",
     .short_pulse = 0,
     .release_pause = 300,
     .pause_after_write = 10},
};

EveryLink::EveryLink() : printer(kernel.plug(link.port)) {
  printer.answer_ready();
  printer.modem_lines = TIOCM_DSR;
  EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0);
  printer.output.clear();
  printer.writes.clear();
  kernel.forget_calls();
}

void EveryLink::break_writes() {
  // More than any operation tries.
  for (int nth = 1; nth <= 600; ++nth) kernel.fail(link.write_call, EIO, nth);
}

}  // namespace testkit
