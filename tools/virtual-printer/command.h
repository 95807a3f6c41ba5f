// What the bytes of the line mean, once decoded: the words that parser, model and typesetter share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

namespace virtual_printer {

enum class CommandKind {
  kText,  // argument: one byte of code page 437
  kLineFeed,
  kCarriageReturn,
  kTab,
  kInitialize,
  kEmphasis,       // argument: 0 or 1
  kUnderline,      // argument: 0 to 2, the dots of its thickness
  kReverse,        // argument: 0 or 1
  kColour,         // argument: 0 or 1
  kAlignment,      // argument: 0 left, 1 centre, 2 right
  kPrintMode,      // argument: bits, see PrintModeBits
  kCharacterSize,  // argument: width factor - 1 in the high nibble, height factor - 1 in the low
  kLineSpacing,    // argument: half dots
  kDefaultLineSpacing,
  kPartialCut,
  kFullCut,
  kRealTimeStatus,  // argument: 1 to 4, which status
  kSensorQuery,
  kAutomaticStatus,  // argument: bits, which reports
};

// Commands with a block of data (images, symbols, frames) will add a payload member here.
struct Command {
  CommandKind kind{};
  std::uint8_t argument = 0;

  bool operator==(const Command&) const = default;
};

// Bytes that are no command of this printer; the offset counts from the first byte ever received.
struct UnknownBytes {
  std::size_t offset = 0;
  std::string bytes;

  bool operator==(const UnknownBytes&) const = default;
};

using Decoded = std::variant<Command, UnknownBytes>;

}  // namespace virtual_printer
