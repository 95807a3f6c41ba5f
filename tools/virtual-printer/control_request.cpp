#include "control_request.h"

#include <algorithm>

namespace virtual_printer {
namespace {

constexpr std::string_view kStatus = "status";
constexpr std::string_view kSet = "set ";
constexpr std::string_view kFault = "fault ";

std::optional<ControlRequest> parse_change(std::string_view name, std::string_view value) {
  if (const auto condition = condition_named(name)) {
    if (value != "on" && value != "off") return std::nullopt;
    return ConditionChange{*condition, value == "on"};
  }
  const LineSetting* const setting = line_setting_named(name);
  if (setting == nullptr) return std::nullopt;
  const auto number = parse_value(*setting, value);
  return number ? std::optional<ControlRequest>(SettingChange{setting, *number}) : std::nullopt;
}

}  // namespace

std::optional<ControlRequest> parse_control_request(std::string_view text) {
  if (text == kStatus) return StatusQuery{};
  if (text.starts_with(kFault)) {
    const auto fault = parse_scripted_fault(text.substr(kFault.size()));
    return fault ? std::optional<ControlRequest>(*fault) : std::nullopt;
  }
  if (!text.starts_with(kSet)) return std::nullopt;
  text.remove_prefix(kSet.size());
  const std::size_t end = std::min(text.find(' '), text.size());
  return parse_change(text.substr(0, end), text.substr(std::min(end + 1, text.size())));
}

std::string names_that_can_be_set() {
  std::string names;
  const auto add = [&](std::string_view name) {
    names += (names.empty() ? "" : ", ") + std::string(name);
  };
  for (const Condition condition : kAllConditions) add(name_of(condition));
  for (const LineSetting& setting : kLineSettings) add(setting.name);
  return names;
}

}  // namespace virtual_printer
