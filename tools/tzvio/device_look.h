// Why a port cannot be opened: a look at the device or the address itself, without the library.
#pragma once

#include <string>

#include "link.h"
#include "outcome.h"

namespace cli {

// One thing that was looked at.
struct Look {
  Outcome outcome = Outcome::kDone;
  std::string words = {};
};

// Opens the device and closes it.
Look look_at_device(const std::string& path);

// Connects to the address and port and hangs up.
Look look_at_address(const std::string& address, const std::string& tcp_port);

// Which of the two suits the link.
Look look_at_port(Link link, const std::string& port, const std::string& settings);

// What stands behind "SOCKET:".
std::string address_in(const std::string& port);

// The TCP port of the settings; 0 when they are none.
int tcp_port_in(const std::string& settings);

// The group that a device belongs to, and whether this process is in it.
struct OwningGroup {
  std::string name;
  bool ours = false;
};
OwningGroup group_of_device(const std::string& path);

}  // namespace cli
