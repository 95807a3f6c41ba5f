// A dot picture as a PNG of black and white dots that knows its printed size.
#pragma once

#include <string>

#include "dot_image.h"

namespace virtual_printer {

std::string png_of(const DotImage& image);

}  // namespace virtual_printer
