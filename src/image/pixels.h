// Which pixels print black.
#pragma once

#include <cstdint>

/// An 8-bit pixel, or a shade of grey.
constexpr bool is_black_grey(std::uint8_t level) {
  return level <= 127;
}

/// The second pixel of a 4-bit pair. The first one, in the high nibble, is always black: the nibble
/// counts as signed, so none exceeds the threshold, and logos were drawn for that.
constexpr bool is_black_low_nibble(std::uint8_t pair) {
  return (pair & 0x0f) <= 7;
}

/// A 16-bit pixel: blue in the upper five bits of the first byte, red in the lower five of the
/// second, and green between them; the green's lower bits come from the second byte as if that were
/// signed, and the red weighs 0.229, not 0.299. Each product is cut off by itself. Logos print like
/// that, and must go on to.
constexpr bool is_black_16(std::uint8_t first, std::uint8_t second) {
  const int blue = first >> 3;
  const int low_green = second >> 5;
  const int green = ((first * 8) | low_green | (low_green >= 4 ? 0x3c : 0)) & 0x3f;
  const int red = second & 0x1f;
  return blue * 114 / 1000 + green * 587 / 1000 + red * 229 / 1000 <= 16;
}

/// A 24- or 32-bit pixel: black when b0 x 0.114 + b1 x 0.587 + b2 x 0.299 is below 128, the weights
/// being IEEE doubles and the sum exact. In whole numbers the border is black: the sum of the three
/// doubles' errors falls short of 128 there.
constexpr bool is_black_rgb(std::uint8_t b0, std::uint8_t b1, std::uint8_t b2) {
  return 114 * b0 + 587 * b1 + 299 * b2 <= 128000;
}
