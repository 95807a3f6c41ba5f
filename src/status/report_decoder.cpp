#include "status/report_decoder.h"

#include "dispatch/bytes.h"

namespace {

// First status byte.
constexpr unsigned char kDrawerMask = 0x14;
constexpr unsigned char kDrawerClosed = 0x14;
constexpr unsigned char kDrawerOpen = 0x10;  // the drawer's connector signal is down
constexpr unsigned char kCoverOpenBit = 0x20;
// Second.
constexpr unsigned char kCutterErrorBit = 0x08;
// Third.
constexpr unsigned char kNearEndBits = 0x03;
constexpr unsigned char kPaperEndBits = 0x0c;
// Fourth.
constexpr unsigned char kReportEnd = 0x0f;

// The answer to the request with the identifier "FFFF".
constexpr std::string_view kConfirmation{
    "7\x22"
    "FFFF\0",
    7};
// Before and behind the identifier. No report begins like that.
constexpr std::string_view kAnswerHeader = first_of(kConfirmation, 2);
constexpr char kAnswerEnd = 0;

struct Report {
  unsigned char s1, s2, s3, s4;

  bool has_drawer_form() const {
    return (s1 & kDrawerMask) == kDrawerClosed || (s1 & kDrawerMask) == kDrawerOpen;
  }
  bool cover_open() const { return (s1 & kCoverOpenBit) != 0; }
  bool near_end() const { return (s3 & kNearEndBits) == kNearEndBits; }
  bool paper_end() const { return (s3 & kPaperEndBits) == kPaperEndBits; }
  /// Nothing but the cover, the drawer and a near end is reported.
  bool plain() const {
    const bool nothing = s3 == 0 && (s4 == 0 || s4 == kReportEnd);
    return s2 == 0 && (nothing || (s3 == kNearEndBits && s4 == kReportEnd));
  }
};

Report last_report(std::string_view received) {
  const std::string_view last = rest_of(received, received.size() - kReportSize);
  const auto byte = [last](std::size_t i) { return static_cast<unsigned char>(last[i]); };
  return {byte(0), byte(1), byte(2), byte(3)};
}

/// Most of the reports in what was read decide; a draw leaves the flag alone.
int count_drawer(std::string_view received, int before) {
  int open = 0;
  int closed = 0;
  for (std::size_t end = received.size(); end >= kReportSize; end -= kReportSize) {
    const int form = received[end - kReportSize] & kDrawerMask;
    open += form == kDrawerOpen;
    closed += form == kDrawerClosed;
  }
  return open == closed ? before : open > closed;
}

void set_cover_open(StatusFlags& flags) {
  flags = {.cover_open = 1, .offline = 1, .drawer_opened = flags.drawer_opened};
}

DecodedReport decode_plain(const Report& report, std::string_view received, StatusFlags flags) {
  if (report.has_drawer_form()) {
    flags.drawer_opened = count_drawer(received, flags.drawer_opened);
    if (!report.cover_open()) {
      return {{.paper_near_empty = report.near_end(), .drawer_opened = flags.drawer_opened}, true};
    }
  }
  if (report.cover_open()) set_cover_open(flags);
  return {flags, false};
}

StatusFlags decode_other(const Report& report, StatusFlags flags) {
  const int drawer = flags.drawer_opened;
  if ((report.s2 & kCutterErrorBit) != 0) {
    return {.offline = 1, .cutter_jam = 1, .drawer_opened = drawer};
  }
  if (report.cover_open()) {
    set_cover_open(flags);
  } else if (report.has_drawer_form() && report.paper_end()) {
    return {.paper_empty = 1, .offline = 1, .drawer_opened = drawer};
  } else if (report.has_drawer_form() && report.near_end()) {
    return {.paper_near_empty = 1, .drawer_opened = drawer};
  }
  return flags;
}

}  // namespace

DecodedReport decode_report(std::string_view received, const StatusFlags& before) {
  if (received.size() < kReportSize) return {before, false};
  const Report report = last_report(received);
  if (report.plain()) return decode_plain(report, received, before);
  return {decode_other(report, before), false};
}

Received sort_received(std::span<char> received) {
  const std::string_view all(received.data(), received.size());
  if (all.size() == kConfirmation.size()) {
    // As it stands: the last four bytes are no report that could change a flag.
    if (all[0] == '7' && all[3] == 'F' && all[4] == 'F' && all[5] == 'F') return {all, true};
    // A request that was torn by a loss goes on with the first bytes of what is sent next, and
    // these come back as its identifier. They are no report either, and confirm nothing.
    if (begins_with(all, kAnswerHeader) && all.back() == kAnswerEnd) return {{}, false};
    return {all, false};
  }
  std::size_t kept = 0;
  bool confirmed = false;
  for (std::size_t at = 0; at < all.size();) {
    if (begins_with(rest_of(all, at), kConfirmation)) {
      confirmed = true;
      at += kConfirmation.size();
    } else {
      received[kept++] = all[at++];
    }
  }
  return {first_of(all, kept), confirmed};
}
