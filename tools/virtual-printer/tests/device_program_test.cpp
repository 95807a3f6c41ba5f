// The program behind devices that are played, with what can happen to each kind.

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "program_fixture.h"

namespace virtual_printer {
namespace {

using testing::HasSubstr;

class DeviceProgramTest : public ProgramTest {
 protected:
  // The test's till, under a printer at that kind of device; what it says.
  std::string run_till(const std::string& device, const std::string& words,
                       std::vector<std::string> options = {}) {
    port_ = device + "-test" + std::to_string(getpid());
    const Outcome outcome = run_script(till(words), std::move(options));
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return outcome.out.substr(outcome.out.find('\n') + 1);
  }

  static std::string till(const std::string& words) {
    return std::string(DEVICE_TILL_PROGRAM) + " $port " + words;
  }

  // In the script, between two words of the till.
  std::string change(const std::string& words) const {
    return program() + " set " + words + " --port $port; ";
  }
};

constexpr const char* kParallel = "/dev/parport";
constexpr const char* kUsb = "/dev/usb/lp";
constexpr const char* kSerial = "/dev/ttyS";

TEST_F(DeviceProgramTest, parallel_port_prints_and_answers_in_nibble_mode) {
  EXPECT_EQ(run_till(kParallel, "claim compat status query nibble read release"),
            "claim 0\ncompat 0\nstatus 136\nquery 3\nnibble 0\nread 1\nrelease 0\n");
}

TEST_F(DeviceProgramTest, parallel_port_may_refuse_the_claim) {
  EXPECT_EQ(run_till("/dev/lp", "claim", {"--fault", "claim-refused@0"}),
            "condition claim-refused on\nclaim -1 No such device or address\n");
}

TEST_F(DeviceProgramTest, parallel_port_may_refuse_nibble_mode_and_grant_it_then) {
  EXPECT_EQ(run_till(kParallel, "claim nibble nibble nibble", {"--nibble-refusals", "2"}),
            "claim 0\nnibble -1 Input/output error\nnibble -1 Input/output error\nnibble 0\n");
}

TEST_F(DeviceProgramTest, parallel_printer_takes_forty_bytes_and_the_rest_after_a_while) {
  const std::string out = run_till(kParallel, "claim write:100 all:60",
                                   {"--fault", "busy@40B", "--recover-after", "100"});
  EXPECT_THAT(out, HasSubstr("write:100 40\n"));
  EXPECT_THAT(out, HasSubstr("all:60 60\n"));
  EXPECT_THAT(out, HasSubstr("condition busy on\n"));
  EXPECT_THAT(out, HasSubstr("condition busy off\n"));
}

TEST_F(DeviceProgramTest, parallel_printer_may_be_busy_from_the_start) {
  EXPECT_EQ(run_till(kParallel, "claim status write:100", {"--fault", "busy@0"}),
            "condition busy on\nclaim 0\nstatus 8\nwrite:100 0\n");
}

TEST_F(DeviceProgramTest, parallel_printer_without_power_drives_no_line) {
  EXPECT_EQ(run_till(kParallel, "claim status nibble", {"--fault", "power-off@0"}),
            "condition power-off on\nclaim 0\nstatus 0\nnibble -1 Input/output error\n");
}

TEST_F(DeviceProgramTest, usb_node_goes_in_the_middle_and_comes_back) {
  for (const std::string fault : {"connection-lost@3B", "power-off@3B"}) {
    const std::string condition = "condition " + fault.substr(0, fault.find('@'));
    const std::string out =
        run_till(kUsb, "write:5 gone back query read", {"--fault", fault, "--recover-after", "50"});
    EXPECT_THAT(out, HasSubstr("write:5 5\n"));
    EXPECT_THAT(out, HasSubstr("gone -1 No such device\n"));
    EXPECT_THAT(out, HasSubstr("back 0\nquery 3\nread 1\n"));
    EXPECT_THAT(out, HasSubstr(condition + " on\n"));
    EXPECT_THAT(out, HasSubstr(condition + " off\n"));
  }
}

TEST_F(DeviceProgramTest, usb_node_may_not_be_there) {
  EXPECT_EQ(run_till(kUsb, "query", {"--fault", "connection-lost@0"}),
            "condition connection-lost on\nopen -1 No such file or directory\n");
}

TEST_F(DeviceProgramTest, usb_printer_may_take_nothing) {
  EXPECT_EQ(run_till(kUsb, "write:5", {"--fault", "takes-nothing@0"}),
            "condition takes-nothing on\nwrite:5 0\n");
}

class RestartTest : public ServingTest {};

TEST_F(RestartTest, till_finds_its_device_again_when_the_printer_was_killed) {
  port_ = kUsb + ("-test" + std::to_string(getpid()));
  const std::vector<std::string> options{"--port", port_, "--socket", in_folder("line")};
  start_serving(options);
  std::string command = next_line();
  ASSERT_THAT(command, HasSubstr('=' + in_folder("line").string()));
  command.back() = ' ';
  command += DEVICE_TILL_PROGRAM + (' ' + port_) + " query gone back query read";
  FILE* const till = popen(command.c_str(), "r");
  std::array<char, 64> line{};
  const auto next_word = [&] { return std::string(fgets(line.data(), line.size(), till)); };
  EXPECT_EQ(next_word(), "query 3\n");
  EXPECT_EQ(stop(SIGKILL), 128 + SIGKILL);
  EXPECT_EQ(next_word(), "gone -1 No such device\n");
  start_serving(options);
  EXPECT_EQ(next_word(), "back 0\n");
  EXPECT_EQ(next_word(), "query 3\n");
  EXPECT_EQ(next_word(), "read 1\n");
  EXPECT_EQ(pclose(till), 0);
}

TEST_F(RestartTest, socket_of_a_running_printer_is_left_to_it) {
  port_ = kUsb + ("-test" + std::to_string(getpid()));
  start_serving({"--port", port_, "--socket", in_folder("line")});
  ASSERT_THAT(next_line(), HasSubstr("env "));
  ASSERT_THAT(next_line(), HasSubstr("ready "));
  const Outcome second = run_script("true", {"--socket", in_folder("line")});
  EXPECT_EQ(second.status, kOwnFailure);
  EXPECT_THAT(second.errors, HasSubstr("another printer listens at"));
}

TEST_F(DeviceProgramTest, serial_printer_shows_with_dsr_whether_it_takes_bytes) {
  EXPECT_EQ(run_till(kSerial, "dsr"), "dsr 1\n");
  for (const std::string condition : {"busy", "power-off", "connection-lost"}) {
    EXPECT_EQ(run_till(kSerial, "dsr", {"--fault", condition + "@0"}),
              "condition " + condition + " on\ndsr 0\n");
  }
}

TEST_F(DeviceProgramTest, serial_line_that_is_unplugged_loses_what_is_sent) {
  port_ = std::string(kSerial) + "-test" + std::to_string(getpid());
  run_script("exec 3<>$port; printf 'before\n' >&3; " + change("connection-lost on") +
             "printf 'lost\n' >&3; " + change("connection-lost off") + "printf 'after\n' >&3");
  EXPECT_EQ(content_of(in_folder("receipt-001-uncut.txt")), "before\nafter\n");
}

}  // namespace
}  // namespace virtual_printer
