// What stands behind the bytes that name a command, and how long it is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace virtual_printer {

enum class ArgumentRule {
  kNone,
  // One byte.
  kAny,
  kSwitch,
  kLevel,
  kTwoBits,
  kStatusNumber,
  kBetween,  // the row says which
  // A block of data.
  kPulse,        // connector, time on, time off
  kIdentifier,   // four bytes
  kCounted,      // a count, as many bytes that begin with "_", a checksum
  kPosition,     // two bytes, the low one first
  kImageNumber,  // which, and its size
  // A block that may be long.
  kLinearSymbol,  // symbology, count, as many bytes
  kSymbolData,    // count of two bytes, class, function, "0", the rest
  kImage,
  kImages,
  kFirmware,
};

bool is_block(ArgumentRule rule);

// Where the rest of such a block never comes, what came of it is no text either.
bool is_long(ArgumentRule rule);

// How many bytes the argument takes, as far as those that have come tell it; nothing when they
// begin no such argument, so that no more of it is waited for.
std::optional<std::size_t> length_of_argument(ArgumentRule rule, std::string_view data);

// The number that one byte means; nothing when it is none that the command takes.
std::optional<std::uint8_t> accepted_byte(ArgumentRule rule, char byte);
std::optional<std::uint8_t> byte_between(std::uint8_t lowest, std::uint8_t highest, char byte);

// Programs send small numbers as the value or as its digit; both mean the same.
std::uint8_t without_digit(char byte);

// A number of two bytes, the low one first.
std::size_t number_of(std::string_view bytes);

}  // namespace virtual_printer
