// Device nodes, for the links that are one.
#pragma once

#include <fcntl.h>
#include <termios.h>

#include <span>
#include <string_view>

#include "dispatch/system.h"

/// The descriptor, or -1.
inline int open_device_file(const char* path, int flags) {
  return beyond_standard_streams(retry_interrupted([&] { return open(path, flags); }));
}

/// The count, or -1.
inline long write_once(int device, std::string_view bytes) {
  return retry_interrupted([&] { return write(device, bytes.data(), bytes.size()); });
}

/// The count, or -1.
inline long read_once(int device, std::span<char> buffer) {
  return retry_interrupted([&] { return read(device, buffer.data(), buffer.size()); });
}

/// Discards what is still under way in both directions and closes.
inline void flush_and_close(int device) {
  tcflush(device, TCIOFLUSH);
  close(device);
}
