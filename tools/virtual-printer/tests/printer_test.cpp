#include "printer.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "paper.h"
#include "text_rendition.h"

namespace virtual_printer {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using namespace std::string_literals;

struct Recorder : PrinterListener {
  void answer(std::string_view bytes) override { answers += bytes; }
  void report_unknown(const UnknownBytes& bytes) override { unknown.push_back(bytes); }
  void beep() override { ++beeps; }
  void report_refused(const RefusedFrame& frame) override { refused.push_back(frame); }
  void report_condition(Condition condition, bool on) override {
    changes.push_back(std::string(name_of(condition)) + (on ? " on" : " off"));
  }
  void store_serial_number(const std::string& number) override { stored = number; }
  void report_forgotten(std::size_t characters) override { forgotten += characters; }
  void deliver(const Receipt& receipt, PaperEnd end) override {
    papers.emplace_back(text_of(receipt), end);
  }

  std::string answers;
  std::vector<UnknownBytes> unknown;
  std::vector<RefusedFrame> refused;
  std::vector<std::string> changes;
  std::string stored;
  int beeps = 0;
  std::size_t forgotten = 0;
  std::vector<std::pair<std::string, PaperEnd>> papers;
};

struct PrinterTest : testing::Test {
  Recorder recorder;
  Printer printer{recorder};
};

TEST_F(PrinterTest, healthy_printer_answers_every_status_query) {
  printer.receive("\x10\x04\x01\x10\x04\x02\x10\x04\x03\x10\x04\x04");
  EXPECT_EQ(recorder.answers, "\x16\x12\x12\x12");
}

TEST_F(PrinterTest, query_in_the_middle_of_a_line_does_not_disturb_it) {
  printer.receive(
      "ab\x10\x04\x02"
      "cd\n\x1bm");
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("abcd\n", PaperEnd::kCut)));
}

TEST_F(PrinterTest, each_cut_delivers_what_was_printed_since_the_last) {
  printer.receive(
      "a\n\x1bi"
      "b\n\x1bm");
  EXPECT_THAT(recorder.papers,
              ElementsAre(Pair("a\n", PaperEnd::kCut), Pair("b\n", PaperEnd::kCut)));
}

TEST_F(PrinterTest, cut_without_paper_between_delivers_nothing) {
  printer.receive("a\n\x1bi\x1bi");
  EXPECT_THAT(recorder.papers, SizeIs(1));
}

TEST_F(PrinterTest, finish_delivers_uncut_paper_and_the_open_line) {
  printer.receive("a\nopen");
  printer.finish();
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("a\nopen\n", PaperEnd::kUncut)));
}

TEST_F(PrinterTest, finish_delivers_no_blank_paper) {
  printer.receive("\n\n");
  printer.finish();
  EXPECT_THAT(recorder.papers, IsEmpty());
}

TEST_F(PrinterTest, finish_reports_an_unfinished_command) {
  printer.receive("\x1b");
  printer.finish();
  EXPECT_THAT(recorder.unknown, ElementsAre(UnknownBytes{0, "\x1b"}));
}

TEST_F(PrinterTest, text_forgotten_by_an_initialise_is_reported) {
  printer.receive("abc\x1b@");
  printer.finish();
  EXPECT_EQ(recorder.forgotten, 3U);
  EXPECT_THAT(recorder.papers, IsEmpty());
}

TEST_F(PrinterTest, endless_paper_is_delivered_in_pieces) {
  for (int i = 0; i < 1001; ++i) printer.receive("line\n");
  EXPECT_THAT(recorder.papers, SizeIs(1));
  printer.receive("last\n\x1bi");
  ASSERT_THAT(recorder.papers, SizeIs(2));
  EXPECT_EQ(recorder.papers[0].second, PaperEnd::kUncut);
  EXPECT_THAT(recorder.papers[1], Pair("last\n", PaperEnd::kCut));
}

}  // namespace
}  // namespace virtual_printer
