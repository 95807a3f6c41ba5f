// The files of the page, as they are in the folder `page`.
#pragma once

#include <array>
#include <string_view>

namespace virtual_printer {

struct PageFile {
  const char* path;  // a regular expression
  const char* type;
  std::string_view content;
};

extern const std::array<PageFile, 3> kPageFiles;

}  // namespace virtual_printer
