// The printer's memory as a file: the commands that would bring a new printer to that state.
#pragma once

#include <string>

#include "memory.h"

namespace virtual_printer {

// A missing file is made, so that one that cannot be written is an error now and not when a till
// stores a number. Without a file name the printer is as it left the factory.
Memory open_memory(const std::string& path);

// The file is there whole or as it was. Without a file name nothing is kept.
void write_memory(const std::string& path, const Memory& memory);

}  // namespace virtual_printer
