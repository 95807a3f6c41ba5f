#include "support/links.h"

#include <sys/ioctl.h>

#include "tzvio.h"

namespace testkit {

const std::vector<Link> kLinks = {
    {"serial", "/dev/ttyS0", "9600,none,8,1,none", kSerialState},
};

EveryLink::EveryLink() : printer(kernel.plug(link.port)) {
  printer.answer_ready();
  printer.modem_lines = TIOCM_DSR;
  EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0);
  printer.output.clear();
  printer.writes.clear();
  kernel.forget_calls();
}

}  // namespace testkit
