// A region of firmware that a till downloads. This printer checks it and goes on as it is.
#pragma once

#include <string>
#include <string_view>

namespace virtual_printer {

struct FirmwareCheck {
  bool good;
  std::string words;  // for people: which region, and what is right or wrong
};

// The block is the region's letter, its size in units of 64 KiB, two zeros, its bytes, and their
// exclusive-or.
FirmwareCheck check_firmware(std::string_view block);

}  // namespace virtual_printer
