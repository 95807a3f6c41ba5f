// The inner loops with SSSE3, which x86 processors have since 2006: 16 pixels at a time, and
// squares of 16 rows and 16 bytes.
#include "image/bit_kernels.h"

#if defined(__i386__) || defined(__x86_64__)

#include <tmmintrin.h>

#include <cstring>

// Only these functions may use the instructions: the rest of the library runs on every i686.
#define TZV_SSSE3 __attribute__((target("ssse3")))
// 32-bit programs of old compilers call with a stack that does not fit vectors.
#define TZV_SSSE3_ENTRY __attribute__((target("ssse3"), force_align_arg_pointer))

namespace {

constexpr std::size_t kAtOnce = 16;

TZV_SSSE3 inline __m128i load(const void* bytes) {
  return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

/// Stores the bits of 16 pixels. A pixel is white when the top bit of its byte is set.
TZV_SSSE3 inline void store_bits(__m128i white, std::uint8_t* bits) {
  // The mask's bits stand the other way round in each byte.
  const __m128i leftmost_last = _mm_setr_epi8(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8);
  const auto black =
      static_cast<std::uint16_t>(~_mm_movemask_epi8(_mm_shuffle_epi8(white, leftmost_last)));
  std::memcpy(bits, &black, sizeof black);
}

TZV_SSSE3_ENTRY void pack4(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits) {
  // Every second pixel gets a zero byte, which is black.
  const __m128i spread = _mm_setr_epi8(-1, 0, -1, 1, -1, 2, -1, 3, -1, 4, -1, 5, -1, 6, -1, 7);
  for (; width >= kAtOnce; width -= kAtOnce, pixels += kAtOnce / 2, bits += 2) {
    const __m128i pairs =
        _mm_loadl_epi64(static_cast<const __m128i*>(static_cast<const void*>(pixels)));
    store_bits(_mm_shuffle_epi8(_mm_slli_epi16(pairs, 4), spread), bits);
  }
  kPlainKernels.pack4(pixels, width, bits);
}

TZV_SSSE3_ENTRY void pack8(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits) {
  for (; width >= kAtOnce; width -= kAtOnce, pixels += kAtOnce, bits += 2) {
    store_bits(load(pixels), bits);
  }
  kPlainKernels.pack8(pixels, width, bits);
}

/// The factor with which the upper half of a product is that many thousandths, cut off: exactly,
/// for the values of a 16-bit pixel.
constexpr int thousandths(int weight) {
  return weight * 65536 / 1000 + 1;
}
constexpr bool is_exact(int weight) {
  for (int value = 0; value < 64; ++value) {
    if ((value * thousandths(weight)) >> 16 != value * weight / 1000) return false;
  }
  return true;
}

template <int weight>
TZV_SSSE3 inline __m128i weighed(__m128i values) {
  static_assert(is_exact(weight));
  return _mm_mulhi_epu16(values, _mm_set1_epi16(static_cast<short>(thousandths(weight))));
}

/// All ones for each of eight 16-bit pixels that is white.
TZV_SSSE3 inline __m128i white_16(__m128i pixels) {
  const __m128i five_bits = _mm_set1_epi16(0x1f), six_bits = _mm_set1_epi16(0x3f);
  const __m128i blue = _mm_and_si128(_mm_srli_epi16(pixels, 3), five_bits);
  const __m128i green =
      _mm_and_si128(_mm_or_si128(_mm_slli_epi16(pixels, 3), _mm_srai_epi16(pixels, 13)), six_bits);
  const __m128i red = _mm_and_si128(_mm_srli_epi16(pixels, 8), five_bits);
  const __m128i poly =
      _mm_add_epi16(_mm_add_epi16(weighed<114>(blue), weighed<587>(green)), weighed<229>(red));
  return _mm_cmpgt_epi16(poly, _mm_set1_epi16(16));
}

TZV_SSSE3_ENTRY void pack16(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits) {
  for (; width >= kAtOnce; width -= kAtOnce, pixels += 2 * kAtOnce, bits += 2) {
    store_bits(_mm_packs_epi16(white_16(load(pixels)), white_16(load(pixels + 16))), bits);
  }
  kPlainKernels.pack16(pixels, width, bits);
}

/// All ones for each of four pixels that is white; `b01` has the first two bytes of each, `b2` the
/// third, as 16-bit numbers.
TZV_SSSE3 inline __m128i white_rgb(__m128i b01, __m128i b2) {
  const __m128i sum = _mm_add_epi32(_mm_madd_epi16(b01, _mm_set1_epi32(114 + (587 << 16))),
                                    _mm_madd_epi16(b2, _mm_set1_epi32(299)));
  return _mm_cmpgt_epi32(sum, _mm_set1_epi32(128000));
}

/// The same for four pixels in memory, of which 16 bytes are read.
template <int pixel_bytes>
TZV_SSSE3 inline __m128i white_quad(const std::uint8_t* pixels) {
  constexpr char p = pixel_bytes, q = 2 * p, r = 3 * p;
  const __m128i bytes = load(pixels);
  return white_rgb(_mm_shuffle_epi8(bytes, _mm_setr_epi8(0, -1, 1, -1, p, -1, p + 1, -1, q, -1,
                                                         q + 1, -1, r, -1, r + 1, -1)),
                   _mm_shuffle_epi8(bytes, _mm_setr_epi8(2, -1, -1, -1, p + 2, -1, -1, -1, q + 2,
                                                         -1, -1, -1, r + 2, -1, -1, -1)));
}

template <int pixel_bytes>
TZV_SSSE3_ENTRY void pack_rgb(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits,
                              PackRow& plain) {
  constexpr std::size_t quad = 4 * std::size_t{pixel_bytes};
  // The last four of 24 bits are read with a pixel and a third of what follows.
  constexpr std::size_t needed = (3 * quad + 16 + pixel_bytes - 1) / pixel_bytes;
  for (; width >= needed; width -= kAtOnce, pixels += 4 * quad, bits += 2) {
    const __m128i left =
        _mm_packs_epi32(white_quad<pixel_bytes>(pixels), white_quad<pixel_bytes>(pixels + quad));
    const __m128i right = _mm_packs_epi32(white_quad<pixel_bytes>(pixels + 2 * quad),
                                          white_quad<pixel_bytes>(pixels + 3 * quad));
    store_bits(_mm_packs_epi16(left, right), bits);
  }
  plain(pixels, width, bits);
}

void pack24(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits) {
  pack_rgb<3>(pixels, width, bits, kPlainKernels.pack24);
}

void pack32(const std::uint8_t* pixels, std::size_t width, std::uint8_t* bits) {
  pack_rgb<4>(pixels, width, bits, kPlainKernels.pack32);
}

struct Square {
  __m128i rows[16];
};

/// Interleaves the upper and the lower half of the rows.
TZV_SSSE3 inline void interleave(const Square& from, Square& to) {
  for (std::size_t i = 0; i < 8; ++i) {
    to.rows[2 * i] = _mm_unpacklo_epi8(from.rows[i], from.rows[i + 8]);
    to.rows[2 * i + 1] = _mm_unpackhi_epi8(from.rows[i], from.rows[i + 8]);
  }
}

/// Turns 16 rows of 16 bytes into 128 columns of two bands.
TZV_SSSE3 inline void transpose_square(const BitRows& rows, std::size_t byte, std::size_t band,
                                       const BitColumns& columns) {
  Square square, other;
  // Upside down within each band, so that the mask below has the uppermost dot on top.
  for (std::size_t i = 0; i < 16; ++i) {
    square.rows[i] = load(rows.from_top(8 * band + (i ^ 7)) + byte);
  }
  // Four interleavings transpose the bytes.
  interleave(square, other);
  interleave(other, square);
  interleave(square, other);
  interleave(other, square);
  std::uint8_t* column = columns.at(8 * byte, band);
  for (__m128i bits : square.rows) {
    for (int i = 0; i < 8; ++i, column += columns.bands, bits = _mm_add_epi8(bits, bits)) {
      const auto dots = static_cast<std::uint16_t>(_mm_movemask_epi8(bits));
      std::memcpy(column, &dots, sizeof dots);
    }
  }
}

TZV_SSSE3_ENTRY void transpose(const BitRows& rows, std::size_t bytes, const BitColumns& columns) {
  const std::size_t square_bytes = bytes - bytes % 16;
  const std::size_t square_bands = rows.count / 16 * 2;
  for (std::size_t byte = 0; byte < square_bytes; byte += 16) {
    for (std::size_t band = 0; band < square_bands; band += 2) {
      transpose_square(rows, byte, band, columns);
    }
  }
  transpose_part(rows, 0, square_bytes, square_bands, columns.bands, columns);
  transpose_part(rows, square_bytes, bytes, 0, columns.bands, columns);
}

constexpr BitKernels kSsse3Kernels{pack4, pack8, pack16, pack24, pack32, transpose};

}  // namespace

const BitKernels* vector_kernels() {
  return __builtin_cpu_supports("ssse3") ? &kSsse3Kernels : nullptr;
}

#else

const BitKernels* vector_kernels() {
  return nullptr;
}

#endif
