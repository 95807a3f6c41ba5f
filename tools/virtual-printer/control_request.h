// What a command line asks of a running printer, as words.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "conditions.h"

namespace virtual_printer {

struct ConditionChange {
  Condition condition{};
  bool on = false;

  bool operator==(const ConditionChange&) const = default;
};

struct ControlRequest {
  std::optional<ConditionChange> change;  // nothing: the status is asked for

  bool operator==(const ControlRequest&) const = default;
};

std::string text_of(const ControlRequest& request);
std::optional<ControlRequest> parse_control_request(std::string_view text);

}  // namespace virtual_printer
