// The list of files in SaveNVBitmap's argument.
#pragma once

#include <optional>

inline constexpr int kMostImages = 32;
inline constexpr int kImageNameSize = 128;  ///< the terminating NUL included

struct ImageList {
  int Count = 0;
  char BitmapsList[kMostImages][kImageNameSize] = {};
};

/// Takes the names, each of which ends with '|'; what stands after the last one is none. Nothing
/// when there are too many, or one is too long.
std::optional<ImageList> parse_image_list(const char* list);
