#include "support/live_printer.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

namespace testkit {

LivePrinter::LivePrinter() {
  EXPECT_EQ(pipe(stop_), 0);
  answer("\x10\x04\x02", "\x12");
  answer("\x10\x04\x04", "\x12");
}

LivePrinter::~LivePrinter() {
  close(stop_[0]);
  close(stop_[1]);
}

void LivePrinter::answer(std::string query, std::string reply) {
  answers_.push_back({std::move(query), std::move(reply)});
}

void LivePrinter::start() {
  thread_ = std::thread([this] {
    while (serve()) {
    }
  });
}

void LivePrinter::stop_thread() {
  if (!thread_.joinable()) return;
  EXPECT_EQ(write(stop_[1], "x", 1), 1);
  thread_.join();
}

std::string LivePrinter::unplug() {
  stop_thread();
  return received();
}

std::string LivePrinter::received() {
  const std::lock_guard lock(mutex_);
  return received_;
}

bool LivePrinter::waits_for(std::size_t bytes) {
  for (int look = 0; look < 10000; ++look) {
    if (received().size() >= bytes) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

std::string LivePrinter::converse(std::string_view bytes) {
  const std::lock_guard lock(mutex_);
  received_.append(bytes);
  std::string replies;
  for (;;) {
    const Answer* next = nullptr;
    std::size_t end = std::string::npos;
    for (const Answer& answer : answers_) {
      const std::size_t at = received_.find(answer.query, answered_);
      if (at == std::string::npos || at + answer.query.size() >= end) continue;
      end = at + answer.query.size();
      next = &answer;
    }
    if (next == nullptr) return replies;
    answered_ = end;
    replies += next->reply;
  }
}

// ------------------------------------------------------------------------------- terminal

PtyPrinter::PtyPrinter(std::string port) : port_(std::move(port)) {
  char path[64];
  EXPECT_EQ(openpty(&master_, &slave_, path, nullptr, nullptr), 0);
  // As any node but a serial line's is; that one the library sets itself.
  termios raw{};
  EXPECT_EQ(tcgetattr(slave_, &raw), 0);
  if (!port_.starts_with("/dev/ttyS")) cfmakeraw(&raw);
  EXPECT_EQ(tcsetattr(slave_, TCSANOW, &raw), 0);
  alias_ = std::make_unique<NameAlias>(port_, path);
}

PtyPrinter::~PtyPrinter() {
  unplug();
  close(slave_);
}

std::string PtyPrinter::unplug() {
  stop_thread();
  if (master_ >= 0) close(master_);
  master_ = -1;
  return received();
}

void PtyPrinter::say(std::string_view bytes) {
  EXPECT_EQ(write(master_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

bool PtyPrinter::serve() {
  pollfd waiting[] = {{master_, POLLIN, 0}, {stop_[0], POLLIN, 0}};
  poll(waiting, 2, -1);
  if ((waiting[0].revents & POLLIN) == 0) return waiting[1].revents == 0;
  char buffer[4096];
  const ssize_t count = read(master_, buffer, sizeof buffer);
  if (count <= 0) return true;
  const std::string replies = converse({buffer, static_cast<std::size_t>(count)});
  EXPECT_EQ(write(master_, replies.data(), replies.size()), static_cast<ssize_t>(replies.size()));
  return true;
}

// --------------------------------------------------------------------------------- socket

namespace {

bool bind_to(int listening, in_addr_t host, in_port_t number) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(host);
  address.sin_port = htons(number);
  return bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

/// Listens on the address at that port; 0: at one that is free, which is stored back. Not one of
/// those that the system gives to outgoing connections: while nobody listens on it, a till's own
/// connection could get it.
int listen_on(in_addr_t host, in_port_t& number) {
  constexpr int kFirst = 20000, kCount = 10000, kTries = 5000;
  // What was waited for may have been another socket of the same number, by then closed.
  const int listening = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
  const int on = 1;
  setsockopt(listening, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  const bool any = number == 0;
  bool bound = false;
  for (int tries = 0; !bound && tries < kTries; ++tries) {
    if (any) number = static_cast<in_port_t>(kFirst + (getpid() * 31 + tries) % kCount);
    bound = bind_to(listening, host, number);
    // The one before listens until the thread that waits for it has looked up.
    if (!bound && !any) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_TRUE(bound);
  EXPECT_EQ(listen(listening, 5), 0);
  return listening;
}

void close_at(int& descriptor) {
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
}

}  // namespace

SocketPrinter::SocketPrinter(in_addr_t address) : address_(address) {
  listening_ = listen_on(address_, number_);
}

SocketPrinter::~SocketPrinter() {
  unplug();
}

std::string SocketPrinter::unplug() {
  stop_thread();
  close_at(connection_);
  close_at(listening_);
  for (int& end : ends_) close_at(end);
  return received();
}

void SocketPrinter::say(std::string_view bytes) {
  const std::lock_guard lock(sockets_);
  // Lost with the connection.
  if (connection_ >= 0) send(connection_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

void SocketPrinter::drain_slowly(std::size_t bytes, int pause_ms) {
  piece_ = bytes;
  pause_ms_ = pause_ms;
}

void SocketPrinter::disappear() {
  const std::lock_guard lock(sockets_);
  close_at(listening_);
  hang_up(false);
}

void SocketPrinter::come_back() {
  const std::lock_guard lock(sockets_);
  listening_ = listen_on(address_, number_);
}

std::string SocketPrinter::received_by(int connection) {
  const std::lock_guard lock(sockets_);
  return by_connection_.at(static_cast<std::size_t>(connection));
}

bool SocketPrinter::serve() {
  // Short waits, because other threads take the sockets away and bring them back.
  constexpr int kLook = 2;  // milliseconds
  pollfd waiting[] = {{-1, POLLIN, 0}, {-1, POLLIN, 0}, {stop_[0], POLLIN, 0}};
  {
    const std::lock_guard lock(sockets_);
    waiting[0].fd = listening_;
    waiting[1].fd = connection_;
  }
  poll(waiting, 3, kLook);
  if (waiting[2].revents != 0) return false;
  {
    const std::lock_guard lock(sockets_);
    if (waiting[0].revents != 0 && waiting[0].fd == listening_) accept_connection();
    if (waiting[1].revents != 0 && waiting[1].fd == connection_) take_input();
  }
  if (pause_ms_ > 0) std::this_thread::sleep_for(std::chrono::milliseconds(pause_ms_));
  return true;
}

void SocketPrinter::accept_connection() {
  const int accepted = accept(listening_, nullptr, nullptr);
  if (accepted < 0) return;
  close_at(connection_);
  connection_ = accepted;
  by_connection_.emplace_back();
  ++connections_;
}

void SocketPrinter::take_input() {
  char buffer[4096];
  std::string& got = by_connection_.back();
  std::size_t size = std::min(sizeof buffer, piece_);
  // No byte further than the one after which something happens.
  for (const std::size_t limit : {reset_after_.load(), shut_down_after_.load()}) {
    if (limit > got.size()) size = std::min(size, limit - got.size());
  }
  const ssize_t count = recv(connection_, buffer, size, MSG_DONTWAIT);
  if (count == 0 || (count < 0 && errno != EAGAIN)) close_at(connection_);
  if (count <= 0) return;
  const std::string_view bytes(buffer, static_cast<std::size_t>(count));
  got.append(bytes);
  const std::string replies = converse(bytes);
  if (got.size() == reset_after_) {
    reset_after_ = 0;
    hang_up(false);
  } else if (got.size() == shut_down_after_) {
    shut_down_after_ = 0;
    hang_up(true);
  } else {
    send_answers(replies);
  }
}

void SocketPrinter::send_answers(const std::string& replies) {
  const std::size_t step = splits_ ? 1 : replies.size();
  for (std::size_t at = 0; at < replies.size(); at += step) {
    send(connection_, replies.data() + at, step, MSG_NOSIGNAL);
    if (splits_) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void SocketPrinter::hang_up(bool in_order) {
  if (connection_ < 0) return;
  const linger reset{.l_onoff = 1, .l_linger = 0};
  if (in_order) {
    // Closed to the writer; closing to the reader would turn it into a reset when bytes wait.
    shutdown(connection_, SHUT_WR);
    ends_.push_back(std::exchange(connection_, -1));
    return;
  }
  setsockopt(connection_, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
  close_at(connection_);
}

}  // namespace testkit
