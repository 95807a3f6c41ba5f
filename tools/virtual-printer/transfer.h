// Reading and writing a descriptor that does not block.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "descriptor.h"

namespace virtual_printer {

struct Received {
  std::string bytes;   // empty: nothing waits
  bool ended = false;  // and nothing will come any more
};

// Throws std::system_error when the descriptor fails in another way than that its other end is
// lost.
Received read_some(const Descriptor& source, std::size_t most);

// How many bytes were taken; none when the other end is lost.
std::size_t write_some(const Descriptor& target, std::string_view bytes);

}  // namespace virtual_printer
