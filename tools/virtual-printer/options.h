// The command line.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "page_server.h"
#include "service.h"
#include "tcp_link.h"

namespace virtual_printer {

struct DecodeRequest {
  std::string file = "-";  // standard input
  bool json = false;
};

struct Options {
  std::string port = "/dev/ttyS-virtual";
  std::string socket;                // of the device that is played; empty: one that goes with us
  std::optional<TcpAddress> listen;  // in place of the port
  bool terminal = false;             // a real one, although there is a command
  bool environment = false;          // that a program needs to open the port is told
  bool strict = false;
  bool page = false;  // in a browser
  PageAddress page_address;
  ServiceOptions service;
  std::vector<std::string> command;     // empty: serve until interrupted
  std::string request;                  // to the printer that runs already; empty: none
  std::optional<DecodeRequest> decode;  // and do nothing else
};

// What to do, or the exit status of a command line with which all is said: help, or a mistake.
std::variant<Options, int> parse_command_line(int argc, char** argv);

}  // namespace virtual_printer
