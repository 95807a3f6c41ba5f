#include "firmware.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace virtual_printer {
namespace {

// Bytes whose exclusive-or is 'x': an even number of 'x' and one more.
std::string block(char region, int size, char checksum) {
  std::string bytes(static_cast<std::size_t>(size) * 65536, 'x');
  bytes.back() = '\0';
  return std::string{region, static_cast<char>(size), '\0', '\0'} + bytes + checksum;
}

TEST(Firmware, of_every_region_is_right_at_its_own_length) {
  EXPECT_EQ(check_firmware(block('D', 5, 'x')).words, "firmware D 327680 bytes, checksum right");
  EXPECT_EQ(check_firmware(block('E', 8, 'x')).words, "firmware E 524288 bytes, checksum right");
  EXPECT_EQ(check_firmware(block('F', 8, 'x')).words, "firmware F 524288 bytes, checksum right");
  EXPECT_TRUE(check_firmware(block('F', 8, 'x')).good);
}

TEST(Firmware, with_a_wrong_checksum_or_length_is_not_good) {
  const FirmwareCheck checksum = check_firmware(block('D', 5, 'y'));
  EXPECT_EQ(checksum.words, "firmware D 327680 bytes, checksum wrong");
  EXPECT_FALSE(checksum.good);
  const FirmwareCheck length = check_firmware(block('E', 5, 'x'));
  EXPECT_EQ(length.words, "firmware E 327680 bytes, length wrong, checksum right");
  EXPECT_FALSE(length.good);
}

}  // namespace
}  // namespace virtual_printer
