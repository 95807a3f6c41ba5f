#include "image/bmp_format.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::int64_t kLargestBuffer = std::numeric_limits<std::int32_t>::max();

constexpr bool is_depth(std::int32_t bits) {
  return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

/// Units of eight dots; a picture has at least one, whatever its height.
constexpr std::int32_t eights(std::int32_t dots) {
  return dots <= 7 ? 1 : (dots - 1) / 8 + 1;
}

/// Bytes of a row of pixels, rounded up to four as the format has it.
constexpr std::int64_t aligned_row(std::int64_t bits, std::int64_t width) {
  return (bits * width + 31) / 32 * 4;
}

}  // namespace

Measured measure(const BITMAPINFOHEADER& header, std::size_t bitsSize) {
  const std::int32_t width = header.biWidth;
  const std::int32_t height = header.biHeight;
  const std::int32_t bits = header.biBitCount;
  if (!is_depth(bits)) return {{}, BmpFault::kDepth};
  if (width <= 0) return {{}, BmpFault::kWidth};

  const std::int64_t aligned = aligned_row(bits, width);
  // Rows of 8-bit pictures are read without their padding: where the width is no multiple of four,
  // they drift. Shops have drawn their logos to fit.
  const std::int64_t stride = bits == 8 ? width : aligned;
  const std::int64_t row_length = bits == 4 || bits == 8 ? width : aligned;
  const std::int64_t padded_height = std::int64_t{8} * eights(height);
  if (row_length > kLargestBuffer / padded_height) return {{}, BmpFault::kTooLarge};
  if (stride * std::max(height, 0) > static_cast<std::int64_t>(bitsSize)) {
    return {{}, BmpFault::kRowsMissing};
  }

  return {Geometry{.cxDib = width,
                   .cyDib = height,
                   .cBits = bits,
                   .newX = eights(width),
                   .newY = eights(height),
                   .iRowBytes = static_cast<std::int32_t>(stride),
                   .tmpbitsSize = static_cast<std::size_t>(row_length * padded_height)},
          BmpFault::kNone};
}
