// Linear symbols as commands. Pure: arguments and settings in, bytes out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
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

/// What keeps a symbol from being printed as asked.
enum class LinearFault {
  kNone,
  kTooWide,  ///< its width exceeds the line's
  kUnknownSymbology,
  kDataLength,  ///< not what the symbology takes
  kTextPosition,
  kBlockTooLong,  ///< data that do not fit the block
};

/// How many bytes of data a symbology takes.
struct DataLengths {
  std::size_t shortest, longest;
  bool even;  ///< pairs only
};

/// None for an unknown symbology.
std::optional<DataLengths> data_lengths(int32_t symbology);

/// A command block; `size` is 0 exactly when there is a fault.
struct BuiltSymbol {
  std::size_t size;
  LinearFault fault;
};

/// Builds the command block.
BuiltSymbol build_linear_symbol(const LinearSymbol& symbol, const LinearSettings& settings,
                                std::span<char, kLinearBlockSize> block);
