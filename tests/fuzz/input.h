// An input taken apart from the front. What is used up is 0 or empty, so every input means
// something and a seed can be written by hand.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fuzz {

class Input {
 public:
  Input(const uint8_t* data, std::size_t size)
      : left_(static_cast<const char*>(static_cast<const void*>(data)), size) {}

  bool empty() const { return left_.empty(); }

  uint8_t byte() {
    const std::string_view taken = take(1);
    return taken.empty() ? uint8_t{0} : static_cast<uint8_t>(taken[0]);
  }

  bool flag() { return byte() % 2 != 0; }

  /// One of so many, from 0 on.
  std::size_t choice(std::size_t count) { return byte() % count; }

  /// Mostly small: one byte is its own number below E0, the others announce two or four that
  /// follow.
  int32_t number() {
    constexpr uint8_t kTwo = 0xe0;
    constexpr uint8_t kFour = 0xf0;
    const uint8_t first = byte();
    if (first < kTwo) return first;
    if (first < kFour) return static_cast<int16_t>(little_endian(2));
    return static_cast<int32_t>(little_endian(4));
  }

  /// A length and as many bytes.
  std::string piece() { return std::string(take(byte())); }

  std::string_view rest() { return take(left_.size()); }

 private:
  std::string_view take(std::size_t count) {
    const std::string_view taken = left_.substr(0, std::min(count, left_.size()));
    left_.remove_prefix(taken.size());
    return taken;
  }

  uint32_t little_endian(int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) value |= static_cast<uint32_t>(byte()) << (8 * i);
    return value;
  }

  std::string_view left_;
};

/// What a C string of these bytes holds.
inline std::string up_to_nul(std::string_view bytes) {
  return std::string(bytes.substr(0, bytes.find('\0')));
}

}  // namespace fuzz
