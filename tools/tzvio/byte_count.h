// How many bytes the library has handed to the line. It calls write() and send() through the
// ordinary functions of the C library, so the program stands in front of them and counts.
#pragma once

#include <cstddef>
#include <functional>

namespace cli {

// Counts what this thread writes, while it lives; the monitor's thread is another. One at a time.
class ByteCount {
 public:
  using Observer = std::function<void(std::size_t)>;

  explicit ByteCount(Observer observer = {});
  ~ByteCount();
  ByteCount(const ByteCount&) = delete;
  ByteCount& operator=(const ByteCount&) = delete;

  void add(std::size_t bytes);
  std::size_t bytes() const { return bytes_; }

 private:
  Observer observer_;
  std::size_t bytes_ = 0;
};

}  // namespace cli
