#include "dispatch/bytes.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace std::string_view_literals;

TEST(Bytes, first_of_takes_a_prefix) {
  EXPECT_EQ(first_of("receipt", 3), "rec");
  EXPECT_EQ(first_of("receipt", 0), "");
  EXPECT_EQ(first_of("receipt", 7), "receipt");
}

TEST(Bytes, first_of_takes_no_more_than_there_is) {
  EXPECT_EQ(first_of("receipt", 8), "receipt");
  EXPECT_EQ(first_of("receipt", static_cast<std::size_t>(-1)), "receipt");
  EXPECT_EQ(first_of("", 1), "");
}

TEST(Bytes, rest_of_drops_a_prefix) {
  EXPECT_EQ(rest_of("receipt", 3), "eipt");
  EXPECT_EQ(rest_of("receipt", 0), "receipt");
  EXPECT_EQ(rest_of("receipt", 7), "");
}

TEST(Bytes, rest_of_drops_no_more_than_there_is) {
  EXPECT_EQ(rest_of("receipt", 8), "");
  EXPECT_EQ(rest_of("receipt", static_cast<std::size_t>(-1)), "");
  EXPECT_EQ(rest_of("", 1), "");
}

TEST(Bytes, both_parts_make_the_whole_and_nul_is_a_byte) {
  constexpr auto whole = "a\0b\0c"sv;
  for (std::size_t count = 0; count <= whole.size(); ++count) {
    EXPECT_EQ(std::string(first_of(whole, count)) + std::string(rest_of(whole, count)), whole);
  }
}

TEST(Bytes, begins_with_compares_the_whole_prefix) {
  EXPECT_TRUE(begins_with("/dev/ttyS0", "/dev/ttyS"));
  EXPECT_TRUE(begins_with("/dev/ttyS", "/dev/ttyS"));
  EXPECT_TRUE(begins_with("/dev/ttyS", ""));
  EXPECT_TRUE(begins_with("", ""));
  EXPECT_FALSE(begins_with("/dev/ttyU0", "/dev/ttyS"));
  EXPECT_FALSE(begins_with("/dev/tty", "/dev/ttyS"));
  EXPECT_FALSE(begins_with("", "/dev/ttyS"));
  EXPECT_FALSE(begins_with("/DEV/ttyS0", "/dev/ttyS"));
}

}  // namespace
