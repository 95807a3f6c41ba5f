// Whether the library would print a picture's file, and how, by its own rules.
#pragma once

#include <string>

#include "options.h"
#include "outcome.h"

namespace cli {

// Printed at once, or stored in the printer, where the size is not bounded by the library.
enum class PictureUse { kPrint, kStore };

// Outcome kDone; or kBadFile or kNotPrintable and why. The fields have what is known.
Result check_picture(const std::string& path, const Options& options, PictureUse use);

}  // namespace cli
