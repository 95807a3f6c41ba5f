#include "dispatch/silence_budget.h"

#include <gtest/gtest.h>

namespace {

constexpr long kPoll = 20;

/// How many polls in vain a budget allows.
int polls_until_exhausted(SilenceBudget budget) {
  int polls = 0;
  while (!budget.exhausted()) {
    budget.spend(kPoll);
    ++polls;
  }
  return polls;
}

TEST(SilenceBudget, five_seconds_are_250_polls_of_20_ms) {
  EXPECT_EQ(polls_until_exhausted(SilenceBudget(5000)), 250);
}

TEST(SilenceBudget, less_than_21_ms_are_used_up_by_one_poll) {
  EXPECT_EQ(polls_until_exhausted(SilenceBudget(1)), 1);
  EXPECT_EQ(polls_until_exhausted(SilenceBudget(19)), 1);
  EXPECT_EQ(polls_until_exhausted(SilenceBudget(20)), 1);
}

TEST(SilenceBudget, twenty_one_ms_outlast_one_poll) {
  EXPECT_EQ(polls_until_exhausted(SilenceBudget(21)), 2);
  EXPECT_EQ(polls_until_exhausted(SilenceBudget(40)), 2);
  EXPECT_EQ(polls_until_exhausted(SilenceBudget(41)), 3);
}

TEST(SilenceBudget, none_is_exhausted_from_the_start) {
  EXPECT_TRUE(SilenceBudget(0).exhausted());
  EXPECT_TRUE(SilenceBudget(-20).exhausted());
}

TEST(SilenceBudget, one_is_not_exhausted_before_anything_is_spent) {
  EXPECT_FALSE(SilenceBudget(1).exhausted());
  EXPECT_FALSE(SilenceBudget(5000).exhausted());
}

TEST(SilenceBudget, a_sign_of_life_gives_the_whole_budget_again) {
  SilenceBudget budget(100);
  for (int i = 0; i < 4; ++i) budget.spend(kPoll);
  budget.restore();
  EXPECT_EQ(polls_until_exhausted(budget), 5);
}

TEST(SilenceBudget, an_exhausted_budget_comes_back_whole) {
  SilenceBudget budget(30);
  budget.spend(kPoll);
  budget.spend(kPoll);
  ASSERT_TRUE(budget.exhausted());
  budget.restore();
  EXPECT_EQ(polls_until_exhausted(budget), 2);
}

TEST(SilenceBudget, spending_nothing_changes_nothing) {
  SilenceBudget budget(21);
  budget.spend(0);
  EXPECT_EQ(polls_until_exhausted(budget), 2);
}

TEST(SilenceBudget, works_at_compile_time) {
  static_assert(SilenceBudget(0).exhausted());
  static_assert(!SilenceBudget(20).exhausted());
}

}  // namespace
