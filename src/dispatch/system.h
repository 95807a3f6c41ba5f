// The few habits that every system call of the library shares.
#pragma once

#include <fcntl.h>
#include <sys/select.h>
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

/// A till without a terminal may have closed its standard streams, and the next open gets their
/// numbers: messages of the till's would be printed on the receipt. The same file under another
/// number, or -1.
inline int beyond_standard_streams(int descriptor) {
  if (descriptor < 0 || descriptor > STDERR_FILENO) return descriptor;
  const int moved = fcntl(descriptor, F_DUPFD, STDERR_FILENO + 1);
  close(descriptor);
  return moved;
}

/// Whether select() can hold a descriptor: beyond its sets it would write outside of them.
inline bool select_can_hold(int descriptor) {
  return descriptor >= 0 && descriptor < FD_SETSIZE;
}

/// Whether a read would find something, the end or an error included. Also when select() fails:
/// the read then tells why.
inline bool is_readable(int descriptor) {
  if (!select_can_hold(descriptor)) return true;
  return retry_interrupted([&] {
           fd_set waiting;
           FD_ZERO(&waiting);
           FD_SET(descriptor, &waiting);
           timeval at_once{};
           return select(descriptor + 1, &waiting, nullptr, nullptr, &at_once);
         }) != 0;
}
