// print, cut, drawer: what reaches the paper, and what is told when it does not.
#include <unistd.h>

#include <fstream>

#include "cli_test.h"

namespace {

using cli_test::CliTest;
using cli_test::Json;
using cli_test::json_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string kCutFeed = "\n\n\n\n\n";

class Print : public CliTest {};

TEST_F(Print, words_are_on_paper_when_it_ends_with_0) {
  const Outcome outcome = run_tool({"print", "Hello", "shop", "--cut"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "tzvio: on paper: the printer has confirmed it\n");
  EXPECT_THAT(outcome.paper.texts, ElementsAre("Hello shop\n" + kCutFeed));
}

TEST_F(Print, says_nothing_when_quiet) {
  const Outcome outcome = run_tool({"print", "Hello", "-q"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(Print, tells_programs_what_it_did) {
  const Outcome outcome = run_tool({"print", "Hello", "--json"});
  const Json json = json_of(outcome);
  EXPECT_EQ(json["command"], "print");
  EXPECT_EQ(json["outcome"], "done");
  EXPECT_EQ(json["exit"], 0);
  EXPECT_EQ(json["confirmed"], true);
  EXPECT_EQ(json["bytes"], json["bytes_sent"]);
  EXPECT_THAT(json["port"].get<std::string>(), StartsWith("SOCKET:"));
}

TEST_F(Print, takes_the_port_from_the_command_line_too) {
  const Outcome outcome = run_under_printer(
      {"--strict"},
      {"/bin/sh", "-c",
       R"(exec "$0" -p "$VIRTUAL_PRINTER_PORT" print Hello -s "$VIRTUAL_PRINTER_SETTINGS")",
       TZVIO_PROGRAM});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre("Hello\n"));
}

TEST_F(Print, files_and_standard_input_come_one_after_the_other) {
  const std::string first = file("first", "one");
  const std::string second = file("second", "two\n");
  const Outcome outcome = run_under_printer(
      {"--strict"}, script(R"(echo three | "$0" print --file "$1" --file "$2" -f - "$3")",
                           {first, second, "zero"}));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre("zero\none\ntwo\nthree\n"));
}

TEST_F(Print, standard_input_without_words_and_files) {
  const Outcome outcome =
      run_under_printer({"--strict"}, script(R"(printf 'from a pipe' | "$0" print)"));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre("from a pipe\n"));
}

TEST_F(Print, typed_escapes_choose_the_look) {
  Words options = recording();
  const Outcome outcome = run_tool({"print", "-e", "\\e|cA\\x1b|bCTotal"}, options);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre("                  Total\n"));
  EXPECT_THAT(recorded(), HasSubstr("\033a1"));
  EXPECT_THAT(recorded(), HasSubstr("\033E1"));
}

TEST_F(Print, without_the_option_a_backslash_is_a_backslash) {
  const Outcome outcome = run_tool({"print", "C:\\new"});
  EXPECT_THAT(outcome.paper.texts, ElementsAre("C:\\new\n"));
}

TEST_F(Print, a_wrong_escape_sends_nothing) {
  for (const char* text : {"\\q", "\\", "\\x1", "\\xzz"}) {
    const Outcome outcome = run_tool({"print", "-e", text}, recording());
    EXPECT_EQ(outcome.status, 1) << text;
    EXPECT_THAT(outcome.errors, HasSubstr("backslash"));
    EXPECT_EQ(recorded(), "");
  }
}

TEST_F(Print, bytes_of_any_value_pass) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  const Outcome outcome =
      run_tool({"print", "--no-confirm", "--file", file("all", all)}, recording());
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(recorded(), HasSubstr(std::string("\0\1\2", 3)));
  EXPECT_THAT(recorded(), HasSubstr("\xfd\xfe\xff"));
}

TEST_F(Print, of_what_cannot_be_read_nothing_is_sent) {
  const Outcome missing = run_tool({"print", "-f", path_of("missing")}, recording());
  EXPECT_EQ(missing.status, 13);
  EXPECT_THAT(missing.errors, HasSubstr("No such file"));
  const Outcome folder = run_tool({"print", "Hello", "-f", "/"}, recording());
  EXPECT_EQ(folder.status, 13);
  EXPECT_THAT(folder.errors, HasSubstr("directory"));
  EXPECT_EQ(recorded(), "");
}

TEST_F(Print, more_than_a_transaction_holds_is_refused_before_it_is_sent) {
  // In two files, each of which fits: 1664000 bytes are the bound.
  const std::string half = file("half", std::string(900000, 'x') + "\n");
  const Outcome outcome = run_tool({"print", "-f", half, "-f", half}, recording());
  EXPECT_EQ(outcome.status, 14);
  EXPECT_THAT(outcome.errors, HasSubstr("1664000"));
  EXPECT_THAT(recorded(), Not(HasSubstr("xxx")));
  const Outcome endless = run_under_printer(recording(), script(R"("$0" print < /dev/zero)"));
  EXPECT_EQ(endless.status, 14);
}

TEST_F(Print, nothing_at_all_is_no_job) {
  const Outcome outcome = run_under_printer({}, script(R"("$0" print < /dev/null)"));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("nothing to print"));
}

TEST_F(Print, without_confirmation_it_asks_nothing) {
  const Outcome outcome = run_tool({"print", "Hello", "--no-confirm", "--json"}, recording());
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(json_of(outcome)["confirmed"], false);
  EXPECT_THAT(recorded(), HasSubstr("Hello\n"));
  EXPECT_THAT(recorded(), Not(HasSubstr("\035(H"))) << "the request for a confirmation";
}

TEST_F(Print, over_a_serial_line) {
  use(Line::kSerial);
  const Outcome outcome = run_tool({"print", "Hello", "--cut"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre("Hello\n" + kCutFeed));
}

// The library that plays the devices sends by a send() of its own, which is not to be counted.
TEST_F(Print, over_any_line_is_counted_once) {
  for (const Line line : kEveryLine) {
    use(line);
    const Outcome outcome = run_tool({"print", "Hello"});
    EXPECT_EQ(outcome.status, 0) << name_of(line);
    EXPECT_THAT(outcome.errors, Not(HasSubstr("twice"))) << name_of(line);
  }
}

// ---------------------------------------------------------------------------------- faults

struct Fault {
  const char* name;
  int status;
  const char* words;
};

class PrintAtFault : public Print, public testing::WithParamInterface<Fault> {};

TEST_P(PrintAtFault, prints_nothing_when_it_is_there_before) {
  const Outcome outcome =
      run_tool({"print", "Hello", "--json"}, {"--fault", std::string(GetParam().name) + "@0"});
  EXPECT_EQ(outcome.status, GetParam().status) << outcome.errors;
  EXPECT_THAT(outcome.errors, HasSubstr(GetParam().words));
  EXPECT_THAT(outcome.errors, HasSubstr("nothing was printed"));
  EXPECT_EQ(json_of(outcome)["exit"], GetParam().status);
  EXPECT_THAT(outcome.paper.texts, IsEmpty());
}

TEST_P(PrintAtFault, waits_for_its_end_when_told_to) {
  const Outcome outcome =
      run_tool({"print", "Hello", "--wait", "30"},
               {"--fault", std::string(GetParam().name) + "@0", "--recover-after", "700"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre("Hello\n"));
}

const std::string kFiveLines = "1\n2\n3\n4\n5\n";

TEST_P(PrintAtFault, says_that_the_printer_goes_on_when_it_comes_on_the_way) {
  const Outcome outcome = run_tool({"print", "--file", file("lines", kFiveLines)},
                                   {"--fault", std::string(GetParam().name) + "@3"});
  EXPECT_EQ(outcome.status, GetParam().status) << outcome.errors;
  EXPECT_THAT(outcome.errors, HasSubstr(GetParam().words));
  EXPECT_THAT(outcome.errors, HasSubstr("do not print it again"));
  EXPECT_THAT(outcome.paper.texts, ElementsAre("1\n2\n3\n"));
}

TEST_P(PrintAtFault, is_on_paper_once_when_the_fault_ends_while_it_waits) {
  use(Line::kSerial);
  const Outcome outcome =
      run_tool({"print", "--file", file("lines", kFiveLines), "--wait", "30"},
               {"--fault", std::string(GetParam().name) + "@3", "--recover-after", "700"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre(kFiveLines));
}

// Over a network the library takes a fault that comes while it sends for a lost connection, and
// sends everything again. Whether it comes by then is up to the two programs; what is told must be
// true.
TEST_P(PrintAtFault, says_so_when_it_was_sent_twice) {
  const Outcome outcome =
      run_tool({"print", "--file", file("lines", kFiveLines), "--wait", "30", "--json"},
               {"--fault", std::string(GetParam().name) + "@3", "--recover-after", "700"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const std::string paper = outcome.paper.in_one();
  const bool twice = paper.find('5') != paper.rfind('5');
  const Json json = json_of(outcome);
  EXPECT_EQ(json["bytes_sent"] > json["bytes"], twice);
  EXPECT_EQ(outcome.errors.find("twice") != std::string::npos, twice);
}

INSTANTIATE_TEST_SUITE_P(of, PrintAtFault,
                         testing::Values(Fault{"cover", 6, "cover open"},
                                         Fault{"paper-out", 7, "paper out"},
                                         Fault{"jam", 10, "cutter jammed"}),
                         [](const auto& param) {
                           const std::string name = param.param.name;
                           return name.substr(0, name.find('-'));
                         });

TEST_F(Print, a_printer_that_loses_power_on_the_way_leaves_it_unconfirmed) {
  use(Line::kSerial);
  const Outcome outcome =
      run_tool({"print", "--file", file("lines", kFiveLines)}, {"--fault", "power-off@3"});
  EXPECT_EQ(outcome.status, 9) << outcome.errors;
}

TEST_F(Print, power_that_goes_while_the_cover_is_open_leaves_it_unconfirmed) {
  use(Line::kSerial);
  start_under_printer({"--fault", "cover@3"},
                      tool({"print", "--file", file("lines", kFiveLines), "--wait", "30"}));
  while (status().find("cover on") == std::string::npos) usleep(50'000);
  constexpr useconds_t kSeveralLooks = 1'500'000;  // microseconds; of the monitor
  usleep(kSeveralLooks);
  ASSERT_TRUE(set("power-off", "on"));
  usleep(kSeveralLooks);
  ASSERT_TRUE(set("power-off", "off"));
  ASSERT_TRUE(set("cover", "off"));
  EXPECT_EQ(finish().status, 9);
}

TEST_F(Print, without_power_the_printer_does_not_answer) {
  use(Line::kSerial);
  const Outcome outcome = run_tool({"print", "Hello"}, {"--fault", "power-off@0"});
  EXPECT_EQ(outcome.status, 5) << outcome.errors;
  EXPECT_THAT(outcome.errors, HasSubstr("does not answer"));
}

TEST_F(Print, a_mute_printer_ends_it_after_the_timeout) {
  const Outcome outcome = run_tool({"print", "Hello", "--timeout", "1", "--json"}, {"--mute"});
  EXPECT_EQ(outcome.status, 11);
  EXPECT_THAT(outcome.errors, HasSubstr("nothing moved for 1 s"));
  EXPECT_EQ(json_of(outcome)["outcome"], "timed-out");
}

// The job is on its way when the signal comes: the file of the bytes that arrived says so.
TEST_F(Print, a_signal_releases_and_closes) {
  use(Line::kSerial);
  for (const auto& [signal, status] : {std::pair{"INT", 130}, std::pair{"TERM", 143}}) {
    const std::string big = file("big", std::string(200000, 'x') + "\n");
    Words options = recording();
    const std::string record = options.back();
    options.insert(options.end(), {"--slow", "1000"});
    const Outcome outcome = run_under_printer(
        options, script("\"$0\" print --json -f \"$1\" & pid=$!\n"
                        "until [ \"$(wc -c < \"$2\")\" -gt 300 ]; do sleep 0.05; done\n"
                        "kill -" +
                            std::string(signal) + " $pid; wait $pid",
                        {big, record}));
    EXPECT_EQ(outcome.status, status);
    EXPECT_THAT(outcome.errors, HasSubstr("the port is released"));
    EXPECT_EQ(json_of(outcome)["exit"], status);
  }
}

// ------------------------------------------------------------------------- cut and drawer

TEST_F(Print, cut_is_full_or_partial) {
  EXPECT_EQ(run_tool({"cut"}, recording()).status, 0);
  EXPECT_THAT(recorded(), HasSubstr("\033i"));
  EXPECT_EQ(run_tool({"cut", "--partial"}, recording()).status, 0);
  EXPECT_THAT(recorded(), HasSubstr("\033m"));
}

TEST_F(Print, drawer_opens) {
  const Outcome outcome = run_tool({"drawer"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.lines("condition drawer on"), 1);
}

TEST_F(Print, drawer_that_is_open_is_told) {
  const Outcome outcome = run_tool({"drawer", "--json"}, {"--fault", "drawer@0"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.errors, HasSubstr("open already"));
  EXPECT_EQ(json_of(outcome)["drawer_open"], true);
}

}  // namespace
