// Text as JSON has it.
#pragma once

#include <string>
#include <string_view>

namespace virtual_printer {

// UTF-8 in, a JSON string with its quotes out.
std::string json_string(std::string_view text);

}  // namespace virtual_printer
