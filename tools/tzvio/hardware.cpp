#include "hardware.h"

#include <fcntl.h>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <fstream>

namespace cli {
namespace {

namespace fs = std::filesystem;

std::string first_line_of(const fs::path& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  return line;
}

bool is_process(const std::string& name) {
  return !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
}

bool has_open(const fs::path& process, dev_t device) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(process / "fd", error)) {
    struct stat open_file {};
    if (stat(entry.path().c_str(), &open_file) == 0 && S_ISCHR(open_file.st_mode) &&
        open_file.st_rdev == device) {
      return true;
    }
  }
  return false;
}

}  // namespace

Hardware hardware_behind(Link link, const std::string& path) {
  if (link != Link::kSerial) return Hardware::kUnknown;
  const int device = open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (device < 0) return Hardware::kUnknown;
  serial_struct port{};
  const bool is_known = ioctl(device, TIOCGSERIAL, &port) == 0;
  close(device);
  if (!is_known) return Hardware::kUnknown;
  return port.type == PORT_UNKNOWN ? Hardware::kNone : Hardware::kThere;
}

bool has_driver(const std::string& name) {
  return fs::exists("/sys/module/" + name);
}

UsbPrinters usb_printers() {
  constexpr const char* kPrinterClass = "07";
  UsbPrinters found;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/sys/bus/usb/devices", error)) {
    if (first_line_of(entry.path() / "bInterfaceClass") != kPrinterClass) continue;
    ++found.plugged_in;
    std::error_code no_driver;
    const fs::path driver = fs::read_symlink(entry.path() / "driver", no_driver);
    if (driver.filename() == "usblp") ++found.served;
  }
  return found;
}

std::vector<std::string> users_of(const std::string& path) {
  std::vector<std::string> users;
  struct stat device {};
  if (stat(path.c_str(), &device) != 0 || !S_ISCHR(device.st_mode)) return users;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/proc", error)) {
    const std::string id = entry.path().filename().string();
    if (!is_process(id) || id == std::to_string(getpid())) continue;
    if (has_open(entry.path(), device.st_rdev)) {
      users.push_back(first_line_of(entry.path() / "comm") + " (process " + id + ")");
    }
  }
  return users;
}

}  // namespace cli
