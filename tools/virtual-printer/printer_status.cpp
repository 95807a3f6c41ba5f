#include "printer_status.h"

#include <initializer_list>

namespace virtual_printer {
namespace {

using namespace std::string_literals;

// The bits in which a status byte shows a condition.
struct ConditionBits {
  Condition condition;
  unsigned bits;
};

unsigned bits_of(const Conditions& conditions, std::initializer_list<ConditionBits> table) {
  unsigned bits = 0;
  for (const ConditionBits& row : table) {
    if (conditions.has(row.condition)) bits |= row.bits;
  }
  return bits;
}

// The drawer's signal and whether the printer prints: in the first status and the first byte of a
// report alike.
unsigned printer_bits(const Conditions& conditions) {
  constexpr unsigned kDrawerClosed = 0x04;
  constexpr unsigned kOffline = 0x08;
  return (conditions.has(Condition::kDrawerOpen) ? 0U : kDrawerClosed) |
         (conditions.stop_printing() ? kOffline : 0U);
}

unsigned real_time_bits(std::uint8_t which, const Conditions& conditions) {
  switch (which) {
    case 1:
      return printer_bits(conditions);
    case 2:  // why it is offline
      return bits_of(conditions, {{Condition::kCoverOpen, 0x04},
                                  {Condition::kPaperOut, 0x20},
                                  {Condition::kCutterJam, 0x40}});
    case 3:  // errors
      return bits_of(conditions, {{Condition::kCutterJam, 0x08}});
    default:  // paper
      return bits_of(conditions, {{Condition::kPaperNearEnd, 0x0c}, {Condition::kPaperOut, 0x60}});
  }
}

}  // namespace

std::string real_time_status(std::uint8_t which, const Conditions& conditions) {
  // Bits 1 and 4 are always set, so that no printed byte is taken for an answer.
  return {static_cast<char>(0x12 | real_time_bits(which, conditions))};
}

std::string status_report(const Conditions& conditions) {
  const unsigned first =
      0x10 | printer_bits(conditions) | bits_of(conditions, {{Condition::kCoverOpen, 0x20}});
  const unsigned cutter = bits_of(conditions, {{Condition::kCutterJam, 0x08}});
  const unsigned paper =
      bits_of(conditions, {{Condition::kPaperNearEnd, 0x03}, {Condition::kPaperOut, 0x0c}});
  return {static_cast<char>(first), static_cast<char>(cutter), static_cast<char>(paper), '\x0f'};
}

std::string sensor_reply(const Conditions& conditions) {
  return conditions.has(Condition::kPaperNearEnd) ? "_3\0"s : "_0\0"s;
}

std::string mark_reply(const Conditions& conditions) {
  return conditions.has(Condition::kMarkSeen) ? "_BB" : "_BM";
}

std::string process_id_reply(const std::string& identifier) {
  return "7\"" + identifier + '\0';
}

}  // namespace virtual_printer
