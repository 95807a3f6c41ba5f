#include "printer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "framed.h"
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
  void report_decoded(const Decoded& command, Piece piece) override {
    decoded.emplace_back(command, piece.offset, piece.bytes);
  }
  void answer(std::string_view bytes) override { answers += bytes; }
  void report_unknown(const UnknownBytes& bytes) override { unknown.push_back(bytes); }
  void beep() override { ++beeps; }
  void report_refused(const RefusedFrame& frame) override { refused.push_back(frame); }
  void report_condition(Condition condition, bool on) override {
    changes.push_back(std::string(name_of(condition)) + (on ? " on" : " off"));
  }
  void report_refused(const Refused& content) override { refusals.emplace_back(content.what()); }
  void report_firmware(const std::string& words) override { firmware.push_back(words); }
  void remember(const Memory& memory) override { remembered = memory; }
  void report_forgotten(std::size_t characters) override { forgotten += characters; }
  void report_cut_off(std::size_t bytes) override { cut_off += bytes; }
  void deliver(const Receipt& receipt, PaperEnd end) override {
    papers.emplace_back(text_of(receipt), end);
    longest = std::max(longest, receipt.length / kHalfDotsPerDot);
  }

  std::vector<std::tuple<Decoded, std::size_t, std::string>> decoded;
  std::string answers;
  std::vector<UnknownBytes> unknown;
  std::vector<RefusedFrame> refused;
  std::vector<std::string> changes;
  std::vector<std::string> refusals;
  std::vector<std::string> firmware;
  Memory remembered;
  int beeps = 0;
  std::size_t forgotten = 0;
  std::size_t cut_off = 0;
  int longest = 0;  // of the papers, in dots
  std::vector<std::pair<std::string, PaperEnd>> papers;
};

constexpr std::string_view kReportsOn = "\x1d\x61\xff";
const std::string kProcessId = "\x1d(H\x06\0\x30\x30ID01"s;
const std::string kConfirmed = "7\"ID01\0"s;
const std::string kHealthy = "\x14\0\0\x0f"s;
const std::string kCoverReport = "\x3c\0\0\x0f"s;

struct PrinterTest : testing::Test {
  // What was answered since the last time.
  std::string answered() { return std::exchange(recorder.answers, ""); }

  Recorder recorder;
  Printer printer{recorder};
};

TEST_F(PrinterTest, tells_what_has_come_although_it_waits) {
  printer.set(Condition::kCoverOpen, true);
  printer.receive("a" + framed("\n") + "\x1b@");
  const auto pieces = recorder.decoded;
  ASSERT_EQ(pieces.size(), 4U);
  EXPECT_EQ(pieces[0], std::make_tuple(Decoded(Command{CommandKind::kText, 'a'}), 0U, "a"));
  EXPECT_EQ(std::get<1>(pieces[1]), 1U);
  EXPECT_EQ(std::get<2>(pieces[1]), framed("\n"));
  EXPECT_EQ(pieces[2], std::make_tuple(Decoded(Command{CommandKind::kLineFeed}), 12U, "\n"));
  EXPECT_EQ(pieces[3], std::make_tuple(Decoded(Command{CommandKind::kInitialize}), 17U, "\x1b@"));
}

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

TEST_F(PrinterTest, reports_come_at_enabling_and_at_every_change) {
  printer.set(Condition::kDrawerOpen, true);
  printer.set(Condition::kDrawerOpen, false);
  EXPECT_EQ(answered(), "");
  printer.receive(kReportsOn);
  EXPECT_EQ(answered(), kHealthy);
  printer.set(Condition::kCoverOpen, true);
  EXPECT_EQ(answered(), kCoverReport);
  printer.set(Condition::kCoverOpen, true);
  EXPECT_EQ(answered(), "");
  printer.set(Condition::kCoverOpen, false);
  EXPECT_EQ(answered(), kHealthy);
  printer.set(Condition::kMarkSeen, true);
  EXPECT_EQ(answered(), "");
}

TEST_F(PrinterTest, reports_end_when_they_are_disabled) {
  printer.receive(kReportsOn);
  printer.receive("\x1d\x61\0"s);
  answered();
  printer.set(Condition::kCoverOpen, true);
  EXPECT_EQ(answered(), "");
}

TEST_F(PrinterTest, each_change_is_told_once) {
  printer.set(Condition::kPaperOut, true);
  printer.set(Condition::kPaperOut, true);
  printer.set(Condition::kPaperOut, false);
  EXPECT_THAT(recorder.changes, ElementsAre("paper-out on", "paper-out off"));
}

TEST_F(PrinterTest, every_fault_holds_back_what_comes_until_it_is_over) {
  for (const Condition fault :
       {Condition::kCoverOpen, Condition::kPaperOut, Condition::kCutterJam, Condition::kOffline}) {
    recorder.papers.clear();
    printer.receive("a\nb");
    printer.set(fault, true);
    printer.receive("c\n\x1bi");
    EXPECT_THAT(recorder.papers, IsEmpty()) << name_of(fault);
    EXPECT_EQ(printer.held_bytes(), 4U) << name_of(fault);
    printer.set(fault, false);
    EXPECT_THAT(recorder.papers, ElementsAre(Pair("a\nbc\n", PaperEnd::kCut))) << name_of(fault);
    EXPECT_EQ(printer.held_bytes(), 0U) << name_of(fault);
  }
}

TEST_F(PrinterTest, all_faults_must_be_over_before_it_goes_on) {
  printer.set(Condition::kCoverOpen, true);
  printer.set(Condition::kPaperOut, true);
  printer.receive(kProcessId);
  printer.set(Condition::kCoverOpen, false);
  EXPECT_EQ(answered(), "");
  printer.set(Condition::kPaperOut, false);
  EXPECT_EQ(answered(), kConfirmed);
}

TEST_F(PrinterTest, fault_does_not_hold_back_the_questions_about_it) {
  printer.set(Condition::kCoverOpen, true);
  printer.receive("text\x10\x04\x02");
  EXPECT_EQ(answered(), "\x16");
  printer.receive(kReportsOn);
  EXPECT_EQ(answered(), kCoverReport);
  printer.receive("\x1b#SENSOR");
  EXPECT_EQ(answered(), "");
}

TEST_F(PrinterTest, process_id_waits_for_all_before_it) {
  printer.receive("a\n" + kProcessId);
  EXPECT_EQ(answered(), kConfirmed);
  printer.set(Condition::kPaperOut, true);
  printer.receive("b\n\x1bi" + kProcessId);
  EXPECT_EQ(answered(), "");
  printer.set(Condition::kPaperOut, false);
  EXPECT_EQ(answered(), kConfirmed);
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("a\nb\n", PaperEnd::kCut)));
}

TEST_F(PrinterTest, scripted_fault_stops_between_two_lines) {
  printer.expect_fault({Condition::kPaperOut, 2});
  printer.receive("a\nb\nc\nd\n\x1bi" + kProcessId);
  EXPECT_THAT(recorder.changes, ElementsAre("paper-out on"));
  EXPECT_EQ(printer.printed_lines(), 2U);
  printer.set(Condition::kPaperOut, false);
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("a\nb\nc\nd\n", PaperEnd::kCut)));
  EXPECT_EQ(answered(), kConfirmed);
  EXPECT_THAT(recorder.changes, ElementsAre("paper-out on", "paper-out off"));
}

TEST_F(PrinterTest, scripted_fault_at_no_line_is_there_from_the_start) {
  printer.expect_fault({Condition::kCoverOpen, 0});
  EXPECT_TRUE(printer.conditions().has(Condition::kCoverOpen));
}

TEST_F(PrinterTest, lines_before_an_initialise_count_for_the_scripted_fault) {
  printer.expect_fault({Condition::kCutterJam, 3});
  printer.receive("a\nb\n\x1b@c\nd\n");
  EXPECT_EQ(printer.printed_lines(), 3U);
}

TEST_F(PrinterTest, fault_counts_lines_and_bytes_from_when_it_is_expected) {
  printer.receive("a\nb\n");
  printer.expect_fault({Condition::kPaperOut, 1});
  printer.receive("c\nd\n");
  EXPECT_EQ(printer.printed_lines(), 3U);
  printer.set(Condition::kPaperOut, false);
  printer.expect_fault({Condition::kCoverOpen, 3, ScriptedFault::Unit::kBytes});
  EXPECT_EQ(printer.bytes_before_fault(), 3U);
  EXPECT_FALSE(printer.conditions().has(Condition::kCoverOpen));
  printer.receive("e\nf");
  EXPECT_TRUE(printer.conditions().has(Condition::kCoverOpen));
}

TEST_F(PrinterTest, power_off_forgets_all_but_the_paper) {
  printer.receive(kReportsOn);
  printer.receive("printed\n\x1b!\x20open");
  printer.set(Condition::kCoverOpen, true);
  printer.receive("held\n\x1b");
  answered();
  printer.set(Condition::kPowerOff, true);
  EXPECT_EQ(printer.held_bytes(), 0U);
  printer.receive("lost\n\x10\x04\x02" + kProcessId);
  printer.set(Condition::kCoverOpen, false);
  printer.set(Condition::kPowerOff, false);
  printer.set(Condition::kDrawerOpen, true);
  EXPECT_EQ(answered(), "");
  printer.receive("@after\n\x1bi");
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("printed\n@after\n", PaperEnd::kCut)));
}

TEST_F(PrinterTest, power_that_goes_in_the_middle_of_a_job_takes_its_rest) {
  printer.expect_fault({Condition::kPowerOff, 1});
  printer.receive("a\nb\n\x1bi" + framed("c\n") + kProcessId);
  EXPECT_EQ(answered(), "");
  printer.set(Condition::kPowerOff, false);
  printer.finish();
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("a\n", PaperEnd::kUncut)));
}

TEST_F(PrinterTest, offsets_count_what_came_while_it_was_off) {
  printer.set(Condition::kPowerOff, true);
  printer.receive("12345");
  printer.set(Condition::kPowerOff, false);
  printer.receive("\x01");
  EXPECT_THAT(recorder.unknown, ElementsAre(UnknownBytes{5, "\x01"}));
}

TEST_F(PrinterTest, framed_job_prints_like_a_bare_one) {
  printer.receive(framed("a\n\x1bi" + kProcessId));
  EXPECT_EQ(answered(), "\x06\0"s + kConfirmed);
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("a\n", PaperEnd::kCut)));
}

TEST_F(PrinterTest, framed_job_is_taken_but_not_printed_during_a_fault) {
  printer.set(Condition::kPaperOut, true);
  printer.receive(framed("a\n\x1bi" + kProcessId));
  EXPECT_EQ(answered(), "\x06\0"s);
  printer.set(Condition::kPaperOut, false);
  EXPECT_EQ(answered(), kConfirmed);
}

TEST_F(PrinterTest, offsets_within_a_frame_are_those_on_the_line) {
  printer.receive("ab" + framed("c\x01"));
  EXPECT_THAT(recorder.unknown, ElementsAre(UnknownBytes{2 + 11 + 1, "\x01"}));
}

TEST_F(PrinterTest, long_framed_job_prints_whole) {
  std::string job;
  while (job.size() < 70000) job += "0123456789\n";
  printer.receive(framed(job + "\x1bi"));
  EXPECT_EQ(answered(), "\x06\0"s);
  std::string paper;
  for (const auto& [text, end] : recorder.papers) paper += text;
  EXPECT_EQ(paper, job);
}

TEST_F(PrinterTest, refused_frame_shows_on_paper_and_its_job_does_not) {
  printer.receive("open" + with_wrong_checksum(framed("job\n")));
  EXPECT_TRUE(printer.waits_for_frame());
  EXPECT_EQ(answered(), "");
  printer.line_is_silent();
  EXPECT_FALSE(printer.waits_for_frame());
  EXPECT_EQ(answered(), "\x15\0"s);
  EXPECT_THAT(recorder.refused, ElementsAre(RefusedFrame{4, "wrong checksum"}));
  printer.receive("next\n\x1bi");
  EXPECT_THAT(recorder.papers,
              ElementsAre(Pair("open\nFRAME REFUSED: wrong checksum\nnext\n", PaperEnd::kCut)));
}

TEST_F(PrinterTest, frame_of_wrong_length_is_refused) {
  std::string frame = framed("job\n");
  frame[9] = 9;
  printer.receive(frame);
  printer.line_is_silent();
  EXPECT_EQ(answered(), "\x15\0"s);
  EXPECT_THAT(recorder.refused, ElementsAre(RefusedFrame{0, "wrong length"}));
}

TEST_F(PrinterTest, frame_within_a_frame_is_refused) {
  printer.receive(framed("a\n" + framed("b\n") + "c\n\x1bi"));
  EXPECT_EQ(answered(), "\x06\0\x15\0"s);
  EXPECT_THAT(recorder.papers,
              ElementsAre(Pair("a\nFRAME REFUSED: a frame within a frame\nc\n", PaperEnd::kCut)));
}

TEST_F(PrinterTest, unfinished_frame_is_refused_at_the_end) {
  printer.receive(framed("job\n").substr(0, 13));
  printer.finish();
  EXPECT_THAT(recorder.refused, SizeIs(1));
}

TEST_F(PrinterTest, serial_number_is_written_read_and_kept) {
  printer.receive("\x1d#\x03_AB\x5c\x1dIC");
  EXPECT_EQ(answered(), "0_AB");
  EXPECT_EQ(recorder.remembered.identity.serial_number, "AB");
  printer.receive("\x1d#\x03_XY\x5c\x1dIC");
  EXPECT_EQ(answered(), "1_AB");
  EXPECT_EQ(recorder.remembered.identity.serial_number, "AB");
}

TEST_F(PrinterTest, remembered_serial_number_is_told) {
  Printer other(recorder, Memory{Identity{"Z-99"}});
  other.receive("\x1dIC");
  EXPECT_EQ(answered(), "_Z-99");
}

// An image of eight dots by eight, and how it is kept.
const std::string kImage = "\x01\0\x01\0"s + std::string(8, '\xff');
const std::string kKeepImage = "\x1cq\x01" + kImage;

TEST_F(PrinterTest, stored_images_print_by_number_and_are_remembered) {
  printer.receive("\x1b@" + kKeepImage);
  EXPECT_EQ(recorder.remembered.images, "\x01" + kImage);
  printer.receive("\x1cp\x01\x33\x1cp\x02\x30\x1bi");
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("[stored picture 1, 16 x 16]\n", PaperEnd::kCut)));
  EXPECT_THAT(recorder.refusals, ElementsAre("stored picture 2: there is none"));
}

TEST_F(PrinterTest, stored_images_outlive_power_and_an_initialise_but_not_their_erasure) {
  printer.receive(kKeepImage);
  printer.set(Condition::kPowerOff, true);
  printer.set(Condition::kPowerOff, false);
  printer.receive("\x1b@\x1cp\x01\x30");
  EXPECT_THAT(recorder.refusals, IsEmpty());
  printer.receive("\x1c\x65\x1cp\x01\x30");
  EXPECT_EQ(recorder.remembered.images, "\0"s);
  EXPECT_THAT(recorder.refusals, SizeIs(1));
}

TEST_F(PrinterTest, next_download_replaces_all_stored_images) {
  printer.receive("\x1cq\x02" + kImage + kImage + kKeepImage + "\x1cp\x02\x30");
  EXPECT_THAT(recorder.refusals, SizeIs(1));
  printer.receive("\x1cq\0\x1cp\x01\x30"s);
  EXPECT_THAT(recorder.refusals, SizeIs(2));
}

TEST_F(PrinterTest, remembered_images_print) {
  Printer other(recorder, Memory{{}, "\x01" + kImage});
  other.receive("\x1cp\x01\x30\x1bi");
  EXPECT_THAT(recorder.papers, SizeIs(1));
}

TEST_F(PrinterTest, refused_symbol_leaves_no_trace_but_the_report) {
  printer.receive(
      "a\n\x1dkC\x03"
      "12X"
      "b\n\x1bi");
  EXPECT_THAT(recorder.refusals, ElementsAre("EAN-13 \"12X\": needs 12 digits, or one more"));
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("a\nb\n", PaperEnd::kCut)));
  EXPECT_THAT(recorder.unknown, IsEmpty());
}

TEST_F(PrinterTest, picture_waits_for_the_paper_like_text) {
  printer.set(Condition::kPaperOut, true);
  printer.receive(kKeepImage + "\x1cp\x01\x30\x1bi");
  EXPECT_THAT(recorder.papers, IsEmpty());
  EXPECT_EQ(recorder.remembered.images, "\0"s);
  printer.set(Condition::kPaperOut, false);
  EXPECT_THAT(recorder.papers, SizeIs(1));
}

TEST_F(PrinterTest, power_that_goes_takes_a_download_with_it) {
  printer.receive("\x1d*\x01\x01" + std::string(7, '\xff'));
  printer.set(Condition::kPowerOff, true);
  printer.set(Condition::kPowerOff, false);
  printer.receive("text\n\x1bi");
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("text\n", PaperEnd::kCut)));
}

TEST_F(PrinterTest, status_query_within_data_is_data) {
  printer.receive("\x1d*\x01\x01\x10\x04\x01" + std::string(5, '\0'));
  EXPECT_EQ(answered(), "");
  printer.receive("\x10\x04\x01");
  EXPECT_EQ(answered(), "\x16");
}

TEST_F(PrinterTest, endless_pictures_are_delivered_in_pieces_that_a_file_can_hold) {
  printer.receive("\x1d*\x01\x01" + std::string(8, '\xff'));
  const std::string page = "\x1bL\x1d}Y\xf8\x08\x1d/0\x1b\f\x1bS";  // 2304 dots, the longest
  for (int i = 0; i < 30; ++i) printer.receive(page);
  EXPECT_THAT(recorder.papers, SizeIs(2));
  EXPECT_LT(recorder.longest, 32767 - 24);
  EXPECT_THAT(recorder.refusals, IsEmpty());
}

TEST_F(PrinterTest, page_that_is_not_printed_is_reported) {
  printer.receive("\x1bLpage\n\x1bS");
  EXPECT_EQ(recorder.forgotten, 4U);
  printer.receive("\x1bLpage\n\x1b@");
  EXPECT_EQ(recorder.forgotten, 8U);
  printer.receive("\x1bLpage\n");
  printer.finish();
  EXPECT_EQ(recorder.forgotten, 12U);
  EXPECT_THAT(recorder.papers, IsEmpty());
}

TEST_F(PrinterTest, firmware_is_checked_and_told) {
  const std::string region(0x50000, 'x');
  printer.receive("\x1d~D\x05\0\0"s + region + '\0');
  EXPECT_THAT(recorder.refusals, IsEmpty());
  printer.receive("\x1d~D\x05\0\0"s + region + '\1');
  EXPECT_THAT(recorder.firmware, ElementsAre("firmware D 327680 bytes, checksum right",
                                             "firmware D 327680 bytes, checksum wrong"));
  EXPECT_THAT(recorder.refusals, SizeIs(1));
}

TEST_F(PrinterTest, version_and_mark_are_told) {
  printer.receive("\x1dID\x1b#BM?");
  EXPECT_EQ(answered(), "_VIRTUALV1.00_BM");
}

TEST_F(PrinterTest, drawer_opens_once_and_is_reported) {
  printer.receive(kReportsOn);
  answered();
  printer.receive("\x1bp0\x64\xc8\x1bp0\x64\xc8");
  EXPECT_EQ(answered(), "\x10\0\0\x0f"s);
  EXPECT_THAT(recorder.changes, ElementsAre("drawer on"));
}

TEST_F(PrinterTest, beep_is_told) {
  printer.receive("\x1b#ERROR");
  EXPECT_EQ(recorder.beeps, 1);
}

TEST_F(PrinterTest, self_test_is_a_page_of_its_own) {
  printer.receive(
      "a\n\x1bi\x1b#MENU1"
      "b\n\x1bi");
  ASSERT_THAT(recorder.papers, SizeIs(3));
  EXPECT_THAT(recorder.papers[1].first, testing::HasSubstr("VP0000001"));
  EXPECT_EQ(recorder.papers[2].first, "b\n");
  EXPECT_THAT(recorder.unknown, IsEmpty());
}

TEST_F(PrinterTest, self_test_stops_at_a_fault_and_goes_on) {
  printer.expect_fault({Condition::kPaperOut, 4});
  printer.receive("\x1b#MENU2");
  EXPECT_THAT(recorder.papers, IsEmpty());
  printer.set(Condition::kPaperOut, false);
  EXPECT_THAT(recorder.papers, SizeIs(1));
  EXPECT_THAT(recorder.unknown, IsEmpty());
}

TEST_F(PrinterTest, connection_that_ends_takes_an_unfinished_command_with_it) {
  printer.receive("one\n\x1d(H\x06");
  printer.connection_has_ended();
  EXPECT_EQ(recorder.cut_off, 4U);
  printer.receive("two\n\x1bi");
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("one\ntwo\n", PaperEnd::kCut)));
  EXPECT_THAT(recorder.unknown, IsEmpty());
}

TEST_F(PrinterTest, connection_that_ends_takes_an_unfinished_frame_with_it) {
  const std::string frame = framed("in a frame\n");
  printer.receive(frame.substr(0, frame.size() - 1));
  printer.connection_has_ended();
  EXPECT_EQ(recorder.cut_off, frame.size() - 1);
  EXPECT_FALSE(printer.waits_for_frame());
  EXPECT_THAT(recorder.refused, IsEmpty());
}

TEST_F(PrinterTest, connection_that_ends_leaves_the_open_line_and_what_is_held) {
  printer.receive("open");
  printer.set(Condition::kPaperOut, true);
  printer.receive(" line\n");
  printer.connection_has_ended();
  printer.set(Condition::kPaperOut, false);
  printer.receive("\x1bi");
  EXPECT_EQ(recorder.cut_off, 0U);
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("open line\n", PaperEnd::kCut)));
}

TEST_F(PrinterTest, next_connection_has_to_enable_reports_again) {
  printer.receive(kReportsOn);
  answered();
  printer.connection_has_ended();
  printer.set(Condition::kCoverOpen, true);
  EXPECT_EQ(answered(), "");
  printer.receive(kReportsOn);
  EXPECT_EQ(answered(), kCoverReport);
}

TEST_F(PrinterTest, conditions_of_the_line_are_not_reported) {
  printer.receive(kReportsOn);
  answered();
  printer.set(Condition::kBusy, true);
  EXPECT_EQ(answered(), "");
  EXPECT_THAT(recorder.changes, ElementsAre("busy on"));
}

TEST_F(PrinterTest, fault_sets_in_at_the_very_byte) {
  printer.expect_fault({Condition::kBusy, 5, ScriptedFault::Unit::kBytes});
  EXPECT_EQ(printer.bytes_before_fault(), 5U);
  printer.receive("abc");
  EXPECT_EQ(printer.bytes_before_fault(), 2U);
  EXPECT_THAT(recorder.changes, IsEmpty());
  printer.receive("de");
  EXPECT_THAT(recorder.changes, ElementsAre("busy on"));
  EXPECT_EQ(printer.bytes_before_fault(), SIZE_MAX);
}

TEST_F(PrinterTest, what_a_fault_holds_back_is_not_printed_at_the_end) {
  printer.receive("a\nopen");
  printer.set(Condition::kPaperOut, true);
  printer.receive("b\n");
  printer.finish();
  EXPECT_THAT(recorder.papers, ElementsAre(Pair("a\n", PaperEnd::kUncut)));
  EXPECT_EQ(printer.held_bytes(), 2U);
}

}  // namespace
}  // namespace virtual_printer
