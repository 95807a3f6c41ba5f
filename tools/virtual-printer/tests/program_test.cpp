// The program from outside: started as people start it, judged by what it leaves behind.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "program_fixture.h"

namespace virtual_printer {
namespace {

using testing::HasSubstr;

// Width and height as the file's header has them.
std::pair<int, int> size_of_png(const fs::path& path) {
  const std::string png = content_of(path);
  const auto number_at = [&](std::size_t offset) {
    int number = 0;
    for (const char byte : png.substr(offset, 4))
      number = number * 256 + static_cast<uint8_t>(byte);
    return number;
  };
  return png.size() < 24 ? std::pair(0, 0) : std::pair(number_at(16), number_at(20));
}

TEST_F(ProgramTest, receipt_becomes_picture_and_text) {
  const Outcome outcome = run_script(R"(printf '\033a1Hello\n\n\033i' >$port)");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.out,
            "ready " + port_ + "\nreceipt " + in_folder("receipt-001.png").string() + "\n");
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), std::string(18, ' ') + "Hello\n\n");
  EXPECT_EQ(size_of_png(in_folder("receipt-001.png")), std::pair(640, 2 * 30 + 2 * 12));
}

TEST_F(ProgramTest, line_carries_every_byte_unchanged) {
  const Outcome outcome = run_script(R"(printf '\003\004\021\023\n\r\n\033m' >$port)");
  EXPECT_THAT(outcome.errors, HasSubstr("unknown bytes at 0: 03\nunknown bytes at 1: 04\n"
                                        "unknown bytes at 2: 11\nunknown bytes at 3: 13\n"));
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), "\n\n");
}

TEST_F(ProgramTest, status_query_is_answered) {
  const Outcome outcome = run_script(R"(
    exec 3<>$port
    printf '\020\004\002\033#SENSOR' >&3
    dd bs=1 count=4 <&3 2>/dev/null | od -An -tx1)");
  EXPECT_THAT(outcome.out, HasSubstr(" 12 5f 30 00\n"));
}

TEST_F(ProgramTest, one_user_of_the_port_may_follow_another) {
  run_script(R"(printf 'one\n' >$port; printf 'two\n\033i' >$port; printf 'three\n\033i' >$port)");
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), "one\ntwo\n");
  EXPECT_EQ(content_of(in_folder("receipt-002.txt")), "three\n");
}

TEST_F(ProgramTest, more_bytes_than_the_line_holds_all_arrive) {
  run_script(R"(
    i=0; while [ $i -lt 500 ]; do echo 'a line of the receipt'; i=$((i + 1)); done >$port
    printf '\033i' >$port)");
  const std::string text = content_of(in_folder("receipt-001.txt"));
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 500);
}

TEST_F(ProgramTest, uncut_paper_is_written_at_the_end) {
  const Outcome outcome = run_script(R"(printf 'cut\n\033ileft\nopen' >$port)");
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), "cut\n");
  EXPECT_EQ(content_of(in_folder("receipt-002-uncut.txt")), "left\nopen\n");
  EXPECT_EQ(size_of_png(in_folder("receipt-002-uncut.png")).first, 640);
  EXPECT_THAT(outcome.out, HasSubstr("receipt-002-uncut.png\n"));
}

TEST_F(ProgramTest, exit_status_is_the_commands) {
  EXPECT_EQ(run_script("exit 7").status, 7);
  EXPECT_EQ(run_script("kill -TERM $$").status, 128 + SIGTERM);
  EXPECT_EQ(finish(start({"--", "/no/such/program"})).status, 127);
}

TEST_F(ProgramTest, unknown_bytes_are_reported) {
  const Outcome outcome = run_script(R"(printf 'ab\033|lA\n\033i' >$port)");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("unknown bytes at 2: 1B 7C\n"));
}

TEST_F(ProgramTest, strict_makes_unknown_bytes_a_failure) {
  EXPECT_EQ(run_script(R"(printf 'ab\033|lA\n\033i' >$port)", {"--strict"}).status, 3);
  EXPECT_EQ(run_script(R"(printf 'ab\n\033i' >$port)", {"--strict"}).status, 0);
}

TEST_F(ProgramTest, ordinary_user_gets_the_name_in_a_private_folder) {
  if (!ordinary_users_have_namespaces()) GTEST_SKIP() << "users may not make namespaces here";
  const Outcome outcome = run_script(R"(
    printf 'private\n\033i' >$port
    printf 'as usual' >/dev/null
    id -u)",
                                     {}, User::kOrdinary);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), "private\n");
  const uid_t user = geteuid() == 0 ? kNobody : geteuid();
  EXPECT_THAT(outcome.out, HasSubstr(std::to_string(user) + "\n"));
}

TEST_F(ProgramTest, ordinary_user_without_a_command_is_told_what_to_do) {
  if ((fs::status("/dev").permissions() & fs::perms::others_write) != fs::perms::none) {
    GTEST_SKIP() << "everybody may write /dev here";
  }
  const Outcome outcome = finish(start({}, User::kOrdinary));
  EXPECT_EQ(outcome.status, kOwnFailure);
  EXPECT_THAT(outcome.errors, HasSubstr("-- COMMAND"));
}

TEST_F(ProgramTest, endless_sender_does_not_keep_the_printer_from_ending) {
  // The port is opened before the sender goes into the background: opened later, the name may be
  // gone, and the shell would make a file of it.
  const Outcome outcome =
      run_script("exec 3>$port; yes 'without end' >&3 2>/dev/null &\nuntil [ -e " +
                 in_folder("receipt-001-uncut.png").string() + " ]; do :; done; exit 4");
  EXPECT_EQ(outcome.status, 4);
}

TEST_F(ProgramTest, folder_that_cannot_be_made_is_an_error_before_the_command_runs) {
  const Outcome outcome = run_script("echo started", {"--output", "/dev/null/receipts"});
  EXPECT_EQ(outcome.status, kOwnFailure);
  EXPECT_EQ(outcome.out, "");
}

TEST_F(ProgramTest, name_must_be_a_serial_ports) {
  for (const std::string name : {"/tmp/port", "/dev/ttyS", "/dev/ttyS/../null"}) {
    const Outcome outcome = finish(start({"--port", name, "--", "true"}));
    EXPECT_EQ(outcome.status, 2) << name;
    EXPECT_THAT(outcome.errors, HasSubstr("must begin with /dev/ttyS")) << name;
  }
}

TEST_F(ProgramTest, command_mark_needs_a_command) {
  EXPECT_EQ(finish(start({"--"})).status, 2);
}

// What only a user who may write to /dev can do.
class SharedNameTest : public ProgramTest {
 protected:
  void SetUp() override {
    if (!device_folder_is_writable()) GTEST_SKIP() << "/dev may not be written here";
  }
  void TearDown() override {
    if (pid_ > 0) stop();
  }

  // Started without a command; its standard output comes through a pipe, line by line.
  void start_serving() {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    pid_ = fork();
    if (pid_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGTERM);  // a test that is ended leaves no printer behind
      dup2(ends[1], STDOUT_FILENO);
      execl(program().c_str(), program().c_str(), "--port", port_.c_str(), "--output",
            in_folder("").c_str(), nullptr);
      _exit(EXIT_FAILURE);
    }
    close(ends[1]);
    lines_ = fdopen(ends[0], "r");
  }

  std::string next_line() {
    std::array<char, 512> line{};
    return fgets(line.data(), line.size(), lines_) == nullptr ? "" : line.data();
  }

  int stop() {
    kill(pid_, SIGTERM);
    const int status = exit_status_of(std::exchange(pid_, -1));
    fclose(lines_);
    return status;
  }

 private:
  pid_t pid_ = -1;
  FILE* lines_ = nullptr;
};

TEST_F(SharedNameTest, serves_until_it_is_told_to_end) {
  start_serving();
  ASSERT_EQ(next_line(), "ready " + port_ + "\n");
  std::ofstream(port_) << "from outside\n\x1bi" << std::flush;
  EXPECT_THAT(next_line(), HasSubstr("receipt-001.png"));
  std::ofstream(port_) << "left" << std::flush;
  EXPECT_EQ(stop(), 0);
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), "from outside\n");
  EXPECT_EQ(content_of(in_folder("receipt-002-uncut.txt")), "left\n");
  EXPECT_FALSE(fs::exists(fs::symlink_status(port_)));
}

TEST_F(SharedNameTest, second_printer_leaves_the_name_to_the_first) {
  start_serving();
  ASSERT_EQ(next_line(), "ready " + port_ + "\n");
  const Outcome second = run_script("true");
  EXPECT_EQ(second.status, kOwnFailure);
  EXPECT_THAT(second.errors, HasSubstr("exists already"));
  EXPECT_TRUE(fs::exists(port_));
  EXPECT_EQ(stop(), 0);
}

TEST_F(SharedNameTest, stale_link_is_replaced) {
  fs::create_symlink("/dev/pts/999999", port_);
  EXPECT_EQ(run_script("true").status, 0);
}

TEST_F(SharedNameTest, stale_link_is_no_obstacle_to_an_ordinary_user) {
  if (!ordinary_users_have_namespaces()) GTEST_SKIP() << "users may not make namespaces here";
  fs::create_symlink("/dev/pts/999999", port_);
  EXPECT_EQ(run_script("printf 'a\n' >$port", {}, User::kOrdinary).status, 0);
  EXPECT_EQ(content_of(in_folder("receipt-001-uncut.txt")), "a\n");
  EXPECT_EQ(fs::read_symlink(port_), "/dev/pts/999999");
}

TEST_F(SharedNameTest, foreign_file_is_left_alone) {
  std::ofstream(port_) << "mine";
  const Outcome outcome = run_script("true");
  EXPECT_EQ(outcome.status, kOwnFailure);
  EXPECT_EQ(content_of(port_), "mine");
}

TEST_F(SharedNameTest, foreign_link_is_left_alone) {
  fs::create_symlink("/no/such/device", port_);
  EXPECT_EQ(run_script("true").status, kOwnFailure);
  EXPECT_TRUE(fs::is_symlink(port_));
}

}  // namespace
}  // namespace virtual_printer
