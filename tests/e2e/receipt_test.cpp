// The example prints its receipt on a printer with something the matter.
#include <gmock/gmock.h>

#include <algorithm>
#include <ostream>
#include <string_view>

#include "support/printed_paper.h"
#include "tills.h"

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

// 42 columns. The underlined lines are 42 blanks, the cut feeds five lines; what stands in double
// width counts two columns a character.
const std::string kPaper =
    R"([picture 192 x 72]
          CORNER SHOP
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
    R"(
[EAN-13 2000001000427]


[QR Code "https://shop.example/visit/4711"]

         Tell us about your visit
               See you soon





)";

constexpr const char* kConfirmed = "confirmed: the receipt is printed\n";

// What asks for the confirmation ends the job that ESC @ begins.
constexpr std::string_view kInitialise = "\x1b@";
constexpr std::string_view kProcessIdRequest{"\x1d(H\x06\0\x30\x30\x46\x46\x46\x46", 11};

class Receipt : public PrinterTest {};
class ReceiptOnLine : public OnLine {};

void expect_printed_once(const Outcome& outcome) {
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kPaper)) << outcome.out << outcome.errors;
  EXPECT_EQ(outcome.lines_from("confirmed"), kConfirmed);
}

// A receipt that was interrupted may stand before it, whole or not.
void expect_whole_at_the_end(const Outcome& outcome) {
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.errors;
  EXPECT_EQ(outcome.lines_from("confirmed"), kConfirmed);
  EXPECT_THAT(outcome.paper.in_one(), EndsWith(kPaper)) << outcome.out << outcome.errors;
}

TEST_P(ReceiptOnLine, is_whole_and_printed_once_when_paper_is_refilled) {
  const Outcome outcome = run_under_printer(
      {"--strict", "--fault", "paper-out@7", "--recover-after", "1500"}, receipt());
  expect_printed_once(outcome);
  EXPECT_EQ(outcome.lines_from("not confirmed"), "not confirmed: 2, paper is out\n");
}

INSTANTIATE_TEST_SUITE_P(over, ReceiptOnLine, testing::ValuesIn(kEveryLine), line_of);

std::string job_in(const std::string& bytes) {
  const std::size_t begin = bytes.find(kInitialise);
  const std::size_t end = bytes.find(kProcessIdRequest);
  if (begin == std::string::npos || end == std::string::npos) return "no job in " + bytes;
  return bytes.substr(begin, end + kProcessIdRequest.size() - begin);
}

TEST_F(Receipt, comes_out_of_a_healthy_printer_by_the_same_bytes_on_every_line) {
  std::vector<std::string> jobs;
  Words options = recording();
  options.emplace_back("--strict");
  for (const Line line : kEveryLine) {
    use(line);
    const Outcome outcome = run_under_printer(options, receipt());
    jobs.push_back(job_in(recorded()));
    EXPECT_EQ(outcome.status, 0) << name_of(line) << outcome.out;
    EXPECT_EQ(outcome.errors, "") << name_of(line);
    EXPECT_EQ(outcome.lines("not confirmed"), 0) << name_of(line) << outcome.out;
    EXPECT_THAT(outcome.paper.texts, SizeIs(jobs.size())) << name_of(line);
    EXPECT_THAT(outcome.paper.texts, Each(kPaper)) << name_of(line);
    EXPECT_THAT(outcome.paper.widths, Each(640U)) << name_of(line);
  }
  EXPECT_THAT(jobs, Each(jobs.front()));
  EXPECT_THAT(jobs.front(), AllOf(StartsWith(kInitialise), HasSubstr("CORNER SHOP")));
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
  const std::string port = R"( "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS")";
  const std::string script = std::string(TILL_PROGRAM) + " once" + port + " 30; " +
                             request("set power-off off") + " && " + RECEIPT_PROGRAM + port;
  const Outcome outcome =
      run_under_printer({"--strict", "--fault", "power-off@4"}, {"/bin/sh", "-c", script});
  EXPECT_EQ(outcome.lines_from("result"), "result 4\n") << outcome.out;
  expect_whole_at_the_end(outcome);
  EXPECT_EQ(outcome.paper.in_one(),
            "CORNER SHOP\nTill 3\n\n  2 Coffee, ground, 500 g            11.80\n" + kPaper);
}

TEST_P(ReceiptOnLine, is_printed_again_when_the_power_goes_while_the_cover_is_open) {
  start_under_printer({"--strict", "--fault", "cover@7"}, receipt());
  ASSERT_TRUE(wait_for_line("not confirmed: 1"));
  ASSERT_TRUE(set("power-off", "on"));
  usleep(1'500'000);  // longer than the monitor's cycle
  ASSERT_TRUE(set("power-off", "off"));
  ASSERT_TRUE(set("cover", "off"));
  expect_whole_at_the_end(finish());
}

// At a byte of the line's, counted with those of the opening.
struct Loss {
  Line line;
  const char* fault;
  const char* back_after_ms;
};

void PrintTo(const Loss& loss, std::ostream* stream) {
  *stream << name_of(loss.line) << " " << loss.fault;
}

class ReceiptCutOff : public Receipt, public testing::WithParamInterface<Loss> {};

TEST_P(ReceiptCutOff, stands_whole_at_the_end_of_the_paper_when_the_line_is_back) {
  use(GetParam().line);
  const Outcome outcome = run_under_printer(
      {"--strict", "--fault", GetParam().fault, "--recover-after", GetParam().back_after_ms},
      receipt());
  expect_whole_at_the_end(outcome);
  EXPECT_GE(outcome.lines("not confirmed: 4"), 1) << outcome.out;
}

INSTANTIATE_TEST_SUITE_P(
    by, ReceiptCutOff,
    testing::Values(Loss{Line::kTcp, "connection-lost@12B", "0"},  // within the initialisation
                    Loss{Line::kTcp, "connection-lost@2685B",
                         "0"},  // within the request at the end
                    Loss{Line::kTcp, "connection-lost@401B", "3000"},  // within the logo
                    Loss{Line::kTcp, "connection-lost@2101B", "3000"},
                    Loss{Line::kTcp, "connection-closed@2101B", "500"},
                    Loss{Line::kUsb, "connection-lost@401B", "500"},
                    Loss{Line::kUsb, "connection-lost@2101B", "500"},
                    Loss{Line::kParallel, "connection-lost@2101B", "1500"}),
    [](const auto& param) {
      std::string name =
          name_of(param.param.line) + "_" + param.param.fault + "_for_" + param.param.back_after_ms;
      std::replace_if(
          name.begin(), name.end(), [](char c) { return c == '-' || c == '@'; }, '_');
      return name;
    });

TEST_F(Receipt, is_printed_once_by_a_parallel_printer_that_is_busy_for_three_seconds) {
  use(Line::kParallel);
  expect_printed_once(
      run_under_printer({"--strict", "--fault", "busy@60B", "--recover-after", "3000"}, receipt()));
}

TEST_F(Receipt, is_printed_once_by_a_parallel_printer_that_grants_nibble_mode_in_the_end) {
  use(Line::kParallel);
  expect_printed_once(run_under_printer({"--strict", "--nibble-refusals", "3"}, receipt()));
}

TEST_F(Receipt, is_printed_once_by_a_usb_printer_whose_writes_take_nothing_for_a_while) {
  use(Line::kUsb);
  expect_printed_once(run_under_printer(
      {"--strict", "--fault", "takes-nothing@60B", "--recover-after", "1000"}, receipt()));
}

TEST_F(Receipt, is_confirmed_by_late_answers) {
  expect_printed_once(run_under_printer({"--strict", "--answer-delay", "700"}, receipt()));
}

TEST_F(Receipt, is_confirmed_by_answers_that_come_twice) {
  expect_printed_once(run_under_printer({"--strict", "--answer-double"}, receipt()));
}

struct Refusal {
  Line line;
  std::vector<std::string> options;
  const char* name;
};

void PrintTo(const Refusal& refusal, std::ostream* stream) {
  *stream << refusal.name;
}

class ReceiptRefused : public Receipt, public testing::WithParamInterface<Refusal> {};

TEST_P(ReceiptRefused, is_not_claimed_to_be_printed) {
  use(GetParam().line);
  const Outcome outcome = run_under_printer(GetParam().options, receipt());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("OpenPort gives -1\n"));
  EXPECT_EQ(outcome.lines("confirmed"), 0) << outcome.out;
  EXPECT_EQ(outcome.paper.in_one(), "");
}

INSTANTIATE_TEST_SUITE_P(
    by, ReceiptRefused,
    testing::Values(
        Refusal{Line::kSerial, {"--mute"}, "serial_that_is_mute"},
        Refusal{Line::kParallel, {"--mute"}, "parallel_that_is_mute"},
        Refusal{Line::kParallel, {"--fault", "claim-refused@0"}, "parallel_without_claim"},
        Refusal{Line::kParallel, {"--fault", "nibble-refused@0"}, "parallel_without_nibble_mode"},
        Refusal{Line::kParallel, {"--fault", "busy@0"}, "parallel_that_is_busy"},
        Refusal{Line::kUsb, {"--fault", "connection-lost@0"}, "usb_without_node"},
        Refusal{Line::kTcp, {"--fault", "connection-lost@0"}, "tcp_without_listener"}),
    [](const auto& param) { return std::string(param.param.name); });

}  // namespace
