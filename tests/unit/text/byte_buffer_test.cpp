#include "text/byte_buffer.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>

#include "byte_strings.h"

namespace {

constexpr std::size_t kTransaction = 1664000;
constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();

/// Bytes that differ from place to place, so that one moved or lost shows.
std::string pattern(std::size_t count) {
  std::string bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>((i * 31 + i / 256) % 256);
  return bytes;
}

TEST(ByteBuffer, is_empty_at_first) {
  const ByteBuffer buffer(16);
  EXPECT_TRUE(buffer.ok());
  EXPECT_THAT(buffer.bytes(), BytesAre(""));
}

TEST(ByteBuffer, keeps_the_order_of_what_is_appended) {
  ByteBuffer buffer(16);
  buffer.append("ab");
  buffer.append('c');
  buffer.append(3, 'd');
  buffer.append("e");
  EXPECT_TRUE(buffer.ok());
  EXPECT_THAT(buffer.bytes(), BytesAre("abcddde"));
}

TEST(ByteBuffer, takes_every_byte_value) {
  const std::string all = pattern(256);
  ByteBuffer buffer(256);
  buffer.append(all);
  EXPECT_THAT(buffer.bytes(), BytesAre(all));
}

TEST(ByteBuffer, appending_nothing_changes_nothing) {
  ByteBuffer buffer(4);
  buffer.append("ab");
  buffer.append("");
  buffer.append(0, 'x');
  EXPECT_TRUE(buffer.ok());
  EXPECT_THAT(buffer.bytes(), BytesAre("ab"));
}

TEST(ByteBuffer, takes_exactly_its_limit) {
  ByteBuffer buffer(4);
  buffer.append("abc");
  buffer.append('d');
  EXPECT_TRUE(buffer.ok());
  EXPECT_THAT(buffer.bytes(), BytesAre("abcd"));
}

TEST(ByteBuffer, refuses_one_byte_beyond_its_limit) {
  ByteBuffer buffer(4);
  buffer.append("abcd");
  buffer.append('e');
  EXPECT_FALSE(buffer.ok());
  EXPECT_LE(buffer.bytes().size(), 4U);
}

TEST(ByteBuffer, refuses_a_string_that_crosses_its_limit) {
  ByteBuffer buffer(4);
  buffer.append("abc");
  buffer.append("de");
  EXPECT_FALSE(buffer.ok());
  EXPECT_LE(buffer.bytes().size(), 4U);
}

TEST(ByteBuffer, stays_failed_even_when_something_would_fit_again) {
  ByteBuffer buffer(4);
  buffer.append("ab");
  buffer.append("cdefg");
  buffer.append("");
  buffer.append('c');
  EXPECT_FALSE(buffer.ok());
}

TEST(ByteBuffer, a_limit_of_nothing_takes_nothing) {
  ByteBuffer buffer(0);
  buffer.append("");
  EXPECT_TRUE(buffer.ok());
  buffer.append('a');
  EXPECT_FALSE(buffer.ok());
}

TEST(ByteBuffer, the_greatest_count_is_refused_and_does_not_wrap) {
  ByteBuffer buffer(kTransaction);
  buffer.append("ab");
  buffer.append(kMost, 'x');
  EXPECT_FALSE(buffer.ok());
}

TEST(ByteBuffer, a_count_that_wraps_the_size_to_a_small_one_is_refused) {
  ByteBuffer buffer(kTransaction);
  buffer.append("abc");
  buffer.append(kMost - 1, 'x');
  EXPECT_FALSE(buffer.ok());
}

TEST(ByteBuffer, refuses_memory_that_nobody_has) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer's allocator ends the program where malloc returns null";
#endif
  ByteBuffer buffer(kMost);
  buffer.append("abc");
  buffer.append(kMost - 1024, 'x');
  EXPECT_FALSE(buffer.ok());
}

TEST(ByteBuffer, grows_byte_by_byte_past_the_room_inside) {
  const std::string expected = pattern(20000);
  ByteBuffer buffer(kTransaction);
  for (const char byte : expected) buffer.append(byte);
  EXPECT_TRUE(buffer.ok());
  EXPECT_THAT(buffer.bytes(), BytesAre(expected));
}

TEST(ByteBuffer, grows_by_one_long_string) {
  const std::string expected = pattern(kTransaction);
  ByteBuffer buffer(kTransaction);
  buffer.append(expected);
  EXPECT_TRUE(buffer.ok());
  EXPECT_THAT(buffer.bytes(), BytesAre(expected));
  buffer.append('x');
  EXPECT_FALSE(buffer.ok());
}

TEST(ByteBuffer, grows_by_a_long_run_of_one_byte) {
  ByteBuffer buffer(kTransaction);
  buffer.append("ab");
  buffer.append(kTransaction - 2, '\n');
  EXPECT_TRUE(buffer.ok());
  EXPECT_THAT(buffer.bytes(), BytesAre("ab" + std::string(kTransaction - 2, '\n')));
}

TEST(ByteBuffer, every_size_around_a_power_of_two_is_kept_whole) {
  for (std::size_t power = 64; power <= 65536; power *= 2) {
    for (std::size_t size = power - 1; size <= power + 1; ++size) {
      const std::string expected = pattern(size);
      ByteBuffer buffer(kTransaction);
      buffer.append(std::string_view(expected).substr(0, size / 2));
      buffer.append(std::string_view(expected).substr(size / 2));
      ASSERT_TRUE(buffer.ok()) << size;
      ASSERT_THAT(buffer.bytes(), BytesAre(expected));
    }
  }
}

}  // namespace
