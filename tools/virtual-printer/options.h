// The command line.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "control_request.h"
#include "service.h"

namespace virtual_printer {

struct Options {
  std::string port = "/dev/ttyS-virtual";
  bool strict = false;
  ServiceOptions service;
  std::vector<std::string> command;       // empty: serve until interrupted
  std::optional<ControlRequest> request;  // to the printer that runs already
};

// What to do, or the exit status of a command line with which all is said: help, or a mistake.
std::variant<Options, int> parse_command_line(int argc, char** argv);

}  // namespace virtual_printer
