#include "image/bmp_raster.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

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

BmpFault read_blocks(std::FILE* file, BmpBlocks& blocks) {
  BITMAPFILEHEADER header{};
  if (std::fread(&header, 1, sizeof header, file) == 0) return BmpFault::kEmpty;
  if (header.bfType != kBmpType) return BmpFault::kNoBmp;
  if (header.bfOffBits < kSmallestOffset || header.bfOffBits > header.bfSize) {
    return BmpFault::kPixelOffset;
  }
  const std::size_t infoSize = header.bfOffBits - sizeof header;
  blocks.bitsSize = header.bfSize - header.bfOffBits;
  const Bytes info = allocate(infoSize);
  if (!info) return BmpFault::kNoInfoMemory;
  blocks.pixels = allocate(blocks.bitsSize);
  if (!blocks.pixels) return BmpFault::kNoPixelMemory;
  if (std::fread(info.get(), infoSize, 1, file) != 1) return BmpFault::kHeadersCut;
  if (std::fread(blocks.pixels.get(), blocks.bitsSize, 1, file) != 1) return BmpFault::kPixelsCut;
  std::memcpy(&blocks.info, info.get(), std::min(infoSize, sizeof blocks.info));
  return BmpFault::kNone;
}

BmpFault read_file(const char* fileName, BmpBlocks& blocks) {
  const File file(std::fopen(fileName, "rb"));
  return file ? read_blocks(file.get(), blocks) : BmpFault::kCannotOpen;
}

BmpFault convert(const Geometry& geometry, BmpBlocks& blocks, std::optional<BmpRaster>& loaded) {
  const Bytes tmppBits = allocate(geometry.tmpbitsSize);
  if (!tmppBits) return BmpFault::kNoRowMemory;
  const BitRows rows =
      to_one_bit(geometry, blocks.info.bmiColors[0], blocks.pixels.get(), tmppBits.get());
  blocks.pixels.reset();

  BmpRaster raster{geometry.newX, geometry.newY, {}};
  raster.buffer = allocate_zeroed(startDataLen + raster.count());
  if (!raster.buffer) return BmpFault::kNoRasterMemory;
  to_columns(geometry, rows, raster.buffer.get() + startDataLen);
  loaded = std::move(raster);
  return BmpFault::kNone;
}

/// The lines that scripts know, as they stand; of the other faults nothing is said.
void say_why(const LoadedBmp& loaded, const char* fileName) {
  switch (loaded.fault) {
    case BmpFault::kCannotOpen:
      std::printf("File Open Fail=%s\n", fileName);
      break;
    case BmpFault::kEmpty:
      std::fputs("bitmap file header malloc() fail\n", stdout);
      break;
    case BmpFault::kNoBmp:
      std::fputs("Not Bitmap file\n", stdout);
      break;
    case BmpFault::kNoInfoMemory:
      std::fputs("bitmap info malloc() fail\n", stdout);
      break;
    case BmpFault::kNoPixelMemory:
      std::fputs("pBit Malloc() fail\n", stdout);
      break;
    case BmpFault::kHeadersCut:
      std::fputs("size check error\n", stdout);
      break;
    case BmpFault::kNoRowMemory:
      std::printf("tmpbits malloc() fail tmpbitsSize=%zu\n", loaded.geometry->tmpbitsSize);
      break;
    default:
      break;
  }
}

}  // namespace

LoadedBmp load_bmp(const char* fileName) {
  LoadedBmp loaded;
  BmpBlocks blocks;
  loaded.fault = read_file(fileName, blocks);
  if (loaded.fault != BmpFault::kNone) return loaded;
  const Measured measured = measure(blocks.info.bmiHeader, blocks.bitsSize);
  loaded.fault = measured.fault;
  loaded.geometry = measured.geometry;
  if (loaded.geometry) loaded.fault = convert(*loaded.geometry, blocks, loaded.raster);
  return loaded;
}

std::optional<BmpRaster> LoadBmpRaster(const char* fileName) {
  LoadedBmp loaded = load_bmp(fileName);
  if (!loaded.raster) say_why(loaded, fileName);
  return std::move(loaded.raster);
}
