#include "png.h"

#include <cairo.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>

namespace virtual_printer {
namespace {

constexpr double kDotMetres = 0.141e-3;

// The size chunk has to stand right behind the signature and the header chunk.
constexpr std::size_t kHeaderEnd = 8 + 25;
constexpr std::uint8_t kUnitMetre = 1;
constexpr std::uint32_t kCrcPolynomial = 0xEDB88320;
constexpr std::uint32_t kAllOnes = 0xFFFFFFFF;
constexpr unsigned kBitsPerWord = 32;

// Cairo writes a picture of one channel as shades of grey; these two are all that occur.
constexpr unsigned char kInk = 0;
constexpr unsigned char kPaper = 255;

struct SurfaceDeleter {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

std::uint32_t crc_of(const std::string& bytes) {
  std::uint32_t crc = kAllOnes;
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? kCrcPolynomial : 0U);
    }
  }
  return crc ^ kAllOnes;
}

std::string big_endian(std::uint32_t value) {
  std::string bytes;
  for (unsigned shift = kBitsPerWord; shift > 0; shift -= 8) {
    bytes += static_cast<char>(value >> (shift - 8));
  }
  return bytes;
}

std::string printed_size_chunk() {
  const auto dots_per_metre = static_cast<std::uint32_t>(std::lround(1 / kDotMetres));
  const std::string data =
      big_endian(dots_per_metre) + big_endian(dots_per_metre) + static_cast<char>(kUnitMetre);
  const std::string typed = "pHYs" + data;
  return big_endian(static_cast<std::uint32_t>(data.size())) + typed + big_endian(crc_of(typed));
}

void copy_dots(const DotImage& image, cairo_surface_t* surface) {
  unsigned char* row = cairo_image_surface_get_data(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  for (int y = 0; y < image.height(); ++y, row += stride) {
    for (int x = 0; x < image.width(); ++x) {
      row[x] = image.ink(x, y) ? kInk : kPaper;
    }
  }
  cairo_surface_mark_dirty(surface);
}

cairo_status_t append(void* target, const unsigned char* bytes, unsigned length) {
  static_cast<std::string*>(target)->append(bytes, bytes + length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

std::string png_of(const DotImage& image) {
  const std::unique_ptr<cairo_surface_t, SurfaceDeleter> surface(
      cairo_image_surface_create(CAIRO_FORMAT_A8, image.width(), image.height()));
  if (cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS) copy_dots(image, surface.get());
  std::string png;
  const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), append, &png);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw std::runtime_error(std::string("cannot make a picture: ") +
                             cairo_status_to_string(status));
  }
  return png.insert(kHeaderEnd, printed_size_chunk());
}

}  // namespace virtual_printer
