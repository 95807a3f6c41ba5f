#include "conditions.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace virtual_printer {
namespace {

constexpr char kBytesMark = 'B';

// By the value of Condition.
constexpr std::array<std::string_view, kAllConditions.size()> kNames{
    "cover",           "paper-out",         "near-end",  "jam",
    "drawer",          "offline",           "power-off", "mark",
    "connection-lost", "connection-closed", "busy",      "takes-nothing",
    "claim-refused",   "nibble-refused",
};

}  // namespace

std::string_view name_of(Condition condition) {
  return kNames[static_cast<std::size_t>(condition)];
}

bool is_reported(Condition condition) {
  return condition < Condition::kMarkSeen;
}

std::optional<Condition> condition_named(std::string_view name) {
  const auto* const found =
      std::find_if(kAllConditions.begin(), kAllConditions.end(),
                   [&](Condition condition) { return name_of(condition) == name; });
  return found == kAllConditions.end() ? std::nullopt : std::optional(*found);
}

bool Conditions::set(Condition condition, bool present) {
  if (has(condition) == present) return false;
  present_[index_of(condition)] = present;
  return true;
}

bool Conditions::stop_printing() const {
  return has(Condition::kCoverOpen) || has(Condition::kPaperOut) || has(Condition::kCutterJam) ||
         has(Condition::kOffline);
}

std::optional<ScriptedFault> parse_scripted_fault(std::string_view text) {
  const std::size_t mark = text.find('@');
  if (mark == std::string_view::npos) return std::nullopt;
  const auto condition = condition_named(text.substr(0, mark));
  std::string_view number = text.substr(mark + 1);
  const bool bytes = number.ends_with(kBytesMark);
  if (bytes) number.remove_suffix(1);
  std::size_t after = 0;
  const char* const number_end = number.data() + number.size();
  const auto [end, error] = std::from_chars(number.data(), number_end, after);
  if (!condition || error != std::errc() || end != number_end) return std::nullopt;
  return ScriptedFault{*condition, after,
                       bytes ? ScriptedFault::Unit::kBytes : ScriptedFault::Unit::kLines};
}

}  // namespace virtual_printer
