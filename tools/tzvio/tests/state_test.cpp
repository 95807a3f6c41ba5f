// status, watch, identify, update, logo: the printer itself.
#include "cli_test.h"

namespace {

using cli_test::CliTest;
using cli_test::Json;
using cli_test::json_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class State : public CliTest {};

TEST_F(State, of_a_healthy_printer_is_ready) {
  const Outcome outcome = run_tool({"status"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.out, HasSubstr("state: ready\npaper: there\ndrawer: closed\n"));
  EXPECT_EQ(outcome.errors, "");
  EXPECT_THAT(outcome.paper.texts, IsEmpty());
}

struct Fault {
  const char* name;
  int status;
  const char* state;
  const char* flag;
};

class StateOf : public State, public testing::WithParamInterface<Fault> {};

TEST_P(StateOf, is_told_in_all_ways) {
  const Outcome outcome =
      run_tool({"status", "--json"}, {"--fault", std::string(GetParam().name) + "@0"});
  EXPECT_EQ(outcome.status, GetParam().status) << outcome.errors;
  const Json json = json_of(outcome);
  EXPECT_EQ(json["state"], GetParam().state);
  EXPECT_EQ(json[GetParam().flag], true);
  EXPECT_EQ(json["exit"], GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(fault, StateOf,
                         testing::Values(Fault{"cover", 6, "cover-open", "cover_open"},
                                         Fault{"paper-out", 7, "paper-out", "paper_out"},
                                         Fault{"jam", 10, "cutter-jam", "cutter_jam"},
                                         Fault{"near-end", 0, "ready", "paper_near_end"},
                                         Fault{"drawer", 0, "ready", "drawer_open"}),
                         [](const auto& param) {
                           const std::string name = param.param.name;
                           return name.substr(0, name.find('-'));
                         });

TEST_F(State, of_a_serial_printer_without_power_is_no_answer) {
  use(Line::kSerial);
  EXPECT_EQ(run_tool({"status"}, {"--fault", "power-off@0"}).status, 5);
}

TEST_F(State, of_a_printer_that_becomes_mute_is_no_answer) {
  const Outcome outcome = run_under_printer(
      {}, script(R"("$0" status && )" + request("set mute on") + R"( && "$0" status --timeout 1)"));
  EXPECT_EQ(outcome.status, 11) << outcome.errors;
}

// ---------------------------------------------------------------------------------- watch

class Watch : public State {
 protected:
  // Runs the steps of a shell beside a watching tool, which is then ended by a signal. `sees 2
  // ready` waits for the second line of that state.
  Outcome watch(const std::string& steps) {
    return run_under_printer(
        {}, script("file=$1\n\"$0\" watch --json > \"$file\" & pid=$!\n"
                   "sees() {\n"
                   "  until [ \"$(grep -c \"\\\"state\\\":\\\"$2\\\"\" \"$file\")\" -ge \"$1\" ]\n"
                   "  do sleep 0.05; done\n"
                   "}\n" +
                       steps +
                       "\nkill -INT $pid; wait $pid; status=$?\n"
                       "cat \"$file\"; exit $status",
                   {path_of("watched")}));
  }
};

TEST_F(Watch, tells_each_change_in_a_line) {
  const Outcome outcome = watch("sees 1 ready\n" + request("set cover on") +
                                "\nsees 1 cover-open\n" + request("set cover off") +
                                "\nsees 2 ready\n" + request("set jam on") + "\nsees 1 cutter-jam");
  EXPECT_EQ(outcome.status, 130) << outcome.errors;
  std::vector<std::string> states;
  std::istringstream lines(outcome.lines_from("{\"time\""));
  for (std::string line; std::getline(lines, line);) states.push_back(Json::parse(line)["state"]);
  EXPECT_THAT(states, ElementsAre("ready", "cover-open", "ready", "cutter-jam"));
  EXPECT_EQ(json_of(outcome)["outcome"], "interrupted");
}

TEST_F(Watch, sees_the_connection_go_and_come_back) {
  const Outcome outcome =
      watch("sees 1 ready\n" + request("set connection-lost on") + "\nsees 1 offline\n" +
            request("set connection-lost off") + "\nsees 2 ready");
  EXPECT_EQ(outcome.status, 130) << outcome.errors;
}

TEST_F(Watch, ends_after_its_time) {
  const Outcome outcome = run_tool({"watch", "--for", "1"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.out, HasSubstr(" ready\n"));
}

// ------------------------------------------------------------------------------- identify

TEST_F(State, identify_tells_who_the_printer_is) {
  const Outcome outcome = run_tool({"identify"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.out, HasSubstr("serial number: VP0000001\nfirmware: 1.00\nfamily: 1\n"));
  const Json json = json_of(run_tool({"identify", "--json"}));
  EXPECT_EQ(json["serial_number"], "VP0000001");
  EXPECT_EQ(json["firmware"], "1.00");
  EXPECT_EQ(json["sensor"], 0);
}

TEST_F(State, identify_names_the_sensor_that_reports) {
  EXPECT_EQ(json_of(run_tool({"identify", "--json"}, {"--fault", "near-end@0"}))["sensor"], 3);
}

TEST_F(State, identify_of_a_printer_with_an_open_cover_says_so) {
  EXPECT_EQ(run_tool({"identify"}, {"--fault", "cover@0"}).status, 6);
}

// --------------------------------------------------------------------------------- update

// Region 1 is the first half MiB of an image, and its frame has seven bytes more.
constexpr std::size_t kRegion = 0x80000;

TEST_F(State, update_sends_one_region) {
  const std::string image = file("image", std::string(kRegion, 'F'));
  const Outcome outcome = run_tool({"update", image, "--region", "1", "--yes", "--json"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(json_of(outcome)["bytes_sent"], kRegion + 7);
  EXPECT_EQ(outcome.lines("firmware E 524288 bytes, checksum right"), 1) << outcome.out;
}

TEST_F(State, update_draws_a_bar_on_a_terminal) {
  use(Line::kUsb);
  const std::string image = file("image", std::string(kRegion, 'F'));
  const Outcome outcome = run_under_printer(
      {}, script(R"(script -q -e -c "$0 update $1 --region 1 --yes" /dev/null)", {image}));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.out, HasSubstr("]  50 %"));
  EXPECT_THAT(outcome.out, HasSubstr("] 100 %"));
}

TEST_F(State, update_sends_nothing_unless_it_is_meant) {
  const std::string image = file("image", std::string(kRegion, 'F'));
  const Outcome outcome = run_tool({"update", image, "--region", "1"}, recording());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("--yes"));
  EXPECT_EQ(recorded(), "");
}

TEST_F(State, update_takes_no_file_that_is_too_short_or_missing) {
  const std::string image = file("image", std::string(kRegion - 1, 'F'));
  const Outcome shorter = run_tool({"update", image, "--region", "1", "--yes"}, recording());
  EXPECT_EQ(shorter.status, 13);
  EXPECT_THAT(shorter.errors, HasSubstr("524288"));
  EXPECT_EQ(run_tool({"update", path_of("none"), "--region", "1", "--yes"}).status, 13);
  EXPECT_EQ(run_tool({"update", image, "--region", "3", "--yes"}).status, 1);
  EXPECT_EQ(recorded(), "");
}

}  // namespace
