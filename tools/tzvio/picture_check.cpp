#include "picture_check.h"

#include <algorithm>
#include <cstring>

#include "image/bmp_raster.h"

namespace cli {
namespace {

constexpr std::int32_t kLargestSide = 255;  // in eight dots: the command has a byte for each
constexpr std::uint32_t kRunLength8 = 1;
constexpr std::uint32_t kRunLength4 = 2;

std::string words_for(BmpFault fault) {
  switch (fault) {
    case BmpFault::kEmpty:
      return "the file is empty";
    case BmpFault::kNoBmp:
      return "is no BMP file: it does not begin with BM";
    case BmpFault::kPixelOffset:
      return "its header is wrong: the pixels would begin within the headers or behind the end";
    case BmpFault::kHeadersCut:
      return "it ends within its headers";
    case BmpFault::kPixelsCut:
      return "it ends before the size that its header says, or has no pixels";
    case BmpFault::kDepth:
      return "its bits per pixel are none of 1, 4, 8, 16, 24 and 32";
    case BmpFault::kWidth:
      return "its width is 0 or below";
    case BmpFault::kTooLarge:
      return "it is too large: its buffers would exceed 31 bits";
    case BmpFault::kRowsMissing:
      return "it holds fewer pixels than its width, height and depth ask for";
    default:
      return "there is not enough memory for it";
  }
}

Result refused(const std::string& path, BmpFault fault) {
  if (fault == BmpFault::kCannotOpen) {
    return {.outcome = Outcome::kBadFile, .words = path + ": " + std::strerror(errno)};
  }
  return {.outcome = Outcome::kBadFile, .words = path + ": " + words_for(fault)};
}

// What the library takes on trust.
std::uint32_t compression_of(const std::string& path) {
  const File file(std::fopen(path.c_str(), "rb"));
  BITMAPFILEHEADER header{};
  BITMAPINFOHEADER info{};
  const bool is_read = file && std::fread(&header, sizeof header, 1, file.get()) == 1 &&
                       std::fread(&info, sizeof info, 1, file.get()) == 1;
  return is_read ? info.biCompression : 0;
}

bool is_blank(const BmpRaster& raster) {
  return std::ranges::all_of(raster.data(), [](char dots) { return dots == 0; });
}

// What keeps a good file from being of use on paper; empty when there is nothing.
std::string useless(const LoadedBmp& loaded, const std::string& path, const Options& options,
                    PictureUse use) {
  const Geometry& picture = *loaded.geometry;
  const std::uint32_t compression = compression_of(path);
  if (compression == kRunLength8 || compression == kRunLength4) {
    return "is compressed, and would print as noise: store it uncompressed";
  }
  if (picture.cyDib < 0) {
    return "has its top row first, and would print blank: store it with its lowest row first";
  }
  if (picture.cBits == 8 && picture.cxDib % 4 != 0) {
    return "would print slanted: the width of an 8-bit picture must be a multiple of 4";
  }
  if (use == PictureUse::kPrint && picture.newX * picture.newY > kLargestImage) {
    return "is too large to be printed at once: " + std::to_string(picture.newX * picture.newY) +
           " squares of 8 by 8 dots, of at most " + std::to_string(kLargestImage);
  }
  if (use == PictureUse::kPrint && std::max(picture.newX, picture.newY) > kLargestSide) {
    return "would print as noise: its longer side, counted in 8 dots, wraps at 256";
  }
  if (picture.cxDib > options.line_width) {
    return "is wider than the line: " + std::to_string(picture.cxDib) + " of " +
           std::to_string(options.line_width) + " dots";
  }
  return is_blank(*loaded.raster) ? "would print blank: every dot is white" : "";
}

Json fields_of(const Geometry& picture) {
  return {{"width_dots", picture.cxDib},
          {"height_dots", picture.rows()},
          {"bits_per_pixel", picture.cBits},
          {"columns", 8 * picture.newX},
          {"bands", picture.newY}};
}

std::string description(const Geometry& picture) {
  std::string text = std::to_string(picture.cxDib) + " x " + std::to_string(picture.rows()) +
                     " dots, " + std::to_string(picture.cBits) + " bits per pixel, sent as " +
                     std::to_string(8 * picture.newX) + " columns of " +
                     std::to_string(picture.newY) + " bytes\n";
  if (picture.cBits == 4) text += "every other pixel prints black: use 1 or 24 bits per pixel\n";
  return text;
}

}  // namespace

Result check_picture(const std::string& path, const Options& options, PictureUse use) {
  const LoadedBmp loaded = load_bmp(path.c_str());
  if (loaded.fault != BmpFault::kNone) return refused(path, loaded.fault);
  Result result{.text = description(*loaded.geometry), .fields = fields_of(*loaded.geometry)};
  const std::string why = useless(loaded, path, options, use);
  if (why.empty()) return result;
  result.outcome = Outcome::kNotPrintable;
  result.words = path + " " + why;
  return result;
}

}  // namespace cli
