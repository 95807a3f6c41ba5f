#include "device/firmware.h"

#include <cstring>

#include "device/firmware_frame.h"
#include "device/not_ready.h"
#include "dispatch/for_one_call.h"
#include "dispatch/port_operations.h"

namespace {

/// The region's bytes in their place of an otherwise empty frame; null when there is no memory. A
/// file that is too short leaves zeros, which are sent: the printer's checksum is over them.
Bytes read_region(const FirmwareRegion& region, std::FILE* image) {
  Bytes frame = allocate_zeroed(kLongestFirmwareFrame);
  if (!frame) return nullptr;
  std::fseek(image, region.offset, SEEK_CUR);
  (void)!std::fread(frame.get() + kFirmwareHeader, region.length, 1, image);
  return frame;
}

}  // namespace

long update_fw(const Transport& transport, const char* portName, const char* FWFile,
               long FileType) {
  const PortHandle port = transport.registry.find(portName);
  if (!port && transport.update_needs_open_port) return kFailed;
  const auto region = firmware_region(FileType);
  if (!region || FWFile == nullptr || cannot_serve(transport.state)) return kFailed;
  const File image(std::fopen(FWFile, "rb"));
  if (!image) {
    // Success all the same: a till without an update beside it starts as ever.
    std::printf("%s is not created !\n", FWFile);
    return kOk;
  }
  const Bytes frame = read_region(*region, image.get());
  if (!frame) return kFailed;
  const std::span bytes(reinterpret_cast<char*>(frame.get()), kLongestFirmwareFrame);
  const std::size_t size = frame_firmware(*region, bytes);
  // Only a write of nothing is told as a failure; update tools rely on that sense.
  const long written = port ? guarded_write(transport, port, {bytes.data(), size}) : kFailed;
  return written == 0 ? kFailed : kOk;
}
