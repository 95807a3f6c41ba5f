// From a file to the image that is sent: every depth, every size around a border, every failure.
#include "image/bmp_raster.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "byte_strings.h"
#include "pictures/bmp.h"
#include "watched_libc.h"

namespace {

using namespace std::string_literals;
using pictures::Bmp;
using pictures::kBlackFirst;
using pictures::kDepths;
using pictures::kWhiteFirst;
using pictures::TemporaryFile;

/// What became of a file.
struct Loaded {
  std::optional<BmpRaster> raster;
  std::string message;  ///< what was said on standard output

  std::string data() const { return raster ? std::string(raster->data()) : "no raster"; }
};

/// Loads, and looks whether anything is left behind but the raster itself.
Loaded load(const char* path, int failing_allocation = 0) {
  Loaded loaded;
  testing::internal::CaptureStdout();
  watched::start(failing_allocation);
  loaded.raster = LoadBmpRaster(path);
  EXPECT_EQ(watched::blocks_held(), loaded.raster ? 1 : 0);
  EXPECT_EQ(watched::files_open(), 0);
  watched::stop();
  loaded.message = testing::internal::GetCapturedStdout();
  return loaded;
}

Loaded load(const Bmp& bmp, int failing_allocation = 0) {
  const TemporaryFile file(bmp.file());
  return load(file.path(), failing_allocation);
}

/// Refused, with that message; "" for none.
void expect_refused(const Bmp& bmp, const std::string& message) {
  const Loaded loaded = load(bmp);
  EXPECT_FALSE(loaded.raster.has_value());
  EXPECT_EQ(loaded.message, message);
}

/// The message for a tmpbitsSize.
std::string no_memory_for(std::size_t size) {
  return "tmpbits malloc() fail tmpbitsSize=" + std::to_string(size) + "\n";
}

// ------------------------------------------------------------------------------- the raster

TEST(BmpRaster, of_9_by_9_dots_has_32_bytes) {
  // Rows from the bottom: the last one has its last dot set, the top one its first.
  Bmp bmp{.width = 9, .height = 9, .palette = std::string(kWhiteFirst)};
  bmp.pixels = hex("00 80 00 00") + std::string(28, '\0') + hex("80 00 00 00");
  const Loaded loaded = load(bmp);
  ASSERT_TRUE(loaded.raster.has_value());
  EXPECT_EQ(loaded.raster->newX, 2);
  EXPECT_EQ(loaded.raster->newY, 2);
  EXPECT_EQ(loaded.raster->count(), 32U);
  EXPECT_THAT(loaded.data(), BytesAre(hex("80 00") + std::string(14, '\0') + hex("00 80") +
                                      std::string(14, '\0')));
  EXPECT_EQ(loaded.message, "");
}

TEST(BmpRaster, has_four_zero_bytes_in_front) {
  const Loaded loaded =
      load(Bmp{.palette = std::string(kWhiteFirst), .pixels = hex("80 00 00 00")});
  ASSERT_TRUE(loaded.raster.has_value());
  EXPECT_THAT(loaded.raster->with_start(), BytesAre(hex("00 00 00 00 80 00 00 00 00 00 00 00")));
}

TEST(BmpRaster, dots_beyond_the_right_and_lower_edges_are_white) {
  // All black, the padding of the file's rows too.
  for (const int bits : kDepths) {
    Bmp bmp{.width = 9, .height = 9, .bits = bits};
    if (bits == 1) bmp.palette = kBlackFirst;
    bmp.pixels = std::string(static_cast<std::size_t>(9 * pictures::stride(bmp)), '\0');
    EXPECT_THAT(load(bmp).data(), BytesAre(times(9, hex("ff 80")) + std::string(14, '\0'))) << bits;
  }
}

TEST(BmpRaster, smaller_than_8_dots_still_has_a_byte_and_a_band) {
  for (const int bits : kDepths) {
    Bmp bmp{.width = 3, .height = 2, .bits = bits};
    if (bits == 1) bmp.palette = kBlackFirst;
    bmp.pixels = std::string(static_cast<std::size_t>(2 * pictures::stride(bmp)), '\0');
    const Loaded loaded = load(bmp);
    ASSERT_TRUE(loaded.raster.has_value());
    EXPECT_EQ(loaded.raster->newX, 1);
    EXPECT_EQ(loaded.raster->newY, 1);
    EXPECT_THAT(loaded.data(), BytesAre(hex("c0 c0 c0 00 00 00 00 00"))) << bits;
  }
}

TEST(BmpRaster, one_bit_with_a_black_first_colour_is_inverted) {
  Bmp bmp{.width = 8, .palette = std::string(kBlackFirst), .pixels = hex("a5 00 00 00")};
  EXPECT_THAT(load(bmp).data(), BytesAre(hex("00 80 00 80 80 00 80 00")));
  // The fourth byte of a colour and the other colours are not looked at.
  bmp.palette = hex("00 00 00 ff 00 00 00 00");
  EXPECT_THAT(load(bmp).data(), BytesAre(hex("00 80 00 80 80 00 80 00")));
}

TEST(BmpRaster, one_bit_with_any_colour_in_the_first_is_sent_as_it_is) {
  for (const char* colour : {"01 00 00 00", "00 01 00 00", "00 00 01 00", "ff ff ff 00"}) {
    const Bmp bmp{
        .width = 8, .palette = hex(colour) + hex("00 00 00 00"), .pixels = hex("a5 00 00 00")};
    EXPECT_THAT(load(bmp).data(), BytesAre(hex("80 00 80 00 00 80 00 80"))) << colour;
  }
}

TEST(BmpRaster, one_bit_without_colours_counts_as_black_first) {
  const Bmp bmp{.width = 8, .pixels = hex("a5 00 00 00")};
  EXPECT_THAT(load(bmp).data(), BytesAre(hex("00 80 00 80 80 00 80 00")));
}

TEST(BmpRaster, four_bits_print_every_even_pixel_black_whatever_its_value) {
  // Pixels 0 to F, then F F to F F.
  const Bmp bmp{.width = 16,
                .height = 2,
                .bits = 4,
                .pixels = hex("ff ff ff ff ff ff ff ff 01 23 45 67 89 ab cd ef")};
  // From the top: 1111 1111 1010 1010, and 1010 1010 1010 1010.
  EXPECT_THAT(load(bmp).data(), BytesAre(hex("c0 80 c0 80 c0 80 c0 80 c0 00 c0 00 c0 00 c0 00")));
}

TEST(BmpRaster, eight_bits_are_black_up_to_127_whatever_their_colours) {
  Bmp bmp{
      .width = 4, .bits = 8, .palette = std::string(1024, '\xff'), .pixels = hex("00 7f 80 ff")};
  EXPECT_THAT(load(bmp).data(), BytesAre(hex("80 80 00 00 00 00 00 00")));
}

// Ten pixels, padded to twelve in the file: each row starts two bytes before its place.
TEST(BmpRaster, eight_bits_drift_by_the_padding) {
  const std::string lower = hex("00 ff ff ff ff ff ff ff ff ff 01 01");
  const std::string upper = hex("ff ff ff ff ff ff ff ff ff 02 03 03");
  const Bmp bmp{.width = 10, .height = 2, .bits = 8, .pixels = lower + upper};
  // The upper row as read: 01 01, then the first eight bytes of `upper`.
  EXPECT_THAT(load(bmp).data(),
              BytesAre(hex("c0 80 00 00 00 00 00 00 00 00") + std::string(6, '\0')));
}

TEST(BmpRaster, sixteen_bits) {
  // Sums of 16, 17, 35 and 0.
  const Bmp bmp{.width = 4, .bits = 16, .pixels = hex("03 09 03 0e 00 80 00 00")};
  EXPECT_THAT(load(bmp).data(), BytesAre(hex("80 00 00 80 00 00 00 00")));
}

TEST(BmpRaster, twenty_four_bits) {
  // Blue, mid-grey, white; green.
  const Bmp bmp{.width = 4, .bits = 24, .pixels = hex("ff 00 00 80 80 80 ff ff ff 00 ff 00")};
  EXPECT_THAT(load(bmp).data(), BytesAre(hex("80 80 00 00 00 00 00 00")));
}

TEST(BmpRaster, thirty_two_bits_ignore_the_fourth_byte) {
  const Bmp bmp{
      .width = 4, .bits = 32, .pixels = hex("ff 00 00 00 80 80 80 ff ff ff ff 00 ff ff ff ff")};
  EXPECT_THAT(load(bmp).data(), BytesAre(hex("80 80 00 00 00 00 00 00")));
}

TEST(BmpRaster, with_a_negative_height_is_blank_and_one_band_high) {
  for (const int bits : kDepths) {
    for (const int height : {-1, -8, -20}) {
      const Bmp bmp{.width = 17, .height = height, .bits = bits, .pixels = std::string(2000, '\0')};
      const Loaded loaded = load(bmp);
      ASSERT_TRUE(loaded.raster.has_value());
      EXPECT_EQ(loaded.raster->newX, 3);
      EXPECT_EQ(loaded.raster->newY, 1);
      EXPECT_THAT(loaded.data(), BytesAre(std::string(24, '\0')));
    }
  }
}

// A file of some bytes can say that it is so wide.
TEST(BmpRaster, however_wide_that_is_blank_touches_no_memory) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizers' calloc() writes its zeros";
#endif
  rusage before{}, after{};
  getrusage(RUSAGE_SELF, &before);
  const Loaded loaded = load(Bmp{.width = 100'000'000, .height = -1, .pixels = "x"});
  getrusage(RUSAGE_SELF, &after);
  ASSERT_TRUE(loaded.raster.has_value());
  EXPECT_EQ(loaded.raster->count(), 100'000'000U);
  EXPECT_LT(after.ru_minflt - before.ru_minflt, 1000);
}

TEST(BmpRaster, with_a_height_of_0_is_blank_and_one_band_high) {
  const Bmp bmp{.width = 8, .height = 0, .bits = 24, .pixels = "x"};
  EXPECT_THAT(load(bmp).data(), BytesAre(std::string(8, '\0')));
}

TEST(BmpRaster, pixels_follow_the_info_block_and_more_is_not_read) {
  Bmp bmp{
      .width = 8, .palette = std::string(kWhiteFirst) + "more colours", .pixels = "\xa5\0\0\0"s};
  const TemporaryFile file(bmp.file() + "what follows");
  EXPECT_THAT(load(file.path()).data(), BytesAre(hex("80 00 80 00 00 80 00 80")));
}

TEST(BmpRaster, compression_planes_and_sizes_are_taken_on_trust) {
  std::string file = Bmp{.width = 4, .bits = 8, .pixels = hex("00 7f 80 ff")}.file();
  for (const std::size_t untold : {6U, 9U, 14U, 17U, 26U, 30U, 34U, 38U, 42U, 46U, 50U, 53U}) {
    file[untold] = '\xff';
  }
  const TemporaryFile changed(file);
  EXPECT_THAT(load(changed.path()).data(), BytesAre(hex("80 80 00 00 00 00 00 00")));
}

class EveryDepth : public testing::TestWithParam<int> {
 protected:
  std::mt19937 random_{static_cast<unsigned>(GetParam())};
};
INSTANTIATE_TEST_SUITE_P(bits, EveryDepth, testing::ValuesIn(kDepths),
                         testing::PrintToStringParamName());

TEST_P(EveryDepth, prints_each_dot_of_every_size) {
  for (int width = 1; width <= 33; ++width) {
    for (const int height : {1, 2, 7, 8, 9, 15, 16, 17, 33}) {
      for (const std::string_view palette : {kBlackFirst, kWhiteFirst}) {
        const Bmp bmp = pictures::random_bmp(width, height, GetParam(), palette, random_);
        const Loaded loaded = load(bmp);
        ASSERT_THAT(loaded.data(), BytesAre(pictures::columns_of(bmp))) << width << 'x' << height;
        ASSERT_EQ(loaded.raster->newX, pictures::eights(width));
        ASSERT_EQ(loaded.raster->newY, pictures::eights(height));
      }
    }
  }
}

TEST_P(EveryDepth, prints_each_dot_of_large_pictures) {
  for (const auto& [width, height] : {std::pair{127, 127}, {128, 128}, {129, 144}, {300, 261}}) {
    const Bmp bmp = pictures::random_bmp(width, height, GetParam(), kWhiteFirst, random_);
    ASSERT_THAT(load(bmp).data(), BytesAre(pictures::columns_of(bmp))) << width << 'x' << height;
  }
}

// --------------------------------------------------------------------------- what is refused

TEST(BmpFile, that_cannot_be_opened) {
  const Loaded loaded = load("/nowhere/logo.bmp");
  EXPECT_FALSE(loaded.raster.has_value());
  EXPECT_EQ(loaded.message, "File Open Fail=/nowhere/logo.bmp\n");
}

TEST(BmpFile, that_is_empty) {
  const TemporaryFile file("");
  EXPECT_EQ(load(file.path()).message, "bitmap file header malloc() fail\n");
  EXPECT_FALSE(load("/dev/null").raster.has_value());
}

TEST(BmpFile, that_is_a_folder_reads_like_an_empty_one) {
  EXPECT_EQ(load("/tmp").message, "bitmap file header malloc() fail\n");
}

TEST(BmpFile, of_another_type) {
  for (const char* type : {"BA", "MB", "bm", "P4", "\0\0"}) {
    expect_refused(Bmp{.pixels = hex("80 00 00 00"), .type = std::string(type, 2)},
                   "Not Bitmap file\n");
  }
}

/// What is said of a file that ends after `length` bytes. A short header is not noticed: what it
/// lacks is zero, and an offset below 54 is refused without a word.
std::string truncation_message(std::size_t length, const std::string& whole,
                               std::size_t pixels_at) {
  if (length == 0) return "bitmap file header malloc() fail\n";
  if (length == 1) return "Not Bitmap file\n";
  const bool low_byte_will_do = static_cast<unsigned char>(whole[10]) >= 54;
  if (length < 11 || (length == 11 && !low_byte_will_do)) return "";
  return length < pixels_at ? "size check error\n" : "";
}

TEST_P(EveryDepth, a_file_cut_off_anywhere_is_refused) {
  const std::string palettes[] = {
      std::string(kBlackFirst), std::string(64, 'c'), std::string(1024, 'c'), "", "", ""};
  std::mt19937 random(7);
  Bmp bmp = pictures::random_bmp(9, 3, GetParam(), "", random);
  bmp.palette = palettes[std::find(std::begin(kDepths), std::end(kDepths), GetParam()) - kDepths];
  const std::string whole = bmp.file();
  const auto pixels_at = static_cast<std::size_t>(bmp.pixels_at());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const TemporaryFile file(std::string_view(whole).substr(0, length));
    const Loaded loaded = load(file.path());
    ASSERT_FALSE(loaded.raster.has_value()) << length;
    ASSERT_EQ(loaded.message, truncation_message(length, whole, pixels_at)) << length;
  }
  EXPECT_TRUE(load(bmp).raster.has_value());
}

TEST(BmpFile, whose_info_block_is_cut_off) {
  const TemporaryFile file(Bmp{.palette = std::string(kBlackFirst)}.file().substr(0, 61));
  EXPECT_EQ(load(file.path()).message, "size check error\n");
}

TEST(BmpFile, whose_pixels_are_cut_off) {
  const Bmp bmp{.palette = std::string(kBlackFirst), .pixels = hex("80 00 00 00"), .size = 67};
  expect_refused(bmp, "");
}

TEST(BmpFile, without_pixels) {
  expect_refused(Bmp{.height = -1, .palette = std::string(kBlackFirst)}, "");
}

TEST(BmpFile, with_fewer_pixels_than_its_rows_need) {
  expect_refused(Bmp{.width = 33, .height = 2, .pixels = std::string(15, 'x')}, "");
}

TEST(BmpFile, of_an_unknown_depth) {
  for (const int bits : {0, 2, 3, 5, 15, 23, 25, 33, 64, 65535}) {
    expect_refused(Bmp{.bits = bits, .pixels = std::string(64, 'x')}, "");
  }
}

TEST(BmpFile, with_a_width_of_0_or_below) {
  for (const int width : {0, -1, -2147483647 - 1}) {
    expect_refused(Bmp{.width = width, .bits = 24, .pixels = std::string(64, 'x')}, "");
  }
}

TEST(BmpFile, whose_offset_lies_in_the_headers_or_beyond_its_size) {
  for (const int offset : {0, 13, 14, 53, 119}) {
    expect_refused(Bmp{.bits = 24, .pixels = std::string(64, 'x'), .offset = offset, .size = 118},
                   "");
  }
  for (const std::int64_t offset : {0x7fffffffLL, 0x80000000LL, 0xffffffffLL}) {
    expect_refused(Bmp{.bits = 24, .pixels = std::string(64, 'x'), .offset = offset, .size = 118},
                   "");
  }
}

TEST(BmpFile, that_claims_colours_beyond_all_memory) {
  for (const std::int64_t offset : {0x8000000eLL, 0xfffffff0LL}) {
    expect_refused(Bmp{.pixels = "x", .offset = offset, .size = 0xffffffff},
                   "bitmap info malloc() fail\n");
  }
}

TEST(BmpFile, that_claims_pixels_beyond_all_memory) {
  for (const std::int64_t size : {0x80000000LL + 54, 0xffffffffLL}) {
    expect_refused(Bmp{.pixels = "x", .size = size}, "pBit Malloc() fail\n");
  }
}

TEST(BmpFile, whose_dimensions_exceed_31_bits) {
  for (const int bits : kDepths) {
    expect_refused(Bmp{.width = 65536, .height = 65536, .bits = bits, .pixels = "x"}, "");
    expect_refused(Bmp{.width = 2147483647, .height = 8, .bits = bits, .pixels = "x"}, "");
    expect_refused(Bmp{.width = 8, .height = 2147483647, .bits = bits, .pixels = "x"}, "");
  }
}

TEST(BmpFile, for_which_memory_is_short) {
  // Rows of 28 bytes for 24 rows.
  const Bmp bmp{.width = 9, .height = 17, .bits = 24, .pixels = std::string(476, '\0')};
  const std::string messages[] = {"bitmap info malloc() fail\n", "pBit Malloc() fail\n",
                                  no_memory_for(672), ""};
  const TemporaryFile file(bmp.file());
  int failing = 0;
  for (const std::string& message : messages) {
    // The stream's own memory comes from libc, past the count.
    const Loaded loaded = load(file.path(), ++failing);
    EXPECT_FALSE(loaded.raster.has_value()) << failing;
    EXPECT_EQ(loaded.message, message) << failing;
  }
  EXPECT_TRUE(load(file.path(), ++failing).raster.has_value());
}

// Whatever the headers say, nothing outside of the buffers is touched: a sanitizer would tell.
TEST(BmpFile, with_any_bytes_in_its_headers) {
  std::mt19937 random(11);
  const std::string valid = pictures::random_bmp(20, 5, 8, std::string(1024, 'c'), random).file();
  for (int i = 0; i < 3000; ++i) {
    std::string file = valid;
    for (int changes = 1 + static_cast<int>(random() % 4); changes > 0; --changes) {
      file[2 + random() % 52] = static_cast<char>(random());
    }
    file[28] = static_cast<char>(kDepths[random() % 6]);
    // Sizes that memory could hold, most of the time.
    if (i % 8 != 0) file[5] = file[13] = file[4] = file[12] = file[21] = file[25] = 0;
    const TemporaryFile changed(file);
    const Loaded loaded = load(changed.path());
    if (loaded.raster) {
      EXPECT_EQ(loaded.data().size(), loaded.raster->count());
    }
  }
}

// ------------------------------------------------------------------------------- the faults

TEST(LoadBmp, says_what_is_wrong_to_its_caller_alone) {
  const Bmp good{.pixels = hex("80 00 00 00")};
  Bmp no_bmp = good, offset = good, headers_cut = good, pixels_cut = good, depth = good;
  no_bmp.type = "PK";
  offset.offset = 53;
  headers_cut.offset = 60;
  headers_cut.size = 100;
  pixels_cut.size = 59;
  depth.bits = 2;
  const std::pair<std::string, BmpFault> rows[] = {
      {good.file(), BmpFault::kNone},
      {"", BmpFault::kEmpty},
      {no_bmp.file(), BmpFault::kNoBmp},
      {offset.file(), BmpFault::kPixelOffset},
      {headers_cut.file(), BmpFault::kHeadersCut},
      {pixels_cut.file(), BmpFault::kPixelsCut},
      {depth.file(), BmpFault::kDepth},
  };
  testing::internal::CaptureStdout();
  for (const auto& [bytes, fault] : rows) {
    const TemporaryFile file(bytes);
    const LoadedBmp loaded = load_bmp(file.path());
    EXPECT_EQ(loaded.fault, fault);
    EXPECT_EQ(loaded.raster.has_value(), fault == BmpFault::kNone);
  }
  EXPECT_EQ(load_bmp("/no/such/file").fault, BmpFault::kCannotOpen);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
