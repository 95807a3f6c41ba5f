// What the kernel knows about the hardware behind a device.
#pragma once

#include <string>
#include <vector>

#include "link.h"

namespace cli {

enum class Hardware { kThere, kNone, kUnknown };

// A serial port's name exists whether or not there is a port.
Hardware hardware_behind(Link link, const std::string& path);

// Whether a driver is in the kernel.
bool has_driver(const std::string& name);

// USB interfaces of the printer class, and which of them the driver usblp serves.
struct UsbPrinters {
  int plugged_in = 0;
  int served = 0;
};
UsbPrinters usb_printers();

// Processes that have the device open, as far as this user may see; but this one.
std::vector<std::string> users_of(const std::string& path);

}  // namespace cli
