// The examples that are not the receipt, in C and in other languages, on the virtual printer.
#include <gmock/gmock.h>

#include "support/printed_paper.h"
#include "tills.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::string kFeedOfCut = "\n\n\n\n\n";

class Example : public PrinterTest {
 protected:
  Example() : PrinterTest(Line::kTcp) {}

  static std::string path(const std::string& name) { return EXAMPLES_FOLDER "/" + name; }
  static Words shell(const std::string& script, const Words& words = {}) {
    Words command{"/bin/sh", "-c", script};
    command.insert(command.end(), words.begin(), words.end());
    return command;
  }
};

TEST_F(Example, status_says_every_change) {
  start_under_printer({}, program(path("status"), {"60"}));
  ASSERT_TRUE(wait_for_line("0, ready"));
  ASSERT_TRUE(set("cover", "on"));
  ASSERT_TRUE(wait_for_line("1, the cover is open"));
  ASSERT_TRUE(set("cover", "off"));
  ASSERT_TRUE(set("drawer", "on"));
  ASSERT_TRUE(wait_for_line("the drawer is open"));
  ASSERT_TRUE(set("power-off", "on"));
}

TEST_F(Example, status_ends_when_it_is_told_to) {
  const Outcome outcome = run_under_printer({}, program(path("status"), {"2"}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("0, ready\n"));
}

TEST_F(Example, a_logo_is_stored_once_and_printed_by_its_number) {
  // One dot, black: 8 by 8 dots in the printer's memory.
  const std::string bmp =
      file("logo.bmp", std::string("BM\x42\0\0\0\0\0\0\0\x3e\0\0\0\x28\0\0\0\1\0\0\0"
                                   "\1\0\0\0\1\0\1\0",
                                   30) +
                           std::string(24, '\0') + "\xff\xff\xff" + std::string(5, '\0') + "\x80" +
                           std::string(3, '\0'));
  const Outcome stored = run_under_printer(
      {}, shell(R"("$0" store "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS" "$1" &&)"
                R"(exec "$0" print "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS")",
                {path("stored-logo"), bmp}));
  EXPECT_EQ(stored.status, 0) << stored.errors;
  const std::string paper = "[stored picture 1, 8 x 8]\n\n                Thank you\n" + kFeedOfCut;
  EXPECT_THAT(stored.paper.texts, ElementsAre(paper, paper));
}

TEST_F(Example, a_slip_on_each_of_two_printers) {
  // The second printer is the command of the first.
  const Outcome outcome = run_under_printer(
      {}, shell(R"(FIRST="$VIRTUAL_PRINTER_PORT" FIRST_SETTINGS="$VIRTUAL_PRINTER_SETTINGS" )"
                R"(exec "$0" --listen 0 --output "$1" -- sh -c )"
                R"('exec "$0" "$FIRST" "$FIRST_SETTINGS" )"
                R"("$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS"' "$2")",
                {VIRTUAL_PRINTER_PROGRAM, file("other", "") + "-paper", path("printers")}));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  // Seven characters in double width, in 42 columns.
  const std::string slip = "              TABLE 4\n\n  2 Coffee\n  1 Apple cake\n" + kFeedOfCut;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(slip, slip)) << outcome.out;
}

TEST_F(Example, open_says_what_a_result_means) {
  const Outcome ready = run_under_printer({}, program(path("open")));
  EXPECT_EQ(ready.status, 0);
  EXPECT_EQ(ready.lines("0: open, and the printer is ready"), 1);
}

TEST_F(Example, open_says_what_to_do_about_a_failure) {
  const Outcome outcome = run_under_printer(
      {"--fault", "cover@0"},
      shell(
          R"("$0" "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS"; "$0" COM1; "$0" /dev/ttyS-none)",
          {path("open")}));
  EXPECT_EQ(outcome.lines("1: open; close the printer's cover"), 1) << outcome.out;
  EXPECT_EQ(outcome.lines("-3: no port has such a name"), 1);
  EXPECT_EQ(outcome.lines("-1: no such device"), 1);
}

// The receipt that the README begins with, in whatever language.
const std::string kFirstReceipt =
    "          CORNER SHOP\n\n"
    "  2 Coffee, ground, 500 g            11.80\n"
    "                TOTAL   11.80\n" +
    kFeedOfCut;

void expect_first_receipt(const Outcome& outcome) {
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.lines("on paper"), 1) << outcome.out;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kFirstReceipt));
}

// Its port is one that is played.
TEST_F(Example, the_readme_begins_with_a_receipt_that_prints) {
  use(Line::kSerial);
  expect_first_receipt(run_under_printer({"--strict", "--port", "/dev/ttyS0"}, {README_PROGRAM}));
}

#ifdef LANGUAGES_FOLDER
// Their run-time systems have the machine's own width.
class Language : public Example {
 protected:
  void expect_receipt_of(const std::string& run) {
    expect_first_receipt(run_under_printer(
        {"--strict"},
        shell("export LD_LIBRARY_PATH=" LIBRARY_FOLDER "; cd " LANGUAGES_FOLDER " && exec " + run +
              R"( "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS")")));
  }
};

TEST_F(Language, python) {
  expect_receipt_of("python3 " EXAMPLES_SOURCE "/python/receipt.py");
}

TEST_F(Language, csharp) {
  expect_receipt_of("mono Receipt.exe");
}

TEST_F(Language, java) {
  expect_receipt_of("java -cp " JNA_JAR ":. Receipt");
}
#endif

}  // namespace
