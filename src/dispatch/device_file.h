// Device nodes, for the links that are one.
#pragma once

#include <fcntl.h>
#include <termios.h>

#include "dispatch/system.h"

/// The descriptor, or -1.
inline int open_device_file(const char* path, int flags) {
  return retry_interrupted([&] { return open(path, flags); });
}

/// Discards what is still under way in both directions and closes.
inline void flush_and_close(int descriptor) {
  tcflush(descriptor, TCIOFLUSH);
  close(descriptor);
}
