#include "device/serial_number_frame.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string framed(const std::string& number) {
  std::string buffer(number.size() + 5, '~');
  EXPECT_EQ(build_serial_number_frame(number, buffer), buffer.size());
  return buffer;
}

TEST(SerialNumberFrame, of_two_characters) {
  // 5F xor 41 xor 42 = 5C.
  EXPECT_EQ(framed("AB"), "\x1d#\x03_AB\x5c");
}

TEST(SerialNumberFrame, of_nothing) {
  EXPECT_EQ(framed(""), "\x1d#\x01_\x5f");
}

TEST(SerialNumberFrame, bytes_of_any_value) {
  // 5F xor FF xor 80 = 20.
  EXPECT_EQ(framed("\xff\x80"), "\x1d#\x03_\xff\x80\x20");
}

TEST(SerialNumberFrame, the_longest_has_128_bytes) {
  EXPECT_EQ(framed(std::string(kLongestSerialNumber, 'x')).size(), 128U);
}

}  // namespace
