#include "answer_queue.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace virtual_printer {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Clock::time_point kStart{std::chrono::hours(1)};

// All pieces, each with the time in milliseconds at which it goes out.
std::vector<std::string> sent(AnswerQueue& queue) {
  std::vector<std::string> pieces;
  while (const auto due = queue.next_due()) {
    const auto time = std::chrono::duration_cast<milliseconds>(*due - kStart).count();
    EXPECT_EQ(queue.pop_due(*due - milliseconds(1)), std::nullopt);
    pieces.push_back(std::to_string(time) + ":" + queue.pop_due(*due).value_or("late"));
  }
  return pieces;
}

std::vector<std::string> sent(const AnswerFaults& faults) {
  AnswerQueue queue(faults);
  queue.push("ab", kStart);
  queue.push("c", kStart + milliseconds(1));
  return sent(queue);
}

TEST(AnswerQueue, good_answers_are_due_at_once) {
  EXPECT_THAT(sent(AnswerFaults{}), ElementsAre("0:ab", "1:c"));
}

TEST(AnswerQueue, delayed_answers_keep_their_order_and_distance) {
  EXPECT_THAT(sent(AnswerFaults{.delay = milliseconds(100)}), ElementsAre("100:ab", "101:c"));
}

TEST(AnswerQueue, split_answers_come_byte_by_byte) {
  EXPECT_THAT(sent(AnswerFaults{.split = true}), ElementsAre("0:a", "5:b", "10:c"));
}

TEST(AnswerQueue, doubled_answers_follow_themselves) {
  EXPECT_THAT(sent(AnswerFaults{.twice = true}), ElementsAre("0:ab", "0:ab", "1:c", "1:c"));
}

TEST(AnswerQueue, faults_add_up) {
  EXPECT_THAT(sent(AnswerFaults{.delay = milliseconds(7), .split = true, .twice = true}),
              ElementsAre("7:a", "12:b", "17:a", "22:b", "27:c", "32:c"));
}

TEST(AnswerQueue, withheld_answers_never_come) {
  EXPECT_THAT(sent(AnswerFaults{.withheld = true}), IsEmpty());
}

TEST(AnswerQueue, forgotten_answers_never_come) {
  AnswerQueue queue({.delay = milliseconds(100)});
  queue.push("ab", kStart);
  queue.clear();
  EXPECT_EQ(queue.next_due(), std::nullopt);
}

}  // namespace
}  // namespace virtual_printer
