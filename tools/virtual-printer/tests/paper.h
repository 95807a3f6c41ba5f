// Short ways from bytes to paper, for tests.
#pragma once

#include <string_view>
#include <variant>

#include "command_parser.h"
#include "receipt.h"
#include "typesetter.h"

namespace virtual_printer {

inline constexpr std::string_view kFontBOn{"\x1b!\x01"};
inline constexpr std::string_view kDoubleSizeOn{"\x1b!\x30"};
inline constexpr std::string_view kDoubleWidthOn{"\x1b!\x20"};
inline constexpr std::string_view kPlain{"\x1b!\0", 3};
inline constexpr std::string_view kCentre{"\x1b\x61\x31"};
inline constexpr std::string_view kRight{"\x1b\x61\x32"};
inline constexpr std::string_view kReverseOn{"\x1d\x42\x31"};
inline constexpr std::string_view kUnderlineOne{"\x1b-1"};
inline constexpr std::string_view kUnderlineTwo{"\x1b-2"};
inline constexpr std::string_view kBoldOn{"\x1b\x45\x31"};
inline constexpr std::string_view kCut{"\x1bi"};

// Everything that the bytes print, an open line at their end included.
inline Receipt printed(std::string_view bytes) {
  CommandParser parser;
  Typesetter typesetter;
  parser.feed(bytes);
  while (const auto decoded = parser.next()) typesetter.execute(std::get<Command>(*decoded));
  typesetter.print_open_line();
  return typesetter.tear_off();
}

}  // namespace virtual_printer
