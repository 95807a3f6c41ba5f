// Emptying the large buffers of a transport.
#pragma once

#include <cstddef>

/// Makes all of the bytes read as zero, whoever wrote them. They lie in a variable that began as
/// zero: whole pages of it are given back to the system, which hands out zeros in their place, so
/// the cost is that of the pages that were written, not of the bytes.
void clear_pages(char* bytes, std::size_t size);
