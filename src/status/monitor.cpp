#include "status/monitor.h"

#include <cstring>

#include "dispatch/lock.h"
#include "dispatch/system.h"
#include "status/collected_job.h"
#include "status/process_id.h"

namespace {

constexpr std::string_view kEnableAllReports = "\035a\xff";  // GS a 255

// Milliseconds.
constexpr long kEnablePause = 100;
constexpr long kIdleCycle = 500;
constexpr long kFastCycle = 10;
constexpr long kReprintPoll = 50;
constexpr long kPauseBeforeReprint = 3000;

constexpr int kPollsPerRequest = 40;
constexpr int kRequestsBeforeGivingUp = 3;
constexpr std::size_t kJobPiece = 16384;  // bytes copied at a time, so that callers need not wait

StatusFlags load_flags(const TransportState& state) {
  return {.cover_open = state.bCoverOpen,
          .paper_empty = state.bPaperEmpty,
          .paper_near_empty = state.bPaperNearEmpty,
          .offline = state.bOffline,
          .cutter_jam = state.bCutterJam,
          .drawer_opened = state.bDrawerOpened};
}

/// Stores what a report changed and nothing else: a claim may set `bOffline` at the same time.
/// `bOffline` falls before its cause and rises after it, so that no look between shows it alone.
void store_changes(const TransportState& state, const StatusFlags& before,
                   const StatusFlags& after) {
  const auto store = [](const Field<int>& field, int old_value, int value) {
    if (value != old_value) field = value;
  };
  if (after.offline == 0) store(state.bOffline, before.offline, 0);
  store(state.bCoverOpen, before.cover_open, after.cover_open);
  store(state.bPaperEmpty, before.paper_empty, after.paper_empty);
  store(state.bPaperNearEmpty, before.paper_near_empty, after.paper_near_empty);
  store(state.bCutterJam, before.cutter_jam, after.cutter_jam);
  store(state.bDrawerOpened, before.drawer_opened, after.drawer_opened);
  if (after.offline != 0) store(state.bOffline, before.offline, after.offline);
}

}  // namespace

Monitor::Monitor(const Transport& transport, const char* portName)
    : transport_(transport), state_(transport.state) {
  std::strncpy(port_name_, portName, sizeof port_name_ - 1);
}

bool Monitor::serves(const Transport& transport, const char* portName) const {
  return &transport_ == &transport && std::strcmp(port_name_, portName) == 0;
}

bool Monitor::cycle() {
  port_ = transport_.registry.find(port_name_);
  if (port_) {
    const bool in_vain = state_.bOffline == 1 && !enable_reports();
    transport_.watch_line(port_);
    // It has come back since: once more in the next cycle, or it would never report again.
    if (in_vain && state_.bPowerOFF == 0) state_.bOffline = 1;
    take_received(read_line());
  }
  if (link_lost_) return false;
  pause_ms(state_.bSleepFlag != 0 ? kFastCycle : kIdleCycle);
  return true;
}

/// Has the printer report every change. False when it was without power, and has not heard it.
bool Monitor::enable_reports() {
  if (state_.bPowerOFF != 0) transport_.watch_line(port_);
  const bool heard = state_.bPowerOFF == 0;
  transport_.write_now(port_, kEnableAllReports);
  state_.bOffline = 0;
  pause_ms(kEnablePause);
  return heard;
}

/// Reads what is there, unless a caller waits for it or a release for the monitor's end. The lock
/// makes the look at the flags and the read one step, so that no answer is taken from a caller.
Received Monitor::read_line() {
  long count = 0;
  {
    const MutexLock lock(state_.hand_over.mutex);
    const bool callers_turn = state_.bStopThread != 0 || state_.hand_over.reads > 0;
    if (callers_turn || state_.StopIt == 0) return {};
    count = transport_.poll(port_, received_);
  }
  if (count < 0) link_lost_ = !transport_.after_failed_poll(port_);
  if (count < static_cast<long>(kReportSize)) return {};
  return sort_received({received_.data(), static_cast<std::size_t>(count)});
}

void Monitor::take_received(Received received) {
  if (received.confirmed) confirm_collected(state_);
  const StatusFlags before = load_flags(state_);
  const DecodedReport decoded = decode_report(received.reports, before);
  store_changes(state_, before, decoded.flags);
  if (decoded.healthy && state_.RePrint != 0 && state_.PageSize > 0) reprint();
}

/// Sends the held job again and waits for its confirmation.
void Monitor::reprint() {
  pause_ms(kPauseBeforeReprint);
  const long sent = resend_job();
  // What callers added since then has not been printed: it stays.
  if (wait_for_confirmation()) confirm_collected(state_, sent);
}

/// Sends the whole job, whatever state the printer is in. The count of bytes.
long Monitor::resend_job() {
  begin_resend(state_);
  std::array<char, kJobPiece> piece;
  long sent = 0;
  for (;;) {
    const std::size_t count = copy_collected(state_, sent, piece);
    if (count == 0) return sent;
    const long written = transport_.resend(port_, {piece.data(), count});
    if (written > 0) sent += written;
    if (written != static_cast<long>(count)) return sent;
  }
}

/// Polls until at least a report's length has come, asking the printer again now and then. Whether
/// it was the confirmation; false also when given up or told to end.
bool Monitor::wait_for_confirmation() {
  int polls = -1;
  while (state_.StopIt != 0 && !link_lost_) {
    if (++polls > kPollsPerRequest) {
      if (++requests_ == kRequestsBeforeGivingUp) return false;
      transport_.write_now(port_, kProcessIdRequest);
      polls = 0;
    }
    pause_ms(kReprintPoll);
    transport_.watch_line(port_);
    const Received received = read_line();
    if (received.confirmed || !received.reports.empty()) return received.confirmed;
  }
  return false;
}
