#include "image/stored_images.h"

#include "dispatch/command.h"
#include "dispatch/port_operations.h"
#include "image/bmp_raster.h"
#include "image/image_list.h"
#include "text/alignment.h"
#include "text/position.h"

namespace {

constexpr std::string_view kInitialise = "\033@";
constexpr std::string_view kEraseImages = "\034e";  // FS e

/// FS q n: that many images follow.
constexpr Command<3> store_images(int count) {
  return command(0x1c, 'q', count);
}

/// FS p n m, in normal size.
constexpr Command<4> print_image(long number) {
  return command(0x1c, 'p', number, '0');
}

bool send_image(const Transport& transport, PortHandle port, const char* fileName) {
  const std::optional<BmpRaster> raster = LoadBmpRaster(fileName);
  if (!raster) return false;
  guarded_write(transport, port,
                command(raster->newX, raster->newX / 256, raster->newY, raster->newY / 256));
  guarded_write(transport, port, raster->data());
  return true;
}

}  // namespace

long save_nv_bitmap(const Transport& transport, const char* portName, const char* BitmapList,
                    long /*ImageMode*/) {
  const PortHandle port = transport.registry.find(portName);
  if (!port || BitmapList == nullptr) return kFailed;
  if (in_error_state(transport.state)) return kRefused;
  const std::optional<ImageList> images = parse_image_list(BitmapList);
  if (!images) return kFailed;

  guarded_write(transport, port, kInitialise);
  guarded_write(transport, port, store_images(images->Count));
  for (int i = 0; i < images->Count; ++i) {
    // The printer is left in the middle of its download: there is no command to end it.
    if (!send_image(transport, port, images->BitmapsList[i])) return kFailed;
  }
  return kOk;
}

long print_nv_bitmap(const Transport& transport, const char* portName, long NVImageNumber,
                     long Alignment) {
  return hand_on(transport, portName, {alignment_prefix(Alignment), print_image(NVImageNumber)});
}

long print_nv_bitmap_xy(const Transport& transport, const char* portName, long NVImageNumber,
                        long PosX, long PosY) {
  return hand_on(transport, portName,
                 {PrintXCommand(PosX), PrintYCommand(PosY), print_image(NVImageNumber), "\n"});
}

long delete_nv_bitmap(const Transport& transport, const char* portName) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  if (in_error_state(transport.state)) return kRefused;
  guarded_write(transport, port, kEraseImages);
  return kOk;
}
