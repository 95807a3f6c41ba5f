// The grammar of the escape sequences in text: ESC '|' [digits] [lower-case letter] letter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

inline constexpr char kEsc = '\x1b';
inline constexpr std::string_view kEscapeStart = "\x1b|";

struct EscapeSequence {
  int32_t number = 0;    ///< the digits' value, at most 2147483647; 0 when there are none
  char modifier = 0;     ///< the lower-case letter; 0 when there is none
  bool reverse = false;  ///< the modifier is "rv", before a 'C'
  char command = 0;      ///< the byte after all that; 0 where the text ends
  std::size_t end = 0;   ///< index of the byte after the command
};

/// Parses the sequence whose ESC stands at index `start` of the text.
EscapeSequence parse_escape(std::string_view text, std::size_t start);
