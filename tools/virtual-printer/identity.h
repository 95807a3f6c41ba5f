// What the printer says of itself.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace virtual_printer {

// The count of the command that writes it is one byte, and counts the mark before the number.
inline constexpr std::size_t kLongestSerialNumber = 254;

struct Identity {
  std::string serial_number = "VP0000001";
};

std::string version_reply();
std::string serial_number_reply(const Identity& identity);

// The content of a command that writes the serial number: its count, "_", the number, and the
// exclusive-or of "_" and the number. Returns the acknowledgement.
std::string store_serial_number(std::string_view content, Identity& identity);

// What a self-test prints, in the printer's own commands; the page is 1 or 2.
std::string self_test_page(int page, const Identity& identity);

}  // namespace virtual_printer
