#include "image/print_bitmap.h"

#include <cstring>

#include "dispatch/command.h"
#include "dispatch/port_operations.h"
#include "image/bmp_raster.h"
#include "text/alignment.h"

namespace {

/// GS / m, by `Options`: normal size, double width, double height, both.
constexpr std::string_view kPrintDownloaded[] = {"\035/0", "\035/1", "\035/2", "\035/3"};
constexpr int kNormalSize = 0;

/// Puts GS * x y in front of the data. Only the product of the two is bounded, so a wide and low
/// picture may wrap its width: the bytes are required to be sent like that.
std::string_view download_command(BmpRaster& raster) {
  const Command<startDataLen> start = command(0x1d, '*', raster.newX, raster.newY);
  std::memcpy(raster.buffer.get(), start.bytes, startDataLen);
  return raster.with_start();
}

}  // namespace

long print_bitmap(const Transport& transport, const char* portName, const char* Bitmap,
                  long Alignment) {
  const PortHandle port = transport.registry.find(portName);
  if (!port || Bitmap == nullptr) return kFailed;
  std::optional<BmpRaster> raster = LoadBmpRaster(Bitmap);
  if (!raster || raster->newX * raster->newY > kLargestImage) return kFailed;

  // The justification holds for what is printed after it, not for the download.
  buffered_write(transport, port, download_command(*raster));
  buffered_write(transport, port, alignment_prefix(Alignment));
  buffered_write(transport, port, kPrintDownloaded[kNormalSize]);
  return kOk;
}
