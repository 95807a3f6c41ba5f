#include "answer_queue.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace virtual_printer {
namespace {

// Long enough that a reader sees each byte by itself.
constexpr std::chrono::milliseconds kGap{5};

}  // namespace

void AnswerQueue::push(std::string_view answer, Clock::time_point now) {
  if (faults_.withheld) return;
  const Clock::time_point due = now + faults_.delay;
  for (int copy = 0; copy < (faults_.twice ? 2 : 1); ++copy) {
    if (!faults_.split) {
      add(answer, std::max(due, last_due_));
      continue;
    }
    for (std::size_t i = 0; i < answer.size(); ++i) {
      add(answer.substr(i, 1), std::max(due, last_due_ + kGap));
    }
  }
}

std::optional<std::string> AnswerQueue::pop_due(Clock::time_point now) {
  if (pieces_.empty() || pieces_.front().due > now) return std::nullopt;
  std::string bytes = std::move(pieces_.front().bytes);
  pieces_.pop_front();
  return bytes;
}

std::optional<Clock::time_point> AnswerQueue::next_due() const {
  return pieces_.empty() ? std::nullopt : std::optional(pieces_.front().due);
}

void AnswerQueue::add(std::string_view bytes, Clock::time_point due) {
  pieces_.push_back({std::string(bytes), due});
  last_due_ = due;
}

}  // namespace virtual_printer
