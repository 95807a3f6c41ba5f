// The program from outside: started as people start it, judged by what it leaves behind.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <utility>

#include "http_caller.h"
#include "program_fixture.h"

namespace virtual_printer {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

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

TEST_F(ProgramTest, what_is_refused_is_reported_counted_and_a_failure_to_strict) {
  const std::string script = R"(printf '\035kC\00312Xtext\n\033i' >$port
    until [ -e )" + in_folder("receipt-001.png").string() +
                             R"( ]; do :; done
    )" + program() + " status --port $port";
  const Outcome outcome = run_script(script, {"--strict"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.errors, HasSubstr("refused: EAN-13 \"12X\": needs 12 digits, or one more\n"));
  EXPECT_THAT(outcome.errors, HasSubstr("refused content in all: 1\n"));
  EXPECT_THAT(outcome.out, HasSubstr("refused content 1\n"));
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), "text\n");
}

TEST_F(ProgramTest, long_data_that_never_comes_is_reported_shortly_and_not_printed) {
  const Outcome outcome = run_script(R"(printf 'a\n\033i\035*\060\036%4000s' '' >$port)");
  EXPECT_THAT(outcome.errors, HasSubstr("unknown bytes at 4: 1D 2A 30 1E 20 "));
  EXPECT_THAT(outcome.errors, HasSubstr(" ... 4004 bytes\n"));
  EXPECT_FALSE(fs::exists(in_folder("receipt-002-uncut.png")));
}

TEST_F(ProgramTest, ordinary_user_needs_no_rights_to_run_a_command) {
  const Outcome outcome = run_script("printf 'mine\n\033i' >$port; id -u", {}, User::kOrdinary);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), "mine\n");
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

TEST_F(ProgramTest, name_must_be_one_that_a_device_has) {
  for (const std::string name : {"", "/tmp/port", "/dev/ttyS", "/dev/ttyS/../null", "/dev/usb/lp",
                                 "/dev/usb/hiddev0", "/dev/lp0:1", "/dev/lp0=1"}) {
    const Outcome outcome = finish(start({"--port", name, "--", "true"}));
    EXPECT_EQ(outcome.status, 2) << name;
    EXPECT_THAT(outcome.errors, HasSubstr("must begin with /dev/ttyS")) << name;
  }
}

TEST_F(ProgramTest, every_kind_of_device_prints) {
  for (const std::string name : {"/dev/ttyS-x", "/dev/usb/lp-x", "/dev/usblp-x"}) {
    const Outcome outcome =
        run_script("printf '\\020\\004\\001Hello\\n' >$VIRTUAL_PRINTER_PORT", {"--port", name});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.out, HasSubstr("ready " + name + "\n"));
  }
  EXPECT_EQ(content_of(in_folder("receipt-003-uncut.txt")), "Hello\n");
}

TEST_F(ProgramTest, what_arrives_is_recorded_byte_for_byte) {
  run_script(R"(printf '\000\377\033@A\n' >$port)", {"--record", in_folder("record")});
  EXPECT_EQ(content_of(in_folder("record")), std::string("\0\xff\x1b@A\n", 6));
  const Outcome outcome = run_script("true", {"--record", "/dev/null/record"});
  EXPECT_EQ(outcome.status, kOwnFailure);
  EXPECT_THAT(outcome.errors, HasSubstr("cannot write /dev/null/record"));
}

// All that a shell command prints, and its exit status.
std::string lines_of(const std::string& command) {
  FILE* const pipe = popen((command + " 2>&1; echo $?").c_str(), "r");
  std::string text;
  for (int byte = fgetc(pipe); byte != EOF; byte = fgetc(pipe)) text += static_cast<char>(byte);
  pclose(pipe);
  return text;
}

TEST_F(ProgramTest, recorded_bytes_are_decoded_into_words) {
  run_script(R"(printf 'Hi\n\033i' >$port)", {"--record", in_folder("record")});
  const std::string decode = program() + " decode ";
  const std::string words =
      "       0  48 69                                     text \"Hi\"\n"
      "       2  0A                                        line feed\n"
      "       3  1B 69                                     cut, full\n"
      "0\n";
  EXPECT_EQ(lines_of(decode + in_folder("record").string()), words);
  EXPECT_EQ(lines_of(decode + "<" + in_folder("record").string()), words);
  EXPECT_EQ(lines_of("printf '\\033' | " + decode + "--json"),
            R"({"offset":0,"length":1,"kind":"trouble","hex":"1B",)"
            R"("words":"unfinished: its end is missing"})"
            "\n0\n");
}

TEST_F(ProgramTest, what_cannot_be_decoded_is_a_failure) {
  const std::string decode = program() + " decode ";
  EXPECT_EQ(lines_of(decode + "/nowhere"), "virtual-printer: cannot read /nowhere\n125\n");
  EXPECT_EQ(lines_of(decode + "/"), "virtual-printer: cannot read /\n125\n");
  EXPECT_THAT(lines_of(decode + "-- true"), HasSubstr("decode take no COMMAND"));
}

// The options of a help text, or those that a manual page writes with its own hyphens.
std::set<std::string> options_in(const std::string& text) {
  std::set<std::string> options;
  const std::regex option("--[a-z][a-z-]+");
  for (std::sregex_iterator found(text.begin(), text.end(), option), end; found != end; ++found) {
    options.insert(found->str());
  }
  return options;
}

TEST_F(ProgramTest, manual_page_has_every_option) {
  const std::string manual = std::regex_replace(content_of(MANUAL_PAGE), std::regex(R"(\\-)"), "-");
  const auto in_help =
      options_in(lines_of(program() + " --help") + lines_of(program() + " decode --help"));
  EXPECT_GT(in_help.size(), 20U);
  EXPECT_EQ(options_in(manual), in_help);
}

TEST_F(ServingTest, page_shows_the_printer_and_changes_it) {
  start_serving({"--listen", "0", "--page"});
  const std::string page = next_line();
  ASSERT_THAT(page, MatchesRegex("page http://127.0.0.1:[0-9]+/\n"));
  ASSERT_THAT(next_line(), StartsWith("ready"));
  HttpCaller caller(page.substr(5, page.size() - 7));
  const std::pair<std::string, std::string> changes[] = {
      {"set cover on", R"("cover":"on")"},
      {"set connection-lost on", R"("connection-lost":"on")"},
      {"set mute on", R"("mute":"on")"},
      {"set slow 77", R"("slow":"77")"}};
  for (const auto& [request, shown] : changes) {
    EXPECT_EQ(caller.ask(request)->status, 200);
    EXPECT_THAT(caller.events_until("\n\n"), HasSubstr(shown));
  }
  EXPECT_EQ(caller.ask("set lid on")->status, 400);
  EXPECT_EQ(stop(), 0);
}

TEST_F(ProgramTest, page_needs_an_address_that_it_can_have) {
  const std::string page = program() + " --listen 0 --page ";
  EXPECT_THAT(lines_of(page + "--page-address shop.example -- true"), HasSubstr("in numbers"));
  EXPECT_THAT(lines_of(page + "--page-address 192.0.2.1 -- true"),
              HasSubstr("cannot serve the page at 192.0.2.1"));
  EXPECT_THAT(lines_of(program() + " --page-address 127.0.0.1 -- true"), HasSubstr("--page"));
}

TEST_F(ProgramTest, command_does_not_run_without_the_library_that_plays_its_device) {
  fs::remove_all(in_folder("preload"));
  const Outcome outcome = run_script("echo started");
  EXPECT_EQ(outcome.status, kOwnFailure);
  EXPECT_THAT(outcome.errors, HasSubstr("the library that plays devices is missing: "));
  EXPECT_THAT(outcome.out, Not(HasSubstr("started")));
}

TEST_F(ProgramTest, several_programs_share_a_device) {
  const Outcome outcome = run_script(R"(
    exec 3<>$port
    printf 'one\n\033#ERROR' >$port
    until grep -q beep )" + in_folder("out").string() +
                                     R"(; do :; done
    printf 'two\n\020\004\001' >&3; timeout 30 dd bs=1 count=1 <&3 2>/dev/null | od -An -tx1)");
  EXPECT_THAT(outcome.out, HasSubstr(" 16\n"));
  EXPECT_EQ(content_of(in_folder("receipt-001-uncut.txt")), "one\ntwo\n");
}

TEST_F(ProgramTest, nothing_of_it_stays_when_it_ends) {
  run_script("true");
  for (const auto& entry : fs::directory_iterator(in_folder(""))) {
    EXPECT_THAT(entry.path().filename().string(), Not(StartsWith("virtual-printer-")));
  }
}

TEST_F(ProgramTest, command_mark_needs_a_command) {
  EXPECT_EQ(finish(start({"--"})).status, 2);
}

// In the way that the printer says, for a device that no terminal can be.
TEST_F(ServingTest, program_elsewhere_prints_in_the_environment_that_is_told) {
  port_ = "/dev/usb/lp-test" + std::to_string(getpid());
  start_serving({"--port", port_});
  std::string environment = next_line();
  ASSERT_THAT(environment, StartsWith("env LD_PRELOAD='"));
  ASSERT_EQ(next_line(), "ready " + port_ + "\n");
  environment.pop_back();
  const std::string command = environment + " sh -c \"printf 'elsewhere\\n\\033i' >" + port_ + '"';
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  EXPECT_THAT(next_line(), HasSubstr("receipt-001.png"));
  EXPECT_EQ(stop(), 0);
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), "elsewhere\n");
}

// What only a user who may write to /dev can do.
class SharedNameTest : public ServingTest {
 protected:
  void SetUp() override {
    if (access("/dev", W_OK) != 0) GTEST_SKIP() << "/dev may not be written here";
  }
};

TEST_F(SharedNameTest, serves_until_it_is_told_to_end) {
  start_serving({"--port", port_});
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
  start_serving({"--port", port_});
  ASSERT_EQ(next_line(), "ready " + port_ + "\n");
  const Outcome second = run_script("true", {"--terminal"});
  EXPECT_EQ(second.status, kOwnFailure);
  EXPECT_THAT(second.errors, HasSubstr("exists already"));
  EXPECT_TRUE(fs::exists(port_));
  EXPECT_EQ(stop(), 0);
}

TEST_F(SharedNameTest, command_may_have_a_real_terminal) {
  const Outcome outcome =
      run_script(R"([ -c $port ] && printf '\003\n\033i' >$port)", {"--terminal"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(content_of(in_folder("receipt-001.txt")), "\n");
  EXPECT_THAT(outcome.errors, HasSubstr("unknown bytes at 0: 03\n"));
}

TEST_F(SharedNameTest, stale_link_is_replaced) {
  fs::create_symlink("/dev/pts/999999", port_);
  EXPECT_EQ(run_script("true", {"--terminal"}).status, 0);
}

TEST_F(SharedNameTest, foreign_file_is_left_alone) {
  std::ofstream(port_) << "mine";
  const Outcome outcome = run_script("true", {"--terminal"});
  EXPECT_EQ(outcome.status, kOwnFailure);
  EXPECT_EQ(content_of(port_), "mine");
}

TEST_F(SharedNameTest, foreign_link_is_left_alone) {
  fs::create_symlink("/no/such/device", port_);
  EXPECT_EQ(run_script("true", {"--terminal"}).status, kOwnFailure);
  EXPECT_TRUE(fs::is_symlink(port_));
}

}  // namespace
}  // namespace virtual_printer
