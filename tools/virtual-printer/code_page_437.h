// The printer's character set.
#pragma once

#include <cstdint>
#include <string>

namespace virtual_printer {

// The character of a printable byte (0x20 and above) in UTF-8.
std::string utf8_of_code_page_437(std::uint8_t character);

// Frames, shades and blocks: characters that are meant to touch their neighbours.
bool fills_its_cell(std::uint8_t character);

}  // namespace virtual_printer
