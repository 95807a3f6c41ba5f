#include "printer_status.h"

#include <string_view>

namespace virtual_printer {
namespace {

// Real-time status answers have bits 1 and 4 set, so that no printed byte is taken for one.
constexpr unsigned kStatusFrame = 0x12;
constexpr unsigned kOfflineCauseCoverOpen = 0x04;
constexpr unsigned kPaperSensorPaperOut = 0x60;

constexpr std::uint8_t kOfflineCause = 2;
constexpr std::uint8_t kPaperSensor = 4;

constexpr std::string_view kNoSensorReports{"_0\0", 3};

std::string real_time_status(std::uint8_t which, const PrinterCondition& condition) {
  unsigned status = kStatusFrame;
  if (which == kOfflineCause && condition.cover_open) status |= kOfflineCauseCoverOpen;
  if (which == kPaperSensor && condition.paper_out) status |= kPaperSensorPaperOut;
  return {static_cast<char>(status)};
}

}  // namespace

std::optional<std::string> reply_to(const Command& command, const PrinterCondition& condition) {
  switch (command.kind) {
    case CommandKind::kRealTimeStatus:
      return real_time_status(command.argument, condition);
    case CommandKind::kSensorQuery:
      return std::string(kNoSensorReports);
    default:
      return std::nullopt;
  }
}

}  // namespace virtual_printer
