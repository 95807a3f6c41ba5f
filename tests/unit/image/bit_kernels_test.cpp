// The plain loops against what each pixel says; those with vector instructions against the plain.
#include "image/bit_kernels.h"

#include <gtest/gtest.h>

#include <ostream>
#include <random>
#include <vector>

#include "byte_strings.h"
#include "image/pixels.h"

namespace {

using Row = std::vector<std::uint8_t>;

/// Exactly so many bytes, so that a sanitizer sees one that is read beyond.
Row random_row(std::size_t size, std::mt19937& random) {
  Row row(size);
  for (std::uint8_t& byte : row) byte = static_cast<std::uint8_t>(random());
  return row;
}

/// What is packed of a row; bits beyond the width cleared.
Row packed(PackRow& pack, const Row& pixels, std::size_t width) {
  Row bits((width + 7) / 8, 0xee);
  pack(pixels.data(), width, bits.data());
  if (width % 8 != 0) bits.back() &= static_cast<std::uint8_t>(0xff00U >> (width % 8));
  return bits;
}

struct Packer {
  const char* name;
  int bits;
  bool (*is_black)(const Row&, std::size_t x);
};

void PrintTo(const Packer& packer, std::ostream* out) {
  *out << packer.name;
}

const Packer kPackers[] = {
    {"of_4_bits", 4,
     [](const Row& row, std::size_t x) { return x % 2 == 0 || is_black_low_nibble(row[x / 2]); }},
    {"of_8_bits", 8, [](const Row& row, std::size_t x) { return is_black_grey(row[x]); }},
    {"of_16_bits", 16,
     [](const Row& row, std::size_t x) { return is_black_16(row[2 * x], row[2 * x + 1]); }},
    {"of_24_bits", 24,
     [](const Row& row, std::size_t x) {
       return is_black_rgb(row[3 * x], row[3 * x + 1], row[3 * x + 2]);
     }},
    {"of_32_bits", 32,
     [](const Row& row, std::size_t x) {
       return is_black_rgb(row[4 * x], row[4 * x + 1], row[4 * x + 2]);
     }},
};

class Packing : public testing::TestWithParam<Packer> {
 protected:
  Row random_pixels(std::size_t width) {
    return random_row((width * static_cast<std::size_t>(GetParam().bits) + 7) / 8, random_);
  }

 private:
  std::mt19937 random_{1};
};
INSTANTIATE_TEST_SUITE_P(rows, Packing, testing::ValuesIn(kPackers), RowName());

TEST_P(Packing, leftmost_pixel_is_the_most_significant_bit) {
  for (std::size_t width = 0; width <= 40; ++width) {
    const Row pixels = random_pixels(width);
    Row expected((width + 7) / 8);
    for (std::size_t x = 0; x < width; ++x) {
      if (GetParam().is_black(pixels, x)) {
        expected[x / 8] = static_cast<std::uint8_t>(expected[x / 8] | 0x80U >> (x % 8));
      }
    }
    EXPECT_EQ(packed(*kPlainKernels.packer(GetParam().bits), pixels, width), expected) << width;
  }
}

TEST_P(Packing, with_vector_instructions_is_the_same) {
  if (vector_kernels() == nullptr) GTEST_SKIP() << "a processor without them";
  for (std::size_t width = 0; width <= 200; ++width) {
    for (int i = 0; i < 20; ++i) {
      const Row pixels = random_pixels(width);
      ASSERT_EQ(packed(*vector_kernels()->packer(GetParam().bits), pixels, width),
                packed(*kPlainKernels.packer(GetParam().bits), pixels, width))
          << width;
    }
  }
}

/// A row of all colours whose sum is next to the border, as 24- or 32-bit pixels.
Row border_colours(std::size_t pixel_bytes) {
  Row row;
  for (int b0 = 0; b0 < 256; ++b0) {
    for (int b1 = 0; b1 < 256; ++b1) {
      const int b2 = (128000 - 114 * b0 - 587 * b1) / 299;
      for (int near = b2 - 1; near <= b2 + 1; ++near) {
        if (near < 0 || near > 255) continue;
        for (const int byte : {b0, b1, near}) row.push_back(static_cast<std::uint8_t>(byte));
        row.resize(row.size() + pixel_bytes - 3, 0xff);
      }
    }
  }
  return row;
}

TEST(PackingColours, with_vector_instructions_is_the_same_at_the_border) {
  if (vector_kernels() == nullptr) GTEST_SKIP() << "a processor without them";
  const Row three = border_colours(3), four = border_colours(4);
  const std::size_t width = three.size() / 3;
  EXPECT_GT(width, 20000U);
  EXPECT_EQ(packed(vector_kernels()->pack24, three, width),
            packed(kPlainKernels.pack24, three, width));
  EXPECT_EQ(packed(vector_kernels()->pack32, four, width),
            packed(kPlainKernels.pack32, four, width));
}

TEST(Packing16, with_vector_instructions_is_the_same_for_every_pixel) {
  if (vector_kernels() == nullptr) GTEST_SKIP() << "a processor without them";
  Row pixels;
  for (unsigned pixel = 0; pixel < 65536; ++pixel) {
    pixels.push_back(static_cast<std::uint8_t>(pixel & 0xff));
    pixels.push_back(static_cast<std::uint8_t>(pixel >> 8));
  }
  EXPECT_EQ(packed(vector_kernels()->pack16, pixels, 65536),
            packed(kPlainKernels.pack16, pixels, 65536));
}

// --------------------------------------------------------------------------- transposition

struct Size {
  std::size_t bytes, rows;
};

/// The columns of random rows, which are `spare` bytes longer than what is transposed.
Row transposed(Transpose& transpose, const Row& pixels, Size size, std::size_t row_bytes) {
  const std::size_t bands = (std::max<std::size_t>(size.rows, 1) + 7) / 8;
  Row columns(8 * size.bytes * bands, 0xee);
  transpose({.first = pixels.data(), .row_bytes = row_bytes, .count = size.rows}, size.bytes,
            {.first = columns.data(), .bands = bands});
  return columns;
}

TEST(Transposition, of_one_row_has_its_dots_on_top) {
  // A5 = 10100101.
  const Row columns = transposed(kPlainKernels.transpose, {0xa5}, {1, 1}, 1);
  EXPECT_EQ(columns, (Row{0x80, 0, 0x80, 0, 0, 0x80, 0, 0x80}));
}

TEST(Transposition, takes_the_last_row_first) {
  // From the top: 80, 40, 01.
  const Row columns = transposed(kPlainKernels.transpose, {0x01, 0x40, 0x80}, {1, 3}, 1);
  EXPECT_EQ(columns, (Row{0x80, 0x40, 0, 0, 0, 0, 0, 0x20}));
}

TEST(Transposition, of_nothing_is_white) {
  EXPECT_EQ(transposed(kPlainKernels.transpose, {}, {1, 0}, 1), Row(8));
}

TEST(Transposition, puts_each_dot_where_it_belongs) {
  std::mt19937 random(2);
  for (std::size_t rows = 1; rows <= 26; ++rows) {
    for (std::size_t bytes = 1; bytes <= 3; ++bytes) {
      const std::size_t row_bytes = bytes + rows % 2, bands = (rows + 7) / 8;
      const Row pixels = random_row(rows * row_bytes, random);
      const Row columns = transposed(kPlainKernels.transpose, pixels, {bytes, rows}, row_bytes);
      for (std::size_t x = 0; x < 8 * bytes; ++x) {
        for (std::size_t y = 0; y < 8 * bands; ++y) {
          const bool black =
              y < rows && ((pixels[(rows - 1 - y) * row_bytes + x / 8] << (x % 8)) & 0x80) != 0;
          ASSERT_EQ((columns[x * bands + y / 8] << (y % 8) & 0x80) != 0, black)
              << x << ' ' << y << " of " << bytes << " bytes, " << rows << " rows";
        }
      }
    }
  }
}

TEST(Transposition, with_vector_instructions_is_the_same) {
  if (vector_kernels() == nullptr) GTEST_SKIP() << "a processor without them";
  std::mt19937 random(3);
  for (std::size_t rows = 0; rows <= 70; ++rows) {
    for (std::size_t bytes = 1; bytes <= 50; ++bytes) {
      const std::size_t row_bytes = bytes + rows % 4;
      const Row pixels = random_row(rows * row_bytes, random);
      ASSERT_EQ(transposed(vector_kernels()->transpose, pixels, {bytes, rows}, row_bytes),
                transposed(kPlainKernels.transpose, pixels, {bytes, rows}, row_bytes))
          << bytes << " bytes, " << rows << " rows";
    }
  }
}

}  // namespace
