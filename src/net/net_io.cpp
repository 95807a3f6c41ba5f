// The bytes of a TCP connection.
#include <sys/socket.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "dispatch/bytes.h"
#include "dispatch/silence_budget.h"
#include "dispatch/system.h"
#include "net/net_port.h"
#include "status/collected_job.h"

namespace {

constexpr long kWriteBudget = 5000;  // milliseconds without progress
constexpr long kSendPause = 10;      // milliseconds

/// Never raises SIGPIPE: a lost connection must not end the till.
long send_once(PortHandle port, std::string_view bytes, int flags = 0) {
  const NetPorts::Use sock(port);
  return retry_interrupted(
      [&] { return send(sock, bytes.data(), bytes.size(), flags | MSG_NOSIGNAL); });
}

/// Sends as many bytes as there are, starting at an offset into them that may be negative; what
/// then lies outside goes as zero bytes.
long send_window(PortHandle port, std::string_view bytes, long offset) {
  if (offset == 0) return send_once(port, bytes);
  const long length = static_cast<long>(bytes.size());
  auto* const window = static_cast<char*>(std::calloc(bytes.size(), 1));
  if (window == nullptr) return kFailed;
  const long from = std::max(offset, 0L);
  const long to = std::min(offset + length, length);
  if (from < to) {
    std::memcpy(window + (from - offset), bytes.data() + from, static_cast<std::size_t>(to - from));
  }
  const long count = send_once(port, {window, bytes.size()});
  std::free(window);
  return count;
}

/// Whether a flag speaks of this port's connection: when the connection of another port is known
/// to be lost, the flag, which all ports share, speaks of that one.
bool is_lost(PortHandle port, const Field<int>& flag) {
  if (NetPorts::is_cut_off(port)) return true;
  return flag != 0 && !NetPorts::any_is_cut_off();
}

/// After a reconnection. Of a job that is cut off once more nothing is known.
long send_again(PortHandle port, std::string_view bytes) {
  const long count = send_once(port, bytes);
  if (count != static_cast<long>(bytes.size())) lose_sent_job(network_state);
  return count;
}

}  // namespace

std::optional<long> NetworkWriteAnew(PortHandle port, std::string_view bytes) {
  if (!is_lost(port, network_state.bPowerOFF)) return std::nullopt;
  if (!reconnect(port)) return kRefused;
  return send_again(port, bytes);
}

// Each send is given the full length, not what remains, and its result is added as it is, -1
// included: applications know the counts that come of it. A send that blocks takes everything or
// fails, so this shows only when something is wrong already.
long NetworkWritePort(PortHandle port, std::string_view bytes) {
  SilenceBudget budget(kWriteBudget);
  long sent = 0;
  while (sent < static_cast<long>(bytes.size())) {
    const long count = send_window(port, bytes, sent);
    pause_ms(kSendPause);
    sent += count;
    if (is_lost(port, network_state.bOffline)) {
      if (!reconnect(port)) return kRefused;
      send_again(port, bytes);
      return sent;
    }
    count > 0 ? budget.restore() : budget.spend(kSendPause);
    if (budget.exhausted()) return kRefused;
  }
  return sent;
}

// Neither blocks nor reconnects, both of which would wait for the monitor that calls it.
long NetworkResend(PortHandle port, std::string_view bytes) {
  SilenceBudget budget(kWriteBudget);
  std::size_t sent = 0;
  while (sent < bytes.size() && !budget.exhausted() && network_state.StopIt != 0) {
    const long count = send_once(port, rest_of(bytes, sent), MSG_DONTWAIT);
    if (count > 0) {
      sent += static_cast<std::size_t>(count);
      budget.restore();
    } else {
      pause_and_spend(budget, kSendPause);
    }
  }
  return static_cast<long>(sent);
}

void NetworkWriteNow(PortHandle port, std::string_view bytes) {
  // Whether it arrived shows in the answer, or in its absence.
  (void)send_once(port, bytes, MSG_DONTWAIT);
}

long NETReadPortPrv(PortHandle port, std::span<char> buffer, ReadPatience /*patience*/) {
  const NetPorts::Use sock(port);
  return retry_interrupted([&] { return recv(sock, buffer.data(), buffer.size(), 0); });
}

long NetworkPoll(PortHandle port, std::span<char> buffer) {
  const NetPorts::Use sock(port);
  if (!is_readable(sock)) return 0;
  const long count =
      retry_interrupted([&] { return recv(sock, buffer.data(), buffer.size(), MSG_DONTWAIT); });
  if (count > 0) {
    network_state.bPowerOFF = 0;
    network_state.bOffline = 0;
    return count;
  }
  // An orderly shutdown by the printer loses the connection as an error does.
  return count == -1 && errno == EAGAIN ? 0 : -1;
}
