// The calls that stand before the C library's. Each looks whether it means a played device, and
// hands everything else on as it came.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "played_device.h"
#include "real_calls.h"
#include "trace.h"

using namespace tzvio_devices;

namespace {

// `go_on` opens what is not played.
template <typename GoOn>
int open_by_name(const char* name, int flags, const GoOn& go_on) {
  Device* device = nullptr;
  switch (find_by_name(name, device)) {
    case Lookup::kNotPlayed:
      return go_on();
    case Lookup::kBadConfiguration:
      errno = ENODEV;
      return -1;
    default:
      break;
  }
  const int descriptor = open_device(*device, flags);
  trace("open", *device, descriptor);
  return descriptor;
}

// The device behind a descriptor if it is a serial one.
Device* find_serial(int descriptor) {
  Device* const device = find_by_descriptor(descriptor);
  return device != nullptr && device->kind == DeviceKind::kSerial ? device : nullptr;
}

}  // namespace

#pragma GCC visibility push(default)

extern "C" {

// A mode that was not given is handed on as whatever stands in its place: nobody looks at it.
int open(const char* name, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const auto mode = va_arg(rest, mode_t);
  va_end(rest);
  return open_by_name(name, flags, [&] { return real_open(name, flags, mode); });
}

int open64(const char* name, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const auto mode = va_arg(rest, mode_t);
  va_end(rest);
  return open_by_name(name, flags, [&] { return real_open64(name, flags, mode); });
}

int openat(int folder, const char* name, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const auto mode = va_arg(rest, mode_t);
  va_end(rest);
  return open_by_name(name, flags, [&] { return real_openat(folder, name, flags, mode); });
}

int openat64(int folder, const char* name, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const auto mode = va_arg(rest, mode_t);
  va_end(rest);
  return open_by_name(name, flags, [&] { return real_openat64(folder, name, flags, mode); });
}

// What a program built with fortified calls has in place of those above.
int __open_2(const char* name, int flags) {
  return open_by_name(name, flags, [&] { return real_open(name, flags, 0); });
}

int __open64_2(const char* name, int flags) {
  return open_by_name(name, flags, [&] { return real_open64(name, flags, 0); });
}

ssize_t read(int descriptor, void* buffer, size_t length) {
  Device* const device = find_by_descriptor(descriptor);
  if (device == nullptr) return real_read(descriptor, buffer, length);
  const ssize_t received = read_device(*device, descriptor, buffer, length);
  trace("read", *device, received, buffer, received > 0 ? static_cast<size_t>(received) : 0);
  return received;
}

ssize_t __read_chk(int descriptor, void* buffer, size_t length, size_t room) {
  if (length > room) abort();
  return read(descriptor, buffer, length);
}

ssize_t write(int descriptor, const void* bytes, size_t length) {
  Device* const device = find_by_descriptor(descriptor);
  if (device == nullptr) return real_write(descriptor, bytes, length);
  const ssize_t sent = write_device(*device, descriptor, bytes, length);
  trace("write", *device, sent, bytes, sent > 0 ? static_cast<size_t>(sent) : 0);
  return sent;
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
  va_list rest;
  va_start(rest, request);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  Device* const device = find_by_descriptor(descriptor);
  if (device == nullptr) return real_ioctl(descriptor, request, argument);
  const auto code = static_cast<std::uint32_t>(request);
  const int result = control_device(*device, descriptor, code, argument);
  char call[24];
  std::snprintf(call, sizeof call, "ioctl 0x%X", code);
  trace(call, *device, result);
  return result;
}

int isatty(int descriptor) noexcept {
  return find_serial(descriptor) != nullptr ? 1 : real_isatty(descriptor);
}

int tcgetattr(int descriptor, termios* settings) noexcept {
  Device* const device = find_serial(descriptor);
  if (device == nullptr) return real_tcgetattr(descriptor, settings);
  get_line_settings(*device, *settings);
  trace("tcgetattr", *device, 0);
  return 0;
}

int tcsetattr(int descriptor, int when, const termios* settings) noexcept {
  Device* const device = find_serial(descriptor);
  if (device == nullptr) return real_tcsetattr(descriptor, when, settings);
  set_line_settings(*device, *settings);
  if (when == TCSAFLUSH) discard_input(descriptor);
  trace("tcsetattr", *device, 0);
  return 0;
}

// What was written is on the line already, so there is no output to discard.
int tcflush(int descriptor, int queue) noexcept {
  Device* const device = find_serial(descriptor);
  if (device == nullptr) return real_tcflush(descriptor, queue);
  if (queue != TCOFLUSH) discard_input(descriptor);
  trace("tcflush", *device, 0);
  return 0;
}

int tcdrain(int descriptor) {
  Device* const device = find_serial(descriptor);
  if (device == nullptr) return real_tcdrain(descriptor);
  const int result = wait_for_output(descriptor);
  trace("tcdrain", *device, result);
  return result;
}

}  // extern "C"

#pragma GCC visibility pop
