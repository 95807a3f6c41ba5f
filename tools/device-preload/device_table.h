// The devices that are played, as the environment names them.
#pragma once

#include <atomic>
#include <cstddef>
#include <string_view>

#include "device_page.h"

namespace tzvio_devices {

inline constexpr std::size_t kLongestName = 108;  // of a socket's, with its end

struct Device {
  char name[kLongestName];
  char socket[kLongestName];
  DeviceKind kind;
  std::atomic<DevicePage*> page;

  DevicePage& shared() const { return *page.load(std::memory_order_acquire); }
  bool shows(Signal signal) const {
    return (shared().signals.load(std::memory_order_acquire) & signal) != 0;
  }
};

// Splits "NAME=SOCKET:NAME=SOCKET" into devices. Returns how many, or -1 when the text is wrong;
// `wrong` is then the part that is.
int parse_devices(std::string_view text, Device* devices, int most, std::string_view& wrong);

enum class Lookup { kNotPlayed, kPlayed, kBadConfiguration };

// Which device a name means. A name that a device could have is refused as long as the environment
// cannot be understood, lest a program that is to be tried print on a real printer.
Lookup find_by_name(const char* name, Device*& device);

// The device behind a descriptor, or null. A descriptor is known by whom it is connected to, so
// copies, inherited ones and numbers that are used again need no bookkeeping.
Device* find_by_descriptor(int descriptor);

// One line for whoever set things up.
void complain(std::string_view what, std::string_view about);

}  // namespace tzvio_devices
