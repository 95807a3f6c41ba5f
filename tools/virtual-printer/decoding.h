// Captured bytes in words, as `virtual-printer decode` prints them.
#pragma once

#include <functional>
#include <istream>

#include "transcript.h"

namespace virtual_printer {

// All that the bytes are, in their order. A capture has no silences and no connections, so a broken
// frame ends where the input does or where the printer gives it up, and whatever is unfinished
// then is said to be.
void decode_capture(std::istream& capture, const std::function<void(const TranscriptEntry&)>& put);

}  // namespace virtual_printer
