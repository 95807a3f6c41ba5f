// Bytes in, in any split, commands out. Knows no descriptor and keeps nothing but an unfinished
// command, so that the same bytes always give the same commands.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "command.h"

namespace virtual_printer {

class CommandParser {
 public:
  // Everything that can be decoded so far, in order.
  std::vector<Decoded> feed(std::string_view bytes);

  // The line has ended: a command that is still unfinished will never be one.
  std::vector<Decoded> finish();

 private:
  std::vector<Decoded> decode_pending(bool more_may_come);

  std::string pending_;
  std::size_t offset_ = 0;  // of the first pending byte
};

}  // namespace virtual_printer
