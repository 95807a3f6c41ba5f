// Firmware download: the right part of the file, its frame, and what is told.
#include <gmock/gmock.h>

#include <cstdio>
#include <fstream>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

class Firmware : public EveryLink {
 protected:
  ~Firmware() override { std::remove(path.c_str()); }

  /// An image of so many bytes, no two regions alike.
  void make_image(std::size_t size) {
    image.resize(size);
    for (std::size_t i = 0; i < size; ++i) image[i] = static_cast<char>((i * 7) ^ (i >> 16));
    std::ofstream(path, std::ios::binary) << image;
  }
  std::string frame(const std::string& head, std::size_t offset, std::size_t length) const {
    std::string region = offset < image.size() ? image.substr(offset, length) : "";
    region.resize(length, '\0');
    char checksum = 0;
    for (const char byte : region) checksum = static_cast<char>(checksum ^ byte);
    return head + region + checksum;
  }

  const std::string path = testing::TempDir() + "image-" + std::to_string(getpid()) + ".bin";
  std::string image;
};
TZV_ON_EVERY_LINK(Firmware);

TEST_P(Firmware, each_type_sends_its_region) {
  make_image(0x150000);
  EXPECT_EQ(UpdateFW(port, path.c_str(), 0), 0);
  EXPECT_EQ(sent(), frame(std::string("\x1d~D\x05\0\0", 6), 0x100000, 0x50000));
  printer.output.clear();
  EXPECT_EQ(UpdateFW(port, path.c_str(), 1), 0);
  EXPECT_EQ(sent().size(), 524295U);
  EXPECT_EQ(sent(), frame(std::string("\x1d~E\x08\0\0", 6), 0, 0x80000));
  printer.output.clear();
  EXPECT_EQ(UpdateFW(port, path.c_str(), 2), 0);
  EXPECT_EQ(sent(), frame(std::string("\x1d~F\x08\0\0", 6), 0x80000, 0x80000));
}

TEST_P(Firmware, what_the_file_lacks_goes_as_zeros) {
  make_image(0x100000);
  EXPECT_EQ(UpdateFW(port, path.c_str(), 0), 0);
  EXPECT_EQ(sent(), std::string("\x1d~D\x05\0\0", 6) + std::string(0x50000 + 1, '\0'));
  printer.output.clear();
  make_image(0x80000 + 100);
  EXPECT_EQ(UpdateFW(port, path.c_str(), 2), 0);
  EXPECT_EQ(sent(), frame(std::string("\x1d~F\x08\0\0", 6), 0x80000, 0x80000));
}

// A till without an update beside it starts as ever.
TEST_P(Firmware, a_missing_file_gives_0_and_a_line_on_standard_output) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(UpdateFW(port, "/no/such/file", 1), 0);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "/no/such/file is not created !\n");
  EXPECT_EQ(sent(), "");
}

TEST_P(Firmware, bad_arguments_give_minus_1) {
  make_image(10);
  for (const long type : {-1L, 3L, 68L}) EXPECT_EQ(UpdateFW(port, path.c_str(), type), -1);
  EXPECT_EQ(UpdateFW(port, nullptr, 1), -1);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(Firmware, without_paper_or_with_the_cover_open_nothing_is_sent) {
  make_image(10);
  for (int* flag : {state.bPaperEmpty, state.bCoverOpen}) {
    *flag = 1;
    EXPECT_EQ(UpdateFW(port, path.c_str(), 1), -1);
    *flag = 0;
  }
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(Firmware, it_goes_past_a_transaction) {
  make_image(10);
  *state.TransactionPrint = 1;
  EXPECT_EQ(UpdateFW(port, path.c_str(), 1), 0);
  EXPECT_EQ(*state.PageSize, 0);
  EXPECT_EQ(sent().size(), 524295U);
}

// The sense of the test is kept: only a write of nothing fails.
TEST_P(Firmware, a_refused_or_failed_write_counts_as_success) {
  make_image(10);
  *state.bOffline = 1;
  EXPECT_EQ(UpdateFW(port, path.c_str(), 1), 0);
  EXPECT_EQ(sent(), "");
  *state.bOffline = 0;
  break_writes();
  EXPECT_EQ(UpdateFW(port, path.c_str(), 1), link.dead_write != 0 ? 0 : -1);
}

// On USB only the write meets it, and that counts as sent.
TEST_P(Firmware, a_closed_port_is_told_but_on_usb) {
  make_image(10);
  ClosePort(port);
  EXPECT_EQ(UpdateFW(port, path.c_str(), 1), link.name == "usb" ? 0 : -1);
  EXPECT_EQ(sent(), "");
}

}  // namespace
}  // namespace testkit
