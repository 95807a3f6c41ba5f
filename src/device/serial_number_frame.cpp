#include "device/serial_number_frame.h"

#include <cstring>

std::size_t build_serial_number_frame(std::string_view number, std::span<char> buffer) {
  constexpr std::size_t kChecksumStart = 3;
  constexpr char kNumberMark = '_';
  const std::size_t checksum_at = kChecksumStart + 1 + number.size();
  buffer[0] = '\x1d';
  buffer[1] = '#';
  buffer[2] = static_cast<char>(number.size() + 1);
  buffer[kChecksumStart] = kNumberMark;
  std::memcpy(buffer.data() + kChecksumStart + 1, number.data(), number.size());
  char checksum = 0;
  for (std::size_t i = kChecksumStart; i < checksum_at; ++i) {
    checksum = static_cast<char>(checksum ^ buffer[i]);
  }
  buffer[checksum_at] = checksum;
  return checksum_at + 1;
}
