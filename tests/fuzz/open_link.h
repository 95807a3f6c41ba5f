// A port that is open over the scripted kernel.
#pragma once

#include <sys/ioctl.h>

#include "check.h"
#include "support/links.h"
#include "support/scripted_kernel.h"
#include "tzvio.h"

namespace fuzz {

/// One link's port with a ready printer behind it, in a library as it is when loaded.
class OpenLink {
 public:
  explicit OpenLink(const testkit::Link& tested) : link(tested) {
    testkit::reset_library();
    kernel.reset(true);
    printer = &kernel.plug(link.port);
    printer->modem_lines = TIOCM_DSR;
    printer->answer_ready();
    check(OpenPort(port, link.settings.c_str()) == 0, "a ready printer's port opens");
    printer->mute();
    forget();
  }
  ~OpenLink() {
    testkit::reset_library();
    check(kernel.open_descriptors() == 0, "no descriptor is left open");
    check(kernel.threads() == 0, "no monitor is left behind");
    kernel.reset(false);
  }
  OpenLink(const OpenLink&) = delete;
  OpenLink& operator=(const OpenLink&) = delete;

  const std::string& sent() const { return printer->output; }

  /// Forgets what was sent and called so far.
  void forget() {
    printer->output.clear();
    printer->writes.clear();
    kernel.forget_calls();
  }

  const testkit::Link& link;
  const testkit::ExportedState& state = link.state;
  const char* port = link.port.c_str();
  testkit::Kernel& kernel = testkit::Kernel::instance();
  testkit::Device* printer = nullptr;
};

}  // namespace fuzz
