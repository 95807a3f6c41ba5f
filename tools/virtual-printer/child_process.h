// The program that runs against the printer.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "link.h"

namespace virtual_printer {

class ChildProcess {
 public:
  // The child begins with no signal blocked and none ignored on our account, and with these
  // variables in its environment.
  ChildProcess(const std::vector<std::string>& command, const Environment& environment);

  // Its exit status, once it has ended; 128 and the signal when one ended it, as shells have it.
  std::optional<int> ended();

  void send_signal(int signal) const;

 private:
  pid_t pid_;
};

}  // namespace virtual_printer
