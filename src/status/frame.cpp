#include "status/frame.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr std::string_view kFrameStart = "\033#FRAME";
constexpr char kLengthMark = 0x01;
constexpr char kJobMark = 0x02;
constexpr char kChecksumMark = 0x03;
constexpr char kFrameEnd = 0x04;

/// The sum of the bytes, each taken as signed, modulo 65536.
uint16_t checksum(std::string_view job) {
  uint32_t sum = 0;
  for (const char byte : job) sum += static_cast<uint32_t>(static_cast<signed char>(byte));
  return static_cast<uint16_t>(sum);
}

char* put(char* to, std::string_view bytes) {
  std::memcpy(to, bytes.data(), bytes.size());
  return to + bytes.size();
}

char* put_word(char* to, char mark, std::size_t word, char end) {
  *to++ = mark;
  *to++ = static_cast<char>(word >> 8);
  *to++ = static_cast<char>(word);
  *to++ = end;
  return to;
}

}  // namespace

std::size_t build_frame(std::string_view job, std::span<char> buffer) {
  char* to = put(buffer.data(), kFrameStart);
  to = put_word(to, kLengthMark, job.size(), kJobMark);
  to = put(to, job);
  to = put_word(to, kChecksumMark, checksum(job), kFrameEnd);
  return static_cast<std::size_t>(to - buffer.data());
}
