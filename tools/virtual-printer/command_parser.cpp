#include "command_parser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "command_argument.h"
#include "frame.h"

namespace virtual_printer {
namespace {

using namespace std::string_view_literals;

constexpr char kEscape = '\x1b';
constexpr char kGroupSeparator = '\x1d';
constexpr char kFileSeparator = '\x1c';
constexpr char kDelete = '\x7f';
constexpr char kSpace = ' ';

struct CommandRow {
  std::string_view bytes;
  CommandKind kind;
  ArgumentRule rule;
  std::uint8_t argument = 0;  // of a row whose bytes say it
  std::uint8_t lowest = 0;    // of a byte between two others
  std::uint8_t highest = 0;
};

// One row per command; its meaning is in printer.cpp (queries and the like) or typesetter.cpp
// (print). Frames alone are read elsewhere, because no count of bytes ends them.
// Where a row begins with another whole row, it stands above that, and the first match counts.
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
    CommandRow{"\x1dw",       CommandKind::kModuleWidth,        ArgumentRule::kBetween, 0, 1, 6},
    CommandRow{"\x1dh",       CommandKind::kBarHeight,          ArgumentRule::kBetween, 0, 1, 255},
    CommandRow{"\x1d" "f",    CommandKind::kSymbolTextFont,     ArgumentRule::kLevel},
    CommandRow{"\x1dH",       CommandKind::kSymbolTextPlace,    ArgumentRule::kLevel},
    CommandRow{"\x1dk",       CommandKind::kLinearSymbol,       ArgumentRule::kLinearSymbol},
    CommandRow{"\x1d(k\3\0" "0A"sv, CommandKind::kPdf417Columns,     ArgumentRule::kBetween, 0, 0, 30},
    CommandRow{"\x1d(k\3\0" "0C"sv, CommandKind::kPdf417ModuleWidth, ArgumentRule::kBetween, 0, 1, 8},
    CommandRow{"\x1d(k\3\0" "0Q0"sv, CommandKind::kPrintPdf417,      ArgumentRule::kNone},
    CommandRow{"\x1d(k\3\0" "1A"sv, CommandKind::kQrModel,           ArgumentRule::kAny},
    CommandRow{"\x1d(k\3\0" "1C"sv, CommandKind::kQrModuleSize,      ArgumentRule::kBetween, 0, 1, 16},
    CommandRow{"\x1d(k\3\0" "1E"sv, CommandKind::kQrErrorCorrection, ArgumentRule::kBetween, 0, '0', '3'},
    CommandRow{"\x1d(k\3\0" "1Q0"sv, CommandKind::kPrintQrCode,      ArgumentRule::kNone},
    CommandRow{"\x1d(k",      CommandKind::kStoreSymbol,        ArgumentRule::kSymbolData},
    CommandRow{"\x1d*",       CommandKind::kDownloadImage,      ArgumentRule::kImage},
    CommandRow{"\x1d/",       CommandKind::kPrintDownloaded,    ArgumentRule::kTwoBits},
    CommandRow{"\x1cq",       CommandKind::kStoreImages,        ArgumentRule::kImages},
    CommandRow{"\x1cp",       CommandKind::kPrintStored,        ArgumentRule::kImageNumber},
    CommandRow{"\x1c" "e",    CommandKind::kEraseImages,        ArgumentRule::kNone},
    CommandRow{"\x1bL",       CommandKind::kPageMode,           ArgumentRule::kNone},
    CommandRow{"\x1b\f",      CommandKind::kPrintPage,          ArgumentRule::kNone},
    CommandRow{"\x1bS",       CommandKind::kStandardMode,       ArgumentRule::kNone},
    CommandRow{"\x1d}X",      CommandKind::kPositionX,          ArgumentRule::kPosition},
    CommandRow{"\x1d}Y",      CommandKind::kPositionY,          ArgumentRule::kPosition},
    CommandRow{"\x1d~",       CommandKind::kFirmware,           ArgumentRule::kFirmware},
    CommandRow{"\x10\x04",    CommandKind::kRealTimeStatus,     ArgumentRule::kStatusNumber},
};
// clang-format on

bool is_printable(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  return value >= static_cast<unsigned char>(kSpace) && byte != kDelete;
}

bool agrees_so_far(const CommandRow& row, std::string_view rest) {
  const std::size_t common = std::min(row.bytes.size(), rest.size());
  return row.bytes.substr(0, common) == rest.substr(0, common);
}

std::optional<Command> completed(const CommandRow& row, std::string_view argument) {
  if (row.rule == ArgumentRule::kNone) return Command{row.kind, row.argument};
  if (is_block(row.rule)) return Command{row.kind, 0, std::string(argument)};
  const auto byte = row.rule == ArgumentRule::kBetween
                        ? byte_between(row.lowest, row.highest, argument.front())
                        : accepted_byte(row.rule, argument.front());
  if (!byte) return std::nullopt;
  return Command{row.kind, *byte};
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
    const auto argument = length_of_argument(row.rule, after);
    if (!argument) continue;
    if (rest.size() >= row.bytes.size() + *argument) {
      const auto command = completed(row, after.substr(0, *argument));
      if (command) return Step{row.bytes.size() + *argument, *command};
    } else if (more_may_come) {
      return std::nullopt;
    } else if (rest.size() > row.bytes.size() && is_long(row.rule)) {
      return Step{rest.size(), UnknownBytes{offset, std::string(rest)}};
    }
  }
  if (opens_command(rest.front()) && rest.size() == 1 && more_may_come) return std::nullopt;
  return unknown_step(rest, offset);
}

}  // namespace

std::optional<Decoded> CommandParser::next(Expectation expectation) {
  drop_taken();
  if (rest().empty()) return std::nullopt;
  auto step = next_step(rest(), offset_, expectation);
  if (!step) return std::nullopt;
  last_ = step->length;
  taken_ += last_;
  offset_ += last_;
  return std::move(step->decoded);
}

bool CommandParser::waits_for_frame() const {
  return begins_frame(rest());
}

// What is taken goes in pieces, lest the bytes of a long job be moved once for each of them.
void CommandParser::drop_taken() {
  constexpr std::size_t kPiece = 4096;
  last_ = 0;
  if (taken_ < pending_.size() && taken_ < kPiece) return;
  pending_.erase(0, taken_);
  taken_ = 0;
}

void decode_job(Piece job, const std::function<void(Decoded, Piece)>& take) {
  CommandParser parser(job.offset);
  parser.feed(job.bytes);
  while (auto decoded = parser.next(Expectation::kNothing)) {
    const auto* command = std::get_if<Command>(&*decoded);
    if (command != nullptr && command->kind == CommandKind::kFramedJob) {
      take(RefusedFrame{parser.piece().offset, "a frame within a frame"}, parser.piece());
    } else {
      take(std::move(*decoded), parser.piece());
    }
  }
}

}  // namespace virtual_printer
