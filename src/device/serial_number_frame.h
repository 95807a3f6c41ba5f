// The command that writes the printer's serial number.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

/// With it, the frame has 128 bytes, the longest command that is sent.
inline constexpr long kLongestSerialNumber = 123;

/// Builds GS # n "_" number checksum at the start of the buffer, which has room for the number's
/// length + 5, and returns that length. The checksum is the exclusive OR from "_" on.
std::size_t build_serial_number_frame(std::string_view number, std::span<char> buffer);
