// The printer's automatic status reports, as the monitor reads them. Pure: the bytes of one read
// and the flags before, the flags after.
#pragma once

#include <span>
#include <string_view>

/// The flags that reports change, 0 or 1 each.
struct StatusFlags {
  int cover_open = 0;
  int paper_empty = 0;
  int paper_near_empty = 0;
  int offline = 0;
  int cutter_jam = 0;
  int drawer_opened = 0;

  bool operator==(const StatusFlags&) const = default;
};

struct DecodedReport {
  StatusFlags flags;
  /// The printer reports itself ready for a job: a held one may be sent again.
  bool healthy = false;
};

/// Bytes of one report. What one read returned may hold several; the last one counts, but for the
/// drawer, on which all of them vote.
inline constexpr std::size_t kReportSize = 4;

/// Decodes what one read returned; shorter than a report, it changes nothing.
DecodedReport decode_report(std::string_view received, const StatusFlags& before);

/// What one read returned, sorted.
struct Received {
  std::string_view reports;  ///< to be decoded
  bool confirmed;            ///< an answer to a process-ID request: all before it is printed
};

/// Finds the printer's answers to process-ID requests. A read of seven bytes is judged by its
/// marks. In a longer one an answer may stand beside reports, when both came between two reads:
/// whole answers are taken out of the buffer then, or the report that tells of a recovery would
/// be misread and the till would wait for ever.
Received sort_received(std::span<char> received);
