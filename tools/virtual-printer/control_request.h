// What a command line asks of a running printer, as words.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "conditions.h"
#include "line_faults.h"

namespace virtual_printer {

struct ConditionChange {
  Condition condition{};
  bool on = false;

  bool operator==(const ConditionChange&) const = default;
};

struct SettingChange {
  const LineSetting* setting = nullptr;
  int value = 0;

  bool operator==(const SettingChange&) const = default;
};

struct StatusQuery {
  bool operator==(const StatusQuery&) const = default;
};

using ControlRequest = std::variant<StatusQuery, ConditionChange, SettingChange, ScriptedFault>;

// "status", "set NAME VALUE", or "fault" and a scripted fault, which counts from the request on.
std::optional<ControlRequest> parse_control_request(std::string_view text);

// All that NAME may be, for people.
std::string names_that_can_be_set();

}  // namespace virtual_printer
