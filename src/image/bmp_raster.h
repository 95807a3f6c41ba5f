// A BMP file as the printer's one-bit image.
#pragma once

#include <optional>
#include <string_view>

#include "dispatch/for_one_call.h"
#include "image/bmp_format.h"

/// Bytes reserved ahead of the data, so that a command can stand in front without a copy.
inline constexpr std::size_t startDataLen = 4;

/// A one-bit image in columns: for each of 8 x `newX` columns of dots from left to right, `newY`
/// bytes from top to bottom with the uppermost dot in the most significant bit; 1 prints black.
struct BmpRaster {
  std::int32_t newX;  ///< width in bytes of eight dots
  std::int32_t newY;  ///< height in bands of eight dots
  Bytes buffer;       ///< the reserved bytes, then the data

  std::size_t count() const {
    return static_cast<std::size_t>(newX) * 8 * static_cast<std::size_t>(newY);
  }
  /// The data alone.
  std::string_view data() const { return {chars() + startDataLen, count()}; }
  /// The reserved bytes and the data.
  std::string_view with_start() const { return {chars(), startDataLen + count()}; }

 private:
  const char* chars() const {
    return static_cast<const char*>(static_cast<const void*>(buffer.get()));
  }
};

/// What became of a file.
struct LoadedBmp {
  BmpFault fault = BmpFault::kNone;
  std::optional<Geometry> geometry;  ///< as soon as the headers are found good
  std::optional<BmpRaster> raster;   ///< none exactly when there is a fault
};

/// Loads a file and says nothing.
LoadedBmp load_bmp(const char* fileName);

/// Loads a file. None when that fails; a line on standard output says why in most cases.
std::optional<BmpRaster> LoadBmpRaster(const char* fileName);
