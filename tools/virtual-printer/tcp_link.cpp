#include "tcp_link.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <charconv>
#include <system_error>
#include <utility>

namespace virtual_printer {
namespace {

constexpr int kMostWaiting = 8;

// A printer's memory for what it has not printed yet; a sender has to notice when it is full.
constexpr int kReceiveBuffer = 16384;

sockaddr_in socket_address_of(const TcpAddress& address) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(address.port);
  inet_pton(AF_INET, address.host.c_str(), &result.sin_addr);
  return result;
}

std::uint16_t port_of(const Descriptor& socket) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  // The way in which every socket address goes through this interface.
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  check(getsockname(socket.number(), generic, &length), "cannot tell the port");
  return ntohs(address.sin_port);
}

bool is_host(const std::string& text) {
  in_addr ignored{};
  return inet_pton(AF_INET, text.c_str(), &ignored) == 1;
}

}  // namespace

std::optional<TcpAddress> parse_tcp_address(std::string_view text) {
  TcpAddress address;
  const std::size_t mark = text.find(':');
  if (mark != std::string_view::npos) {
    address.host = text.substr(0, mark);
    text.remove_prefix(mark + 1);
  }
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), address.port);
  const bool good = error == std::errc() && end == text.data() + text.size();
  return good && is_host(address.host) ? std::optional(address) : std::nullopt;
}

std::string name_of(const TcpAddress& address) {
  return "SOCKET:" + address.host + ":" + std::to_string(address.port);
}

TcpLink::TcpLink(TcpAddress address)
    : StreamLink(Sharing::kNewestAlone), address_(std::move(address)) {
  take_connections();
}

// To a printer that has just been switched on, a connection of before is unknown, and it says so.
void TcpLink::show(const Conditions& conditions) {
  const bool was_powered = std::exchange(powered_, !conditions.has(Condition::kPowerOff));
  if (powered_ && !was_powered) refuse_connections(HangUp::kReset);
  if (conditions.has(Condition::kConnectionLost)) {
    refuse_connections(HangUp::kReset);
  } else if (conditions.has(Condition::kConnectionClosed)) {
    refuse_connections(HangUp::kOrderly);
  } else {
    take_connections();
  }
}

// The port that was found free at the first time stays the printer's.
Descriptor TcpLink::listen_anew() {
  const std::string what = "cannot listen at " + address_.host + ":" + settings();
  Descriptor socket(check(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0), what));
  const int on = 1;
  setsockopt(socket.number(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  setsockopt(socket.number(), SOL_SOCKET, SO_RCVBUF, &kReceiveBuffer, sizeof kReceiveBuffer);
  const sockaddr_in address = socket_address_of(address_);
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  check(bind(socket.number(), generic, sizeof address), what);
  check(listen(socket.number(), kMostWaiting), what);
  address_.port = port_of(socket);
  return socket;
}

}  // namespace virtual_printer
