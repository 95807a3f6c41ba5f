#include "identity.h"

#include <numeric>

namespace virtual_printer {
namespace {

constexpr std::string_view kMark = "_";
constexpr std::string_view kModel = "VIRTUAL";  // seven bytes: the version's place is fixed
constexpr std::string_view kVersion = "1.00";
constexpr std::string_view kStored = "0";
constexpr std::string_view kNotStored = "1";

static_assert(kModel.size() == 7);

// Before the number stand its count and the mark.
constexpr std::size_t kNumberOffset = 2;

// Every character that prints, 32 to the line.
std::string character_table() {
  std::string table;
  for (int code = 0x20; code <= 0xff; ++code) {
    if (code != 0x7f) table += static_cast<char>(code);
    if (code % 32 == 31) table += '\n';
  }
  return table;
}

}  // namespace

std::string version_reply() {
  return std::string(kMark) + std::string(kModel) + "V" + std::string(kVersion);
}

std::string serial_number_reply(const Identity& identity) {
  return std::string(kMark) + identity.serial_number;
}

std::string serial_number_content(const Identity& identity) {
  const std::string summed = serial_number_reply(identity);
  return static_cast<char>(summed.size()) + summed + exclusive_or(summed);
}

bool store_serial_number(std::string_view content, Identity& identity) {
  const std::string_view summed = content.substr(1, content.size() - 2);
  if (exclusive_or(summed) != content.back()) return false;
  identity.serial_number = content.substr(kNumberOffset, content.size() - kNumberOffset - 1);
  return true;
}

std::string acknowledgement(bool stored) {
  return std::string(stored ? kStored : kNotStored);
}

char exclusive_or(std::string_view bytes) {
  return static_cast<char>(std::accumulate(bytes.begin(), bytes.end(), 0,
                                           [](int sum, char byte) { return sum ^ byte; }));
}

// It begins with an initialise, lest the till's settings disfigure it, and ends with a cut.
std::string self_test_page(int page, const Identity& identity) {
  std::string text = "\x1b@SELF TEST " + std::to_string(page) + "\n\n";
  if (page == 1) {
    text += "Model         " + std::string(kModel) + "\nVersion       " + std::string(kVersion) +
            "\nSerial number " + identity.serial_number + "\n";
  } else {
    text += character_table();
  }
  return text + "\n\x1bm";
}

}  // namespace virtual_printer
