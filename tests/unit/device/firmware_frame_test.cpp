#include "device/firmware_frame.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string framed(long FileType, const std::string& region) {
  std::string buffer(kLongestFirmwareFrame, '\0');
  buffer.replace(kFirmwareHeader, region.size(), region);
  buffer.resize(frame_firmware(*firmware_region(FileType), buffer));
  return buffer;
}

TEST(FirmwareFrame, regions_of_an_image) {
  EXPECT_EQ(firmware_region(0)->offset, 1048576);
  EXPECT_EQ(firmware_region(0)->length, 327680U);
  EXPECT_EQ(firmware_region(1)->offset, 0);
  EXPECT_EQ(firmware_region(1)->length, 524288U);
  EXPECT_EQ(firmware_region(2)->offset, 524288);
  EXPECT_EQ(firmware_region(2)->length, 524288U);
  EXPECT_FALSE(firmware_region(-1));
  EXPECT_FALSE(firmware_region(3));
}

TEST(FirmwareFrame, head_and_length) {
  const std::string first = framed(0, "");
  EXPECT_EQ(first.size(), 327687U);
  EXPECT_EQ(first.substr(0, 6), std::string("\x1d~D\x05\0\0", 6));
  const std::string second = framed(1, "");
  EXPECT_EQ(second.size(), 524295U);
  EXPECT_EQ(second.substr(0, 6), std::string("\x1d~E\x08\0\0", 6));
  EXPECT_EQ(framed(2, "").substr(0, 6), std::string("\x1d~F\x08\0\0", 6));
}

TEST(FirmwareFrame, checksum_is_over_the_whole_region) {
  EXPECT_EQ(framed(1, "").back(), '\0');
  EXPECT_EQ(framed(1, "\x0f\x33").back(), '\x3c');
  std::string region(327680, '\0');
  region.back() = '\x5a';
  EXPECT_EQ(framed(0, region).back(), '\x5a');
  EXPECT_EQ(framed(0, region).substr(6, region.size()), region);
}

}  // namespace
