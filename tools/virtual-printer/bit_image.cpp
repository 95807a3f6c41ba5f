#include "bit_image.h"

#include "command_argument.h"

namespace virtual_printer {
namespace {

constexpr std::size_t kMostAcross = 1023;
constexpr std::size_t kMostBands = 288;

// One of the images to keep: its sizes, and where its columns stand.
struct KeptImage {
  static constexpr std::size_t kHeadLength = 4;

  KeptImage(std::string_view block, std::size_t head)
      : across(number_of(block.substr(head))),
        bands(number_of(block.substr(head + 2))),
        begin(head + kHeadLength) {}

  bool is_right() const {
    return across > 0 && across <= kMostAcross && bands > 0 && bands <= kMostBands;
  }
  std::size_t end() const { return begin + across * 8 * bands; }

  std::size_t across;
  std::size_t bands;
  std::size_t begin;
};

std::size_t value_of(char byte) {
  return static_cast<unsigned char>(byte);
}

DotImage image_of_columns(std::size_t across, std::size_t bands, std::string_view columns) {
  DotImage image(static_cast<int>(across * 8), static_cast<int>(bands * 8));
  for (int x = 0; x < image.width(); ++x) {
    for (int y = 0; y < image.height(); ++y) {
      const std::size_t byte =
          static_cast<std::size_t>(x) * bands + static_cast<std::size_t>(y / 8);
      if ((value_of(columns[byte]) >> (7 - y % 8) & 1U) != 0) image.set_ink(x, y);
    }
  }
  return image;
}

}  // namespace

std::optional<std::size_t> length_of_image(std::string_view block) {
  constexpr std::size_t kHeadLength = 2;
  if (block.size() < kHeadLength) return kHeadLength;
  const std::size_t columns = value_of(block[0]) * 8 * value_of(block[1]);
  return columns > 0 ? std::optional(kHeadLength + columns) : std::nullopt;
}

std::optional<std::size_t> length_of_images(std::string_view block) {
  std::size_t length = 1;
  if (block.empty()) return length;
  for (std::size_t left = value_of(block.front()); left > 0; --left) {
    if (block.size() < length + KeptImage::kHeadLength) return length + KeptImage::kHeadLength;
    const KeptImage image(block, length);
    length = image.end();
    if (!image.is_right() || length > kImageMemory) return std::nullopt;
  }
  return length;
}

DotImage image_in(std::string_view block) {
  return image_of_columns(value_of(block[0]), value_of(block[1]), block.substr(2));
}

std::optional<DotImage> image_in(std::string_view block, std::size_t number) {
  if (number == 0 || number > value_of(block.front())) return std::nullopt;
  std::size_t head = 1;
  while (--number > 0) head = KeptImage(block, head).end();
  const KeptImage image(block, head);
  return image_of_columns(image.across, image.bands, block.substr(image.begin));
}

DotImage enlarged(const DotImage& image, unsigned bits) {
  const int wide = (bits & 1U) != 0 ? 2 : 1;
  const int high = (bits & 2U) != 0 ? 2 : 1;
  DotImage large(image.width() * wide, image.height() * high);
  for (int y = 0; y < large.height(); ++y) {
    for (int x = 0; x < large.width(); ++x) {
      if (image.ink(x / wide, y / high)) large.set_ink(x, y);
    }
  }
  return large;
}

}  // namespace virtual_printer
