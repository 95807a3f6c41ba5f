#include "stream_link.h"

#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>

#include "transfer.h"

namespace virtual_printer {
namespace {

std::size_t waiting_at(const Descriptor& socket) {
  int length = 0;
  return ioctl(socket.number(), FIONREAD, &length) < 0 ? 0 : static_cast<std::size_t>(length);
}

}  // namespace

std::vector<int> StreamLink::descriptors() const {
  std::vector<int> numbers;
  if (takes_connections()) numbers.push_back(listener_.number());
  for (const Connection& connection : connections_) numbers.push_back(connection.socket.number());
  return numbers;
}

// The oldest connection first: what was sent before is printed before.
std::string StreamLink::read_waiting(std::size_t most) {
  accept_new();
  std::size_t index = 0;
  while (index < connections_.size()) {
    Connection& connection = connections_[index];
    const std::size_t wanted = std::min(most, connection.left.value_or(most));
    const bool is_done = connection.left && wanted == 0;
    Received received = is_done ? Received{{}, true} : read_some(connection.socket, wanted);
    if (!received.bytes.empty()) {
      if (connection.left) *connection.left -= received.bytes.size();
      return std::move(received.bytes);
    }
    if (received.ended) {
      drop(index);
    } else {
      ++index;
    }
  }
  return {};
}

std::size_t StreamLink::write(std::string_view bytes) {
  return connections_.empty() ? 0 : write_some(connections_.back().socket, bytes);
}

void StreamLink::take_connections() {
  if (!takes_connections()) listener_ = listen_anew();
}

void StreamLink::refuse_connections(HangUp how) {
  if (!takes_connections()) return;
  accept_new();  // whoever has connected already is hung up on as well
  stop_listening();
  hung_up_ = hung_up_ || !connections_.empty();
  for (Connection& connection : connections_) hang_up(std::move(connection.socket), how);
  connections_.clear();
}

void StreamLink::accept_new() {
  while (takes_connections()) {
    Descriptor socket(accept4(listener_.number(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (socket.number() < 0) return;
    if (sharing_ == Sharing::kNewestAlone && !connections_.empty()) {
      Connection& replaced = connections_.back();
      replaced.left = waiting_at(replaced.socket);
    }
    connections_.push_back({std::move(socket), std::nullopt});
  }
}

void StreamLink::drop(std::size_t index) {
  connections_.erase(connections_.begin() + static_cast<std::ptrdiff_t>(index));
  hung_up_ = hung_up_ || sharing_ == Sharing::kNewestAlone;
}

// What the other end has sent is read away before an orderly end: closing over it would reset.
void StreamLink::hang_up(Descriptor socket, HangUp how) {
  if (how == HangUp::kReset) {
    const linger at_once{1, 0};
    setsockopt(socket.number(), SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
    return;
  }
  shutdown(socket.number(), SHUT_WR);
  std::size_t left = waiting_at(socket);
  while (left > 0) {
    const std::size_t length = read_some(socket, left).bytes.size();
    if (length == 0) return;
    left -= length;
  }
}

}  // namespace virtual_printer
