#include "image/image_list.h"

#include <cstring>

std::optional<ImageList> parse_image_list(const char* list) {
  constexpr char Token = '|';
  ImageList images;
  while (const char* end = std::strchr(list, Token)) {
    const auto length = static_cast<std::size_t>(end - list);
    if (images.Count == kMostImages || length >= kImageNameSize) return std::nullopt;
    std::memcpy(images.BitmapsList[images.Count++], list, length);
    list = end + 1;
  }
  return images;
}
