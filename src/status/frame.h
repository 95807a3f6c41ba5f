// The frame in which a job travels when the framed protocol is on.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

/// Bytes that the frame adds to a job.
inline constexpr std::size_t kFrameOverhead = 15;

/// Builds the frame of a job at the start of the buffer, which has room for it, and returns its
/// length. The length field holds the low 16 bits of the job's length: longer jobs are framed with
/// a wrapped length, which printers expect.
std::size_t build_frame(std::string_view job, std::span<char> buffer);
