#include "status/report_decoder.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

using namespace std::string_literals;

void PrintTo(const StatusFlags& flags, std::ostream* out) {
  *out << "cover " << flags.cover_open << " empty " << flags.paper_empty << " near "
       << flags.paper_near_empty << " offline " << flags.offline << " jam " << flags.cutter_jam
       << " drawer " << flags.drawer_opened;
}

namespace {

constexpr StatusFlags kAllSet{1, 1, 1, 1, 1, 1};
constexpr StatusFlags kNoneSet{};

struct Row {
  const char* name;
  std::string received;
  StatusFlags before;
  StatusFlags after;
  bool healthy;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

class Report : public testing::TestWithParam<Row> {};

StatusFlags cover_open(int drawer) {
  return {.cover_open = 1, .offline = 1, .drawer_opened = drawer};
}
StatusFlags jam(int drawer) {
  return {.offline = 1, .cutter_jam = 1, .drawer_opened = drawer};
}
StatusFlags no_paper(int drawer) {
  return {.paper_empty = 1, .offline = 1, .drawer_opened = drawer};
}
StatusFlags near_end(int drawer) {
  return {.paper_near_empty = 1, .drawer_opened = drawer};
}
StatusFlags fine(int drawer) {
  return {.drawer_opened = drawer};
}

INSTANTIATE_TEST_SUITE_P(
    rows, Report,
    testing::Values(
        Row{"healthy_clears_everything", "\x14\0\0\x0f"s, kAllSet, fine(0), true},
        Row{"healthy_with_a_zero_end", "\x14\0\0\0"s, kAllSet, fine(0), true},
        Row{"drawer_open_and_healthy", "\x10\0\0\x0f"s, kNoneSet, fine(1), true},
        Row{"near_end_is_healthy", "\x14\0\x03\x0f"s, kAllSet, near_end(0), true},
        Row{"near_end_needs_the_end_byte", "\x14\0\x03\0"s, kAllSet, near_end(1), false},
        Row{"cover_open", "\x3c\0\0\x0f"s, kNoneSet, cover_open(0), false},
        Row{"cover_open_counts_the_drawer", "\x30\0\0\x0f"s, kNoneSet, cover_open(1), false},
        Row{"cover_open_without_drawer_form", "\x20\0\0\x0f"s, kAllSet, cover_open(1), false},
        Row{"plain_without_drawer_form", "\x04\0\0\x0f"s, kAllSet, kAllSet, false},
        Row{"plain_zero", "\0\0\0\0"s, kAllSet, kAllSet, false},
        Row{"cutter_jam", "\x14\x08\0\x0f"s, kAllSet, jam(1), false},
        Row{"jam_wins_over_cover", "\x3c\x08\x0c\x0f"s, kNoneSet, jam(0), false},
        Row{"jam_does_not_count_the_drawer", "\x10\x08\0\x0f"s, kNoneSet, jam(0), false},
        Row{"paper_out", "\x14\0\x0c\x0f"s, kAllSet, no_paper(1), false},
        Row{"paper_out_and_near_end", "\x10\0\x0f\x0f"s, kNoneSet, no_paper(0), false},
        Row{"paper_out_needs_both_bits", "\x14\0\x08\x0f"s, kAllSet, kAllSet, false},
        Row{"paper_out_without_drawer_form", "\x04\0\x0c\x0f"s, kAllSet, kAllSet, false},
        Row{"cover_wins_over_paper", "\x34\0\x0c\x0f"s, kNoneSet, cover_open(0), false},
        Row{"near_end_with_other_bits", "\x14\x01\x03\x0f"s, kAllSet, near_end(1), false},
        Row{"near_end_needs_both_bits", "\x14\x01\x01\x0f"s, kAllSet, kAllSet, false},
        Row{"other_second_byte_changes_nothing", "\x14\x01\0\x0f"s, kAllSet, kAllSet, false},
        Row{"only_the_last_report_counts", "\x3c\0\0\x0f\x14\0\0\x0f"s, kNoneSet, fine(0), true},
        Row{"drawer_by_majority", "\x10\0\0\x0f\x10\0\0\x0f\x14\0\0\x0f"s, kNoneSet, fine(1), true},
        Row{"drawer_closed_by_majority", "\x14\0\0\x0f\x10\0\0\x0f\x14\0\0\x0f"s, kAllSet, fine(0),
            true},
        Row{"a_draw_leaves_the_drawer_open", "\x14\0\0\x0f\x10\0\0\x0f"s, kAllSet, fine(1), true},
        Row{"a_draw_leaves_the_drawer_closed", "\x10\0\0\x0f\x14\0\0\x0f"s, kNoneSet, fine(0),
            true},
        // Six bytes: reports are counted from the end, so bytes 2 and then none.
        Row{"bytes_before_the_first_whole_report_do_not_vote", "\x10\x10\x14\0\0\x0f"s, kAllSet,
            fine(0), true},
        Row{"too_short", "\x3c\0\0"s, kAllSet, kAllSet, false},
        Row{"nothing", "", kAllSet, kAllSet, false},
        Row{"a_confirmation_changes_no_flag", "\x37\x22"s + "FFFF\0"s, kAllSet, kAllSet, false}),
    [](const auto& row) { return row.param.name; });

TEST_P(Report, becomes_flags) {
  const Row& row = GetParam();
  const DecodedReport decoded = decode_report(row.received, row.before);
  EXPECT_EQ(decoded.flags, row.after);
  EXPECT_EQ(decoded.healthy, row.healthy);
}

/// The rules once more, as one list of cases over a single report.
DecodedReport by_the_rules(unsigned s1, unsigned s2, unsigned s3, unsigned s4, StatusFlags before) {
  const unsigned form = s1 & 0x14;
  const bool drawer_form = form == 0x14 || form == 0x10;
  const bool cover = (s1 & 0x20) == 0x20;
  const bool plain =
      (s2 == 0 && s3 == 0 && (s4 == 0x00 || s4 == 0x0f)) || (s2 == 0 && s3 == 0x03 && s4 == 0x0f);
  const int counted = form == 0x10 ? 1 : 0;
  if (plain && drawer_form && !cover) return {{0, 0, (s3 & 3) == 3, 0, 0, counted}, true};
  if (plain && drawer_form) return {{1, 0, 0, 1, 0, counted}, false};
  if (!plain && (s2 & 0x08) != 0) return {{0, 0, 0, 1, 1, before.drawer_opened}, false};
  if (cover) return {{1, 0, 0, 1, 0, before.drawer_opened}, false};
  if (!plain && drawer_form && (s3 & 0x0c) == 0x0c) {
    return {{0, 1, 0, 1, 0, before.drawer_opened}, false};
  }
  if (!plain && drawer_form && (s3 & 0x03) == 0x03) {
    return {{0, 0, 1, 0, 0, before.drawer_opened}, false};
  }
  return {before, false};
}

TEST(Report, every_byte_that_can_make_a_difference) {
  for (unsigned s1 = 0; s1 < 256; ++s1) {
    for (const unsigned s2 : {0x00U, 0x01U, 0x04U, 0x07U, 0x08U, 0x0cU, 0x80U, 0xf7U, 0xffU}) {
      for (unsigned s3 = 0; s3 < 256; ++s3) {
        for (const unsigned s4 : {0x00U, 0x01U, 0x03U, 0x0eU, 0x0fU, 0x10U, 0x1fU, 0xffU}) {
          const char bytes[] = {static_cast<char>(s1), static_cast<char>(s2), static_cast<char>(s3),
                                static_cast<char>(s4)};
          for (const StatusFlags& before : {kAllSet, kNoneSet}) {
            const DecodedReport expected = by_the_rules(s1, s2, s3, s4, before);
            const DecodedReport decoded = decode_report({bytes, 4}, before);
            ASSERT_EQ(decoded.flags, expected.flags) << s1 << ' ' << s2 << ' ' << s3 << ' ' << s4;
            ASSERT_EQ(decoded.healthy, expected.healthy);
          }
        }
      }
    }
  }
}

struct Sorted {
  std::string reports;
  bool confirmed;
};

Sorted sorted(std::string received) {
  const Received parts = sort_received(received);
  return {std::string(parts.reports), parts.confirmed};
}

const std::string kAnswer = "\x37\x22"s + "FFFF\0"s;
const std::string kHealthy = "\x14\0\0\x0f"s;

TEST(Confirmation, is_seven_bytes_with_the_marks_in_place) {
  EXPECT_TRUE(sorted(kAnswer).confirmed);
  EXPECT_TRUE(sorted("7xxFFFx"s).confirmed) << "the other bytes are not looked at";
  for (const std::string& other :
       {"7xxFFF"s, "7xxFFFxx"s, "8xxFFFx"s, "7xxXFFx"s, "7xxFXFx"s, "7xxFFXx"s, ""s}) {
    EXPECT_FALSE(sorted(other).confirmed) << other;
    EXPECT_EQ(sorted(other).reports, other);
  }
}

// What a printer makes of a request that was torn off and followed by a new job's ESC @ ESC.
TEST(Confirmation, is_not_that_of_another_identifier_which_is_no_report_either) {
  const std::string foreign = "\x37\x22"s + "F\x1b@\x1b\0"s;
  EXPECT_FALSE(sorted(foreign).confirmed);
  EXPECT_EQ(sorted(foreign).reports, "");
}

TEST(Confirmation, is_not_looked_for_in_seven_bytes_that_only_begin_like_one) {
  const std::string reports = "\x37\x22"s + "A" + kHealthy;
  EXPECT_FALSE(sorted(reports).confirmed);
  EXPECT_EQ(sorted(reports).reports, reports);
}

TEST(Confirmation, beside_reports_is_told_apart_from_them) {
  for (const std::string& received : {kHealthy + kAnswer, kAnswer + kHealthy}) {
    EXPECT_TRUE(sorted(received).confirmed);
    EXPECT_EQ(sorted(received).reports, kHealthy);
  }
  EXPECT_FALSE(sorted(kHealthy + kHealthy).confirmed);
}

TEST(Confirmation, that_comes_twice_confirms) {
  EXPECT_TRUE(sorted(kAnswer + kAnswer).confirmed);
  EXPECT_EQ(sorted(kAnswer + kAnswer).reports, "");
}

}  // namespace
