// What the printer remembers without power.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "identity.h"

namespace virtual_printer {

struct Memory {
  Identity identity;
  std::string images{'\0'};  // as the command that stores them has them: how many, and each

  bool operator==(const Memory&) const = default;
};

// The commands that bring a new printer to that state, and back.
std::string commands_for(const Memory& memory);
std::optional<Memory> memory_after(std::string_view commands);

}  // namespace virtual_printer
