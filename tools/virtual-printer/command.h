// What the bytes of the line mean, once decoded: the words that parser, model and typesetter share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
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
  kAutomaticStatus,  // argument: bits, which reports; 0 none
  kProcessId,        // data: the identifier to confirm with
  kVersionQuery,
  kSerialNumberQuery,
  kStoreSerialNumber,  // data: count, "_", the number, checksum
  kDrawerPulse,        // data: which connector, times on and off
  kBeep,
  kSelfTest,  // argument: 1 or 2, which page
  kMarkQuery,
  kModuleWidth,      // argument: dots
  kBarHeight,        // argument: dots
  kSymbolTextFont,   // argument: 0 font A, others B
  kSymbolTextPlace,  // argument: 0 nowhere, 1 above the bars, 2 below
  kLinearSymbol,     // data: symbology, count, as many bytes
  kPdf417Columns,    // argument: 0 for as many as suit
  kPdf417ModuleWidth,
  kPrintPdf417,
  kQrModel,  // argument: a digit
  kQrModuleSize,
  kQrErrorCorrection,  // argument: a digit, 0 to 3
  kPrintQrCode,
  kStoreSymbol,      // data: count, class, function, "0", the symbol's data
  kDownloadImage,    // data: bytes across, bands, columns
  kPrintDownloaded,  // argument: bits, 1 double width, 2 double height
  kStoreImages,      // data: how many; of each its bytes across, bands, columns
  kPrintStored,      // data: number, bits as for a downloaded one
  kEraseImages,
  kPageMode,
  kPrintPage,
  kStandardMode,
  kPositionX,  // data: dots
  kPositionY,  // data: dots
  kFirmware,   // data: region, size, two zeros, the region's bytes, checksum
  kFramedJob,  // data: the job
  kNotice,     // data: a line of the printer's own; nothing that a till sends means this
};

struct Command {
  CommandKind kind{};
  std::uint8_t argument = 0;
  std::string data = {};

  bool operator==(const Command&) const = default;
};

// Bytes that are no command of this printer; the offset counts from the first byte ever received.
struct UnknownBytes {
  std::size_t offset = 0;
  std::string bytes;

  bool operator==(const UnknownBytes&) const = default;
};

// A frame whose length or checksum is wrong.
struct RefusedFrame {
  std::size_t offset = 0;
  std::string reason;

  bool operator==(const RefusedFrame&) const = default;
};

// Why the printer does not print what a command asks for, although it knows the command.
struct Refused : std::runtime_error {
  using runtime_error::runtime_error;
};

using Decoded = std::variant<Command, UnknownBytes, RefusedFrame>;

}  // namespace virtual_printer
