// Draws a receipt as the print head would burn it.
#pragma once

#include "dot_image.h"
#include "receipt.h"

namespace virtual_printer {

// White rows above the first line and below the last one.
inline constexpr int kPaperMarginDots = 12;

DotImage draw(const Receipt& receipt);

}  // namespace virtual_printer
