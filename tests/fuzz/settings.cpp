// Settings of a serial line: accepted is exactly what a second reading of the rules accepts.
#include "serial/serial_settings.h"

#include <regex>
#include <string>

#include "check.h"
#include "input.h"

namespace fuzz {
namespace {

/// The same rules as one expression: a number counts up to its first other character, a word by its
/// beginning, and leading zeros are no part of a number's value.
std::optional<SerPortSettings> second_reading(const std::string& settings) {
  static const std::regex kRules(
      "0*(115200|38400|19200|9600|4800|2400)(?:[^0-9,][^,]*)?,"
      "(none|even|odd)[^,]*,"
      "0*([78])(?:[^0-9,][^,]*)?,"
      "0*([12])(?:[^0-9,][^,]*)?,"
      "(none|hdwr)[^]*");
  std::smatch parts;
  if (!std::regex_match(settings, parts, kRules)) return std::nullopt;
  return SerPortSettings{.baud = std::stoi(parts[1]),
                         .parity = parts[2].str()[0],
                         .dataBits = static_cast<char>(parts[3].str()[0] - '0'),
                         .stopBits = static_cast<char>(parts[4].str()[0] - '0'),
                         .flowControl = parts[5].str()[0]};
}

bool same(const SerPortSettings& a, const SerPortSettings& b) {
  return a.baud == b.baud && a.parity == b.parity && a.dataBits == b.dataBits &&
         a.stopBits == b.stopBits && a.flowControl == b.flowControl;
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  const std::string settings(Input(data, size).rest());
  const auto parsed = parse_serial_settings(settings);
  const auto expected = second_reading(settings);
  check(parsed.has_value() == expected.has_value(), "accepted is what the rules accept");
  if (parsed) check(same(*parsed, *expected), "and means what the rules say");
  return 0;
}
