#include "answer_queue.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace virtual_printer {
namespace {

using std::chrono::milliseconds;

// Long enough that a reader sees each byte by itself.
constexpr milliseconds kGap{5};

}  // namespace

void AnswerQueue::push(std::string_view answer, Clock::time_point now) {
  if (faults_.mute != 0) return;
  const std::string bytes = faults_.answer_garble == 0 ? std::string(answer) : garbled(answer);
  for (int copy = 0; copy < (faults_.answer_double != 0 ? 2 : 1); ++copy) push_one(bytes, now);
}

void AnswerQueue::push_one(std::string_view answer, Clock::time_point now) {
  const Clock::time_point due = now + milliseconds(faults_.answer_delay_ms);
  if (faults_.answer_split != 0) {
    for (std::size_t i = 0; i < answer.size(); ++i) {
      add(answer.substr(i, 1), std::max(due, last_due_ + kGap));
    }
  } else if (faults_.answer_glue_ms == 0) {
    add(answer, std::max(due, last_due_));
  } else if (!pieces_.empty() && pieces_.back().takes_more && pieces_.back().due >= due) {
    pieces_.back().bytes += answer;
  } else {
    add(answer, std::max(due + milliseconds(faults_.answer_glue_ms), last_due_), true);
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

void AnswerQueue::clear() {
  pieces_.clear();
  last_due_ = {};
}

// A seed that is set anew begins its sequence anew.
std::string AnswerQueue::garbled(std::string_view answer) {
  constexpr std::size_t kBits = 8;
  if (std::exchange(seed_, faults_.answer_garble) != faults_.answer_garble) {
    random_.seed(static_cast<std::minstd_rand::result_type>(faults_.answer_garble));
  }
  std::string bytes(answer);
  const std::size_t bit = random_() % (bytes.size() * kBits);
  char& byte = bytes[bit / kBits];
  byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << (bit % kBits)));
  return bytes;
}

void AnswerQueue::add(std::string_view bytes, Clock::time_point due, bool takes_more) {
  pieces_.push_back({std::string(bytes), due, takes_more});
  last_due_ = due;
}

}  // namespace virtual_printer
