// A till does one thing, with real threads and real time.
#include <gmock/gmock.h>

#include <cstdlib>
#include <ostream>

#include "support/printed_paper.h"
#include "tills.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Ten lines and the five that the cut feeds.
const std::string kPaper = R"(CORNER SHOP
Till 3

  2 Coffee, ground, 500 g            11.80
  1 Wholemeal bread                   3.20
  6 Apples                            2.70
  1 Umbrella, black                  14.90
  4 Oat biscuits                      6.00
TOTAL                                38.60
Thank you





)";

class Till : public PrinterTest {};

// Lines on which bytes come in other pieces than they were sent in, each in its own way.
class TillOnLine : public OnLine {};

TEST_P(TillOnLine, is_told_the_truth_by_answers_in_single_bytes) {
  const Outcome outcome = run_under_printer({"--answer-split"}, till("once"));
  EXPECT_EQ(outcome.lines_from("open"), "open 0\n");
  EXPECT_EQ(outcome.lines("result "), 1) << outcome.out;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kPaper));
}

TEST_P(TillOnLine, has_its_receipt_confirmed_by_a_slow_printer) {
  const Outcome outcome = run_under_printer({"--strict", "--slow", "500"}, till("once"));
  EXPECT_EQ(outcome.lines_from("result"), "result 0\n") << outcome.out << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kPaper));
}

INSTANTIATE_TEST_SUITE_P(over, TillOnLine, testing::Values(Line::kParallel, Line::kTcp), line_of);

TEST_F(Till, is_told_the_truth_by_answers_that_come_together) {
  use(Line::kTcp);
  const Outcome outcome = run_under_printer({"--answer-glue", "30"}, till("once"));
  EXPECT_EQ(outcome.lines("result "), 1) << outcome.out;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kPaper));
}

// Over TCP, where an answer that never comes is no more than silence.
TEST_F(Till, is_told_that_nothing_was_confirmed_when_the_printer_becomes_mute) {
  use(Line::kTcp);
  setenv("TILL_BEFORE_PRINTING", request("set mute on").c_str(), 1);
  const Outcome outcome = run_under_printer({"--strict"}, till("once"));
  unsetenv("TILL_BEFORE_PRINTING");
  EXPECT_EQ(outcome.lines_from("result"), "result 4\n") << outcome.out << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kPaper));
}

TEST_F(Till, has_a_framed_transaction_confirmed) {
  const Outcome outcome = run_under_printer({"--strict"}, till("framed"));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.lines_from("result"), "result 0\n") << outcome.out;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kPaper));
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(Till, has_what_it_printed_before_the_claim_reprinted) {
  const Outcome outcome = run_under_printer({"--strict"}, till("reprint"));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.lines("held 1"), 1) << outcome.out;
  EXPECT_EQ(outcome.lines("reprinted, result 0"), 1) << outcome.out;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kPaper));
}

TEST_F(Till, has_its_receipt_whole_when_paper_is_refilled_in_reprint_mode) {
  const Outcome outcome = run_under_printer(
      {"--strict", "--fault", "paper-out@7", "--recover-after", "1000"}, till("reprint"));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.lines("condition paper-out"), 2) << outcome.out;
  EXPECT_EQ(outcome.lines("reprinted, result 0"), 1) << outcome.out;
  // The printer prints what it held, and the whole again for safety: never half a receipt.
  EXPECT_FALSE(outcome.paper.texts.empty());
  for (const std::string& text : outcome.paper.texts) EXPECT_EQ(text, kPaper);
}

// Without power nothing confirms the receipt, so it stays held, also after the library has asked
// for the last time, nine seconds after the claim.
TEST_F(Till, keeps_its_receipt_when_power_is_lost_in_reprint_mode) {
  const Outcome outcome =
      run_under_printer({"--strict", "--fault", "power-off@7"}, till("reprint", "10"));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.lines("condition power-off on"), 1) << outcome.out;
  EXPECT_EQ(outcome.lines("not reprinted"), 1) << outcome.out;
  EXPECT_EQ(outcome.lines("reprinted"), 0) << outcome.out;
}

TEST_F(Till, gets_the_serial_number_that_it_stored_and_the_device_services) {
  const Outcome outcome = run_under_printer({"--strict"}, till("identity"));
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.errors;
  for (const char* line :
       {"version 4 1.00\n", "stored 0\n", "serial number 9 SHOP-0042\n", "settled 0\n",
        "drawer before 0\n", "opened 0\n", "drawer open\n", "beep 0\n", "mark 0\n", "status 0\n"}) {
    EXPECT_THAT(outcome.out, HasSubstr(line));
  }
  EXPECT_EQ(outcome.lines("condition drawer on"), 1);
  EXPECT_EQ(outcome.lines("beep"), 2) << "the till's line and the printer's";
  EXPECT_THAT(outcome.paper.texts, IsEmpty());
}

struct Flag {
  const char* condition;
  const char* told;  // what the till says of it, as a regular expression
};

void PrintTo(const Flag& flag, std::ostream* stream) {
  *stream << flag.condition;
}

class TillWatching : public Till, public testing::WithParamInterface<Flag> {};

TEST_P(TillWatching, sees_a_condition_come_and_go) {
  const std::string condition = GetParam().condition;
  start_under_printer({"--strict", "--fault", condition + "@1"}, till("flags"));
  EXPECT_TRUE(wait_for_line("error"));
  EXPECT_TRUE(set(condition, "off"));
  const Outcome outcome = finish();
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.errors;
  EXPECT_THAT(outcome.lines_from("error"), testing::MatchesRegex(GetParam().told));
}

// While the cutter is jammed the monitor asks again and again, and between question and report the
// printer does not count as offline.
INSTANTIATE_TEST_SUITE_P(of, TillWatching,
                         testing::Values(Flag{"cover", "error 1\n(error 4\n)?error 0\n"},
                                         Flag{"paper-out", "error 2\n(error 4\n)?error 0\n"},
                                         Flag{"near-end", "error 8\nerror 0\n"},
                                         Flag{"jam", "(error (4|16)\n)+error 0\n"}),
                         [](const auto& param) {
                           const std::string name = param.param.condition;
                           return name.substr(0, name.find('-'));
                         });

}  // namespace
