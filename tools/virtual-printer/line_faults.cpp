#include "line_faults.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace virtual_printer {

const LineSetting* line_setting_named(std::string_view name) {
  const auto* const found =
      std::find_if(kLineSettings.begin(), kLineSettings.end(),
                   [&](const LineSetting& setting) { return setting.name == name; });
  return found == kLineSettings.end() ? nullptr : found;
}

std::optional<int> parse_value(const LineSetting& setting, std::string_view text) {
  if (text == "off") return 0;
  if (setting.is_switch()) return text == "on" ? std::optional(1) : std::nullopt;
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool good = error == std::errc() && end == text.data() + text.size() && value >= 0 &&
                    value <= setting.most;
  return good ? std::optional(value) : std::nullopt;
}

std::string value_in_words(const LineSetting& setting, const LineFaults& faults) {
  const int value = faults.*setting.value;
  if (value == 0) return "off";
  return setting.is_switch() ? "on" : std::to_string(value);
}

}  // namespace virtual_printer
