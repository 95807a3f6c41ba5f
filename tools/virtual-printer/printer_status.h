// The printer's condition and what it answers when asked for it. Automatic reports, the printer's
// identity and the confirmation of a job belong here, too, when they come.
#pragma once

#include <optional>
#include <string>

#include "command.h"

namespace virtual_printer {

struct PrinterCondition {
  bool cover_open = false;
  bool paper_out = false;
};

// The answer to a query, or nothing when the command is none.
std::optional<std::string> reply_to(const Command& command, const PrinterCondition& condition);

}  // namespace virtual_printer
