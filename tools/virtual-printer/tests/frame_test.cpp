#include "frame.h"

#include <gmock/gmock.h>

#include <string>

#include "framed.h"

namespace virtual_printer {
namespace {

using namespace std::string_literals;

TEST(Frame, checksum_adds_signed_bytes) {
  EXPECT_EQ(checksum_of(""), 0);
  EXPECT_EQ(checksum_of("AB"), 0x83);
  EXPECT_EQ(checksum_of(std::string(3, '\xff')), 65536 - 3);
  EXPECT_EQ(checksum_of("\x7f\x80"), 65535);
}

TEST(Frame, good_frame_gives_its_job) {
  const std::string bytes = framed("Hello\n") + "after";
  const Frame frame = read_frame(bytes, true);
  EXPECT_EQ(frame.state, FrameState::kGood);
  EXPECT_EQ(frame.job, "Hello\n");
  EXPECT_EQ(frame.length, 6U + 15U);
}

TEST(Frame, its_bytes_stand_where_they_should) {
  EXPECT_EQ(read_frame("\x1b#FRAME\x01\0\x02\x02\x41\x42\x03\0\x83\x04"s, true).job, "AB");
}

TEST(Frame, every_beginning_is_unfinished) {
  const std::string bytes = framed("Hello\n");
  for (std::size_t length = 1; length < bytes.size(); ++length) {
    EXPECT_EQ(read_frame(bytes.substr(0, length), true).state, FrameState::kUnfinished) << length;
  }
}

TEST(Frame, other_commands_are_none) {
  EXPECT_EQ(read_frame("\x1b#FRAMX", true).state, FrameState::kNone);
  EXPECT_EQ(read_frame("\x1b#FRAME\x02", true).state, FrameState::kNone);
  EXPECT_EQ(read_frame("\x1b#FRA", false).state, FrameState::kNone);
  EXPECT_EQ(read_frame("text", true).state, FrameState::kNone);
}

TEST(Frame, length_of_a_long_job_wraps) {
  for (const std::size_t length : {std::size_t{65535}, std::size_t{65536}, std::size_t{65540},
                                   std::size_t{200000}, kLongestJob}) {
    std::string job(length, 'x');
    job[length / 2] = '\x90';
    const std::string bytes = framed(job);
    EXPECT_EQ(read_frame(bytes.substr(0, bytes.size() - 1), true).state, FrameState::kUnfinished);
    EXPECT_EQ(read_frame(bytes, true), (Frame{FrameState::kGood, bytes.size(), job})) << length;
  }
}

TEST(Frame, what_looks_like_a_trailer_in_a_long_job_is_not_taken_for_it) {
  std::string job(65536 + 20, 'x');
  job.replace(20, 4, "\x03zz\x04");
  EXPECT_EQ(read_frame(framed(job), true).job, job);
}

TEST(Frame, wrong_checksum_is_decided_by_silence) {
  const std::string bytes = with_wrong_checksum(framed("Hello\n")) + "after";
  EXPECT_EQ(read_frame(bytes, true).state, FrameState::kUnfinished);
  const Frame frame = read_frame(bytes, false);
  EXPECT_EQ(frame.state, FrameState::kWrongChecksum);
  EXPECT_EQ(frame.length, 6U + 15U);
}

TEST(Frame, wrong_length_takes_all_that_came) {
  std::string bytes = framed("Hello\n");
  bytes[9] = 5;
  EXPECT_EQ(read_frame(bytes, true).state, FrameState::kUnfinished);
  EXPECT_EQ(read_frame(bytes, false), (Frame{FrameState::kWrongLength, bytes.size(), {}}));
}

TEST(Frame, longer_than_any_job_is_wrong_without_silence) {
  std::string bytes = framed("Hello\n");
  bytes[9] = 5;
  bytes.resize(kFrameHeaderLength + kLongestJob + kFrameTrailerLength);
  EXPECT_EQ(read_frame(bytes, true).state, FrameState::kWrongLength);
}

TEST(Frame, only_a_whole_header_begins_one) {
  EXPECT_TRUE(begins_frame(framed("")));
  EXPECT_FALSE(begins_frame(framed("").substr(0, kFrameHeaderLength - 1)));
}

}  // namespace
}  // namespace virtual_printer
