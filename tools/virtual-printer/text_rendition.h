// The receipt as plain text, for people without a picture viewer and for tests to compare.
#pragma once

#include <string>

#include "receipt.h"

namespace virtual_printer {

// UTF-8, one text line per printed line or feed. Alignment becomes leading spaces, counted in the
// columns of font A, or of font B on a line that is all font B; styles and sizes are not shown.
std::string text_of(const Receipt& receipt);

}  // namespace virtual_printer
