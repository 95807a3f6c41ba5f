#include "status/sensor_reply.h"

#include <gtest/gtest.h>

#include <string>

#include "byte_strings.h"

namespace {

constexpr int kUnknown = -1;

std::string frame(int sensor_byte) {
  return std::string("_") + static_cast<char>(sensor_byte) + '\0';
}

void expect_reply(const std::string& reply, bool valid, int device_type, int sensor) {
  const SensorReply decoded = decode_sensor_reply(reply);
  EXPECT_EQ(decoded.valid, valid) << hex_dump(reply);
  EXPECT_EQ(decoded.device_type, device_type) << hex_dump(reply);
  EXPECT_EQ(decoded.sensor, sensor) << hex_dump(reply);
}

TEST(SensorReply, digits_tell_the_sensors_of_the_first_family) {
  expect_reply(frame('0'), true, 1, 0);
  expect_reply(frame('1'), true, 1, 1);
  expect_reply(frame('2'), true, 1, 2);
  expect_reply(frame('3'), true, 1, 3);
}

TEST(SensorReply, at_sign_and_a_tell_the_one_sensor_of_the_other_family) {
  expect_reply(frame(0x40), true, 0, 0);
  expect_reply(frame(0x41), true, 0, 3);
}

bool has_both_bits_of_a_digit(int byte) {
  return (byte & 0x30) == 0x30;
}

TEST(SensorReply, every_other_byte_with_both_digit_bits_is_malformed_but_tells_the_family) {
  for (int byte = 0; byte < 256; ++byte) {
    if (!has_both_bits_of_a_digit(byte) || (byte >= '0' && byte <= '3')) continue;
    expect_reply(frame(byte), false, 1, 0);
  }
}

TEST(SensorReply, every_other_byte_with_bit_6_is_malformed_but_tells_the_family) {
  for (int byte = 0; byte < 256; ++byte) {
    if (has_both_bits_of_a_digit(byte) || (byte & 0x40) == 0) continue;
    if (byte == 0x40 || byte == 0x41) continue;
    expect_reply(frame(byte), false, 0, 0);
  }
}

TEST(SensorReply, every_byte_with_neither_is_malformed_and_tells_nothing) {
  for (int byte = 0; byte < 256; ++byte) {
    if (has_both_bits_of_a_digit(byte) || (byte & 0x40) != 0) continue;
    expect_reply(frame(byte), false, kUnknown, 0);
  }
}

TEST(SensorReply, a_frame_that_begins_with_another_byte_is_malformed_whatever_it_says) {
  for (int byte = 0; byte < 256; ++byte) {
    std::string reply = frame(byte);
    reply[0] = '^';
    expect_reply(reply, false, kUnknown, 0);
  }
}

TEST(SensorReply, a_frame_that_ends_with_another_byte_is_malformed_whatever_it_says) {
  for (int byte = 0; byte < 256; ++byte) {
    std::string reply = frame(byte);
    reply[2] = '\x01';
    expect_reply(reply, false, kUnknown, 0);
  }
}

TEST(SensorReply, no_other_first_or_last_byte_makes_a_frame) {
  for (int byte = 0; byte < 256; ++byte) {
    std::string begins = frame('1');
    begins[0] = static_cast<char>(byte);
    EXPECT_EQ(decode_sensor_reply(begins).valid, byte == '_') << hex_dump(begins);
    std::string ends = frame('1');
    ends[2] = static_cast<char>(byte);
    EXPECT_EQ(decode_sensor_reply(ends).valid, byte == 0) << hex_dump(ends);
  }
}

TEST(SensorReply, fewer_than_three_bytes_are_malformed) {
  expect_reply("", false, kUnknown, 0);
  expect_reply("_", false, kUnknown, 0);
  expect_reply("_1", false, kUnknown, 0);
  expect_reply(hex("31 00"), false, kUnknown, 0);
}

TEST(SensorReply, only_the_last_three_bytes_count) {
  expect_reply(hex("14 00 00 0f") + frame('2'), true, 1, 2);
  expect_reply(frame('1') + frame('3'), true, 1, 3);
  expect_reply(frame('1') + frame(0x41), true, 0, 3);
  expect_reply(std::string(61, '\xff') + frame('1'), true, 1, 1);
}

TEST(SensorReply, a_good_frame_before_a_bad_end_does_not_count) {
  expect_reply(frame('1') + '\0', false, kUnknown, 0);
  expect_reply(frame('1') + "_1", false, kUnknown, 0);
  expect_reply(frame('1') + frame('9'), false, 1, 0);
}

}  // namespace
