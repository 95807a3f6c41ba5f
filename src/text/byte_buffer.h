// Bytes on their way to the printer, in a buffer that grows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

/// Collects up to a limit of bytes. A receipt's text fits the room inside the object; only longer
/// output takes memory. Once the limit is passed or memory is short, `ok()` stays false.
class ByteBuffer {
 public:
  explicit ByteBuffer(std::size_t limit) : limit_(limit), room_(std::min(limit, kRoomInside)) {}
  ~ByteBuffer();
  ByteBuffer(const ByteBuffer&) = delete;
  ByteBuffer& operator=(const ByteBuffer&) = delete;

  void append(std::string_view bytes) {
    char* const room = extend(bytes.size());
    if (room != nullptr) std::memcpy(room, bytes.data(), bytes.size());
  }
  void append(std::size_t count, char byte);
  void append(char byte) { append({&byte, 1}); }

  bool ok() const { return ok_; }
  std::string_view bytes() const { return {data_, size_}; }

 private:
  /// Makes room for so many more bytes and returns where they go; null when there is none.
  char* extend(std::size_t count) {
    if (count > room_ - size_ && !grow(count)) return nullptr;
    char* const room = data_ + size_;
    size_ += count;
    return room;
  }
  bool grow(std::size_t count);
  bool reallocate(std::size_t needed);

  static constexpr std::size_t kRoomInside = 16384;

  std::size_t limit_;
  std::size_t size_ = 0;
  std::size_t room_;  ///< bytes that fit as it is; `size_` once something did not
  std::size_t capacity_ = kRoomInside;
  bool ok_ = true;
  char* data_ = inside_;
  char inside_[kRoomInside];
};
