// Ports that cannot be used, doctor, ports; and the program itself: help, manual, completion.
#include <grp.h>
#include <pty.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "cli_test.h"

namespace {

using cli_test::CliTest;
using cli_test::json_of;
using cli_test::LoneCliTest;
using testing::HasSubstr;
using testing::Not;

namespace fs = std::filesystem;

// A name in /dev, this process's own, while the test runs; it takes root.
class DeviceName {
 public:
  explicit DeviceName(const std::string& beginning)
      : name_(beginning + "-cli-" + std::to_string(getpid())) {}
  ~DeviceName() { unlink(name_.c_str()); }
  DeviceName(const DeviceName&) = delete;
  DeviceName& operator=(const DeviceName&) = delete;

  const std::string& name() const { return name_; }

 private:
  std::string name_;
};

// A terminal under the name of a serial port, open on both ends.
class SerialTerminal {
 public:
  SerialTerminal() {
    char path[64];
    EXPECT_EQ(openpty(&master_, &slave_, path, nullptr, nullptr), 0);
    EXPECT_EQ(symlink(path, name().c_str()), 0);
  }
  ~SerialTerminal() {
    close(master_);
    close(slave_);
  }
  SerialTerminal(const SerialTerminal&) = delete;
  SerialTerminal& operator=(const SerialTerminal&) = delete;

  const std::string& name() const { return device_.name(); }

 private:
  DeviceName device_{"/dev/ttyS"};
  int master_ = -1, slave_ = -1;
};

bool is_root() {
  return geteuid() == 0;
}

class Port : public LoneCliTest {
 protected:
  void expect_no_port(Words words, int status, const std::string& told) {
    words.insert(words.begin(), "status");
    const Outcome outcome = run_alone(words);
    EXPECT_EQ(outcome.status, status);
    EXPECT_THAT(outcome.errors, HasSubstr(told));
  }
};

TEST_F(Port, missing_or_unknown) {
  expect_no_port({}, 1, "which port");
  expect_no_port({"-p", "COM1"}, 4, "no link accepts the name 'COM1'");
  expect_no_port({"-p", "/dev/ttyS-none"}, 2, "there is no /dev/ttyS-none");
  expect_no_port({"-p", "/dev/usb/lp-none"}, 2, "there is no /dev/usb/lp-none");
  expect_no_port({"-p", "/dev/parport-none"}, 2, "there is no /dev/parport-none");
  expect_no_port({"-p", "/dev/ttyS" + std::string(200, '0')}, 2, "there is no /dev/ttyS000");
}

TEST_F(Port, with_settings_that_are_none) {
  expect_no_port({"-p", "/dev/ttyS0", "-s", "fast"}, 4, "'fast' are not accepted");
  expect_no_port({"-p", "SOCKET:127.0.0.1", "-s", "x"}, 4, "no TCP port");
  expect_no_port({"-p", "SOCKET:localhost"}, 4, "no IPv4 address");
}

TEST_F(Port, that_refuses_the_connection) {
  expect_no_port({"-p", "SOCKET:127.0.0.1", "-s", "1"}, 2, "refuses the connection");
}

TEST_F(Port, that_may_not_be_used) {
  if (!is_root()) GTEST_SKIP() << "only root can make a device that others may not use";
  const DeviceName device("/dev/ttyS");
  std::ofstream(device.name()) << "";
  fs::permissions(device.name(), fs::perms::owner_all);
  // Where another user reaches both.
  const std::string copies = path_of("copies");
  fs::create_directory(copies);
  fs::copy(TZVIO_PROGRAM, copies + "/tzvio");
  fs::copy(TZVIO_LIBRARY, copies + "/libTZVIO.so.0");
  fs::permissions(path_of(""), fs::perms::all);
  const Outcome outcome =
      run({"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "env",
           "LD_LIBRARY_PATH=" + copies, copies + "/tzvio", "status", "-p", device.name()});
  EXPECT_EQ(outcome.status, 3) << outcome.errors;
  EXPECT_THAT(outcome.errors,
              HasSubstr("belongs to the group " + std::string(getgrgid(0)->gr_name)));
}

// --------------------------------------------------------------------------------- doctor

class DoctorAlone : public LoneCliTest {
 protected:
  Outcome examine(Words words) {
    words.insert(words.begin(), "doctor");
    return run_alone(words);
  }
};

TEST_F(DoctorAlone, finds_the_first_thing_that_is_wrong) {
  struct Case {
    Words words;
    std::string told;
  };
  const Case cases[] = {
      {{"-p", "COM1"}, "PROBLEM  name: no link accepts the name 'COM1'"},
      {{"-p", "/dev/ttyS0", "-s", "9600"}, "PROBLEM  settings: '9600' must be"},
      {{"-p", "SOCKET:127.0.0.1", "-s", "70000"}, "PROBLEM  settings: '70000' is no TCP port"},
      {{"-p", "SOCKET:127.0.0"}, "PROBLEM  network: '127.0.0' is no IPv4 address"},
      {{"-p", "SOCKET:127.0.0.1", "-s", "1"},
       "PROBLEM  network: 127.0.0.1 port 1: the machine there"},
      {{"-p", "/dev/ttyS-none"}, "PROBLEM  device: there is no /dev/ttyS-none"},
      {{"-p", "/dev/usb/lp-none"}, "PROBLEM  driver: "},
      {{"-p", "/dev/parport-none"}, "PROBLEM  driver: the driver ppdev"}};
  for (const Case& row : cases) {
    const Outcome outcome = examine(row.words);
    EXPECT_EQ(outcome.status, 15) << row.told;
    EXPECT_THAT(outcome.out, HasSubstr(row.told));
  }
  EXPECT_EQ(examine({}).status, 1);
}

TEST_F(DoctorAlone, tells_a_file_from_a_device) {
  if (!is_root()) GTEST_SKIP() << "only root can put a file there";
  const DeviceName device("/dev/ttyS");
  std::ofstream(device.name()) << "";
  EXPECT_THAT(examine({"-p", device.name()}).out, HasSubstr("PROBLEM  kind: "));
}

TEST_F(DoctorAlone, finds_who_has_the_port_open) {
  if (!is_root()) GTEST_SKIP() << "only root can give a terminal that name";
  const SerialTerminal terminal;
  const Outcome outcome = examine({"-p", terminal.name(), "--timeout", "20"});
  EXPECT_THAT(outcome.out, HasSubstr("(process " + std::to_string(getpid()) + ") has it open"));
}

TEST_F(DoctorAlone, ports_are_listed_with_what_they_are) {
  if (!is_root()) GTEST_SKIP() << "only root can give a terminal that name";
  const SerialTerminal terminal;
  EXPECT_THAT(run_alone({"ports"}).out, HasSubstr(terminal.name() + " serial\n"));
  const auto ports = json_of(run_alone({"ports", "--json", "--all"}))["ports"];
  bool found = false;
  for (const auto& port : ports) found |= port["port"] == terminal.name() && port["usable"] == true;
  EXPECT_TRUE(found) << ports;
}

class Doctor : public CliTest {};

TEST_F(Doctor, is_content_with_a_healthy_printer_on_any_line) {
  for (const Line line : {Line::kTcp, Line::kSerial, Line::kUsb, Line::kParallel}) {
    use(line);
    const Outcome outcome = run_tool({"doctor"});
    EXPECT_EQ(outcome.status, 0) << name_of(line) << outcome.out;
    EXPECT_THAT(outcome.out,
                HasSubstr("ok       state: it is ready and confirms what it prints\n"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("PROBLEM")));
  }
}

TEST_F(Doctor, finds_a_fault_of_the_printer) {
  const Outcome outcome = run_tool({"doctor", "--json"}, {"--fault", "paper-out@0"});
  EXPECT_EQ(outcome.status, 15);
  EXPECT_THAT(
      outcome.out,
      HasSubstr(R"({"check":"state","ok":false,"message":"paper out: put in a new roll"})"));
  EXPECT_EQ(json_of(outcome)["problems"], 1);
}

TEST_F(Doctor, keeps_its_findings_when_the_printer_is_mute) {
  const Outcome outcome = run_tool({"doctor", "--timeout", "1"}, {"--mute"});
  EXPECT_EQ(outcome.status, 11);
  EXPECT_THAT(outcome.out, HasSubstr("ok       network: "));
  EXPECT_THAT(outcome.errors, HasSubstr("mute"));
}

// ------------------------------------------------------------------------ the program itself

class Program : public LoneCliTest {
 protected:
  std::vector<std::string> words_after(Words words) {
    words.insert(words.begin(), {"words", "--"});
    std::istringstream lines(run_alone(words).out);
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);)
      names.push_back(line.substr(0, line.find('\t')));
    return names;
  }

  // What bash offers for the last of the words.
  std::string completed(const Words& words) {
    Words command{"/bin/bash", "-c",
                  // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one script
                  "source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _tzvio\n"
                  "echo \"${COMPREPLY[@]}\"",
                  "bash", TZVIO_COMPLETION, TZVIO_PROGRAM};
    command.insert(command.end(), words.begin(), words.end());
    return run(command).out;
  }
};

std::string content_of(const char* path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

bool is_option(const std::string& word) {
  return word.starts_with("--");
}

TEST_F(Program, help_suffices) {
  const Outcome outcome = run_alone({"--help"});
  EXPECT_EQ(outcome.status, 0);
  for (const char* part : {"Examples:", "Exit codes:", "130  ended by Ctrl-C", "TZVIO_PORT"}) {
    EXPECT_THAT(outcome.out, HasSubstr(part));
  }
  EXPECT_THAT(run_alone({"print", "--help"}).out, HasSubstr("--escapes"));
  EXPECT_THAT(run_alone({"--version"}).out, testing::StartsWith("tzvio "));
}

TEST_F(Program, wrong_usage_is_told) {
  for (const Words& words :
       {Words{}, Words{"shout"}, Words{"cut", "--deep"}, Words{"--timeout", "0", "cut"},
        Words{"--columns", "80", "cut"}, Words{"--wait", "x", "cut"}}) {
    const Outcome outcome = run_alone(words);
    EXPECT_EQ(outcome.status, 1) << testing::PrintToString(words);
    EXPECT_NE(outcome.errors, "");
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(json_of(run_alone({"shout", "--json"}))["outcome"], "usage");
}

// Minus signs may be escaped there.
TEST_F(Program, manual_has_every_command_and_option) {
  const std::string manual = content_of(TZVIO_MANUAL);
  const std::vector<std::string> root = words_after({});
  EXPECT_THAT(root, testing::Contains("print"));
  for (const std::string& name : root) {
    if (is_option(name)) continue;
    EXPECT_THAT(manual, HasSubstr("Cm " + name)) << "a command";
    for (const std::string& word : words_after({name})) {
      if (is_option(word)) {
        EXPECT_THAT(manual, HasSubstr("Fl Fl " + word.substr(2))) << "of " << name;
      }
    }
  }
}

TEST_F(Program, manual_and_page_have_every_exit_code) {
  const std::string help = run_alone({"--help"}).out;
  std::istringstream lines(help.substr(help.find("Exit codes:")));
  std::string line;
  std::getline(lines, line);
  const std::string manual = content_of(TZVIO_MANUAL);
  int count = 0;
  while (std::getline(lines, line) && line.size() > 7) {
    ++count;
    const std::string code =
        line.substr(line.find_first_not_of(' '), 5 - line.find_first_not_of(' '));
    EXPECT_THAT(manual, HasSubstr(".It " + code + "\n" + line.substr(7) + "\n"));
    EXPECT_THAT(content_of(TZVIO_PAGE), HasSubstr("| " + code + " | `"));
  }
  EXPECT_EQ(count, 19);
}

TEST_F(Program, completion_offers_what_there_is) {
  EXPECT_EQ(completed({"pr"}), "print\n");
  EXPECT_EQ(completed({"barcode", "ea"}), "ean-8 ean-13\n");
  EXPECT_EQ(completed({"barcode", "--al"}), "--align\n");
  EXPECT_EQ(completed({"--unit", "m"}), "mils\n");
  EXPECT_EQ(completed({"logo", "st"}), "store\n");
  EXPECT_EQ(completed({"check-bmp", file("picture.bmp", "")}), path_of("picture.bmp") + "\n");
}

}  // namespace
