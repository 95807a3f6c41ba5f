// The few habits that every system call of the library shares.
#pragma once

#include <unistd.h>

#include <cerrno>

/// Repeats a call that a signal interrupted before it did anything: the till's own signal handlers
/// are no fault of the line. Not for close(): Linux has freed the descriptor even then.
template <typename Call>
auto retry_interrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

/// Waits; whole seconds with sleep(), because usleep() need not accept that much.
inline void pause_ms(long milliseconds) {
  if (milliseconds >= 1000) sleep(static_cast<unsigned>(milliseconds / 1000));
  if (milliseconds % 1000 > 0) usleep(static_cast<useconds_t>(milliseconds % 1000) * 1000);
}
