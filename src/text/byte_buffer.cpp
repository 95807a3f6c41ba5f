#include "text/byte_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

ByteBuffer::~ByteBuffer() {
  if (data_ != inside_) std::free(data_);
}

void ByteBuffer::append(std::size_t count, char byte) {
  char* const room = extend(count);
  if (room != nullptr) std::memset(room, byte, count);
}

bool ByteBuffer::grow(std::size_t count) {
  ok_ = ok_ && count <= limit_ - size_ && reallocate(size_ + count);
  // What does not fit is followed by nothing that would.
  room_ = ok_ ? capacity_ : size_;
  return ok_;
}

bool ByteBuffer::reallocate(std::size_t needed) {
  const std::size_t capacity = std::min(std::max(needed, capacity_ * 2), limit_);
  void* const grown = std::realloc(data_ == inside_ ? nullptr : data_, capacity);
  if (grown == nullptr) return false;
  if (data_ == inside_) std::memcpy(grown, inside_, size_);
  data_ = static_cast<char*>(grown);
  capacity_ = capacity;
  return true;
}
