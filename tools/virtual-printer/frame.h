// A job in a frame: ESC "#FRAME" 01, the job's length, 02, the job, 03, its checksum, 04. Numbers
// have two bytes, the high one first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace virtual_printer {

enum class FrameState {
  kNone,        // no frame begins here
  kUnfinished,  // more bytes decide
  kGood,
  kWrongLength,    // there is no trailer where the length puts it
  kWrongChecksum,  // the trailer is there, its checksum is not the job's
};

struct Frame {
  FrameState state = FrameState::kNone;
  std::size_t length = 0;  // of all that is to be taken off the line, when decided
  std::string_view job;    // of a good frame

  bool operator==(const Frame&) const = default;
};

// What stands at the beginning of the bytes. The length field wraps for jobs of 65536 bytes and
// more, so a frame without a trailer may always be the beginning of a longer one: only when no
// more bytes come is it wrong.
Frame read_frame(std::string_view bytes, bool more_may_come);

// Whether the bytes begin with a frame's whole header.
bool begins_frame(std::string_view bytes);

// The sum of the bytes as signed numbers, modulo 65536.
std::uint16_t checksum_of(std::string_view job);

inline constexpr std::size_t kFrameHeaderLength = 11;
inline constexpr std::size_t kFrameTrailerLength = 4;
inline constexpr std::size_t kLongestJob = 1664000;

}  // namespace virtual_printer
