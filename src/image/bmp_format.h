// What a BMP file says about its picture.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>

// The records as they are stored, under the format's own names.

static_assert(std::endian::native == std::endian::little, "the records are read as stored");

struct __attribute__((packed)) BITMAPFILEHEADER {
  std::uint16_t bfType;
  std::uint32_t bfSize;
  std::uint16_t bfReserved1;
  std::uint16_t bfReserved2;
  std::uint32_t bfOffBits;
};
static_assert(sizeof(BITMAPFILEHEADER) == 14);

struct __attribute__((packed)) BITMAPINFOHEADER {
  std::uint32_t biSize;
  std::int32_t biWidth;
  std::int32_t biHeight;
  std::uint16_t biPlanes;
  std::uint16_t biBitCount;
  std::uint32_t biCompression;
  std::uint32_t biSizeImage;
  std::int32_t biXPelsPerMeter;
  std::int32_t biYPelsPerMeter;
  std::uint32_t biClrUsed;
  std::uint32_t biCLrImportand;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);

struct RGBQUAD {
  std::uint8_t rgbBlue;
  std::uint8_t rgbGreen;
  std::uint8_t rgbRed;
  std::uint8_t rgbReserved;
};

/// The header and the only colour that counts.
struct BITMAPINFO {
  BITMAPINFOHEADER bmiHeader;
  RGBQUAD bmiColors[1];
};
static_assert(sizeof(BITMAPINFO) == 44);

/// "BM".
inline constexpr std::uint16_t kBmpType = 0x4d42;

/// The dimensions of a picture's buffers; the sizes fit 31 bits.
struct Geometry {
  std::int32_t cxDib;       ///< width in dots, 1 or more
  std::int32_t cyDib;       ///< height in dots; below 0 when the file stores the top row first
  std::int32_t cBits;       ///< bits per pixel
  std::int32_t newX;        ///< width in bytes of eight dots
  std::int32_t newY;        ///< height in bands of eight dots
  std::int32_t iRowBytes;   ///< stride of a row in the file
  std::size_t tmpbitsSize;  ///< bytes of the buffer for the one-bit rows

  /// How many rows the file holds. A picture with its top row first has none that the printer
  /// sees: it comes out blank, one band high, as it always has.
  std::int32_t rows() const { return cyDib > 0 ? cyDib : 0; }
};

/// What keeps a file from being printed.
enum class BmpFault {
  kNone,
  kCannotOpen,
  kEmpty,
  kNoBmp,           ///< it does not begin with "BM"
  kPixelOffset,     ///< it says that its pixels begin within its headers, or behind its end
  kNoInfoMemory,    ///< no memory for the headers
  kNoPixelMemory,   ///< none for the pixels
  kNoRowMemory,     ///< none for the one-bit rows
  kNoRasterMemory,  ///< none for the columns
  kHeadersCut,      ///< it ends before its pixels begin
  kPixelsCut,       ///< it ends before the size that it says
  kDepth,           ///< its bits per pixel
  kWidth,
  kTooLarge,     ///< it needs buffers beyond 31 bits
  kRowsMissing,  ///< width, height and depth ask for more pixels than it says to have
};

/// The dimensions of a picture; none exactly when there is a fault.
struct Measured {
  std::optional<Geometry> geometry;
  BmpFault fault;
};

/// Whether the library can print such a picture, whose rows have to fit `bitsSize` bytes.
/// Compression, planes and sizes that the header repeats are taken on trust.
Measured measure(const BITMAPINFOHEADER& header, std::size_t bitsSize);

/// The largest picture that is printed at once, in bytes of eight dots times bands.
inline constexpr std::int32_t kLargestImage = 2880;
