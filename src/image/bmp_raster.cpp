#include "image/bmp_raster.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "image/conversion.h"

namespace {

/// Below this offset of the pixels there is no room for the headers.
constexpr std::uint32_t kSmallestOffset = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);

/// What is read of a file.
struct BmpBlocks {
  BITMAPINFO info{};  ///< a colour that the file does not have is black
  std::size_t bitsSize = 0;
  Bytes pixels;
};

std::nullopt_t fail(const char* message) {
  std::fputs(message, stdout);
  return std::nullopt;
}

std::optional<BmpBlocks> read_blocks(std::FILE* file) {
  BITMAPFILEHEADER header{};
  if (std::fread(&header, 1, sizeof header, file) == 0) {
    // The file is empty. Scripts know the line as it stands.
    return fail("bitmap file header malloc() fail\n");
  }
  if (header.bfType != kBmpType) return fail("Not Bitmap file\n");
  if (header.bfOffBits < kSmallestOffset || header.bfOffBits > header.bfSize) return std::nullopt;

  const std::size_t infoSize = header.bfOffBits - sizeof header;
  const std::size_t bitsSize = header.bfSize - header.bfOffBits;
  const Bytes info = allocate(infoSize);
  if (!info) return fail("bitmap info malloc() fail\n");
  BmpBlocks blocks{.bitsSize = bitsSize, .pixels = allocate(bitsSize)};
  if (!blocks.pixels) return fail("pBit Malloc() fail\n");
  if (std::fread(info.get(), infoSize, 1, file) != 1) return fail("size check error\n");
  if (std::fread(blocks.pixels.get(), bitsSize, 1, file) != 1) return std::nullopt;
  std::memcpy(&blocks.info, info.get(), std::min(infoSize, sizeof blocks.info));
  return blocks;
}

std::optional<BmpBlocks> read_file(const char* fileName) {
  const File file(std::fopen(fileName, "rb"));
  if (!file) {
    std::printf("File Open Fail=%s\n", fileName);
    return std::nullopt;
  }
  return read_blocks(file.get());
}

}  // namespace

std::optional<BmpRaster> LoadBmpRaster(const char* fileName) {
  std::optional<BmpBlocks> file = read_file(fileName);
  if (!file) return std::nullopt;
  const std::optional<Geometry> geometry = measure(file->info.bmiHeader, file->bitsSize);
  if (!geometry) return std::nullopt;

  const Bytes tmppBits = allocate(geometry->tmpbitsSize);
  if (!tmppBits) {
    std::printf("tmpbits malloc() fail tmpbitsSize=%zu\n", geometry->tmpbitsSize);
    return std::nullopt;
  }
  const BitRows rows =
      to_one_bit(*geometry, file->info.bmiColors[0], file->pixels.get(), tmppBits.get());
  file->pixels.reset();

  BmpRaster raster{geometry->newX, geometry->newY, {}};
  raster.buffer = allocate(startDataLen + raster.count());
  if (!raster.buffer) return std::nullopt;
  std::memset(raster.buffer.get(), 0, startDataLen);
  to_columns(*geometry, rows, raster.buffer.get() + startDataLen);
  return raster;
}
