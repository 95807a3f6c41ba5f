// What the printer remembers when its process has ended.
#pragma once

#include <string>

#include "identity.h"

namespace virtual_printer {

// A missing file, or no file name, gives a factory-new printer.
Identity read_memory(const std::string& path);

// The file is there whole or as it was. Without a file name nothing is kept.
void write_memory(const std::string& path, const std::string& serial_number);

}  // namespace virtual_printer
