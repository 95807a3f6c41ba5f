#include "service.h"

#include <poll.h>

#include <array>
#include <csignal>
#include <cstdio>

namespace virtual_printer {
namespace {

// More than the kernel keeps for a pseudo-terminal's reader (12 KiB). Whoever sends without end
// must not keep the printer from ending.
constexpr std::size_t kMostThatWaits = 32768;

std::string hex_of(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    std::array<char, 4> hex{};
    std::snprintf(hex.data(), hex.size(), " %02X", static_cast<unsigned char>(byte));
    text += hex.data();
  }
  return text;
}

}  // namespace

void Service::run() {
  while (true) {
    wait();
    print_waiting_bytes();
    if (const auto signal = signals_.next(); signal && *signal != SIGCHLD) break;
  }
  finish();
}

int Service::run(const std::vector<std::string>& command) {
  ChildProcess child(command);
  while (true) {
    wait();
    print_waiting_bytes();
    while (const auto signal = signals_.next()) {
      if (*signal != SIGCHLD) child.send_signal(*signal);
    }
    if (const auto status = child.ended()) {
      finish();
      return *status;
    }
  }
}

void Service::wait() const {
  std::array<pollfd, 2> sources{
      {{link_.descriptor(), POLLIN, 0}, {signals_.descriptor(), POLLIN, 0}}};
  if (poll(sources.data(), sources.size(), -1) < 0 && errno != EINTR) {
    check(-1, "cannot wait for the line");
  }
}

std::size_t Service::print_waiting_bytes() {
  const std::string bytes = link_.read_waiting();
  printer_.receive(bytes);
  return bytes.size();
}

void Service::finish() {
  std::size_t total = 0;
  while (total < kMostThatWaits) {
    const std::size_t length = print_waiting_bytes();
    if (length == 0) break;
    total += length;
  }
  printer_.finish();
  if (unknown_count_ > 0) std::fprintf(stderr, "unknown commands in all: %zu\n", unknown_count_);
}

void Service::answer(std::string_view bytes) {
  const std::size_t taken = link_.write(bytes);
  if (taken < bytes.size()) {
    std::fprintf(stderr, "answer lost, nobody reads the line:%s\n",
                 hex_of(bytes.substr(taken)).c_str());
  }
}

void Service::report_unknown(const UnknownBytes& unknown) {
  ++unknown_count_;
  std::fprintf(stderr, "unknown bytes at %zu:%s\n", unknown.offset, hex_of(unknown.bytes).c_str());
}

void Service::report_forgotten(std::size_t characters) {
  std::fprintf(stderr, "initialise before a line feed: %zu characters not printed\n", characters);
}

void Service::deliver(const Receipt& receipt, PaperEnd end) {
  const std::string path = files_.write(receipt, end).string();
  std::printf("receipt %s\n", path.c_str());
  std::fflush(stdout);
}

}  // namespace virtual_printer
