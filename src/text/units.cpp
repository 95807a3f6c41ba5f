#include "text/units.h"

#include "tzvio.h"

namespace {

// Each constant is an IEEE double first and widened then, and the arithmetic is extended, so that
// every compiler finds the same dot.
constexpr double kDotPitchMm = 0.141;
constexpr double kMmPerInch = 25.4;
constexpr double kTwipsPerInch = 1440.0;
constexpr double kMmPerThousandthInch = 0.0254;
constexpr double kMmPerHundredth = 0.01;
constexpr double kHalf = 0.5;

int32_t round_to_dots(long double millimetres) {
  return static_cast<int32_t>(millimetres / kDotPitchMm + kHalf);
}

}  // namespace

int32_t to_dots(int32_t length, int32_t map_mode) {
  const long double value = length;
  switch (map_mode) {
    case TZV_MAP_DOTS:
      return length;
    case TZV_MAP_TWIPS:
      return round_to_dots(value / kTwipsPerInch * kMmPerInch);
    case TZV_MAP_ENGLISH:
      return round_to_dots(value * kMmPerThousandthInch);
    case TZV_MAP_METRIC:
      return round_to_dots(value * kMmPerHundredth);
    default:
      return 0;
  }
}
