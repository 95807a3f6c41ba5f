#include "played_device.h"

#include <fcntl.h>
#include <linux/parport.h>
#include <linux/ppdev.h>
#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "real_calls.h"

namespace tzvio_devices {
namespace {

// Drivers hold back a page or so; a sender has to notice when the printer takes nothing.
constexpr int kDriversBuffer = 4096;

// The pace at which a blocking call looks again.
constexpr int kPauseMs = 1;

void pause_briefly() {
  poll(nullptr, 0, kPauseMs);
}

int fail(int error) {
  errno = error;
  return -1;
}

bool is_non_blocking(int descriptor) {
  return (fcntl(descriptor, F_GETFL) & O_NONBLOCK) != 0;
}

bool connect_to(const Device& device, int descriptor) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, device.socket, sizeof address.sun_path);
  // The way in which every socket address goes through this interface.
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  int result;
  do {
    result = connect(descriptor, generic, sizeof address);
  } while (result < 0 && errno == EINTR);
  return result == 0;
}

// What is left of a device whose printer has hung up.
int fail_as_gone(const Device& device) {
  return fail(device.kind == DeviceKind::kSerial ? EIO : ENODEV);
}

// As many of the bytes as the printer takes before it is busy.
std::size_t take_room(DevicePage& page, std::size_t wanted) {
  std::uint32_t room = page.room.load(std::memory_order_acquire);
  while (room != kNoLimit) {
    const auto taken = static_cast<std::uint32_t>(std::min<std::size_t>(room, wanted));
    if (page.room.compare_exchange_weak(room, room - taken)) return taken;
  }
  return wanted;
}

void give_back_room(DevicePage& page, std::size_t length) {
  std::uint32_t room = page.room.load(std::memory_order_acquire);
  while (room != kNoLimit &&
         !page.room.compare_exchange_weak(room, room + static_cast<std::uint32_t>(length))) {
  }
}

// No reader ends a program that writes to a device.
ssize_t send_bytes(const Device& device, int descriptor, const void* bytes, std::size_t length) {
  // Not the program's own send(), which may count or record what it sends itself.
  const ssize_t sent = real_send(descriptor, bytes, length, MSG_NOSIGNAL);
  if (sent < 0 && (errno == EPIPE || errno == ECONNRESET)) return fail_as_gone(device);
  return sent;
}

bool is_claimed(const Device& device) {
  return device.shared().claimed.load(std::memory_order_acquire) != 0;
}

bool is_busy(const Device& device) {
  return device.shared().room.load(std::memory_order_acquire) == 0 || device.shows(kUnpowered);
}

// A write takes the port back from nibble mode; a printer that is busy takes nothing of it.
ssize_t write_parallel(Device& device, int descriptor, const void* bytes, std::size_t length) {
  if (!is_claimed(device)) return fail(EINVAL);
  DevicePage& page = device.shared();
  page.nibble_mode.store(0, std::memory_order_release);
  if (device.shows(kTakesNothing)) return 0;
  while (is_busy(device)) {
    if (is_non_blocking(descriptor)) return 0;
    pause_briefly();
  }
  const std::size_t taken = take_room(page, length);
  const ssize_t sent = send_bytes(device, descriptor, bytes, taken);
  give_back_room(page, taken - static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
  return sent < 0 && errno == EAGAIN ? 0 : sent;
}

unsigned char status_register(const Device& device) {
  unsigned register_bits = 0;
  if (!is_busy(device)) register_bits |= PARPORT_STATUS_BUSY;  // inverted: set means not busy
  if (device.shows(kUnpowered)) return static_cast<unsigned char>(register_bits);
  if (!device.shows(kError)) register_bits |= PARPORT_STATUS_ERROR;  // inverted, too
  if (!device.shows(kOffline)) register_bits |= PARPORT_STATUS_SELECT;
  if (device.shows(kPaperOut)) register_bits |= PARPORT_STATUS_PAPEROUT;
  return static_cast<unsigned char>(register_bits | PARPORT_STATUS_ACK);
}

bool grants_nibble_mode(Device& device) {
  if (device.shows(kNibbleRefused) || device.shows(kUnpowered)) return false;
  std::atomic<std::uint32_t>& refusals = device.shared().nibble_refusals;
  std::uint32_t left = refusals.load(std::memory_order_acquire);
  while (left > 0) {
    if (refusals.compare_exchange_weak(left, left - 1)) return false;
  }
  return true;
}

int negotiate(Device& device, int mode) {
  if (mode == IEEE1284_MODE_NIBBLE && !grants_nibble_mode(device)) return fail(EIO);
  if (mode != IEEE1284_MODE_NIBBLE && mode != IEEE1284_MODE_COMPAT) return fail(EIO);
  device.shared().nibble_mode.store(mode == IEEE1284_MODE_NIBBLE ? 1 : 0,
                                    std::memory_order_release);
  return 0;
}

int claim(Device& device) {
  if (device.shows(kClaimRefused)) return fail(ENXIO);
  if (device.shared().claimed.exchange(1) != 0) return fail(EINVAL);
  return 0;
}

int control_parallel(Device& device, int descriptor, std::uint32_t request, void* argument) {
  if (request == PPCLAIM) return claim(device);
  const bool is_played =
      request == PPRELEASE || request == PPNEGOT || request == PPRSTATUS || request == PPRDATA;
  if (!is_played) return real_ioctl(descriptor, static_cast<unsigned long>(request), argument);
  if (!is_claimed(device)) return fail(EINVAL);
  switch (request) {
    case PPNEGOT:
      return negotiate(device, *static_cast<const int*>(argument));
    case PPRSTATUS:
      *static_cast<unsigned char*>(argument) = status_register(device);
      return 0;
    case PPRDATA:
      *static_cast<unsigned char*>(argument) = 0;
      return 0;
    default:
      device.shared().claimed.store(0, std::memory_order_release);
      return 0;
  }
}

int modem_lines(const Device& device) {
  const int printers = is_busy(device) ? 0 : TIOCM_DSR | TIOCM_CTS | TIOCM_CAR;
  return printers | TIOCM_DTR | TIOCM_RTS;
}

int control_serial(Device& device, int descriptor, std::uint32_t request, void* argument) {
  switch (request) {
    case TIOCMGET:
      *static_cast<int*>(argument) = modem_lines(device);
      return 0;
    case TIOCMSET:
    case TIOCMBIS:
    case TIOCMBIC:
      return 0;  // the printer looks at none of the till's lines
    default:
      return real_ioctl(descriptor, static_cast<unsigned long>(request), argument);
  }
}

}  // namespace

int open_device(Device& device, int flags) {
  if (device.shows(kGone)) return fail(ENOENT);
  const int descriptor =
      socket(AF_UNIX, SOCK_STREAM | ((flags & O_CLOEXEC) != 0 ? SOCK_CLOEXEC : 0), 0);
  if (descriptor < 0) return -1;
  setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &kDriversBuffer, sizeof kDriversBuffer);
  if (!connect_to(device, descriptor)) {
    close(descriptor);
    if (device.shows(kGone)) return fail(ENOENT);  // it went meanwhile
    complain("no virtual printer listens at", device.socket);
    return fail(ENODEV);
  }
  device.shared().claimed.store(0, std::memory_order_release);
  device.shared().nibble_mode.store(0, std::memory_order_release);
  if ((flags & O_NONBLOCK) != 0) fcntl(descriptor, F_SETFL, O_RDWR | O_NONBLOCK);
  return descriptor;
}

ssize_t read_device(Device& device, int descriptor, void* buffer, std::size_t length) {
  if (device.kind == DeviceKind::kParallel) {
    if (!is_claimed(device)) return fail(EINVAL);
    if (device.shared().nibble_mode.load(std::memory_order_acquire) == 0) return fail(EIO);
  }
  const ssize_t received = real_read(descriptor, buffer, length);
  const bool hung_up = received == 0 ? length > 0 : received < 0 && errno == ECONNRESET;
  return hung_up ? fail_as_gone(device) : received;
}

ssize_t write_device(Device& device, int descriptor, const void* bytes, std::size_t length) {
  if (device.kind == DeviceKind::kParallel) {
    return write_parallel(device, descriptor, bytes, length);
  }
  if (device.kind == DeviceKind::kUsb && device.shows(kTakesNothing)) return 0;
  return send_bytes(device, descriptor, bytes, length);
}

int control_device(Device& device, int descriptor, std::uint32_t request, void* argument) {
  switch (device.kind) {
    case DeviceKind::kParallel:
      return control_parallel(device, descriptor, request, argument);
    case DeviceKind::kSerial:
      return control_serial(device, descriptor, request, argument);
    default:
      return real_ioctl(descriptor, static_cast<unsigned long>(request), argument);
  }
}

void get_line_settings(const Device& device, termios& settings) {
  std::uint32_t words[kLineSettingsWords];
  for (std::size_t i = 0; i < kLineSettingsWords; ++i) {
    words[i] = device.shared().line_settings[i].load(std::memory_order_relaxed);
  }
  static_assert(sizeof settings == sizeof words);
  std::memcpy(&settings, words, sizeof words);
}

void set_line_settings(Device& device, const termios& settings) {
  std::uint32_t words[kLineSettingsWords];
  std::memcpy(words, &settings, sizeof words);
  for (std::size_t i = 0; i < kLineSettingsWords; ++i) {
    device.shared().line_settings[i].store(words[i], std::memory_order_relaxed);
  }
}

void discard_input(int descriptor) {
  char bytes[256];
  while (real_recv(descriptor, bytes, sizeof bytes, MSG_DONTWAIT) > 0) {
  }
}

// Until the printer has taken every byte off the line.
int wait_for_output(int descriptor) {
  int waiting = 0;
  while (real_ioctl(descriptor, static_cast<unsigned long>(SIOCOUTQ), &waiting) == 0) {
    if (waiting == 0) return 0;
    pause_briefly();
  }
  return -1;
}

}  // namespace tzvio_devices
