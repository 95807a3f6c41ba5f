// BMP files in tests: written byte by byte, and what must print of them, dot by dot.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

namespace pictures {

/// The depths that the library takes.
inline constexpr int kDepths[] = {1, 4, 8, 16, 24, 32};

inline constexpr std::string_view kBlackFirst{"\0\0\0\0\xff\xff\xff\0", 8};
inline constexpr std::string_view kWhiteFirst{"\xff\xff\xff\0\0\0\0\0", 8};

/// The lowest `count` bytes of a number, the lowest first.
inline std::string little_endian(std::int64_t number, int count) {
  std::string bytes;
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(number >> (8 * i));
  return bytes;
}

/// A file in the making. What is given of the headers goes out as it is, however wrong.
struct Bmp {
  std::int32_t width = 1;
  std::int32_t height = 1;
  int bits = 1;
  std::string palette = {};  ///< four bytes for each colour
  std::string pixels = {};   ///< all rows as they are stored
  std::string type = "BM";
  std::int64_t offset = -1;  ///< of the pixels; -1: where they are
  std::int64_t size = -1;    ///< of the file; -1: what it is

  std::int64_t pixels_at() const {
    return offset >= 0 ? offset : 54 + static_cast<std::int64_t>(palette.size());
  }

  std::string file() const {
    const auto whole = static_cast<std::int64_t>(54 + palette.size() + pixels.size());
    return type + little_endian(size >= 0 ? size : whole, 4) + little_endian(0, 4) +
           little_endian(pixels_at(), 4) + little_endian(40, 4) + little_endian(width, 4) +
           little_endian(height, 4) + little_endian(1, 2) + little_endian(bits, 2) +
           std::string(24, '\0') + palette + pixels;
  }
};

/// Bytes from one pixel row to the next, as the library takes them.
inline int stride(const Bmp& bmp) {
  return bmp.bits == 8 ? bmp.width : (bmp.bits * bmp.width + 31) / 32 * 4;
}

/// A picture of random pixels, and colours for the depths that have them.
inline Bmp random_bmp(int width, int height, int bits, std::string_view palette,
                      std::mt19937& random) {
  Bmp bmp{.width = width, .height = height, .bits = bits};
  if (bits <= 8) bmp.palette = palette;
  const int size = stride(bmp) * height;
  for (int i = 0; i < size; ++i) bmp.pixels += static_cast<char>(random());
  return bmp;
}

/// Whether a 24- or 32-bit pixel prints black: the sum, cut off once. Extended precision has room
/// for all 64 bits of it; here they are a whole number, the same on a machine that has no such
/// precision.
inline bool black_by_exact_sum(unsigned b0, unsigned b1, unsigned b2) {
  // Each weight is a double, and a multiple of 2^-56.
  constexpr auto kWeight0 = static_cast<std::uint64_t>(0.114 * 0x1p56);
  constexpr auto kWeight1 = static_cast<std::uint64_t>(0.587 * 0x1p56);
  constexpr auto kWeight2 = static_cast<std::uint64_t>(0.299 * 0x1p56);
  return (b0 * kWeight0 + b1 * kWeight1 + b2 * kWeight2) >> 56 <= 127;
}

/// Whether a 16-bit pixel prints black: three products, each cut off by itself.
inline bool black_by_three_products(unsigned char first_byte, unsigned char second_byte) {
  // As signed numbers of eight bits.
  const int first = (first_byte ^ 0x80) - 0x80;
  const int second = (second_byte ^ 0x80) - 0x80;
  const int blue = static_cast<int>(((first >> 3) & 0x1f) * 0.114);
  const int green = static_cast<int>((((first * 8) | (second >> 5)) & 0x3f) * 0.587);
  const int red = static_cast<int>((second & 0x1f) * 0.229);
  return blue + green + red <= 16;
}

/// Whether the dot prints black that stands `x` from the left and `y` from the top; both lie in
/// the picture, which is stored lowest row first.
inline bool prints_black(const Bmp& bmp, int x, int y) {
  const int row = (bmp.height - 1 - y) * stride(bmp);
  const auto byte = [&](int i) {
    return static_cast<unsigned char>(
        bmp.pixels[static_cast<std::size_t>(row) + static_cast<std::size_t>(i)]);
  };
  switch (bmp.bits) {
    case 1: {
      const bool set = ((byte(x / 8) >> (7 - x % 8)) & 1) != 0;
      return set != (bmp.palette.substr(0, 3) == std::string(3, '\0'));
    }
    case 4:
      return x % 2 == 0 || byte(x / 2) % 16 <= 7;
    case 8:
      return byte(x) <= 127;
    case 16:
      return black_by_three_products(byte(2 * x), byte(2 * x + 1));
    default: {
      const int at = bmp.bits / 8 * x;
      return black_by_exact_sum(byte(at), byte(at + 1), byte(at + 2));
    }
  }
}

/// Units of eight dots, at least one.
inline int eights(int dots) {
  return dots <= 7 ? 1 : (dots + 7) / 8;
}

/// What must be sent of a picture: for each column from left to right its bytes from top to bottom,
/// the uppermost dot on top of each.
inline std::string columns_of(const Bmp& bmp) {
  std::string columns;
  for (int x = 0; x < 8 * eights(bmp.width); ++x) {
    for (int band = 0; band < eights(bmp.height); ++band) {
      unsigned byte = 0;
      for (int y = 8 * band; y < 8 * band + 8; ++y) {
        const bool inside = x < bmp.width && y < bmp.height;
        byte = byte * 2 + (inside && prints_black(bmp, x, y) ? 1 : 0);
      }
      columns += static_cast<char>(byte);
    }
  }
  return columns;
}

/// A file of these bytes, in memory, for as long as it lives.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view content)
      : descriptor_(memfd_create("picture", MFD_CLOEXEC)),
        path_("/proc/self/fd/" + std::to_string(descriptor_)) {
    std::ofstream(path_, std::ios::binary)
        .write(content.data(), static_cast<std::streamsize>(content.size()));
  }
  ~TemporaryFile() { ::close(descriptor_); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const char* path() const { return path_.c_str(); }

 private:
  int descriptor_;
  std::string path_;
};

}  // namespace pictures
