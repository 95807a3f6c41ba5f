// Symbols that scanners read: what they say, as dots.
#pragma once

#include <string>
#include <string_view>

#include "dot_image.h"

namespace virtual_printer {

struct Symbol {
  std::string caption;  // what it is and says, for people
  std::string text;     // the characters that stand above or below a linear one
  DotImage dots;
};

// All throw Refused for what cannot be encoded. The symbology is a letter, A to I.
Symbol linear_symbol(char symbology, std::string_view data, int module_dots, int bar_dots);

// Without a number of columns, as many as suit the data and fit the paper.
Symbol pdf417_symbol(std::string_view data, int columns, int module_dots);

enum class QrModel { kOne = 1, kTwo, kMicro };

// Levels of error correction count from 0.
Symbol qr_code_symbol(std::string_view data, QrModel model, int level, int module_dots);

}  // namespace virtual_printer
