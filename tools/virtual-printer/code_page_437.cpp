#include "code_page_437.h"

#include <string_view>

namespace virtual_printer {
namespace {

constexpr std::uint8_t kFirstOfUpperHalf = 0x80;
constexpr std::uint8_t kFirstBlock = 0xB0;
constexpr std::uint8_t kLastBlock = 0xDF;

// The lower half is ASCII.
constexpr std::u16string_view kUpperHalf =
    u"\u00C7\u00FC\u00E9\u00E2\u00E4\u00E0\u00E5\u00E7\u00EA\u00EB\u00E8\u00EF\u00EE\u00EC\u00C4"
    u"\u00C5"
    u"\u00C9\u00E6\u00C6\u00F4\u00F6\u00F2\u00FB\u00F9\u00FF\u00D6\u00DC\u00A2\u00A3\u00A5\u20A7"
    u"\u0192"
    u"\u00E1\u00ED\u00F3\u00FA\u00F1\u00D1\u00AA\u00BA\u00BF\u2310\u00AC\u00BD\u00BC\u00A1\u00AB"
    u"\u00BB"
    u"\u2591\u2592\u2593\u2502\u2524\u2561\u2562\u2556\u2555\u2563\u2551\u2557\u255D\u255C\u255B"
    u"\u2510"
    u"\u2514\u2534\u252C\u251C\u2500\u253C\u255E\u255F\u255A\u2554\u2569\u2566\u2560\u2550\u256C"
    u"\u2567"
    u"\u2568\u2564\u2565\u2559\u2558\u2552\u2553\u256B\u256A\u2518\u250C\u2588\u2584\u258C\u2590"
    u"\u2580"
    u"\u03B1\u00DF\u0393\u03C0\u03A3\u03C3\u00B5\u03C4\u03A6\u0398\u03A9\u03B4\u221E\u03C6\u03B5"
    u"\u2229"
    u"\u2261\u00B1\u2265\u2264\u2320\u2321\u00F7\u2248\u00B0\u2219\u00B7\u221A\u207F\u00B2\u25A0"
    u"\u00A0";
static_assert(kUpperHalf.size() == 0x80);

// UTF-8 puts six bits into each byte but the first.
constexpr unsigned kTwoByteLead = 0xC0;
constexpr unsigned kThreeByteLead = 0xE0;
constexpr unsigned kContinuation = 0x80;
constexpr unsigned kContinuationMask = 0x3F;
constexpr unsigned kFirstThreeByteCharacter = 0x800;

char byte_of(unsigned value) {
  return static_cast<char>(value);
}

}  // namespace

std::string utf8_of_code_page_437(std::uint8_t character) {
  if (character < kFirstOfUpperHalf) return {static_cast<char>(character)};
  const unsigned code = kUpperHalf[character - std::size_t{kFirstOfUpperHalf}];
  const char last = byte_of(kContinuation | (code & kContinuationMask));
  if (code < kFirstThreeByteCharacter) return {byte_of(kTwoByteLead | (code >> 6U)), last};
  return {byte_of(kThreeByteLead | (code >> 12U)),
          byte_of(kContinuation | ((code >> 6U) & kContinuationMask)), last};
}

bool fills_its_cell(std::uint8_t character) {
  return character >= kFirstBlock && character <= kLastBlock;
}

}  // namespace virtual_printer
