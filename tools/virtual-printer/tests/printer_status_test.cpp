#include "printer_status.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace virtual_printer {
namespace {

using namespace std::string_literals;

struct Row {
  std::vector<Condition> present;
  std::string report;
  std::string real_time;  // all four
};

TEST(PrinterStatus, shows_each_condition_where_it_belongs) {
  const std::vector<Row> rows{
      {{}, "\x14\0\0\x0f"s, "\x16\x12\x12\x12"},
      {{Condition::kCoverOpen}, "\x3c\0\0\x0f"s, "\x1e\x16\x12\x12"},
      {{Condition::kPaperOut}, "\x1c\0\x0c\x0f"s, "\x1e\x32\x12\x72"},
      {{Condition::kPaperNearEnd}, "\x14\0\x03\x0f"s, "\x16\x12\x12\x1e"},
      {{Condition::kCutterJam}, "\x1c\x08\0\x0f"s, "\x1e\x52\x1a\x12"},
      {{Condition::kDrawerOpen}, "\x10\0\0\x0f"s, "\x12\x12\x12\x12"},
      {{Condition::kOffline}, "\x1c\0\0\x0f"s, "\x1e\x12\x12\x12"},
      {{Condition::kMarkSeen}, "\x14\0\0\x0f"s, "\x16\x12\x12\x12"},
      {{Condition::kCoverOpen, Condition::kPaperOut, Condition::kPaperNearEnd,
        Condition::kCutterJam, Condition::kDrawerOpen},
       "\x38\x08\x0f\x0f",
       "\x1a\x76\x1a\x7e"},
  };
  for (const Row& row : rows) {
    Conditions conditions;
    std::string names;
    for (const Condition condition : row.present) {
      conditions.set(condition, true);
      names += std::string(name_of(condition)) + " ";
    }
    EXPECT_EQ(status_report(conditions), row.report) << names;
    std::string real_time;
    for (std::uint8_t which = 1; which <= 4; ++which) {
      real_time += real_time_status(which, conditions);
    }
    EXPECT_EQ(real_time, row.real_time) << names;
  }
}

TEST(PrinterStatus, sensor_sees_the_near_end) {
  Conditions conditions;
  EXPECT_EQ(sensor_reply(conditions), "_0\0"s);
  conditions.set(Condition::kPaperNearEnd, true);
  EXPECT_EQ(sensor_reply(conditions), "_3\0"s);
}

TEST(PrinterStatus, mark_is_seen_or_not) {
  Conditions conditions;
  EXPECT_EQ(mark_reply(conditions), "_BM");
  conditions.set(Condition::kMarkSeen, true);
  EXPECT_EQ(mark_reply(conditions), "_BB");
}

TEST(PrinterStatus, process_id_comes_back_in_seven_bytes) {
  EXPECT_EQ(process_id_reply("FFFF"), "\x37\x22"s + "FFFF\0"s);
}

}  // namespace
}  // namespace virtual_printer
