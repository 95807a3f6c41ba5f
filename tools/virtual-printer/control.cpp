#include "control.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "runtime_folder.h"
#include "unix_address.h"

namespace virtual_printer {
namespace {

// The first byte of a reply.
constexpr char kDone = '+';
constexpr char kNotDone = '-';

constexpr std::size_t kLongestMessage = 1024;
constexpr int kMostCallers = 8;

// A message is received whole or not at all.
Descriptor make_socket(int flags) {
  return Descriptor(check(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0),
                          "cannot make a control socket"));
}

bool is_served(const std::string& path) {
  const Descriptor caller = make_socket(SOCK_NONBLOCK);
  return with_unix_address(connect, caller.number(), path) == 0 || errno == EAGAIN;
}

// For the user alone, from the first moment on.
int bind_privately(int socket, const std::string& path) {
  const mode_t mask = umask(0177);
  const int result = with_unix_address(bind, socket, path);
  const int error = errno;
  umask(mask);
  errno = error;
  return result;
}

// Nothing: nothing has come yet. Empty: the other end has gone.
std::optional<std::string> receive_message(int socket) {
  std::array<char, kLongestMessage> buffer;
  ssize_t length;
  do {
    length = recv(socket, buffer.data(), buffer.size(), 0);
  } while (length < 0 && errno == EINTR);
  if (length < 0 && errno == EAGAIN) return std::nullopt;
  return std::string(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
}

bool send_message(int socket, std::string_view message) {
  return send(socket, message.data(), message.size(), MSG_NOSIGNAL) >= 0;
}

}  // namespace

std::string control_path(const std::string& printer) {
  std::string end = printer.starts_with('/') ? printer : "-" + printer;
  std::replace(end.begin(), end.end(), '/', '-');
  return runtime_path(end);
}

ControlSocket::ControlSocket(std::string path)
    : path_(std::move(path)), listener_(make_socket(SOCK_NONBLOCK)) {
  int result = bind_privately(listener_.number(), path_);
  if (result < 0 && errno == EADDRINUSE) {
    if (is_served(path_)) throw std::runtime_error("another printer already listens at " + path_);
    check(unlink(path_.c_str()), "cannot replace the stale socket " + path_);
    result = bind_privately(listener_.number(), path_);
  }
  check(result, "cannot make " + path_);
  check(listen(listener_.number(), kMostCallers), "cannot listen at " + path_);
}

ControlSocket::~ControlSocket() {
  unlink(path_.c_str());
}

std::vector<int> ControlSocket::descriptors() const {
  std::vector<int> numbers{listener_.number()};
  for (const Descriptor& caller : callers_) numbers.push_back(caller.number());
  return numbers;
}

// Whoever has been answered is done with; the others stay until they ask or go.
void ControlSocket::serve(const std::function<ControlReply(const std::string&)>& answer) {
  accept_callers();
  const auto is_done = [&](const Descriptor& caller) {
    const auto request = receive_message(caller.number());
    if (request && !request->empty()) {
      const ControlReply reply = answer(*request);
      send_message(caller.number(), (reply.done ? kDone : kNotDone) + reply.text);
    }
    return request.has_value();
  };
  std::erase_if(callers_, is_done);
}

void ControlSocket::accept_callers() {
  while (true) {
    Descriptor caller(accept4(listener_.number(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (caller.number() < 0) return;
    callers_.push_back(std::move(caller));
  }
}

ControlReply ask_printer(const std::string& printer, const std::string& request) {
  const Descriptor caller = make_socket(0);
  if (with_unix_address(connect, caller.number(), control_path(printer)) < 0) {
    throw std::runtime_error("no virtual printer of yours serves " + printer);
  }
  if (!send_message(caller.number(), request)) {
    throw std::runtime_error("the printer at " + printer + " takes no requests");
  }
  const std::string reply = receive_message(caller.number()).value_or("");
  if (reply.empty()) throw std::runtime_error("the printer at " + printer + " ended meanwhile");
  return {reply.front() == kDone, reply.substr(1)};
}

}  // namespace virtual_printer
