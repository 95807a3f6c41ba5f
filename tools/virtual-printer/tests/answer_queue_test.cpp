#include "answer_queue.h"

#include <gmock/gmock.h>

#include <bit>
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

std::vector<std::string> sent(const LineFaults& faults) {
  AnswerQueue queue(faults);
  queue.push("ab", kStart);
  queue.push("c", kStart + milliseconds(1));
  return sent(queue);
}

TEST(AnswerQueue, good_answers_are_due_at_once) {
  EXPECT_THAT(sent(LineFaults{}), ElementsAre("0:ab", "1:c"));
}

TEST(AnswerQueue, delayed_answers_keep_their_order_and_distance) {
  EXPECT_THAT(sent(LineFaults{.answer_delay_ms = 100}), ElementsAre("100:ab", "101:c"));
}

TEST(AnswerQueue, split_answers_come_byte_by_byte) {
  EXPECT_THAT(sent(LineFaults{.answer_split = 1}), ElementsAre("0:a", "5:b", "10:c"));
}

TEST(AnswerQueue, doubled_answers_follow_themselves) {
  EXPECT_THAT(sent(LineFaults{.answer_double = 1}), ElementsAre("0:ab", "0:ab", "1:c", "1:c"));
}

TEST(AnswerQueue, faults_add_up) {
  EXPECT_THAT(sent(LineFaults{.answer_delay_ms = 7, .answer_split = 1, .answer_double = 1}),
              ElementsAre("7:a", "12:b", "17:a", "22:b", "27:c", "32:c"));
}

TEST(AnswerQueue, withheld_answers_never_come) {
  EXPECT_THAT(sent(LineFaults{.mute = 1}), IsEmpty());
}

TEST(AnswerQueue, glued_answers_go_out_as_one) {
  const LineFaults faults{.answer_glue_ms = 20};
  AnswerQueue queue(faults);
  queue.push("ab", kStart);
  queue.push("c", kStart + milliseconds(20));
  queue.push("d", kStart + milliseconds(21));
  EXPECT_THAT(sent(queue), ElementsAre("20:abc", "41:d"));
}

TEST(AnswerQueue, garbled_answers_differ_in_one_bit_and_alike_for_the_same_seed) {
  const auto garbled = [](int seed) {
    LineFaults faults{.answer_garble = seed};
    AnswerQueue queue(faults);
    std::vector<unsigned char> answers;
    for (int i = 0; i < 8; ++i) {
      queue.push({"\0", 1}, kStart);
      answers.push_back(static_cast<unsigned char>(queue.pop_due(kStart).value().front()));
    }
    return answers;
  };
  for (const unsigned char answer : garbled(7)) EXPECT_EQ(std::popcount(answer), 1);
  EXPECT_EQ(garbled(7), garbled(7));
  EXPECT_NE(garbled(7), garbled(8));
}

TEST(AnswerQueue, meets_the_faults_of_the_time) {
  LineFaults faults;
  AnswerQueue queue(faults);
  queue.push("a", kStart);
  faults.mute = 1;
  queue.push("b", kStart);
  faults.mute = 0;
  queue.push("c", kStart);
  EXPECT_THAT(sent(queue), ElementsAre("0:a", "0:c"));
}

TEST(AnswerQueue, forgotten_answers_never_come_and_hold_up_no_other) {
  LineFaults faults{.answer_delay_ms = 100};
  AnswerQueue queue(faults);
  queue.push("ab", kStart);
  queue.clear();
  EXPECT_EQ(queue.next_due(), std::nullopt);
  faults.answer_delay_ms = 0;
  queue.push("c", kStart);
  EXPECT_THAT(sent(queue), ElementsAre("0:c"));
}

}  // namespace
}  // namespace virtual_printer
