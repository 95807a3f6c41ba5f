// What the printer says of itself.
#pragma once

#include <string>
#include <string_view>

namespace virtual_printer {

struct Identity {
  std::string serial_number = "VP0000001";

  bool operator==(const Identity&) const = default;
};

std::string version_reply();
std::string serial_number_reply(const Identity& identity);

// The content of a command that writes the serial number: its count, "_", the number, and the
// exclusive-or of "_" and the number. Storing it fails when that does not agree.
std::string serial_number_content(const Identity& identity);
bool store_serial_number(std::string_view content, Identity& identity);

std::string acknowledgement(bool stored);

// Of all bytes.
char exclusive_or(std::string_view bytes);

// What a self-test prints, in the printer's own commands; the page is 1 or 2.
std::string self_test_page(int page, const Identity& identity);

}  // namespace virtual_printer
