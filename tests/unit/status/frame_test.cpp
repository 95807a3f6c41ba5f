#include "status/frame.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tzvio_state.h"

namespace {

using namespace std::string_literals;

std::string framed(const std::string& job) {
  std::vector<char> buffer(job.size() + kFrameOverhead);
  EXPECT_EQ(build_frame(job, buffer), buffer.size());
  return {buffer.begin(), buffer.end()};
}

const std::string kStart = "\033#FRAME\x01";

TEST(Frame, of_an_empty_job) {
  EXPECT_EQ(framed(""), kStart + "\0\0\x02\x03\0\0\x04"s);
}

TEST(Frame, of_a_short_job) {
  // A + B + C = 65 + 66 + 67 = 198 = C6.
  EXPECT_EQ(framed("ABC"), kStart + "\0\x03\x02"s + "ABC" + "\x03\0\xc6\x04"s);
}

TEST(Frame, bytes_above_127_count_as_negative) {
  // -128 + 127 = -1 = FFFF.
  EXPECT_EQ(framed("\x80\x7f"), kStart + "\0\x02\x02\x80\x7f\x03\xff\xff\x04"s);
}

TEST(Frame, of_bytes_that_are_all_ff_has_the_negative_length_as_checksum) {
  EXPECT_EQ(framed("\xff\xff\xff"), kStart + "\0\x03\x02\xff\xff\xff\x03\xff\xfd\x04"s);
  const std::string frame = framed(std::string(0x1234, '\xff'));
  EXPECT_EQ(frame.substr(8, 2), "\x12\x34");
  EXPECT_EQ(frame.substr(frame.size() - 4), "\x03\xed\xcc\x04");
}

TEST(Frame, checksum_wraps_at_16_bits) {
  // 600 times 127 = 76200 = 65536 + 10664 = 29A8.
  const std::string frame = framed(std::string(600, '\x7f'));
  EXPECT_EQ(frame.substr(frame.size() - 4), "\x03\x29\xa8\x04");
}

struct Length {
  std::size_t job;
  std::string field;
};

TEST(Frame, the_length_field_wraps_at_16_bits) {
  const Length rows[] = {{255, "\0\xff"s},
                         {256, "\1\0"s},
                         {65535, "\xff\xff"s},
                         {65536, "\0\0"s},
                         {65537, "\0\1"s},
                         {131072 + 300, "\1\x2c"s},
                         {TZV_PAGE_BUFFER_SIZE, "\x64\0"s}};  // 1664000 = 25 * 65536 + 25600
  for (const Length& row : rows) {
    const std::string frame = framed(std::string(row.job, 'x'));
    EXPECT_EQ(frame.substr(8, 2), row.field) << row.job;
    EXPECT_EQ(frame.size(), row.job + 15);
  }
}

}  // namespace
