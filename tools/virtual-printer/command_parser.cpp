#include "command_parser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "frame.h"

namespace virtual_printer {
namespace {

using namespace std::string_view_literals;

constexpr char kEscape = '\x1b';
constexpr char kGroupSeparator = '\x1d';
constexpr char kFileSeparator = '\x1c';
constexpr char kDelete = '\x7f';
constexpr char kSpace = ' ';

enum class ArgumentRule {
  kNone,
  // One byte.
  kAny,
  kSwitch,
  kLevel,
  kStatusNumber,
  // A block of data.
  kPulse,       // connector, time on, time off
  kIdentifier,  // four bytes
  kCounted,     // a count, as many bytes that begin with "_", a checksum
};

struct CommandRow {
  std::string_view bytes;
  CommandKind kind;
  ArgumentRule rule;
  std::uint8_t argument = 0;  // of a row whose bytes say it
};

// One row per command; its meaning is in printer.cpp (queries and the like) or typesetter.cpp
// (print). Frames alone are read elsewhere, because no count of bytes ends them.
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
    CommandRow{"\x1b#BM?",    CommandKind::kMarkQuery,          ArgumentRule::kNone},
    CommandRow{"\x1b#ERROR",  CommandKind::kBeep,               ArgumentRule::kNone},
    CommandRow{"\x1b#MENU1",  CommandKind::kSelfTest,           ArgumentRule::kNone, 1},
    CommandRow{"\x1b#MENU2",  CommandKind::kSelfTest,           ArgumentRule::kNone, 2},
    CommandRow{"\x1bp",       CommandKind::kDrawerPulse,        ArgumentRule::kPulse},
    CommandRow{"\x1d" "B",    CommandKind::kReverse,            ArgumentRule::kSwitch},
    CommandRow{"\x1d!",       CommandKind::kCharacterSize,      ArgumentRule::kAny},
    CommandRow{"\x1d" "a",    CommandKind::kAutomaticStatus,    ArgumentRule::kAny},
    CommandRow{"\x1dIC",      CommandKind::kSerialNumberQuery,  ArgumentRule::kNone},
    CommandRow{"\x1dID",      CommandKind::kVersionQuery,       ArgumentRule::kNone},
    CommandRow{"\x1d#",       CommandKind::kStoreSerialNumber,  ArgumentRule::kCounted},
    CommandRow{"\x1d(H\6\0" "00"sv, CommandKind::kProcessId,   ArgumentRule::kIdentifier},
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

std::optional<std::uint8_t> accepted_byte(ArgumentRule rule, char byte) {
  const std::uint8_t number = without_digit(byte);
  switch (rule) {
    case ArgumentRule::kSwitch:
      return number <= 1 ? std::optional(number) : std::nullopt;
    case ArgumentRule::kLevel:
      return number <= 2 ? std::optional(number) : std::nullopt;
    case ArgumentRule::kStatusNumber:
      return byte >= 1 && byte <= 4 ? std::optional(number) : std::nullopt;
    default:
      return static_cast<std::uint8_t>(byte);
  }
}

bool is_block(ArgumentRule rule) {
  return rule == ArgumentRule::kPulse || rule == ArgumentRule::kIdentifier ||
         rule == ArgumentRule::kCounted;
}

bool is_accepted_block(ArgumentRule rule, std::string_view data) {
  if (rule == ArgumentRule::kPulse) return without_digit(data.front()) <= 1;
  if (rule == ArgumentRule::kCounted) return data.front() != 0 && data[1] == '_';
  return true;
}

// How many bytes the argument takes, as far as those that have come tell it. Of a counted block
// that is wrong at its beginning, no more is waited for.
std::size_t length_of_argument(ArgumentRule rule, std::string_view data) {
  constexpr std::size_t kShortestBlock = 2;
  switch (rule) {
    case ArgumentRule::kNone:
      return 0;
    case ArgumentRule::kPulse:
      return 3;
    case ArgumentRule::kIdentifier:
      return 4;
    case ArgumentRule::kCounted:
      if (data.size() < kShortestBlock || !is_accepted_block(rule, data)) return kShortestBlock;
      return static_cast<unsigned char>(data.front()) + std::size_t{2};
    default:
      return 1;
  }
}

bool agrees_so_far(const CommandRow& row, std::string_view rest) {
  const std::size_t common = std::min(row.bytes.size(), rest.size());
  return row.bytes.substr(0, common) == rest.substr(0, common);
}

std::optional<Command> completed(const CommandRow& row, std::string_view data) {
  if (row.rule == ArgumentRule::kNone) return Command{row.kind, row.argument};
  if (is_block(row.rule)) {
    if (!is_accepted_block(row.rule, data)) return std::nullopt;
    return Command{row.kind, 0, std::string(data)};
  }
  const auto argument = accepted_byte(row.rule, data.front());
  if (!argument) return std::nullopt;
  return Command{row.kind, *argument};
}

bool opens_command(char byte) {
  return byte == kEscape || byte == kGroupSeparator || byte == kFileSeparator;
}

// What stands at the beginning of the bytes, and how many of them it takes.
struct Step {
  std::size_t length;
  Decoded decoded;
};

// An unknown command is its introducer and its letter; what follows may be anything, so it is
// decoded afresh. An introducer before another control byte stands alone: that byte may well begin
// a good command.
Step unknown_step(std::string_view rest, std::size_t offset) {
  const bool has_letter = opens_command(rest.front()) && rest.size() > 1 && is_printable(rest[1]);
  const std::size_t length = has_letter ? 2 : 1;
  return {length, UnknownBytes{offset, std::string(rest.substr(0, length))}};
}

Step frame_step(const Frame& frame, std::size_t offset) {
  switch (frame.state) {
    case FrameState::kGood:
      return {frame.length, Command{CommandKind::kFramedJob, 0, std::string(frame.job)}};
    case FrameState::kWrongChecksum:
      return {frame.length, RefusedFrame{offset, "wrong checksum"}};
    default:
      return {frame.length, RefusedFrame{offset, "wrong length"}};
  }
}

// Nothing: the bytes are the beginning of a command whose rest has not come yet.
std::optional<Step> next_step(std::string_view rest, std::size_t offset, Expectation expectation) {
  if (is_printable(rest.front())) {
    return Step{1, Command{CommandKind::kText, static_cast<std::uint8_t>(rest.front())}};
  }
  const bool more_may_come = expectation != Expectation::kNothing;
  const bool frame_ended = expectation != Expectation::kMore && begins_frame(rest);
  const Frame frame = read_frame(rest, more_may_come && !frame_ended);
  if (frame.state == FrameState::kUnfinished) return std::nullopt;
  if (frame.state != FrameState::kNone) return frame_step(frame, offset);
  for (const CommandRow& row : kCommandRows) {
    if (!agrees_so_far(row, rest)) continue;
    const std::string_view after = rest.substr(std::min(rest.size(), row.bytes.size()));
    const std::size_t argument = length_of_argument(row.rule, after);
    if (rest.size() >= row.bytes.size() + argument) {
      const auto command = completed(row, after.substr(0, argument));
      if (command) return Step{row.bytes.size() + argument, *command};
    } else if (more_may_come) {
      return std::nullopt;
    }
  }
  if (opens_command(rest.front()) && rest.size() == 1 && more_may_come) return std::nullopt;
  return unknown_step(rest, offset);
}

}  // namespace

std::optional<Decoded> CommandParser::next(Expectation expectation) {
  if (rest().empty()) return std::nullopt;
  auto step = next_step(rest(), offset_, expectation);
  if (!step) return std::nullopt;
  take(step->length);
  return std::move(step->decoded);
}

bool CommandParser::waits_for_frame() const {
  return begins_frame(rest());
}

// What is taken goes in pieces, lest the bytes of a long job be moved once for each of them.
void CommandParser::take(std::size_t length) {
  constexpr std::size_t kPiece = 4096;
  taken_ += length;
  offset_ += length;
  if (taken_ < pending_.size() && taken_ < kPiece) return;
  pending_.erase(0, taken_);
  taken_ = 0;
}

}  // namespace virtual_printer
