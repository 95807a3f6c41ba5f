#include "memory.h"

#include <utility>
#include <variant>

#include "command_parser.h"

namespace virtual_printer {

std::string commands_for(const Memory& memory) {
  return "\x1d#" + serial_number_content(memory.identity) + "\x1cq" + memory.images;
}

std::optional<Memory> memory_after(std::string_view commands) {
  Memory memory;
  CommandParser parser;
  parser.feed(commands);
  while (auto decoded = parser.next(Expectation::kNothing)) {
    auto* const command = std::get_if<Command>(&*decoded);
    if (command == nullptr) return std::nullopt;
    if (command->kind == CommandKind::kStoreImages) {
      memory.images = std::move(command->data);
    } else if (command->kind != CommandKind::kStoreSerialNumber ||
               !store_serial_number(command->data, memory.identity)) {
      return std::nullopt;
    }
  }
  return memory;
}

}  // namespace virtual_printer
