#include "text/escapes.h"

#include <limits>

namespace {

constexpr bool is_digit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool is_lower(char c) {
  return c >= 'a' && c <= 'z';
}

/// The byte at an index; 0 where the text ends, as behind a C string.
constexpr char byte_at(std::string_view text, std::size_t index) {
  return index < text.size() ? text[index] : '\0';
}

constexpr int32_t append_digit(int32_t number, char digit) {
  constexpr int32_t kLargest = std::numeric_limits<int32_t>::max();
  const int32_t value = digit - '0';
  return number > (kLargest - value) / 10 ? kLargest : number * 10 + value;
}

}  // namespace

EscapeSequence parse_escape(std::string_view text, std::size_t start) {
  EscapeSequence sequence;
  std::size_t index = start + kEscapeStart.size();
  for (; is_digit(byte_at(text, index)); ++index) {
    sequence.number = append_digit(sequence.number, text[index]);
  }
  if (is_lower(byte_at(text, index))) {
    sequence.modifier = text[index++];
    sequence.reverse =
        sequence.modifier == 'r' && byte_at(text, index) == 'v' && byte_at(text, index + 1) == 'C';
    if (sequence.reverse) ++index;
  }
  sequence.command = byte_at(text, index);
  sequence.end = index + 1;
  return sequence;
}
