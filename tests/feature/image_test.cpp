// Pictures through the library: printed from a file, and kept by the printer. What becomes of a
// file's pixels is tested with the conversion itself.
#include <gmock/gmock.h>

#include "pictures/bmp.h"
#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using namespace std::string_literals;
using pictures::Bmp;
using pictures::TemporaryFile;
using testing::ElementsAre;

const std::string kLeft = "\033a0", kCentre = "\033a1", kRight = "\033a2";
const std::string kPrintDownloaded = "\035/0";

/// A picture of one bit, all white but for what is random in it.
Bmp picture(int width, int height) {
  std::mt19937 random(1);
  return pictures::random_bmp(width, height, 1, pictures::kWhiteFirst, random);
}

/// What PrintBitmap sends of a picture of fewer than 128 x 128 dots.
std::string printed(const Bmp& bmp, const std::string& justification) {
  std::string bytes = "\x1d*";
  bytes += static_cast<char>(pictures::eights(bmp.width));
  bytes += static_cast<char>(pictures::eights(bmp.height));
  return bytes + pictures::columns_of(bmp) + justification + kPrintDownloaded;
}

/// What was said on standard output while it lives.
class StandardOutput {
 public:
  StandardOutput() { testing::internal::CaptureStdout(); }
  ~StandardOutput() {
    if (!taken_) take();
  }
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;

  std::string take() {
    taken_ = true;
    return testing::internal::GetCapturedStdout();
  }

 private:
  bool taken_ = false;
};

class Image : public EveryLink {
 protected:
  std::vector<int*> error_flags() const {
    return {state.bCoverOpen, state.bPaperEmpty, state.bOffline, state.bCutterJam};
  }
  /// Clears what was sent before.
  void forget_sent() {
    printer.output.clear();
    printer.writes.clear();
  }
};
TZV_ON_EVERY_LINK(Image);

// ----------------------------------------------------------------------------- PrintBitmap

TEST_P(Image, a_logo_is_downloaded_then_justified_then_printed) {
  const Bmp logo = picture(384, 240);
  const TemporaryFile file(logo.file());
  EXPECT_EQ(PrintBitmap(port, file.path(), TZV_ALIGN_RIGHT), 0);
  const std::string data = pictures::columns_of(logo);
  EXPECT_EQ(data.size(), 11520U);
  EXPECT_EQ(sent(), "\x1d*\x30\x1e" + data + kRight + kPrintDownloaded);
}

TEST_P(Image, alignment_0_is_left_2_is_right_and_any_other_is_centre) {
  const Bmp dot = picture(1, 1);
  const TemporaryFile file(dot.file());
  const std::string download = "\x1d*\x01\x01" + pictures::columns_of(dot);
  const std::pair<long, std::string> rows[] = {{0, kLeft},   {1, kCentre},  {2, kRight},
                                               {7, kCentre}, {-1, kCentre}, {3, kCentre}};
  for (const auto& [alignment, prefix] : rows) {
    forget_sent();
    EXPECT_EQ(PrintBitmap(port, file.path(), alignment), 0);
    EXPECT_THAT(printer.writes, ElementsAre(download, prefix, kPrintDownloaded)) << alignment;
  }
}

TEST_P(Image, every_depth_prints) {
  std::mt19937 random(2);
  for (const int bits : pictures::kDepths) {
    const Bmp bmp = pictures::random_bmp(19, 21, bits, pictures::kBlackFirst, random);
    const TemporaryFile file(bmp.file());
    forget_sent();
    EXPECT_EQ(PrintBitmap(port, file.path(), TZV_ALIGN_LEFT), 0);
    EXPECT_EQ(sent(), printed(bmp, kLeft)) << bits;
  }
}

TEST_P(Image, 2880_bytes_of_8_by_8_dots_are_the_largest_picture) {
  const TemporaryFile largest(picture(384, 480).file());  // 48 x 60 = 2880
  EXPECT_EQ(PrintBitmap(port, largest.path(), 0), 0);
  EXPECT_EQ(sent().size(), 4U + 2880 * 8 + 3 + 3);
  forget_sent();
  const StandardOutput said;
  for (const auto& [width, height] : {std::pair{344, 536}, {480, 400}}) {  // 43 x 67, 60 x 50
    const TemporaryFile file(picture(width, height).file());
    EXPECT_EQ(PrintBitmap(port, file.path(), 0), -1);
  }
  EXPECT_EQ(sent(), "");
}

TEST_P(Image, too_large_a_picture_is_refused_without_a_message) {
  const TemporaryFile file(picture(480, 400).file());
  StandardOutput said;
  EXPECT_EQ(PrintBitmap(port, file.path(), 0), -1);
  EXPECT_EQ(said.take(), "");
}

// There is no bound on either side alone.
TEST_P(Image, a_side_of_2048_dots_wraps_to_0) {
  const TemporaryFile wide(picture(2048, 8).file());
  EXPECT_EQ(PrintBitmap(port, wide.path(), 0), 0);
  EXPECT_EQ(hex(sent().substr(0, 4)), "1D 2A 00 01");
  EXPECT_EQ(sent().size(), 4U + 2048 + 3 + 3);
  forget_sent();
  const TemporaryFile high(picture(8, 2056).file());
  EXPECT_EQ(PrintBitmap(port, high.path(), 0), 0);
  EXPECT_EQ(hex(sent().substr(0, 4)), "1D 2A 01 01");
  EXPECT_EQ(sent().size(), 4U + 2056 + 3 + 3);
}

TEST_P(Image, a_file_that_cannot_be_used_gives_minus_1_and_its_message) {
  StandardOutput said;
  EXPECT_EQ(PrintBitmap(port, "/nowhere/logo.bmp", 0), -1);
  const TemporaryFile file("no picture at all");
  EXPECT_EQ(PrintBitmap(port, file.path(), 0), -1);
  EXPECT_EQ(said.take(), "File Open Fail=/nowhere/logo.bmp\nNot Bitmap file\n");
  EXPECT_EQ(sent(), "");
}

TEST_P(Image, no_file_name_gives_minus_1_and_sends_nothing) {
  EXPECT_EQ(PrintBitmap(port, nullptr, 0), -1);
  EXPECT_EQ(SaveNVBitmap(port, nullptr, 0), -1);
  EXPECT_EQ(sent(), "");
}

TEST_P(Image, a_transaction_collects_the_whole_picture) {
  const Bmp bmp = picture(20, 20);
  const TemporaryFile file(bmp.file());
  *state.TransactionPrint = 1;
  EXPECT_EQ(PrintBitmap(port, file.path(), 1), 0);
  EXPECT_EQ(state.collected(), printed(bmp, kCentre));
  EXPECT_EQ(sent(), "");
}

TEST_P(Image, reprint_mode_collects_it_too) {
  const TemporaryFile file(picture(8, 8).file());
  *state.RePrint = 1;
  EXPECT_EQ(PrintBitmap(port, file.path(), 1), 0);
  EXPECT_EQ(state.collected().size(), 4U + 8 + 3 + 3);
  EXPECT_EQ(sent(), "");
}

TEST_P(Image, a_refused_or_failed_write_of_a_picture_gives_0) {
  const TemporaryFile file(picture(8, 8).file());
  for (int* flag : error_flags()) {
    *flag = 1;
    EXPECT_EQ(PrintBitmap(port, file.path(), 1), 0);
    *flag = 0;
  }
  EXPECT_EQ(sent(), "");
  break_writes();
  EXPECT_EQ(PrintBitmap(port, file.path(), 1), 0);
}

TEST_P(Image, a_picture_that_does_not_fit_the_transaction_gives_0) {
  const TemporaryFile file(picture(80, 80).file());
  *state.TransactionPrint = 1;
  *state.PageSize = TZV_PAGE_BUFFER_SIZE - 100;
  EXPECT_EQ(PrintBitmap(port, file.path(), 1), 0);
}

// ---------------------------------------------------------------------------- SaveNVBitmap

TEST_P(Image, a_list_of_one_stores_one_image) {
  const Bmp logo = picture(640, 160);
  const TemporaryFile file(logo.file());
  EXPECT_EQ(SaveNVBitmap(port, (file.path() + "|"s).c_str(), 0), 0);
  const std::string data = pictures::columns_of(logo);
  EXPECT_EQ(data.size(), 12800U);
  EXPECT_EQ(sent(), "\033@\x1cq\x01\x50\0\x14\0"s + data);
}

TEST_P(Image, images_are_stored_in_the_order_of_the_list) {
  const Bmp first = picture(9, 1), second = picture(1, 9);
  const TemporaryFile first_file(first.file()), second_file(second.file());
  const std::string list = first_file.path() + "|"s + second_file.path() + "|";
  EXPECT_EQ(SaveNVBitmap(port, list.c_str(), 0), 0);
  EXPECT_EQ(sent(), "\033@\x1cq\x02\x02\0\x01\0"s + pictures::columns_of(first) + "\x01\0\x02\0"s +
                        pictures::columns_of(second));
}

TEST_P(Image, size_and_data_are_a_write_each) {
  const Bmp dot = picture(1, 1);
  const TemporaryFile file(dot.file());
  EXPECT_EQ(SaveNVBitmap(port, (file.path() + "|"s).c_str(), 0), 0);
  EXPECT_THAT(printer.writes,
              ElementsAre("\033@", "\x1cq\x01", "\x01\0\x01\0"s, pictures::columns_of(dot)));
}

TEST_P(Image, sizes_to_store_have_16_bits) {
  const TemporaryFile file(picture(2056, 1).file());  // 257 = 0101 bytes across
  EXPECT_EQ(SaveNVBitmap(port, (file.path() + "|"s).c_str(), 0), 0);
  EXPECT_EQ(hex(sent().substr(5, 4)), "01 01 01 00");
  EXPECT_EQ(sent().size(), 2U + 3 + 4 + 2056);
}

// 60 x 50 = 3000 is too large for PrintBitmap.
TEST_P(Image, images_to_store_have_no_size_limit) {
  const TemporaryFile file(picture(480, 400).file());
  EXPECT_EQ(SaveNVBitmap(port, (file.path() + "|"s).c_str(), 0), 0);
  EXPECT_EQ(sent().size(), 2U + 3 + 4 + 24000);
}

TEST_P(Image, a_list_without_a_separator_stores_none) {
  const TemporaryFile file(picture(1, 1).file());
  for (const char* list : {"", file.path()}) {
    forget_sent();
    EXPECT_EQ(SaveNVBitmap(port, list, 0), 0);
    EXPECT_EQ(hex(sent()), "1B 40 1C 71 00");
  }
}

TEST_P(Image, what_follows_the_last_separator_is_no_name) {
  const TemporaryFile file(picture(1, 1).file());
  EXPECT_EQ(SaveNVBitmap(port, (file.path() + "|/nowhere/logo.bmp"s).c_str(), 0), 0);
  EXPECT_EQ(hex(sent().substr(0, 5)), "1B 40 1C 71 01");
}

TEST_P(Image, a_missing_file_ends_the_list_with_the_images_before_it_sent) {
  const Bmp first = picture(8, 8);
  const TemporaryFile file(first.file());
  const std::string list = file.path() + "|/nowhere/2.bmp|"s + file.path() + "|";
  StandardOutput said;
  EXPECT_EQ(SaveNVBitmap(port, list.c_str(), 0), -1);
  EXPECT_EQ(said.take(), "File Open Fail=/nowhere/2.bmp\n");
  EXPECT_EQ(sent(), "\033@\x1cq\x03\x01\0\x01\0"s + pictures::columns_of(first));
}

TEST_P(Image, an_empty_name_counts_and_fails_to_open) {
  StandardOutput said;
  EXPECT_EQ(SaveNVBitmap(port, "|", 0), -1);
  EXPECT_EQ(said.take(), "File Open Fail=\n");
  EXPECT_EQ(hex(sent()), "1B 40 1C 71 01");
}

TEST_P(Image, more_than_32_names_or_a_longer_one_than_127_is_refused_before_anything_is_sent) {
  StandardOutput said;
  std::string names;
  for (int i = 0; i < 33; ++i) names += "x|";
  EXPECT_EQ(SaveNVBitmap(port, names.c_str(), 0), -1);
  EXPECT_EQ(SaveNVBitmap(port, (std::string(128, 'x') + "|").c_str(), 0), -1);
  EXPECT_EQ(said.take(), "");
  EXPECT_EQ(sent(), "");
}

TEST_P(Image, thirty_two_images_can_be_stored) {
  const Bmp dot = picture(1, 1);
  const TemporaryFile file(dot.file());
  std::string names, expected = "\033@\x1cq\x20";
  for (int i = 0; i < 32; ++i) {
    names += file.path() + "|"s;
    expected += "\x01\0\x01\0"s + pictures::columns_of(dot);
  }
  EXPECT_EQ(SaveNVBitmap(port, names.c_str(), 0), 0);
  EXPECT_EQ(sent(), expected);
}

TEST_P(Image, storing_and_erasing_go_past_a_transaction) {
  const TemporaryFile file(picture(1, 1).file());
  *state.TransactionPrint = 1;
  EXPECT_EQ(SaveNVBitmap(port, (file.path() + "|"s).c_str(), 0), 0);
  EXPECT_EQ(DeleteNVBitmap(port), 0);
  EXPECT_EQ(state.collected(), "");
  EXPECT_EQ(sent().size(), 2U + 3 + 4 + 8 + 2);
}

TEST_P(Image, storing_and_erasing_in_an_error_state_send_nothing_and_give_minus_2) {
  for (int* flag : error_flags()) {
    *flag = 1;
    EXPECT_EQ(SaveNVBitmap(port, "/nowhere/logo.bmp|", 0), -2);
    EXPECT_EQ(DeleteNVBitmap(port), -2);
    *state.TransactionPrint = 1;
    EXPECT_EQ(SaveNVBitmap(port, "", 0), -2);
    EXPECT_EQ(DeleteNVBitmap(port), -2);
    EXPECT_EQ(state.collected(), "");
    *state.TransactionPrint = 0;
    *flag = 0;
  }
  EXPECT_EQ(sent(), "");
}

TEST_P(Image, the_image_mode_is_not_used) {
  for (const long mode : {0L, 1L, -1L}) EXPECT_EQ(SaveNVBitmap(port, "", mode), 0);
}

// -------------------------------------------------------------------------- PrintNVBitmap

TEST_P(Image, a_stored_image_is_justified_and_printed) {
  EXPECT_EQ(PrintNVBitmap(port, 2, TZV_ALIGN_RIGHT), 0);
  EXPECT_THAT(printer.writes, ElementsAre(kRight, "\x1cp\x02\x30"));
  forget_sent();
  for (const long alignment : {0L, 1L, 7L}) EXPECT_EQ(PrintNVBitmap(port, 1, alignment), 0);
  EXPECT_THAT(printer.writes, ElementsAre(kLeft, "\x1cp\x01\x30", kCentre, "\x1cp\x01\x30", kCentre,
                                          "\x1cp\x01\x30"));
}

TEST_P(Image, the_low_8_bits_of_an_image_number_count) {
  EXPECT_EQ(PrintNVBitmap(port, 0x1234, 0), 0);
  EXPECT_EQ(PrintNVBitmap(port, -1, 0), 0);
  EXPECT_EQ(hex(sent()), "1B 61 30 1C 70 34 30 1B 61 30 1C 70 FF 30");
}

TEST_P(Image, a_stored_image_at_a_position) {
  EXPECT_EQ(PrintNVBitmapXY(port, 3, 300, 10), 0);
  EXPECT_THAT(printer.writes,
              ElementsAre("\x1d}X\x2c\x01", "\x1d}Y\x0a\0"s, "\x1cp\x03\x30", "\n"));
  EXPECT_EQ(hex(sent()), "1D 7D 58 2C 01 1D 7D 59 0A 00 1C 70 03 30 0A");
}

TEST_P(Image, stored_images_are_collected_by_a_transaction) {
  *state.TransactionPrint = 1;
  EXPECT_EQ(PrintNVBitmap(port, 1, 0), 0);
  EXPECT_EQ(PrintNVBitmapXY(port, 1, 1, 2), 0);
  EXPECT_EQ(state.collected(), kLeft + "\x1cp\x01\x30\x1d}X\x01\0\x1d}Y\x02\0\x1cp\x01\x30\n"s);
  EXPECT_EQ(sent(), "");
}

TEST_P(Image, stored_images_are_handed_on_in_an_error_state_and_give_minus_2) {
  for (int* flag : error_flags()) {
    *flag = 1;
    EXPECT_EQ(PrintNVBitmap(port, 1, 0), -2);
    EXPECT_EQ(PrintNVBitmapXY(port, 1, 1, 2), -2);
    EXPECT_EQ(sent(), "") << "the write itself refuses";
    *state.TransactionPrint = 1;
    *state.PageSize = 0;
    EXPECT_EQ(PrintNVBitmap(port, 1, 0), -2);
    EXPECT_EQ(PrintNVBitmapXY(port, 1, 1, 2), -2);
    EXPECT_EQ(state.collected(), kLeft + "\x1cp\x01\x30\x1d}X\x01\0\x1d}Y\x02\0\x1cp\x01\x30\n"s);
    *state.TransactionPrint = 0;
    *flag = 0;
  }
}

TEST_P(Image, a_failed_write_of_a_stored_image_gives_0) {
  break_writes();
  EXPECT_EQ(PrintNVBitmap(port, 1, 0), 0);
}

TEST_P(Image, all_stored_images_are_erased_at_once) {
  EXPECT_EQ(DeleteNVBitmap(port), 0);
  EXPECT_EQ(hex(sent()), "1C 65");
  break_writes();
  EXPECT_EQ(DeleteNVBitmap(port), 0);
}

TEST_P(Image, operations_of_a_port_that_is_not_open_give_minus_1) {
  const TemporaryFile file(picture(1, 1).file());
  ClosePort(port);
  forget_sent();
  StandardOutput said;
  EXPECT_EQ(PrintBitmap(port, "/nowhere/logo.bmp", 0), -1);
  EXPECT_EQ(SaveNVBitmap(port, "/nowhere/logo.bmp|", 0), -1);
  EXPECT_EQ(PrintNVBitmap(port, 1, 0), -1);
  EXPECT_EQ(PrintNVBitmapXY(port, 1, 0, 0), -1);
  EXPECT_EQ(DeleteNVBitmap(port), -1);
  EXPECT_EQ(said.take(), "") << "no file is looked at";
  EXPECT_EQ(sent(), "");
}

}  // namespace
}  // namespace testkit
