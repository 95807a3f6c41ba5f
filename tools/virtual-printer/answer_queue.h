// The way of an answer to the line, with all that can go wrong on it. Knows no descriptor and no
// clock of its own, so that the same answers at the same times always come out alike.
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace virtual_printer {

using Clock = std::chrono::steady_clock;

// How answers are spoiled on purpose.
struct AnswerFaults {
  std::chrono::milliseconds delay{0};
  bool split = false;     // each byte by itself
  bool twice = false;     // each answer two times
  bool withheld = false;  // none at all
};

class AnswerQueue {
 public:
  explicit AnswerQueue(const AnswerFaults& faults) : faults_(faults) {}

  void push(std::string_view answer, Clock::time_point now);

  // What is to be sent by now, in order; piece by piece, so that split bytes stay apart.
  std::optional<std::string> pop_due(Clock::time_point now);

  std::optional<Clock::time_point> next_due() const;

  void clear() { pieces_.clear(); }

 private:
  struct Piece {
    std::string bytes;
    Clock::time_point due;
  };

  void add(std::string_view bytes, Clock::time_point due);

  AnswerFaults faults_;
  std::deque<Piece> pieces_;
  Clock::time_point last_due_{};
};

}  // namespace virtual_printer
