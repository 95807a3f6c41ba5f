// The calls that the library makes, defined by the test program: for a plugged device they go to
// the scripted kernel, for everything else to libc.
#include <dlfcn.h>
#include <pthread.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <termios.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdint>

#include "support/real_devices.h"
#include "support/scripted_kernel.h"

namespace {

using testkit::Kernel;

Kernel& kernel() {
  return Kernel::instance();
}

/// libc's own definition of a function.
template <typename Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  if (kernel().active() && kernel().knows(path)) return kernel().open(path, flags);
  va_list arguments;
  va_start(arguments, flags);
  const auto mode = static_cast<mode_t>(va_arg(arguments, int));
  va_end(arguments);
  static const auto libc = real<int(const char*, int, ...)>("open");
  return libc(testkit::device_behind(path), flags, mode);
}

int close(int descriptor) {
  if (kernel().owns(descriptor)) return kernel().close(descriptor);
  static const auto libc = real<int(int)>("close");
  return libc(descriptor);
}

ssize_t read(int descriptor, void* buffer, size_t size) {
  if (kernel().owns(descriptor)) return kernel().read(descriptor, buffer, size);
  static const auto libc = real<ssize_t(int, void*, size_t)>("read");
  return libc(descriptor, buffer, size);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  if (kernel().owns(descriptor)) return kernel().write(descriptor, bytes, size);
  static const auto libc = real<ssize_t(int, const void*, size_t)>("write");
  return libc(descriptor, bytes, size);
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  if (kernel().owns(descriptor)) return kernel().ioctl(descriptor, request, argument);
  if (testkit::play_parallel_request(request, argument)) return 0;
  static const auto libc = real<int(int, unsigned long, ...)>("ioctl");
  return libc(descriptor, request, argument);
}

int socket(int domain, int type, int protocol) noexcept {
  if (kernel().active() && domain == AF_INET && kernel().has_network()) return kernel().socket();
  static const auto libc = real<int(int, int, int)>("socket");
  return libc(domain, type, protocol);
}

int connect(int descriptor, const sockaddr* address, socklen_t size) {
  if (kernel().owns(descriptor)) return kernel().connect(descriptor, address);
  static const auto libc = real<decltype(connect)>("connect");
  return libc(descriptor, address, size);
}

int setsockopt(int descriptor, int level, int option, const void* value, socklen_t size) noexcept {
  if (kernel().owns(descriptor)) return kernel().setsockopt(descriptor, option, value, size);
  static const auto libc = real<int(int, int, int, const void*, socklen_t)>("setsockopt");
  return libc(descriptor, level, option, value, size);
}

int fcntl(int descriptor, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  if (kernel().owns(descriptor)) {
    return kernel().fcntl(descriptor, command,
                          static_cast<int>(reinterpret_cast<intptr_t>(argument)));
  }
  static const auto libc = real<int(int, int, ...)>("fcntl");
  return libc(descriptor, command, argument);
}

int select(int count, fd_set* reads, fd_set* writes, fd_set* exceptions, timeval* timeout) {
  const auto asks_for_ours = [count](const fd_set* set) {
    for (int i = 0; set != nullptr && i < count; ++i) {
      if (FD_ISSET(i, set) && kernel().owns(i)) return true;
    }
    return false;
  };
  if (asks_for_ours(reads) || asks_for_ours(writes)) {
    return kernel().select(count, reads, writes, timeout);
  }
  static const auto libc = real<decltype(select)>("select");
  return libc(count, reads, writes, exceptions, timeout);
}

ssize_t send(int descriptor, const void* bytes, size_t size, int flags) {
  if (kernel().owns(descriptor)) return kernel().send(descriptor, bytes, size, flags);
  static const auto libc = real<decltype(send)>("send");
  return libc(descriptor, bytes, size, flags);
}

ssize_t recv(int descriptor, void* buffer, size_t size, int flags) {
  if (kernel().owns(descriptor)) return kernel().recv(descriptor, buffer, size, flags);
  static const auto libc = real<decltype(recv)>("recv");
  return libc(descriptor, buffer, size, flags);
}

int tcgetattr(int descriptor, termios* line) noexcept {
  if (kernel().owns(descriptor)) return kernel().tcgetattr(descriptor, line);
  static const auto libc = real<int(int, termios*)>("tcgetattr");
  return libc(descriptor, line);
}

int tcsetattr(int descriptor, int actions, const termios* line) noexcept {
  if (kernel().owns(descriptor)) return kernel().tcsetattr(descriptor, actions, line);
  static const auto libc = real<int(int, int, const termios*)>("tcsetattr");
  return libc(descriptor, actions, line);
}

int tcflush(int descriptor, int queue) noexcept {
  if (kernel().owns(descriptor)) return kernel().tcflush(descriptor, queue);
  static const auto libc = real<int(int, int)>("tcflush");
  return libc(descriptor, queue);
}

int tcdrain(int descriptor) {
  if (kernel().owns(descriptor)) return kernel().tcdrain(descriptor);
  static const auto libc = real<int(int)>("tcdrain");
  return libc(descriptor);
}

int cfsetispeed(termios* line, speed_t speed) noexcept {
  if (kernel().active() && kernel().fails("cfsetispeed")) return -1;
  static const auto libc = real<int(termios*, speed_t)>("cfsetispeed");
  return libc(line, speed);
}

int cfsetospeed(termios* line, speed_t speed) noexcept {
  if (kernel().active() && kernel().fails("cfsetospeed")) return -1;
  static const auto libc = real<int(termios*, speed_t)>("cfsetospeed");
  return libc(line, speed);
}

int usleep(useconds_t microseconds) {
  if (!kernel().active()) {
    static const auto libc = real<int(useconds_t)>("usleep");
    return libc(microseconds / static_cast<useconds_t>(testkit::sleep_speed()));
  }
  kernel().sleep_us("usleep", microseconds);
  return 0;
}

unsigned int sleep(unsigned int seconds) {
  if (!kernel().active()) {
    // Through usleep, because seconds do not divide.
    usleep(seconds * 1000000);
    return 0;
  }
  kernel().sleep_us("sleep", int64_t{seconds} * 1000000);
  return 0;
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) noexcept {
  if (kernel().active()) return kernel().create_thread(thread, attributes, start, argument);
  static const auto libc = real<decltype(pthread_create)>("pthread_create");
  return libc(thread, attributes, start, argument);
}

int pthread_join(pthread_t thread, void** result) {
  if (kernel().active()) return kernel().join_thread(thread, result);
  static const auto libc = real<decltype(pthread_join)>("pthread_join");
  return libc(thread, result);
}

}  // extern "C"
