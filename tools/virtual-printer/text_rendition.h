// The receipt as plain text, for people without a picture viewer and for tests to compare.
#pragma once

#include <string>

#include "receipt.h"

namespace virtual_printer {

// UTF-8, one text line per printed line or feed. Alignment and gaps become spaces, counted in the
// columns of font A, or of font B on a line that is all font B; styles and sizes are not shown. A
// picture or symbol is its caption in brackets, which has the characters that stand with a symbol.
std::string text_of(const Receipt& receipt);
std::string text_of(const Line& line);  // without its end

}  // namespace virtual_printer
