// Commands in words, for people who want to know what a till sends.
#pragma once

#include <string>
#include <string_view>

#include "command.h"

namespace virtual_printer {

std::string words_for(const Decoded& decoded);

// Bytes of code page 437 in quotes, control characters as \x1B; of long data the beginning.
std::string in_quotes(std::string_view bytes);

}  // namespace virtual_printer
