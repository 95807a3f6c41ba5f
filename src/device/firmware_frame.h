// The command that downloads one region of a firmware image.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

/// Where a region lies in an image file, and how the command names it.
struct FirmwareRegion {
  char code;
  char size_code;  ///< the length in units of 64 KiB
  long offset;
  std::size_t length;
};

/// The region of a `FileType`; none for an unknown one.
std::optional<FirmwareRegion> firmware_region(long FileType);

/// Bytes before the region and after it, and room for the longest frame.
inline constexpr std::size_t kFirmwareHeader = 6;
inline constexpr std::size_t kFirmwareTrailer = 1;
inline constexpr std::size_t kLongestFirmwareFrame = 0x80000 + kFirmwareHeader + kFirmwareTrailer;

/// Frames the region that stands at `kFirmwareHeader` of the buffer; the frame's length.
std::size_t frame_firmware(const FirmwareRegion& region, std::span<char> buffer);
