#include "trace.h"

#include <fcntl.h>
#include <pthread.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "real_calls.h"

namespace tzvio_devices {
namespace {

constexpr std::size_t kLongestHead = 256;
constexpr std::size_t kMostBytes = 1024;  // of one call

int file = -1;
pthread_once_t once = PTHREAD_ONCE_INIT;

void open_file() {
  const char* const path = getenv("TZVIO_DEVICE_TRACE");
  if (path == nullptr || *path == '\0') return;
  file = real_open64(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (file < 0) complain("cannot write the trace", path);
}

std::size_t write_head(char* text, std::string_view call, const Device& device, long result,
                       int error) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm parts{};
  localtime_r(&now.tv_sec, &parts);
  const int length = std::snprintf(text, kLongestHead, "%02d:%02d:%02d.%06ld %.*s %s = %ld%s%s",
                                   parts.tm_hour, parts.tm_min, parts.tm_sec, now.tv_nsec / 1000,
                                   static_cast<int>(call.size()), call.data(), device.name, result,
                                   result < 0 ? " " : "", result < 0 ? strerrorname_np(error) : "");
  return std::min(static_cast<std::size_t>(length), kLongestHead - 1);
}

char* write_hex(char* text, const unsigned char* bytes, std::size_t length) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (std::size_t i = 0; i < length; ++i) {
    *text++ = ' ';
    *text++ = kDigits[bytes[i] >> 4U];
    *text++ = kDigits[bytes[i] & 0xFU];
  }
  return text;
}

}  // namespace

// The line goes out in one call, so that those of several threads do not mix.
void trace(std::string_view call, const Device& device, long result, const void* bytes,
           std::size_t length) {
  constexpr std::string_view kMore = " ...";
  const int error = errno;
  pthread_once(&once, open_file);
  if (file >= 0) {
    char line[kLongestHead + 3 * kMostBytes + kMore.size() + 1];
    char* end = line + write_head(line, call, device, result, error);
    const std::size_t shown = std::min(length, kMostBytes);
    end = write_hex(end, static_cast<const unsigned char*>(bytes), shown);
    if (shown < length) end = std::copy(kMore.begin(), kMore.end(), end);
    *end++ = '\n';
    [[maybe_unused]] const ssize_t written =
        real_write(file, static_cast<const void*>(line), static_cast<std::size_t>(end - line));
  }
  errno = error;
}

}  // namespace tzvio_devices
