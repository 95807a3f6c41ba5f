// Frames, for tests: built here a second time, from their description.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace virtual_printer {

inline std::string two_bytes(std::size_t number) {
  return {static_cast<char>(number / 256 % 256), static_cast<char>(number % 256)};
}

inline std::string framed(std::string_view job) {
  unsigned sum = 0;
  for (const char byte : job) sum += static_cast<unsigned>(static_cast<signed char>(byte));
  return "\x1b#FRAME\x01" + two_bytes(job.size()) + '\x02' + std::string(job) + '\x03' +
         two_bytes(sum) + '\x04';
}

// The last byte of the checksum is another one.
inline std::string with_wrong_checksum(std::string frame) {
  frame[frame.size() - 2] = static_cast<char>(frame[frame.size() - 2] ^ 1);
  return frame;
}

}  // namespace virtual_printer
