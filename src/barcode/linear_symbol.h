// Linear symbols as commands. Pure: arguments and settings in, bytes out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

/// What PrintBarCode is asked for, its numbers as 32-bit ones.
struct LinearSymbol {
  std::string_view data;
  int32_t symbology;
  int32_t height;
  int32_t width;
  int32_t alignment;
  int32_t text_position;
};

/// What of a transport's settings it looks at.
struct LinearSettings {
  int32_t line_width;
  int32_t line_chars;
  int32_t map_mode;
};

/// Bytes of the longest command block.
inline constexpr std::size_t kLinearBlockSize = 1024;

/// Builds the command block and returns its length, 0 when the symbol cannot be printed as asked.
std::size_t build_linear_symbol(const LinearSymbol& symbol, const LinearSettings& settings,
                                std::span<char, kLinearBlockSize> block);
