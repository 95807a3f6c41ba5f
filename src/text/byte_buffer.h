// Bytes on their way to the printer, in a buffer that grows.
#pragma once

#include <cstddef>
#include <string_view>

/// Collects up to a limit of bytes. A receipt's text fits the room inside the object; only longer
/// output takes memory. Once the limit is passed or memory is short, `ok()` stays false.
class ByteBuffer {
 public:
  explicit ByteBuffer(std::size_t limit) : limit_(limit) {}
  ~ByteBuffer();
  ByteBuffer(const ByteBuffer&) = delete;
  ByteBuffer& operator=(const ByteBuffer&) = delete;

  void append(std::string_view bytes);
  void append(std::size_t count, char byte);
  void append(char byte) { append(1, byte); }

  bool ok() const { return ok_; }
  std::string_view bytes() const { return {data_, size_}; }

 private:
  /// Makes room for so many more bytes and returns where they go; null when there is none.
  char* extend(std::size_t count);
  bool grow(std::size_t needed);

  static constexpr std::size_t kRoomInside = 16384;

  std::size_t limit_;
  std::size_t size_ = 0;
  std::size_t capacity_ = kRoomInside;
  bool ok_ = true;
  char* data_ = inside_;
  char inside_[kRoomInside];
};
