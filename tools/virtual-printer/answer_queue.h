// The way of an answer to the line, with all that can go wrong on it. Knows no descriptor and no
// clock of its own, so that the same answers at the same times always come out alike.
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "line_faults.h"

namespace virtual_printer {

using Clock = std::chrono::steady_clock;

class AnswerQueue {
 public:
  // The faults may change meanwhile; an answer meets those of the time at which it is pushed.
  explicit AnswerQueue(const LineFaults& faults) : faults_(faults) {}

  void push(std::string_view answer, Clock::time_point now);

  // What is to be sent by now, in order; piece by piece, so that split bytes stay apart.
  std::optional<std::string> pop_due(Clock::time_point now);

  std::optional<Clock::time_point> next_due() const;

  void clear();

 private:
  struct Piece {
    std::string bytes;
    Clock::time_point due;
    bool takes_more;  // what is pushed until then goes with it
  };

  void push_one(std::string_view answer, Clock::time_point now);
  std::string garbled(std::string_view answer);
  void add(std::string_view bytes, Clock::time_point due, bool takes_more = false);

  const LineFaults& faults_;
  std::deque<Piece> pieces_;
  Clock::time_point last_due_{};
  int seed_ = 0;
  std::minstd_rand random_;
};

}  // namespace virtual_printer
