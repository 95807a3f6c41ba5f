#include "firmware.h"

#include <cstddef>

#include "identity.h"

namespace virtual_printer {
namespace {

constexpr std::size_t kHeadLength = 4;

std::size_t length_of_region(char letter) {
  return letter == 'D' ? 0x50000 : 0x80000;
}

}  // namespace

FirmwareCheck check_firmware(std::string_view block) {
  const std::string_view region = block.substr(kHeadLength, block.size() - kHeadLength - 1);
  const bool length_right = region.size() == length_of_region(block.front());
  const bool checksum_right = exclusive_or(region) == block.back();
  const std::string words =
      std::string("firmware ") + block.front() + ' ' + std::to_string(region.size()) + " bytes, " +
      (length_right ? "" : "length wrong, ") + "checksum " + (checksum_right ? "right" : "wrong");
  return {length_right && checksum_right, words};
}

}  // namespace virtual_printer
