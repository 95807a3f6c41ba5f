#include "conditions.h"

#include <gmock/gmock.h>

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

TEST(Conditions, scripted_fault_is_a_condition_and_a_line) {
  EXPECT_EQ(parse_scripted_fault("paper-out@12"), (ScriptedFault{Condition::kPaperOut, 12}));
  EXPECT_EQ(parse_scripted_fault("jam@0"), (ScriptedFault{Condition::kCutterJam, 0}));
  for (const char* wrong : {"", "jam", "jam@", "@3", "lid@3", "jam@-1", "jam@3x", "jam@3@4"}) {
    EXPECT_EQ(parse_scripted_fault(wrong), std::nullopt) << wrong;
  }
}

TEST(ControlRequest, every_request_survives_the_way) {
  EXPECT_EQ(parse_control_request(text_of(ControlRequest{})), ControlRequest{});
  for (const Condition condition : kAllConditions) {
    for (const bool on : {false, true}) {
      const ControlRequest request{ConditionChange{condition, on}};
      EXPECT_EQ(parse_control_request(text_of(request)), request) << text_of(request);
    }
  }
}

TEST(ControlRequest, nonsense_is_no_request) {
  for (const char* wrong :
       {"", "state", "set ", "set cover", "set on", "set lid on", "set cover up"}) {
    EXPECT_EQ(parse_control_request(wrong), std::nullopt) << wrong;
  }
}

}  // namespace
}  // namespace virtual_printer
