// The example prints its receipt on a printer with something the matter.
#include <gmock/gmock.h>

#include <ostream>

#include "printed_paper.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// 42 columns. The underlined lines are 42 blanks, the cut feeds five lines; what stands in double
// width counts two columns a character.
const std::string kPaper =
    R"(          CORNER SHOP
            12 Harbour Street
         Thank you for your visit

Qty Item                            Amount
)"
    "                                          \n"
    R"(  2 Coffee, ground, 500 g            11.80
  1 Wholemeal bread                   3.20
  6 Apples                            2.70
  1 Umbrella, black                  14.90
)"
    "                                          \n"
    R"(                TOTAL   32.60
                              Cash   40.00
                            Change    7.40

)"
    "          2 COFFEES = 1 FREE CUP  \n"
    R"(               See you soon





)";

constexpr const char* kConfirmed = "confirmed: the receipt is printed\n";

class Receipt : public PrinterTest {};

void expect_printed_once(const Outcome& outcome) {
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kPaper)) << outcome.out << outcome.errors;
  EXPECT_EQ(outcome.lines_from("confirmed"), kConfirmed);
}

TEST_F(Receipt, comes_out_of_a_healthy_printer_as_it_was_written) {
  const Outcome outcome = run_under_printer({"--strict"}, receipt());
  expect_printed_once(outcome);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.lines("not confirmed"), 0) << outcome.out;
  EXPECT_THAT(outcome.paper.widths, ElementsAre(640U));
}

struct Fault {
  const char* condition;
  const char* told;  // what the example says of it, as a regular expression
};

void PrintTo(const Fault& fault, std::ostream* stream) {
  *stream << fault.condition;
}

class ReceiptInterrupted : public Receipt, public testing::WithParamInterface<Fault> {};

TEST_P(ReceiptInterrupted, is_whole_and_printed_once_after_recovery) {
  const std::string fault = std::string(GetParam().condition) + "@7";
  const Outcome outcome =
      run_under_printer({"--strict", "--fault", fault, "--recover-after", "1500"}, receipt());
  expect_printed_once(outcome);
  EXPECT_THAT(outcome.lines_from("not confirmed"), testing::MatchesRegex(GetParam().told));
}

INSTANTIATE_TEST_SUITE_P(by, ReceiptInterrupted,
                         testing::Values(Fault{"cover", "not confirmed: 1, the cover is open\n"},
                                         Fault{"paper-out", "not confirmed: 2, paper is out\n"},
                                         Fault{"jam", "not confirmed: (4|16), [a-z, ]+\n"}),
                         [](const auto& param) {
                           const std::string name = param.param.condition;
                           return name.substr(0, name.find('-'));
                         });

TEST_F(Receipt, is_confirmed_when_an_offline_printer_comes_back) {
  const Outcome outcome =
      run_under_printer({"--strict", "--fault", "offline@7", "--recover-after", "1500"}, receipt());
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.errors;
  EXPECT_EQ(outcome.lines_from("confirmed"), kConfirmed);
  // A printer that is away for long may be sent the receipt twice, but never half of it.
  for (const std::string& text : outcome.paper.texts) EXPECT_EQ(text, kPaper);
  EXPECT_FALSE(outcome.paper.texts.empty());
}

// What the printer had printed stays on the paper, what it held is gone. The till that was told so
// has the receipt printed again once the power is back.
TEST_F(Receipt, stands_whole_at_the_end_of_the_paper_after_a_power_cut) {
  const std::string script = std::string(TILL_PROGRAM) + " once " + port() + "; " +
                             VIRTUAL_PRINTER_PROGRAM + " set power-off off --port " + port() +
                             " && " + RECEIPT_PROGRAM + " " + port();
  const Outcome outcome =
      run_under_printer({"--strict", "--fault", "power-off@4"}, {"/bin/sh", "-c", script});
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.errors;
  EXPECT_EQ(outcome.lines_from("result"), "result 4\n") << outcome.out;
  EXPECT_EQ(outcome.lines_from("confirmed"), kConfirmed) << outcome.out;
  EXPECT_EQ(outcome.paper.in_one(),
            "CORNER SHOP\nTill 3\n\n  2 Coffee, ground, 500 g            11.80\n" + kPaper);
}

TEST_F(Receipt, is_confirmed_by_late_answers) {
  expect_printed_once(run_under_printer({"--strict", "--answer-delay", "700"}, receipt()));
}

TEST_F(Receipt, is_confirmed_by_answers_that_come_twice) {
  expect_printed_once(run_under_printer({"--strict", "--answer-double"}, receipt()));
}

TEST_F(Receipt, is_not_claimed_to_be_printed_by_a_mute_printer) {
  const Outcome outcome = run_under_printer({"--mute"}, receipt());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("OpenPort gives -1\n"));
  EXPECT_EQ(outcome.lines("confirmed"), 0) << outcome.out;
  EXPECT_EQ(outcome.paper.in_one(), "");
}

}  // namespace
