// The program with something the matter: conditions, reports, confirmations and spoiled answers,
// over the line. What a script must wait for, it reads from the line; nothing here waits for time
// to pass.

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framed.h"
#include "program_fixture.h"

namespace virtual_printer {
namespace {

using testing::HasSubstr;

class FaultTest : public ProgramTest {
 protected:
  // The script has the line as descriptor 3 and these words:
  //   answer N            reads N bytes and prints them as hexadecimal numbers
  //   change COND on|off  changes a condition
  //   confirm             asks for the confirmation that all before is printed
  Outcome run_till(const std::string& script, std::vector<std::string> options = {},
                   User user = User::kThisOne) const {
    return run_script("printer=" + program() + R"(
      answer() { timeout 30 dd bs=1 count=$1 <&3 2>/dev/null | od -An -v -tx1; }
      change() { $printer set $1 $2 --port $port; }
      confirm() { printf '\035(H\006\000\060\060FFFF' >&3; }
      exec 3<>$port
      )" + script,
                      std::move(options), user);
  }

  std::string frame_file(std::string_view name, const std::string& frame) const {
    std::string path = in_folder(std::string(name));
    std::ofstream(path, std::ios::binary) << frame;
    return path;
  }

  std::string receipt(const std::string& name) const { return content_of(in_folder(name)); }
};

TEST_F(FaultTest, reports_come_at_enabling_and_at_each_change) {
  const Outcome outcome = run_till(R"(
    printf '\035a\377' >&3; answer 4
    change cover on; answer 4
    change cover off; answer 4
    printf '\033p0dd' >&3; answer 4)");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.out, "ready " + port_ +
                             "\n 14 00 00 0f\ncondition cover on\n 3c 00 00 0f\n"
                             "condition cover off\n 14 00 00 0f\ncondition drawer on\n"
                             " 10 00 00 0f\n");
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(FaultTest, process_id_is_confirmed_only_after_recovery) {
  const Outcome outcome = run_till(R"(
    change paper-out on
    printf 'held\n\033i' >&3; confirm; printf '\020\004\004' >&3; answer 1
    change paper-out off; answer 7)");
  EXPECT_THAT(outcome.out, HasSubstr("\n 72\ncondition paper-out off\n"));
  EXPECT_THAT(outcome.out, HasSubstr("receipt-001.png\n 37 22 46 46 46 46 00\n"));
  EXPECT_EQ(receipt("receipt-001.txt"), "held\n");
}

TEST_F(FaultTest, good_frame_is_answered_and_printed) {
  const std::string file = frame_file("good", framed("in a frame\n\x1bi"));
  const Outcome outcome = run_till("cat " + file + " >&3; answer 2", {"--strict"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.out, HasSubstr(" 06 00\n"));
  EXPECT_EQ(receipt("receipt-001.txt"), "in a frame\n");
}

TEST_F(FaultTest, bad_frame_is_refused_visibly) {
  const std::string file = frame_file("bad", with_wrong_checksum(framed("in a frame\n\x1bi")));
  const Outcome outcome =
      run_till("cat " + file + R"( >&3; answer 2; printf 'next\n\033i' >&3)", {"--strict"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr(" 15 00\n"));
  EXPECT_THAT(outcome.errors, HasSubstr("frame refused at 0: wrong checksum\n"));
  EXPECT_EQ(receipt("receipt-001.txt"), "FRAME REFUSED: wrong checksum\nnext\n");
}

TEST_F(FaultTest, frame_whose_length_wraps_prints_whole) {
  std::string job;
  while (job.size() < 66000) job += std::string(41, 'x') + "\n";
  const std::string file = frame_file("long", framed(job + "\x1bi"));
  const Outcome outcome = run_till("cat " + file + " >&3; answer 2", {"--strict"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.out, HasSubstr(" 06 00\n"));
  EXPECT_EQ(receipt("receipt-001-uncut.txt") + receipt("receipt-002.txt"), job);
}

TEST_F(FaultTest, scripted_fault_and_recovery_leave_one_whole_receipt) {
  const Outcome outcome = run_till(R"(printf 'a\nb\nc\nd\n\033i' >&3; confirm; answer 7)",
                                   {"--fault", "paper-out@2", "--recover-after", "50"});
  EXPECT_EQ(outcome.out, "ready " + port_ +
                             "\ncondition paper-out on\ncondition paper-out off\nreceipt " +
                             in_folder("receipt-001.png").string() + "\n 37 22 46 46 46 46 00\n");
  EXPECT_EQ(receipt("receipt-001.txt"), "a\nb\nc\nd\n");
}

TEST_F(FaultTest, fault_is_asked_for_at_a_byte_while_the_printer_runs) {
  const Outcome outcome = run_till(R"(
    printf 'a\n\020\004\004' >&3; answer 1
    $printer fault cover@2B --port $port; $printer fault lid@2B --port $port
    printf 'b\nc\n\020\004\002' >&3; answer 1
    change cover off)");
  EXPECT_THAT(outcome.out, HasSubstr("\n 12\ncondition cover on\n 16\ncondition cover off\n"));
  EXPECT_THAT(outcome.errors, HasSubstr("CONDITION one of cover, paper-out"));
  EXPECT_EQ(receipt("receipt-001-uncut.txt"), "a\nb\nc\n");
}

TEST_F(FaultTest, receipt_is_whole_although_the_command_did_not_wait_for_recovery) {
  const Outcome outcome = run_till(R"(printf 'a\nb\n\033i' >&3; exit 5)",
                                   {"--fault", "cover@0", "--recover-after", "50"});
  EXPECT_EQ(outcome.status, 5);
  EXPECT_EQ(receipt("receipt-001.txt"), "a\nb\n");
}

TEST_F(FaultTest, what_is_held_at_the_end_is_counted) {
  const Outcome outcome = run_till(R"(printf 'a\nb\n' >&3)", {"--fault", "cover@1"});
  EXPECT_THAT(outcome.errors, HasSubstr("bytes held back, never printed: 2\n"));
  EXPECT_EQ(receipt("receipt-001-uncut.txt"), "a\n");
}

TEST_F(FaultTest, power_off_forgets_what_is_held_and_that_reports_are_on) {
  const Outcome outcome = run_till(R"(
    printf '\035a\377printed\n' >&3; answer 4
    change cover on; answer 4
    printf 'held\n\020\004\002' >&3; answer 1
    change power-off on; change cover off; change power-off off; change drawer on
    printf '\020\004\001' >&3; answer 1
    printf 'after\n\033i' >&3; confirm; answer 7)");
  EXPECT_THAT(outcome.out, HasSubstr("condition drawer on\n 12\n"));
  EXPECT_EQ(receipt("receipt-001.txt"), "printed\nafter\n");
}

TEST_F(FaultTest, power_comes_back_by_itself) {
  const Outcome outcome = run_till(
      "until $printer status --port $port | grep -q 'power-off off'; do :; done\n"
      "printf '\\020\\004\\001' >&3; answer 1",
      {"--fault", "power-off@0", "--recover-after", "20"});
  EXPECT_THAT(outcome.out, HasSubstr("condition power-off on\ncondition power-off off\n 16\n"));
}

TEST_F(FaultTest, serial_number_outlives_the_process_in_its_file) {
  const std::vector<std::string> memory{"--memory", in_folder("memory")};
  const Outcome first =
      run_till(R"(printf '\035#\003_AB\134' >&3; answer 1; printf '\035IC' >&3; answer 3)", memory);
  EXPECT_THAT(first.out, HasSubstr(" 30\n 5f 41 42\n")) << first.errors;
  const Outcome second = run_till(R"(printf '\035IC' >&3; answer 3)", memory);
  EXPECT_THAT(second.out, HasSubstr(" 5f 41 42\n"));
  const Outcome forgetful = run_till(R"(printf '\035IC' >&3; answer 3)");
  EXPECT_THAT(forgetful.out, HasSubstr(" 5f 56 50\n"));
}

TEST_F(FaultTest, stored_images_outlive_the_process_in_the_same_file) {
  const std::vector<std::string> memory{"--memory", in_folder("memory"), "--strict"};
  run_till(
      R"(printf '\035#\003_AB\134\034q\001\001\000\001\000\200\200\200\200\200\200\200\200' >&3)",
      memory);
  const Outcome second = run_till(R"(printf '\034p\001\060\033i\035IC' >&3; answer 3)", memory);
  EXPECT_EQ(second.status, 0) << second.errors;
  EXPECT_THAT(second.out, HasSubstr(" 5f 41 42\n"));
  EXPECT_EQ(receipt("receipt-001.txt"), "[stored picture 1, 8 x 8]\n");
}

TEST_F(FaultTest, file_that_is_no_memory_is_left_alone) {
  std::ofstream(in_folder("memory")) << "something else\n";
  const Outcome outcome = run_script("echo started", {"--memory", in_folder("memory")});
  EXPECT_EQ(outcome.status, kOwnFailure);
  EXPECT_THAT(outcome.errors, HasSubstr("memory is no memory of a printer\n"));
  EXPECT_EQ(content_of(in_folder("memory")), "something else\n");
}

TEST_F(FaultTest, memory_that_cannot_be_made_is_an_error_before_the_command_runs) {
  const Outcome outcome = run_script("echo started", {"--memory", "/dev/null/memory"});
  EXPECT_EQ(outcome.status, kOwnFailure);
  EXPECT_EQ(outcome.out, "");
}

TEST_F(FaultTest, version_and_mark_are_told) {
  const Outcome outcome = run_till(R"(
    printf '\035ID' >&3; answer 13
    change mark on; printf '\033#BM?' >&3; answer 3)");
  EXPECT_THAT(outcome.out, HasSubstr(" 5f 56 49 52 54 55 41 4c 56 31 2e 30 30\n"));
  EXPECT_THAT(outcome.out, HasSubstr(" 5f 42 42\n"));
}

TEST_F(FaultTest, beep_is_a_line) {
  EXPECT_THAT(run_till(R"(printf '\033#ERROR' >&3)").out, HasSubstr("\nbeep\n"));
}

TEST_F(FaultTest, doubled_answers_come_twice) {
  const Outcome outcome = run_till(R"(printf '\033#SENSOR' >&3; answer 6)", {"--answer-double"});
  EXPECT_THAT(outcome.out, HasSubstr(" 5f 30 00 5f 30 00\n"));
}

TEST_F(FaultTest, split_answers_come_whole_in_the_end) {
  const Outcome outcome = run_till(R"(printf '\033#SENSOR' >&3; answer 3)", {"--answer-split"});
  EXPECT_THAT(outcome.out, HasSubstr(" 5f 30 00\n"));
}

TEST_F(FaultTest, delayed_answers_come_no_sooner) {
  const Outcome outcome = run_till(R"(
    before=$(date +%s%N)
    printf '\033#SENSOR' >&3; answer 3
    [ $(($(date +%s%N) - before)) -ge 100000000 ])",
                                   {"--answer-delay", "100"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr(" 5f 30 00\n"));
}

TEST_F(FaultTest, mute_printer_prints_and_says_nothing) {
  const Outcome outcome = run_till(R"(
    printf '\020\004\002\033#SENSOR\033#ERROR' >&3
    until grep -q beep )" + in_folder("out").string() +
                                       R"(; do :; done
    dd bs=1 count=1 iflag=nonblock <&3 2>/dev/null | od -An -tx1
    printf 'text\n\033i' >&3)",
                                   {"--mute"});
  EXPECT_EQ(outcome.out,
            "ready " + port_ + "\nbeep\nreceipt " + in_folder("receipt-001.png").string() + "\n");
}

TEST_F(FaultTest, status_tells_conditions_and_counters) {
  const Outcome outcome = run_till(R"(
    printf 'a\n\033i\001' >&3; confirm; answer 7
    change cover on
    printf 'held\n\020\004\002' >&3; answer 1
    change answer-garble 7
    $printer status --port $port)");
  EXPECT_THAT(outcome.out, HasSubstr("cover on\npaper-out off\nnear-end off\njam off\ndrawer off\n"
                                     "offline off\npower-off off\nmark off\n"));
  EXPECT_THAT(outcome.out, HasSubstr("answer-delay off\nanswer-split off\nanswer-glue off\n"
                                     "answer-double off\nanswer-garble 7\nmute off\nslow off\n"
                                     "nibble-refusals off\n"));
  EXPECT_THAT(outcome.out,
              HasSubstr("receipts 1\nlines 1\n"
                        "unknown bytes 1\nrefused frames 0\nrefused content 0\nbytes held 5\n"));
}

TEST_F(FaultTest, request_without_a_printer_fails_with_a_sentence) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"set", "cover", "on"}, {"status"}}) {
    const Outcome outcome = finish(start(words));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("no virtual printer of yours serves " + port_));
  }
}

TEST_F(FaultTest, wrong_requests_and_faults_are_wrong_options) {
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"set", "lid", "on"},
           {"set", "cover", "up"},
           {"set", "cover"},
           {"set", "cover", "on", "--", "true"},
           {"--fault", "lid@3", "--", "true"},
           {"--recover-after", "5", "--", "true"},
           {"--fault", "jam@3", "--recover-after", "-5", "--", "true"}}) {
    EXPECT_EQ(finish(start(words)).status, 2) << words.front();
  }
}

TEST_F(FaultTest, socket_is_its_users_alone_and_goes_with_the_printer) {
  const Outcome outcome = run_till("stat -c %F:%a $XDG_RUNTIME_DIR/virtual-printer-*");
  EXPECT_THAT(outcome.out, HasSubstr("socket:600\n"));
  for (const auto& entry : fs::directory_iterator(in_folder(""))) {
    EXPECT_FALSE(entry.is_socket()) << entry.path();
  }
}

TEST_F(FaultTest, socket_of_a_killed_printer_is_no_obstacle_to_the_next) {
  EXPECT_EQ(run_till("kill -9 $PPID").status, 128 + SIGKILL);
  const Outcome outcome = run_till("change cover on");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(FaultTest, request_from_outside_reaches_a_printer_with_a_command) {
  const fs::path ready = in_folder("is-ready");
  ASSERT_EQ(mkfifo(ready.c_str(), 0666), 0);
  const std::string script = "exec 3<>" + port_ + "\nprintf '\\035a\\377' >&3\n" +
                             "dd bs=1 count=4 <&3 2>/dev/null | od -An -tx1\n" + "echo >" +
                             ready.string() +
                             "\ntimeout 30 dd bs=1 count=4 <&3 2>/dev/null | od -An -tx1";
  const pid_t printer = start({"--", "sh", "-c", script});
  std::ifstream(ready).get();
  const int status = in_child([&] {
    execl(program().c_str(), program().c_str(), "set", "cover", "on", "--port", port_.c_str(),
          nullptr);
    return 1;
  });
  EXPECT_EQ(status, 0);
  EXPECT_THAT(finish(printer).out, HasSubstr(" 3c 00 00 0f\n"));
}

}  // namespace
}  // namespace virtual_printer
