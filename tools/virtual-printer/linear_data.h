// What a till sends for a linear symbol, as what the symbol says.
#pragma once

#include <string>
#include <string_view>

namespace virtual_printer {

struct LinearData {
  int encoder;       // zint's number for the symbology
  std::string data;  // with start and stop where the symbology lets one choose them
};

// The symbology is a letter, A to I.
std::string_view name_of_symbology(char symbology);

// Throws Refused.
LinearData linear_data(char symbology, std::string_view sent);

}  // namespace virtual_printer
