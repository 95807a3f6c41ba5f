// What the printer remembers when its process has ended.
#pragma once

#include <string>

#include "identity.h"

namespace virtual_printer {

// A missing file is made, so that one that cannot be written is an error now and not when a till
// stores a number. Without a file name the printer is as it left the factory.
Identity open_memory(const std::string& path);

// The file is there whole or as it was. Without a file name nothing is kept.
void write_memory(const std::string& path, const std::string& serial_number);

}  // namespace virtual_printer
