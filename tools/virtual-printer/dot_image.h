// A picture in the printer's dots: each is paper or ink, nothing between.
#pragma once

#include <cstddef>
#include <vector>

namespace virtual_printer {

class DotImage {
 public:
  DotImage(int width, int height)
      : width_(width),
        height_(height),
        ink_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

  int width() const { return width_; }
  int height() const { return height_; }

  bool ink(int x, int y) const { return ink_[index(x, y)]; }
  void set_ink(int x, int y) { ink_[index(x, y)] = true; }
  void fill(int left, int top, int width, int height) {
    for (int y = top; y < top + height; ++y) {
      for (int x = left; x < left + width; ++x) set_ink(x, y);
    }
  }

  bool operator==(const DotImage&) const = default;

 private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
           static_cast<std::size_t>(x);
  }

  int width_;
  int height_;
  std::vector<bool> ink_;
};

}  // namespace virtual_printer
