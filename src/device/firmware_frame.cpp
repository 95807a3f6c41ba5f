#include "device/firmware_frame.h"

#include <cstring>

std::optional<FirmwareRegion> firmware_region(long FileType) {
  constexpr FirmwareRegion kRegions[] = {
      {'D', 5, 0x100000, 0x50000}, {'E', 8, 0, 0x80000}, {'F', 8, 0x80000, 0x80000}};
  if (FileType < 0 || FileType >= static_cast<long>(std::size(kRegions))) return std::nullopt;
  return kRegions[FileType];
}

std::size_t frame_firmware(const FirmwareRegion& region, std::span<char> buffer) {
  const char header[kFirmwareHeader] = {'\x1d', '~', region.code, region.size_code, 0, 0};
  std::memcpy(buffer.data(), header, sizeof header);
  char bytChkSum = 0;
  for (const char byte : buffer.subspan(kFirmwareHeader, region.length)) {
    bytChkSum = static_cast<char>(bytChkSum ^ byte);
  }
  buffer[kFirmwareHeader + region.length] = bytChkSum;
  return kFirmwareHeader + region.length + kFirmwareTrailer;
}
