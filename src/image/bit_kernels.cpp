#include "image/bit_kernels.h"

#include <algorithm>

#include "image/pixels.h"

namespace {

/// Packs the bits that `is_black` gives for the pixels 0 to `width` - 1.
template <typename IsBlack>
void pack_row(std::size_t width, std::uint8_t* bits, IsBlack is_black) {
  for (std::size_t x = 0; x < width; x += 8) {
    const std::size_t end = std::min(x + 8, width);
    unsigned byte = 0;
    for (std::size_t i = x; i < end; ++i) byte |= (is_black(i) ? 0x80U : 0U) >> (i - x);
    bits[x / 8] = static_cast<std::uint8_t>(byte);
  }
}

void pack4(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits) {
  pack_row(width, bits,
           [=](std::size_t x) { return x % 2 == 0 || is_black_low_nibble(pixels[x / 2]); });
}

void pack8(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits) {
  pack_row(width, bits, [=](std::size_t x) { return is_black_grey(pixels[x]); });
}

void pack16(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits) {
  pack_row(width, bits,
           [=](std::size_t x) { return is_black_16(pixels[2 * x], pixels[2 * x + 1]); });
}

template <std::size_t pixel_bytes>
void pack_rgb(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits) {
  pack_row(width, bits, [=](std::size_t x) {
    const std::uint8_t* pixel = pixels + pixel_bytes * x;
    return is_black_rgb(pixel[0], pixel[1], pixel[2]);
  });
}

/// Swaps the bits of `mask` with those `distance` places above them.
constexpr std::uint64_t swap_bits(std::uint64_t block, std::uint64_t mask, int distance) {
  const std::uint64_t differing = (block ^ (block >> distance)) & mask;
  return block ^ differing ^ (differing << distance);
}

/// Transposes eight rows of eight dots, the first in the most significant byte, in three steps:
/// dots within squares of two, those within squares of four, and those.
constexpr std::uint64_t transpose_block(std::uint64_t block) {
  block = swap_bits(block, 0x00aa00aa00aa00aa, 7);
  block = swap_bits(block, 0x0000cccc0000cccc, 14);
  return swap_bits(block, 0x00000000f0f0f0f0, 28);
}
static_assert(transpose_block(0xff00000000000000) == 0x8080808080808080);
static_assert(transpose_block(0x0102040810204080) == 0x0102040810204080);
static_assert(transpose_block(0x4000000000000001) == 0x0080000000000001);

void transpose(const BitRows& rows, std::size_t bytes, const BitColumns& columns) {
  transpose_part(rows, 0, bytes, 0, columns.bands, columns);
}

}  // namespace

void transpose_part(const BitRows& rows, std::size_t byte, std::size_t end_byte, std::size_t band,
                    std::size_t end_band, const BitColumns& columns) {
  for (; byte < end_byte; ++byte) {
    for (std::size_t b = band; b < end_band; ++b) {
      std::uint64_t block = 0;
      const std::size_t end = std::min(8 * b + 8, rows.count);
      for (std::size_t y = 8 * b; y < end; ++y) {
        block |= std::uint64_t{rows.from_top(y)[byte]} << (56 - y % 8 * 8);
      }
      block = transpose_block(block);
      for (std::size_t x = 0; x < 8; ++x) {
        *columns.at(8 * byte + x, b) = static_cast<std::uint8_t>(block >> (56 - 8 * x));
      }
    }
  }
}

const BitKernels kPlainKernels{pack4, pack8, pack16, pack_rgb<3>, pack_rgb<4>, transpose};

PackRow* BitKernels::packer(int bits) const {
  switch (bits) {
    case 4:
      return pack4;
    case 8:
      return pack8;
    case 16:
      return pack16;
    case 24:
      return pack24;
    case 32:
      return pack32;
    default:
      return nullptr;
  }
}

const BitKernels& bit_kernels() {
  const BitKernels* vector = vector_kernels();
  return vector != nullptr ? *vector : kPlainKernels;
}
