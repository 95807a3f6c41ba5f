// What the printer sends by itself: the decoder, and a monitor that reads bytes in any split.
#include <vector>

#include "input.h"
#include "open_link.h"
#include "status/report_decoder.h"

namespace fuzz {
namespace {

constexpr std::string_view kConfirmation{
    "7\x22"
    "FFFF\0",
    7};

bool is_flag(int value) {
  return value == 0 || value == 1;
}

/// What stops printing is one thing at a time.
bool has_at_most_one_cause(const StatusFlags& flags) {
  return flags.cover_open + flags.paper_empty + flags.cutter_jam <= 1;
}

void check_flags(const StatusFlags& flags) {
  for (const int flag : {flags.cover_open, flags.paper_empty, flags.paper_near_empty, flags.offline,
                         flags.cutter_jam, flags.drawer_opened}) {
    check(is_flag(flag), "a flag is 0 or 1");
  }
  check(has_at_most_one_cause(flags), "one cause at a time");
}

/// Whether one read confirms a job: seven bytes by their marks, others by a whole answer in them.
bool confirms(std::string_view read) {
  if (read.size() < kReportSize) return false;
  if (read.size() != kConfirmation.size()) return read.find(kConfirmation) != read.npos;
  return read[0] == '7' && read.substr(3, 3) == "FFF";
}

void check_decoder(std::string_view received, StatusFlags& flags) {
  const DecodedReport decoded = decode_report(received, flags);
  check_flags(decoded.flags);
  const StatusFlags& after = decoded.flags;
  const bool error = after.cover_open + after.paper_empty + after.offline + after.cutter_jam > 0;
  check(!decoded.healthy || !error, "healthy is without an error");
  if (received.size() < kReportSize) check(decoded.flags == flags, "no report, no change");
  flags = decoded.flags;

  std::string sorted(received);
  const Received parts = sort_received(sorted);
  check(parts.reports.size() <= received.size(), "sorting adds nothing");
  if (received.size() >= kReportSize) {
    check(parts.confirmed == confirms(received), "confirmed by the printer's answer alone");
  }
}

StatusFlags flags_of(const testkit::ExportedState& state) {
  return {.cover_open = *state.bCoverOpen,
          .paper_empty = *state.bPaperEmpty,
          .paper_near_empty = *state.bPaperNearEmpty,
          .offline = *state.bOffline,
          .cutter_jam = *state.bCutterJam,
          .drawer_opened = *state.bDrawerOpened};
}

/// What a monitor makes of the pieces, each of which it reads on its own.
void check_monitor(const testkit::Link& link, const std::vector<std::string>& pieces) {
  constexpr int64_t kCycle = 700;  // milliseconds, and more than one takes
  OpenLink till(link);
  ClaimDevice(till.port, 0);
  till.kernel.run_for(kCycle);
  bool confirmed = false;
  for (const std::string& piece : pieces) {
    till.forget();
    till.printer->input += piece;
    till.kernel.run_for(kCycle);
    for (const testkit::Call& call : till.kernel.calls()) {
      const bool read = call.name == "read" || call.name == "recv";
      confirmed = confirmed || (read && confirms(call.bytes));
    }
    check_flags(flags_of(till.state));
    check(is_flag(*till.state.bPowerOFF), "a flag is 0 or 1");
    check(*till.state.OutputComplemetFlag == (confirmed ? 1 : 0),
          "confirmed by the printer's answer alone");
    const long error = GetError(till.port);
    check(error == 0 || error == 1 || error == 2 || error == 4 || error == 8 || error == 16,
          "a status code");
  }
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  constexpr std::size_t kMost = 32;
  Input input(data, size);
  const std::size_t link = input.choice(8);
  std::vector<std::string> pieces;
  while (!input.empty() && pieces.size() < kMost) pieces.push_back(input.piece());

  StatusFlags flags;
  for (const std::string& piece : pieces) check_decoder(piece, flags);
  // The way through a link is longer, so not every input takes it.
  if (link < testkit::kLinks.size()) check_monitor(testkit::kLinks[link], pieces);
  return 0;
}
