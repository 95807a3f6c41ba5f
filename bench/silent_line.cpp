#include "silent_line.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdarg>
#include <cstring>
const char* const kSilentPort = "/dev/ttyS-silent";

namespace {

constexpr int kLine = 900;  // above every descriptor of the program's own

template <typename Function>
Function* libc(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  if (std::strcmp(path, kSilentPort) == 0) return kLine;
  va_list arguments;
  va_start(arguments, flags);
  const auto mode = static_cast<mode_t>(va_arg(arguments, int));
  va_end(arguments);
  return libc<int(const char*, int, ...)>("open")(path, flags, mode);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  if (descriptor == kLine) return static_cast<ssize_t>(size);
  return libc<ssize_t(int, const void*, size_t)>("write")(descriptor, bytes, size);
}

ssize_t read(int descriptor, void* buffer, size_t size) {
  if (descriptor != kLine) {
    return libc<ssize_t(int, void*, size_t)>("read")(descriptor, buffer, size);
  }
  *static_cast<char*>(buffer) = '\x12';
  return 1;
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  if (descriptor != kLine)
    return libc<int(int, unsigned long, ...)>("ioctl")(descriptor, request, argument);
  *static_cast<int*>(argument) = 1;
  return 0;
}

int tcgetattr(int, termios*) noexcept {
  return 0;
}
int tcsetattr(int, int, const termios*) noexcept {
  return 0;
}
int tcflush(int, int) noexcept {
  return 0;
}
int tcdrain(int) {
  return 0;
}

int usleep(useconds_t) {
  return 0;
}

}  // extern "C"
