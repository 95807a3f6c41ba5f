// The printer's end of the devices under test, in the test's own process.
#pragma once

#include <string>
#include <string_view>

#include "device_page.h"

namespace tzvio_devices {

// Names of devices, and what the environment has to say for them to be played.
inline constexpr const char* kSerialName = "/dev/ttyS-preload-test";
inline constexpr const char* kParallelName = "/dev/lp-preload-test";
inline constexpr const char* kUsbName = "/dev/usb/lp-preload-test";
inline constexpr const char* kFolderVariable = "TZVIO_DEVICES_TEST_FOLDER";

std::string socket_of(std::string_view name);
std::string environment_for_all_devices();

// Listens for one device. A till that opens it is connected once it has.
class FakePrinter {
 public:
  explicit FakePrinter(const char* name);
  FakePrinter(const FakePrinter&) = delete;
  FakePrinter& operator=(const FakePrinter&) = delete;
  ~FakePrinter();

  DevicePage& page() { return *page_; }
  const char* name() const { return name_; }

  // The printer's end of a device that has been opened.
  void take_connection();
  void hang_up();

  void send(std::string_view bytes) const;
  // Waits for so many bytes.
  std::string receive(std::size_t length) const;
  // What waits, without waiting.
  std::size_t waiting() const;

 private:
  const char* name_;
  DevicePage* page_;
  int listener_;
  int connection_ = -1;
};

}  // namespace tzvio_devices
