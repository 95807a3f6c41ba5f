// Pictures as commands carry them: columns from left to right, of each its bytes from top to
// bottom, the uppermost dot on top of each. Sizes count bytes across and bands of eight dots.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "dot_image.h"

namespace virtual_printer {

// The images that the printer keeps, all together.
inline constexpr std::size_t kImageMemory = std::size_t{4} * 1024 * 1024;

// How long the block is as far as its bytes tell it; nothing when its sizes are none.
//   An image to download: across, bands, columns.
std::optional<std::size_t> length_of_image(std::string_view block);
//   Images to keep: how many; of each across and bands, two bytes each, and columns.
std::optional<std::size_t> length_of_images(std::string_view block);

// Of whole blocks; images to keep count from 1, and there may be none of that number.
DotImage image_in(std::string_view block);
std::optional<DotImage> image_in(std::string_view block, std::size_t number);

// Each dot becomes two across by bit 1, two down by bit 2.
DotImage enlarged(const DotImage& image, unsigned bits);

}  // namespace virtual_printer
