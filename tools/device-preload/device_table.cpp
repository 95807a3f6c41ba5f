#include "device_table.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "real_calls.h"

namespace tzvio_devices {
namespace {

constexpr int kMostDevices = 16;
constexpr const char* kVariable = "TZVIO_DEVICES";

Device devices[kMostDevices];
int device_count = 0;  // -1: the environment is wrong
pthread_once_t once = PTHREAD_ONCE_INIT;

bool copy_name(std::string_view text, char (&target)[kLongestName]) {
  if (text.empty() || text.size() >= kLongestName) return false;
  std::memcpy(target, text.data(), text.size());
  target[text.size()] = '\0';
  return true;
}

// The part before the mark, and the rest without it. What the string view offers for this can
// throw, and there is no C++ run-time here.
std::string_view cut_off(std::string_view& text, char mark) {
  const std::size_t length = std::min(text.find(mark), text.size());
  const std::string_view part(text.data(), length);
  text.remove_prefix(std::min(length + 1, text.size()));
  return part;
}

bool parse_device(std::string_view text, Device& device) {
  const std::string_view name = cut_off(text, '=');
  device.kind = kind_of(name);
  return device.kind != DeviceKind::kNone && copy_name(name, device.name) &&
         copy_name(text, device.socket);
}

void read_environment() {
  const char* const text = getenv(kVariable);
  std::string_view wrong;
  device_count = text == nullptr ? 0 : parse_devices(text, devices, kMostDevices, wrong);
  if (device_count < 0) complain("TZVIO_DEVICES must be NAME=SOCKET:NAME=SOCKET..., not", wrong);
}

DevicePage* map_page(const Device& device) {
  char path[kLongestName + 8];
  std::snprintf(path, sizeof path, "%s.page", device.socket);
  const int file = real_open64(path, O_RDWR | O_CLOEXEC);
  if (file < 0) return nullptr;
  struct stat64 status {};
  void* memory = MAP_FAILED;
  if (fstat64(file, &status) == 0 && status.st_size >= off64_t{sizeof(DevicePage)}) {
    memory = mmap(nullptr, sizeof(DevicePage), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  }
  close(file);
  if (memory == MAP_FAILED) return nullptr;
  auto* const page = static_cast<DevicePage*>(memory);
  if (page->version.load(std::memory_order_acquire) == DevicePage::kVersion) return page;
  munmap(memory, sizeof(DevicePage));
  return nullptr;
}

// The first of two threads that map the page at once provides it for both.
bool has_page(Device& device) {
  if (device.page.load(std::memory_order_acquire) != nullptr) return true;
  DevicePage* const page = map_page(device);
  if (page == nullptr) return false;
  DevicePage* expected = nullptr;
  if (!device.page.compare_exchange_strong(expected, page)) munmap(page, sizeof(DevicePage));
  return true;
}

}  // namespace

int parse_devices(std::string_view text, Device* devices, int most, std::string_view& wrong) {
  int count = 0;
  while (!text.empty()) {
    wrong = cut_off(text, ':');
    if (count == most || !parse_device(wrong, devices[count])) return -1;
    ++count;
  }
  return count;
}

Lookup find_by_name(const char* name, Device*& device) {
  pthread_once(&once, read_environment);
  if (name == nullptr) return Lookup::kNotPlayed;
  if (device_count < 0) {
    return kind_of(name) == DeviceKind::kNone ? Lookup::kNotPlayed : Lookup::kBadConfiguration;
  }
  for (int i = 0; i < device_count; ++i) {
    if (std::strcmp(devices[i].name, name) != 0) continue;
    device = &devices[i];
    if (has_page(*device)) return Lookup::kPlayed;
    complain("no virtual printer is at", device->socket);
    return Lookup::kBadConfiguration;
  }
  return Lookup::kNotPlayed;
}

Device* find_by_descriptor(int descriptor) {
  pthread_once(&once, read_environment);
  if (device_count <= 0) return nullptr;
  const int error = errno;
  sockaddr_un peer{};
  socklen_t length = sizeof peer;
  auto* const address = reinterpret_cast<sockaddr*>(&peer);
  const bool connected = getpeername(descriptor, address, &length) == 0;
  errno = error;
  if (!connected || peer.sun_family != AF_UNIX) return nullptr;
  for (int i = 0; i < device_count; ++i) {
    if (std::strncmp(devices[i].socket, peer.sun_path, sizeof peer.sun_path) != 0) continue;
    return has_page(devices[i]) ? &devices[i] : nullptr;
  }
  return nullptr;
}

void complain(std::string_view what, std::string_view about) {
  dprintf(STDERR_FILENO, "libtzvio-devices: %.*s %.*s\n", static_cast<int>(what.size()),
          what.data(), static_cast<int>(about.size()), about.data());
}

}  // namespace tzvio_devices
