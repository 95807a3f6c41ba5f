#include "image/conversion.h"

#include <cstring>

namespace {

/// A bit prints black when it is set, unless it stands for a first colour that is black.
void copy_bits(const std::uint8_t* pixels, std::size_t size, bool reverse, std::uint8_t* rows) {
  const std::uint8_t flipped = reverse ? 0xff : 0;
  for (std::size_t i = 0; i < size; ++i) rows[i] = pixels[i] ^ flipped;
}

}  // namespace

BitRows to_one_bit(const Geometry& geometry, const RGBQUAD& first_colour,
                   const std::uint8_t* pixels, std::uint8_t* buffer) {
  const auto count = static_cast<std::size_t>(geometry.rows());
  const auto stride = static_cast<std::size_t>(geometry.iRowBytes);
  PackRow* pack = bit_kernels().packer(geometry.cBits);
  if (pack == nullptr) {
    const bool reverse = (first_colour.rgbBlue | first_colour.rgbGreen | first_colour.rgbRed) == 0;
    copy_bits(pixels, stride * count, reverse, buffer);
    return {.first = buffer, .row_bytes = stride, .count = count};
  }
  const auto width = static_cast<std::size_t>(geometry.cxDib);
  const auto row_bytes = static_cast<std::size_t>(geometry.newX);
  for (std::size_t y = 0; y < count; ++y) {
    pack(pixels + y * stride, width, buffer + y * row_bytes);
  }
  return {.first = buffer, .row_bytes = row_bytes, .count = count};
}

void to_columns(const Geometry& geometry, const BitRows& rows, std::uint8_t* data) {
  // However wide a header says that its blank picture is.
  if (geometry.rows() == 0) return;
  const auto bytes = static_cast<std::size_t>(geometry.newX);
  const BitColumns columns{.first = data, .bands = static_cast<std::size_t>(geometry.newY)};
  bit_kernels().transpose(rows, bytes, columns);
  // What stands in the last byte beyond the picture's right edge is of no meaning.
  const auto width = static_cast<std::size_t>(geometry.cxDib);
  std::memset(columns.at(width, 0), 0, (8 * bytes - width) * columns.bands);
}
