#include "hex.h"

#include <array>
#include <cstdio>

namespace virtual_printer {

std::string hex_of(std::string_view bytes, std::size_t most_shown) {
  std::string text;
  for (const char byte : bytes.substr(0, most_shown)) {
    std::array<char, 4> hex{};
    std::snprintf(hex.data(), hex.size(), " %02X", static_cast<unsigned char>(byte));
    text += hex.data();
  }
  if (bytes.size() > most_shown) text += " ... " + std::to_string(bytes.size()) + " bytes";
  return text.empty() ? text : text.substr(1);
}

}  // namespace virtual_printer
