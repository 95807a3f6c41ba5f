#include "conditions.h"

#include <gmock/gmock.h>

#include <string>

#include "control_request.h"

namespace virtual_printer {
namespace {

TEST(Conditions, each_has_a_name_that_leads_back_to_it) {
  for (const Condition condition : kAllConditions) {
    EXPECT_EQ(condition_named(name_of(condition)), condition) << name_of(condition);
  }
  EXPECT_EQ(condition_named("lid"), std::nullopt);
  EXPECT_EQ(condition_named(""), std::nullopt);
}

TEST(Conditions, setting_tells_whether_it_changed_anything) {
  Conditions conditions;
  EXPECT_FALSE(conditions.set(Condition::kCoverOpen, false));
  EXPECT_TRUE(conditions.set(Condition::kCoverOpen, true));
  EXPECT_FALSE(conditions.set(Condition::kCoverOpen, true));
  EXPECT_TRUE(conditions.has(Condition::kCoverOpen));
  EXPECT_FALSE(conditions.has(Condition::kPaperOut));
}

TEST(Conditions, only_faults_stop_printing) {
  for (const Condition condition : kAllConditions) {
    Conditions conditions;
    conditions.set(condition, true);
    const bool is_fault = condition == Condition::kCoverOpen || condition == Condition::kPaperOut ||
                          condition == Condition::kCutterJam || condition == Condition::kOffline;
    EXPECT_EQ(conditions.stop_printing(), is_fault) << name_of(condition);
  }
}

TEST(Conditions, scripted_fault_is_a_condition_and_a_line_or_a_byte) {
  EXPECT_EQ(parse_scripted_fault("paper-out@12"), (ScriptedFault{Condition::kPaperOut, 12}));
  EXPECT_EQ(parse_scripted_fault("jam@0"), (ScriptedFault{Condition::kCutterJam, 0}));
  EXPECT_EQ(parse_scripted_fault("busy@40B"),
            (ScriptedFault{Condition::kBusy, 40, ScriptedFault::Unit::kBytes}));
  for (const char* wrong : {"", "jam", "jam@", "@3", "lid@3", "jam@-1", "jam@3x", "jam@3@4",
                            "jam@B", "jam@3b", "jam@3BB"}) {
    EXPECT_EQ(parse_scripted_fault(wrong), std::nullopt) << wrong;
  }
}

TEST(Conditions, reports_tell_of_the_printer_and_not_of_the_line) {
  EXPECT_TRUE(is_reported(Condition::kCoverOpen));
  EXPECT_TRUE(is_reported(Condition::kOffline));
  EXPECT_FALSE(is_reported(Condition::kMarkSeen));
  EXPECT_FALSE(is_reported(Condition::kConnectionLost));
  EXPECT_FALSE(is_reported(Condition::kNibbleRefused));
}

TEST(ControlRequest, status_or_a_change) {
  EXPECT_EQ(parse_control_request("status"), ControlRequest(StatusQuery{}));
  for (const Condition condition : kAllConditions) {
    const std::string set = "set " + std::string(name_of(condition));
    EXPECT_EQ(parse_control_request(set + " on"), ControlRequest(ConditionChange{condition, true}));
    EXPECT_EQ(parse_control_request(set + " off"),
              ControlRequest(ConditionChange{condition, false}));
  }
}

TEST(ControlRequest, fault_that_is_to_set_in) {
  EXPECT_EQ(parse_control_request("fault jam@3"),
            ControlRequest(ScriptedFault{Condition::kCutterJam, 3}));
  EXPECT_EQ(parse_control_request("fault busy@40B"),
            ControlRequest(ScriptedFault{Condition::kBusy, 40, ScriptedFault::Unit::kBytes}));
  for (const char* wrong : {"fault", "fault ", "fault jam", "fault lid@3", "fault jam@3 on"}) {
    EXPECT_EQ(parse_control_request(wrong), std::nullopt) << wrong;
  }
}

TEST(ControlRequest, switches_are_switched_and_numbers_set) {
  for (const LineSetting& setting : kLineSettings) {
    const std::string set = "set " + std::string(setting.name);
    const auto change = [&](int value) { return ControlRequest(SettingChange{&setting, value}); };
    EXPECT_EQ(parse_control_request(set + " off"), change(0)) << set;
    EXPECT_EQ(parse_control_request(set + " on"),
              setting.is_switch() ? std::optional(change(1)) : std::nullopt)
        << set;
    EXPECT_EQ(parse_control_request(set + " 25"),
              setting.is_switch() ? std::nullopt : std::optional(change(25)))
        << set;
  }
}

TEST(ControlRequest, nonsense_is_no_request) {
  for (const char* wrong :
       {"", "state", "set ", "set cover", "set on", "set lid on", "set cover up", "set cover on on",
        "set slow", "set slow fast", "set slow -1", "set slow 1x", "set slow 10000001",
        "set mute 1", "set answer-delay 3600001"}) {
    EXPECT_EQ(parse_control_request(wrong), std::nullopt) << wrong;
  }
}

}  // namespace
}  // namespace virtual_printer
