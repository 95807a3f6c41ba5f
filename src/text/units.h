// Lengths in the application's unit, and 32-bit numbers that wrap.
#pragma once

#include <cstdint>

/// A number of the exported state as the printer's arithmetic takes it: its low 32 bits.
constexpr int32_t wrap32(long value) {
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

/// Sums and doublings wrap at 32 bits, as they always have on the till's machines.
constexpr int32_t add_wrapping(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

/// A length in units of `map_mode` (TZV_MAP_...) in dots of 0.141 mm, halves rounded up; 0 for a
/// unit that does not exist.
int32_t to_dots(int32_t length, int32_t map_mode);
