// Where a running printer keeps what others reach it by.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <string>

namespace virtual_printer {

// A path that ends like that, in $XDG_RUNTIME_DIR, or else in /tmp.
inline std::string runtime_path(const std::string& end) {
  const char* const folder = std::getenv("XDG_RUNTIME_DIR");
  if (folder != nullptr && *folder != '\0') return std::string(folder) + "/virtual-printer" + end;
  return "/tmp/virtual-printer-" + std::to_string(geteuid()) + end;
}

}  // namespace virtual_printer
