#include "control_request.h"

namespace virtual_printer {
namespace {

constexpr std::string_view kStatus = "status";
constexpr std::string_view kSet = "set ";
constexpr std::string_view kOn = " on";
constexpr std::string_view kOff = " off";

}  // namespace

std::string text_of(const ControlRequest& request) {
  if (!request.change) return std::string(kStatus);
  return std::string(kSet) + std::string(name_of(request.change->condition)) +
         std::string(request.change->on ? kOn : kOff);
}

std::optional<ControlRequest> parse_control_request(std::string_view text) {
  if (text == kStatus) return ControlRequest{};
  if (!text.starts_with(kSet)) return std::nullopt;
  text.remove_prefix(kSet.size());
  const bool on = text.ends_with(kOn);
  if (!on && !text.ends_with(kOff)) return std::nullopt;
  text.remove_suffix(on ? kOn.size() : kOff.size());
  const auto condition = condition_named(text);
  if (!condition) return std::nullopt;
  return ControlRequest{ConditionChange{*condition, on}};
}

}  // namespace virtual_printer
