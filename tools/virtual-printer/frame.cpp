#include "frame.h"

#include <algorithm>

namespace virtual_printer {
namespace {

// A dot stands for a byte of the length.
constexpr std::string_view kHeader{"\x1b#FRAME\x01..\x02"};
constexpr std::size_t kLengthOffset = 8;
constexpr std::size_t kLengthWraps = 65536;
constexpr char kTrailerBegin = '\x03';
constexpr char kTrailerEnd = '\x04';

static_assert(kHeader.size() == kFrameHeaderLength);

bool agrees_with_header(std::string_view bytes) {
  const std::string_view start = bytes.substr(0, kHeader.size());
  return std::equal(start.begin(), start.end(), kHeader.begin(),
                    [](char byte, char expected) { return expected == '.' || byte == expected; });
}

std::size_t number_at(std::string_view bytes, std::size_t offset) {
  return static_cast<std::size_t>(static_cast<unsigned char>(bytes[offset])) * 256 +
         static_cast<unsigned char>(bytes[offset + 1]);
}

std::size_t frame_length(std::size_t job) {
  return kFrameHeaderLength + job + kFrameTrailerLength;
}

bool has_trailer(std::string_view bytes, std::size_t job) {
  const std::string_view trailer = bytes.substr(kFrameHeaderLength + job, kFrameTrailerLength);
  return trailer.front() == kTrailerBegin && trailer.back() == kTrailerEnd;
}

// The frame whose checksum agrees; else the first that has a trailer at all; else the wrong length
// that all the bytes are.
Frame find_frame(std::string_view bytes) {
  Frame found{FrameState::kWrongLength, bytes.size(), {}};
  std::size_t job_length = number_at(bytes, kLengthOffset);
  for (; job_length <= kLongestJob; job_length += kLengthWraps) {
    const std::size_t length = frame_length(job_length);
    if (bytes.size() < length) break;
    if (!has_trailer(bytes, job_length)) continue;
    const std::string_view job = bytes.substr(kFrameHeaderLength, job_length);
    if (number_at(bytes, kFrameHeaderLength + job_length + 1) == checksum_of(job)) {
      return {FrameState::kGood, length, job};
    }
    if (found.state == FrameState::kWrongLength) found = {FrameState::kWrongChecksum, length, {}};
  }
  return found;
}

}  // namespace

Frame read_frame(std::string_view bytes, bool more_may_come) {
  if (!agrees_with_header(bytes)) return {};
  constexpr Frame kUnfinished{FrameState::kUnfinished, 0, {}};
  if (bytes.size() < kFrameHeaderLength) return more_may_come ? kUnfinished : Frame{};
  const Frame frame = find_frame(bytes);
  const bool decided = frame.state == FrameState::kGood || !more_may_come ||
                       bytes.size() >= frame_length(kLongestJob);
  return decided ? frame : kUnfinished;
}

bool begins_frame(std::string_view bytes) {
  return bytes.size() >= kFrameHeaderLength && agrees_with_header(bytes);
}

std::uint16_t checksum_of(std::string_view job) {
  unsigned sum = 0;
  for (const char byte : job) sum += static_cast<unsigned>(static_cast<signed char>(byte));
  return static_cast<std::uint16_t>(sum);
}

}  // namespace virtual_printer
