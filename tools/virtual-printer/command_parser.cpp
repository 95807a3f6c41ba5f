#include "command_parser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace virtual_printer {
namespace {

constexpr char kEscape = '\x1b';
constexpr char kGroupSeparator = '\x1d';
constexpr char kFileSeparator = '\x1c';
constexpr char kDelete = '\x7f';
constexpr char kSpace = ' ';

enum class ArgumentRule { kNone, kAny, kSwitch, kLevel, kStatusNumber };

struct CommandRow {
  std::string_view bytes;
  CommandKind kind;
  ArgumentRule argument;
};

// One row per command; its meaning is in printer_status.cpp (queries) or typesetter.cpp (print).
// No row begins with another whole row, so the first match is the only one.
// clang-format off
constexpr std::array kCommandRows{
    CommandRow{"\n",          CommandKind::kLineFeed,           ArgumentRule::kNone},
    CommandRow{"\r",          CommandKind::kCarriageReturn,     ArgumentRule::kNone},
    CommandRow{"\t",          CommandKind::kTab,                ArgumentRule::kNone},
    CommandRow{"\x1b@",       CommandKind::kInitialize,         ArgumentRule::kNone},
    CommandRow{"\x1b" "E",    CommandKind::kEmphasis,           ArgumentRule::kSwitch},
    CommandRow{"\x1b-",       CommandKind::kUnderline,          ArgumentRule::kLevel},
    CommandRow{"\x1b!",       CommandKind::kPrintMode,          ArgumentRule::kAny},
    CommandRow{"\x1br",       CommandKind::kColour,             ArgumentRule::kSwitch},
    CommandRow{"\x1b" "a",    CommandKind::kAlignment,          ArgumentRule::kLevel},
    CommandRow{"\x1b" "3",    CommandKind::kLineSpacing,        ArgumentRule::kAny},
    CommandRow{"\x1b" "2",    CommandKind::kDefaultLineSpacing, ArgumentRule::kNone},
    CommandRow{"\x1bm",       CommandKind::kPartialCut,         ArgumentRule::kNone},
    CommandRow{"\x1bi",       CommandKind::kFullCut,            ArgumentRule::kNone},
    CommandRow{"\x1b#SENSOR", CommandKind::kSensorQuery,        ArgumentRule::kNone},
    CommandRow{"\x1d" "B",    CommandKind::kReverse,            ArgumentRule::kSwitch},
    CommandRow{"\x1d!",       CommandKind::kCharacterSize,      ArgumentRule::kAny},
    CommandRow{"\x1d" "a",    CommandKind::kAutomaticStatus,    ArgumentRule::kAny},
    CommandRow{"\x10\x04",    CommandKind::kRealTimeStatus,     ArgumentRule::kStatusNumber},
};
// clang-format on

bool is_printable(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  return value >= static_cast<unsigned char>(kSpace) && byte != kDelete;
}

// Programs send small numbers as the value or as its digit; both mean the same.
std::uint8_t without_digit(char byte) {
  const auto value = static_cast<std::uint8_t>(byte);
  return byte >= '0' && byte <= '9' ? static_cast<std::uint8_t>(value - '0') : value;
}

std::optional<std::uint8_t> accepted_argument(ArgumentRule rule, char byte) {
  const std::uint8_t number = without_digit(byte);
  switch (rule) {
    case ArgumentRule::kSwitch:
      return number <= 1 ? std::optional(number) : std::nullopt;
    case ArgumentRule::kLevel:
      return number <= 2 ? std::optional(number) : std::nullopt;
    case ArgumentRule::kStatusNumber:
      return byte >= 1 && byte <= 4 ? std::optional(number) : std::nullopt;
    case ArgumentRule::kNone:
    case ArgumentRule::kAny:
      break;
  }
  return static_cast<std::uint8_t>(byte);
}

std::size_t length_of(const CommandRow& row) {
  return row.bytes.size() + (row.argument == ArgumentRule::kNone ? 0 : 1);
}

bool agrees_so_far(const CommandRow& row, std::string_view rest) {
  const std::size_t common = std::min(row.bytes.size(), rest.size());
  return row.bytes.substr(0, common) == rest.substr(0, common);
}

std::optional<Command> completed(const CommandRow& row, std::string_view rest) {
  if (row.argument == ArgumentRule::kNone) return Command{row.kind, 0};
  const auto argument = accepted_argument(row.argument, rest[row.bytes.size()]);
  if (!argument) return std::nullopt;
  return Command{row.kind, *argument};
}

bool opens_command(char byte) {
  return byte == kEscape || byte == kGroupSeparator || byte == kFileSeparator;
}

// What stands at the beginning of the bytes, and how many of them it takes.
struct Step {
  std::size_t length;
  std::optional<Command> command;  // nothing: unknown bytes
};

// An unknown command is its introducer and its letter; what follows may be anything, so it is
// decoded afresh. An introducer before another control byte stands alone: that byte may well begin
// a good command.
Step unknown_step(std::string_view rest) {
  const bool has_letter = opens_command(rest.front()) && rest.size() > 1 && is_printable(rest[1]);
  return {has_letter ? std::size_t{2} : std::size_t{1}, std::nullopt};
}

// Nothing: the bytes are the beginning of a command whose rest has not come yet.
std::optional<Step> next_step(std::string_view rest, bool more_may_come) {
  if (is_printable(rest.front())) {
    return Step{1, Command{CommandKind::kText, static_cast<std::uint8_t>(rest.front())}};
  }
  for (const CommandRow& row : kCommandRows) {
    if (!agrees_so_far(row, rest)) continue;
    if (rest.size() >= length_of(row)) {
      if (const auto command = completed(row, rest)) return Step{length_of(row), command};
    } else if (more_may_come) {
      return std::nullopt;
    }
  }
  if (opens_command(rest.front()) && rest.size() == 1 && more_may_come) return std::nullopt;
  return unknown_step(rest);
}

}  // namespace

std::vector<Decoded> CommandParser::feed(std::string_view bytes) {
  pending_ += bytes;
  return decode_pending(true);
}

std::vector<Decoded> CommandParser::finish() {
  return decode_pending(false);
}

std::vector<Decoded> CommandParser::decode_pending(bool more_may_come) {
  std::vector<Decoded> result;
  std::string_view rest = pending_;
  while (!rest.empty()) {
    const auto step = next_step(rest, more_may_come);
    if (!step) break;
    if (step->command) {
      result.emplace_back(*step->command);
    } else {
      result.emplace_back(UnknownBytes{offset_, std::string(rest.substr(0, step->length))});
    }
    rest.remove_prefix(step->length);
    offset_ += step->length;
  }
  pending_.erase(0, pending_.size() - rest.size());
  return result;
}

}  // namespace virtual_printer
