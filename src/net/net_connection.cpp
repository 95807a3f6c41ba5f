// Making a TCP connection.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdio>
#include <cstdlib>

#include "dispatch/system.h"
#include "net/net_port.h"

namespace {

/// A socket's flags cannot fail to be had: if they do, the process ends as by an assertion, in
/// every type of build.
void check_flag_call(int result, const char* assertion) {
  if (result != -1) return;
  std::fprintf(stderr, "%s: Assertion `%s' failed.\n", program_invocation_short_name, assertion);
  std::abort();
}

void set_blocking(int sock, bool blocking, const char* assertion) {
  int flags = fcntl(sock, F_GETFL, 0);
  check_flag_call(flags, assertion);
  flags = blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK;
  check_flag_call(fcntl(sock, F_SETFL, flags), assertion);
}

/// Results do not count: a system may refuse any of them and print all the same. The send time-out
/// is refused by most, being no timeval.
void set_options(int sock) {
  constexpr linger kReset{.l_onoff = 1, .l_linger = 0};
  constexpr int kSmallestBuffer = 0;
  constexpr int kSendTimeout = 1;
  setsockopt(sock, SOL_SOCKET, SO_LINGER, &kReset, sizeof kReset);
  setsockopt(sock, SOL_SOCKET, SO_SNDBUF, &kSmallestBuffer, sizeof kSmallestBuffer);
  setsockopt(sock, SOL_SOCKET, SO_SNDTIMEO, &kSendTimeout, sizeof kSendTimeout);
}

/// Whether a pending connection came about within a second. Writable counts as connected: an error
/// shows in the first exchange.
bool is_writable_within_a_second(int sock) {
  fd_set pending;
  timeval left{.tv_sec = 1, .tv_usec = 0};
  return retry_interrupted([&] {
           FD_ZERO(&pending);
           FD_SET(sock, &pending);
           return select(sock + 1, nullptr, &pending, nullptr, &left);
         }) > 0;
}

sockaddr_in address_of(const NETPort& printer) {
  sockaddr_in servAddr{};
  servAddr.sin_family = AF_INET;
  servAddr.sin_addr.s_addr = inet_addr(printer.RealIP);
  servAddr.sin_port = htons(static_cast<uint16_t>(printer.portnum));
  return servAddr;
}

Connection give_up_socket(int sock) {
  close(sock);
  return {};
}

}  // namespace

Connection connect_to(const NETPort& printer) {
  const int sock =
      beyond_standard_streams(retry_interrupted([] { return socket(AF_INET, SOCK_STREAM, 0); }));
  if (sock == -1) return {};
  // select() could not wait for it.
  if (!select_can_hold(sock)) return give_up_socket(sock);
  set_options(sock);
  set_blocking(sock, false, "val != -1");
  const sockaddr_in servAddr = address_of(printer);
  if (connect(sock, reinterpret_cast<const sockaddr*>(&servAddr), sizeof servAddr) == 0) {
    return {.sock = sock, .at_once = true};
  }
  // A signal does not end the attempt; it goes on as if it had not been waited for.
  if (errno != EINPROGRESS && errno != EINTR) {
    set_blocking(sock, true, "valv != -1");
    return give_up_socket(sock);
  }
  if (!is_writable_within_a_second(sock)) return give_up_socket(sock);
  set_blocking(sock, true, "val != -1");
  return {.sock = sock};
}
