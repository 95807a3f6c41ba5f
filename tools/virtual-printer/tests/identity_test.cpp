#include "identity.h"

#include <gmock/gmock.h>

#include <string>

namespace virtual_printer {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

TEST(Identity, version_stands_behind_seven_bytes_and_a_letter) {
  const std::string reply = version_reply();
  ASSERT_GT(reply.size(), 9U);
  EXPECT_EQ(reply[0], '_');
  EXPECT_EQ(reply[8], 'V');
  EXPECT_EQ(reply.substr(9), "1.00");
}

TEST(Identity, serial_number_is_stored_and_told) {
  Identity identity;
  EXPECT_TRUE(store_serial_number("\x03_AB\x5c", identity));
  EXPECT_EQ(serial_number_reply(identity), "_AB");
}

TEST(Identity, empty_serial_number_is_one) {
  Identity identity;
  EXPECT_TRUE(store_serial_number("\x01__", identity));
  EXPECT_EQ(serial_number_reply(identity), "_");
}

TEST(Identity, wrong_checksum_keeps_the_old_number) {
  Identity identity;
  const std::string before = serial_number_reply(identity);
  EXPECT_FALSE(store_serial_number("\x03_AB\x5d", identity));
  EXPECT_EQ(serial_number_reply(identity), before);
}

TEST(Identity, self_test_shows_it_and_cuts) {
  Identity identity;
  identity.serial_number = "Z-99";
  EXPECT_THAT(self_test_page(1, identity), HasSubstr("Z-99"));
  EXPECT_THAT(self_test_page(1, identity), EndsWith("\x1bm"));
  EXPECT_THAT(self_test_page(2, identity), HasSubstr("ABCDEFG"));
}

}  // namespace
}  // namespace virtual_printer
