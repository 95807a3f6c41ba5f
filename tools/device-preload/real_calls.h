// The C library's own functions, beneath those that this library puts over them.
#pragma once

#include <dlfcn.h>
#include <sys/types.h>
#include <termios.h>

#include <atomic>
#include <cstddef>

namespace tzvio_devices {

// Found at the first call; threads that look at once find the same.
template <typename Function>
class RealCall {
 public:
  constexpr explicit RealCall(const char* name) : name_(name) {}

  template <typename... Arguments>
  auto operator()(Arguments... arguments) {
    void* found = found_.load(std::memory_order_relaxed);
    if (found == nullptr) {
      found = dlsym(RTLD_NEXT, name_);
      found_.store(found, std::memory_order_relaxed);
    }
    return reinterpret_cast<Function*>(found)(arguments...);
  }

 private:
  const char* name_;
  std::atomic<void*> found_{nullptr};
};

inline constinit RealCall<int(const char*, int, ...)> real_open("open");
inline constinit RealCall<int(const char*, int, ...)> real_open64("open64");
inline constinit RealCall<int(int, const char*, int, ...)> real_openat("openat");
inline constinit RealCall<int(int, const char*, int, ...)> real_openat64("openat64");
inline constinit RealCall<ssize_t(int, void*, std::size_t)> real_read("read");
inline constinit RealCall<ssize_t(int, const void*, std::size_t)> real_write("write");
inline constinit RealCall<ssize_t(int, const void*, std::size_t, int)> real_send("send");
inline constinit RealCall<ssize_t(int, void*, std::size_t, int)> real_recv("recv");
inline constinit RealCall<int(int, unsigned long, ...)> real_ioctl("ioctl");
inline constinit RealCall<int(int)> real_isatty("isatty");
inline constinit RealCall<int(int, termios*)> real_tcgetattr("tcgetattr");
inline constinit RealCall<int(int, int, const termios*)> real_tcsetattr("tcsetattr");
inline constinit RealCall<int(int, int)> real_tcflush("tcflush");
inline constinit RealCall<int(int)> real_tcdrain("tcdrain");

}  // namespace tzvio_devices
