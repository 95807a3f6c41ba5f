// BMP files of every kind: nothing outside the buffers, no larger picture than the header says, and
// the dots that a second reading of the file expects.
#include <cstring>

#include "check.h"
#include "image/bmp_raster.h"
#include "input.h"
#include "memory_file.h"
#include "pictures/bmp.h"

namespace fuzz {
namespace {

constexpr std::size_t kHeaders = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);

/// Whether the buffers that the headers ask for would take longer than a thousand other inputs.
bool is_slow(std::string_view file) {
  constexpr int64_t kMost = 1 << 16;
  if (file.size() < kHeaders) return false;
  BITMAPFILEHEADER header;
  BITMAPINFOHEADER info;
  std::memcpy(&header, file.data(), sizeof header);
  std::memcpy(&info, file.data() + sizeof header, sizeof info);
  const Measured measured = measure(info, INT32_MAX);
  return header.bfSize > kMost ||
         (measured.geometry && measured.geometry->tmpbitsSize > static_cast<std::size_t>(kMost));
}

/// What the headers of a file that was accepted say; what it holds of the first colour is black.
pictures::Bmp second_reading(std::string_view file) {
  BITMAPFILEHEADER header;
  BITMAPINFOHEADER info;
  std::memcpy(&header, file.data(), sizeof header);
  std::memcpy(&info, file.data() + sizeof header, sizeof info);
  std::string first_colour(file.substr(kHeaders, header.bfOffBits - kHeaders).substr(0, 4));
  first_colour.resize(4, '\0');
  return {.width = info.biWidth,
          .height = info.biHeight,
          .bits = info.biBitCount,
          .palette = first_colour,
          .pixels = std::string(file.substr(header.bfOffBits))};
}

void check_raster(const BmpRaster& raster, const Geometry& geometry, std::string_view file) {
  check(raster.newX == geometry.newX && raster.newY == geometry.newY, "as large as measured");
  check(raster.newX >= 1 && raster.newX == (geometry.cxDib - 1) / 8 + 1, "as wide as the picture");
  check(raster.newY == (geometry.cyDib <= 7 ? 1 : (geometry.cyDib - 1) / 8 + 1),
        "as high as the picture");
  // Reads each byte.
  std::size_t black = 0;
  for (const char byte : raster.data()) black += byte != 0;
  if (geometry.cyDib <= 0) check(black == 0, "a picture stored from the top is blank");

  constexpr std::size_t kSlow = 512;
  if (geometry.cyDib <= 0 || raster.count() > kSlow) return;
  check(raster.data() == pictures::columns_of(second_reading(file)), "the dots of the picture");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  static MemoryFile file;
  const std::string_view content = Input(data, size).rest();
  if (is_slow(content)) return -1;
  file.fill(content);
  const LoadedBmp loaded = load_bmp(file.path());
  check(loaded.raster.has_value() == (loaded.fault == BmpFault::kNone), "a raster or a fault");
  if (!loaded.raster) return 0;
  check(content.size() >= kHeaders, "no picture without its headers");
  check_raster(*loaded.raster, *loaded.geometry, content);
  return 0;
}
