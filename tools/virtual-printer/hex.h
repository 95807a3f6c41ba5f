// Bytes for people.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace virtual_printer {

// "1B 7C". Of more than that many bytes the beginning says what they are: "1B 7C ... 40 bytes".
std::string hex_of(std::string_view bytes, std::size_t most_shown);

}  // namespace virtual_printer
