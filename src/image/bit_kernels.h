// The inner loops of the conversion: pixels -> one-bit rows -> columns. Written for every machine,
// and once more for the vector instructions that nearly every x86 has.
#pragma once

#include <cstddef>
#include <cstdint>

/// Turns a row of `width` pixels into bits, the leftmost pixel in the most significant bit of the
/// first byte, 1 for black. Reads exactly the row's pixels, writes `width` / 8 bytes, rounded up;
/// bits beyond the width are of no meaning.
using PackRow = void(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits);

/// One-bit rows in a file's order: the picture's lowest row comes first.
struct BitRows {
  const std::uint8_t* first;
  std::size_t row_bytes;
  std::size_t count;

  const std::uint8_t* from_top(std::size_t y) const { return first + (count - 1 - y) * row_bytes; }
};

/// Columns of dots from left to right, each `bands` bytes from top to bottom with the uppermost
/// dot in the most significant bit.
struct BitColumns {
  std::uint8_t* first;
  std::size_t bands;

  std::uint8_t* at(std::size_t x, std::size_t band) const { return first + x * bands + band; }
};

/// Turns the first `bytes` bytes of every row into 8 x `bytes` columns; dots below the last row are
/// white. There are at most 8 x `columns.bands` rows.
using Transpose = void(const BitRows& rows, std::size_t bytes, const BitColumns& columns);

struct BitKernels {
  PackRow& pack4;
  PackRow& pack8;
  PackRow& pack16;
  PackRow& pack24;
  PackRow& pack32;
  Transpose& transpose;

  /// The one for that many bits per pixel; null for one bit, which needs no packing.
  PackRow* packer(int bits) const;
};

extern const BitKernels kPlainKernels;

/// The fastest that the processor runs.
const BitKernels& bit_kernels();

/// Those with vector instructions; null when the processor has none of ours.
const BitKernels* vector_kernels();

/// The part of a transposition that lies within these bytes of a row and these bands.
void transpose_part(const BitRows& rows, std::size_t byte, std::size_t end_byte, std::size_t band,
                    std::size_t end_band, const BitColumns& columns);
