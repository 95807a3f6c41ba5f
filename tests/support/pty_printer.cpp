#include "support/pty_printer.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace testkit {

PtyPrinter::PtyPrinter(std::string port) {
  char path[64];
  EXPECT_EQ(openpty(&master_, &slave_, path, nullptr, nullptr), 0);
  EXPECT_EQ(pipe(stop_), 0);
  alias_ = std::make_unique<NameAlias>(std::move(port), path);
  answer("\x10\x04\x02", "\x12");
  answer("\x10\x04\x04", "\x12");
}

PtyPrinter::~PtyPrinter() {
  unplug();
  close(stop_[0]);
  close(stop_[1]);
  close(slave_);
}

void PtyPrinter::answer(std::string query, std::string reply) {
  answers_.push_back({std::move(query), std::move(reply)});
}

void PtyPrinter::start() {
  thread_ = std::thread([this] { serve(); });
}

std::string PtyPrinter::unplug() {
  if (thread_.joinable()) {
    EXPECT_EQ(write(stop_[1], "x", 1), 1);
    thread_.join();
  }
  if (master_ >= 0) close(master_);
  master_ = -1;
  return received();
}

std::string PtyPrinter::received() {
  const std::lock_guard lock(mutex_);
  return received_;
}

void PtyPrinter::serve() {
  pollfd waiting[] = {{master_, POLLIN, 0}, {stop_[0], POLLIN, 0}};
  for (;;) {
    poll(waiting, 2, -1);
    if ((waiting[0].revents & POLLIN) != 0) {
      take();
    } else if (waiting[1].revents != 0) {
      return;
    }
  }
}

void PtyPrinter::take() {
  char buffer[4096];
  const ssize_t count = read(master_, buffer, sizeof buffer);
  if (count <= 0) return;
  {
    const std::lock_guard lock(mutex_);
    received_.append(buffer, static_cast<std::size_t>(count));
  }
  answer_new();
}

void PtyPrinter::answer_new() {
  for (;;) {
    const Answer* next = nullptr;
    std::size_t end = std::string::npos;
    for (const Answer& answer : answers_) {
      const std::size_t at = received_.find(answer.query, answered_);
      if (at == std::string::npos || at + answer.query.size() >= end) continue;
      end = at + answer.query.size();
      next = &answer;
    }
    if (next == nullptr) return;
    answered_ = end;
    EXPECT_EQ(write(master_, next->reply.data(), next->reply.size()),
              static_cast<ssize_t>(next->reply.size()));
  }
}

}  // namespace testkit
