#include "text/byte_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

ByteBuffer::~ByteBuffer() {
  if (data_ != inside_) std::free(data_);
}

void ByteBuffer::append(std::string_view bytes) {
  char* room = extend(bytes.size());
  if (room != nullptr) std::memcpy(room, bytes.data(), bytes.size());
}

void ByteBuffer::append(std::size_t count, char byte) {
  char* room = extend(count);
  if (room != nullptr) std::memset(room, byte, count);
}

char* ByteBuffer::extend(std::size_t count) {
  if (!ok_ || count > limit_ - size_) {
    ok_ = false;
    return nullptr;
  }
  if (count > capacity_ - size_ && !grow(size_ + count)) return nullptr;
  char* room = data_ + size_;
  size_ += count;
  return room;
}

bool ByteBuffer::grow(std::size_t needed) {
  const std::size_t capacity = std::min(std::max(needed, capacity_ * 2), limit_);
  void* grown = std::realloc(data_ == inside_ ? nullptr : data_, capacity);
  if (grown == nullptr) {
    ok_ = false;
    return false;
  }
  if (data_ == inside_) std::memcpy(grown, inside_, size_);
  data_ = static_cast<char*>(grown);
  capacity_ = capacity;
  return true;
}
