// Draws a receipt as the print head would burn it.
#pragma once

#include "dot_image.h"
#include "receipt.h"

namespace virtual_printer {

class GlyphShapes;

// White rows above the first line and below the last one.
inline constexpr int kPaperMarginDots = 12;

DotImage draw(const Receipt& receipt);

// One line, its upper edge at that row of the image.
void draw_line(GlyphShapes& glyphs, const Line& line, DotImage& image, int top);

}  // namespace virtual_printer
