#include "json.h"

#include <array>
#include <cstdio>

namespace virtual_printer {

std::string json_string(std::string_view text) {
  constexpr unsigned char kFirstPrintable = 0x20;
  std::string json = "\"";
  for (const char byte : text) {
    if (byte == '"' || byte == '\\') {
      json += '\\';
      json += byte;
    } else if (static_cast<unsigned char>(byte) < kFirstPrintable) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned char>(byte));
      json += escape.data();
    } else {
      json += byte;
    }
  }
  return json + '"';
}

}  // namespace virtual_printer
