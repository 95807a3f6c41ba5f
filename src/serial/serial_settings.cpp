#include "serial/serial_settings.h"

#include <array>

#include "dispatch/bytes.h"

namespace {

constexpr std::size_t kFields = 5;

/// Splits at the first four commas; the last field keeps whatever follows.
std::optional<std::array<std::string_view, kFields>> split(std::string_view settings) {
  std::array<std::string_view, kFields> fields;
  for (std::size_t i = 0; i + 1 < kFields; ++i) {
    const std::size_t comma = settings.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    fields[i] = first_of(settings, comma);
    settings = rest_of(settings, comma + 1);
  }
  fields[kFields - 1] = settings;
  return fields;
}

/// The number that a field begins with, 0 when there is none. What follows the digits is not
/// looked at: "8bits" is 8.
int leading_number(std::string_view field) {
  constexpr int kTooLarge = 1000000;
  int value = 0;
  for (const char c : field) {
    if (c < '0' || c > '9' || value >= kTooLarge) break;
    value = value * 10 + (c - '0');
  }
  return value;
}

struct Word {
  std::string_view word;
  char code;
};

/// The code of the word that a field begins with, 0 when there is none: "evenly" is "even".
template <std::size_t size>
char leading_word(std::string_view field, const Word (&words)[size]) {
  for (const Word& candidate : words) {
    if (begins_with(field, candidate.word)) return candidate.code;
  }
  return 0;
}

bool is_baud_rate(int baud) {
  // 115200 is a valid setting although the line then runs at 9600; applications depend on it.
  constexpr int kRates[] = {115200, 38400, 19200, 9600, 4800, 2400};
  for (const int rate : kRates) {
    if (baud == rate) return true;
  }
  return false;
}

}  // namespace

std::optional<SerPortSettings> parse_serial_settings(std::string_view settings) {
  constexpr Word kParities[] = {{"none", 'n'}, {"even", 'e'}, {"odd", 'o'}};
  constexpr Word kFlowControls[] = {{"none", 'n'}, {"hdwr", 'h'}};

  const auto fields = split(settings);
  if (!fields) return std::nullopt;
  const auto& [baud_field, parity_field, data_field, stop_field, flow_field] = *fields;
  const int baud = leading_number(baud_field);
  const char parity = leading_word(parity_field, kParities);
  const int data_bits = leading_number(data_field);
  const int stop_bits = leading_number(stop_field);
  const char flow_control = leading_word(flow_field, kFlowControls);

  const bool supported = is_baud_rate(baud) && parity != 0 && (data_bits == 7 || data_bits == 8) &&
                         (stop_bits == 1 || stop_bits == 2) && flow_control != 0;
  if (!supported) return std::nullopt;
  return SerPortSettings{.baud = baud,
                         .parity = parity,
                         .dataBits = static_cast<char>(data_bits),
                         .stopBits = static_cast<char>(stop_bits),
                         .flowControl = flow_control};
}
