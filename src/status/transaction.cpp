#include "status/transaction.h"

#include <array>

#include "dispatch/port_operations.h"
#include "dispatch/system.h"
#include "status/clear_pages.h"
#include "status/collected_job.h"
#include "status/error_code.h"
#include "status/exchange.h"
#include "status/frame.h"
#include "status/process_id.h"

namespace {

constexpr std::string_view kInitialise = "\033@";

constexpr int kPollsPerRequest = 50;
constexpr int kRequestsBeforeGivingUp = 3;
constexpr long kPollPause = 20;     // milliseconds
constexpr long kSettlePause = 100;  // milliseconds

long begin(const Transport& transport, PortHandle port, long PrintMode) {
  drop_collected(transport.state);
  transport.state.TransactionPrint = PrintMode;
  buffered_write(transport, port, kInitialise);
  return kOk;
}

/// What the printer did not get whole it must not confirm: it answers for what it has.
long write_job(const Transport& transport, PortHandle port, std::string_view bytes) {
  const long sent = guarded_write(transport, port, bytes);
  const bool cut_short = sent < static_cast<long>(bytes.size()) && !transport.write_sends_again;
  if (sent == kRefused || cut_short) lose_sent_job(transport.state);
  return sent;
}

/// Sends the job in one frame and waits for the printer's answer to it, whatever it says.
void send_framed(const Transport& transport, PortHandle port, std::string_view job) {
  const TransportState& state = transport.state;
  clear_pages(state.ProtocolBuffer, sizeof state.ProtocolBuffer);
  const std::size_t length = build_frame(job, state.ProtocolBuffer);
  state.bProtocolStatus = 0;
  const Exchange exchange(state);
  if (write_job(transport, port, {state.ProtocolBuffer, length}) <= 0) return;
  std::array<char, 64> answer;
  read_answer(transport, port, answer, transport.patience.frame);
}

void send_collected(const Transport& transport, PortHandle port) {
  const std::string_view job = collected(transport.state);
  if (job.empty()) return;
  if (transport.state.bProtocol != 0) {
    send_framed(transport, port, job);
  } else {
    write_job(transport, port, job);
  }
}

/// Waits for the monitor to see the confirmation, asking again every 50 polls. The error state
/// that came between, offline for a job that is lost, else 0: confirmed or given up.
long wait_for_confirmation(const Transport& transport, PortHandle port) {
  const TransportState& state = transport.state;
  // Refused or cut short: the state says why.
  const bool incomplete = sent_job_is_lost(state);
  int polls = -1;
  int requests = 0;
  while (state.StopIt != 0) {
    if (++polls > kPollsPerRequest) {
      if (++requests == kRequestsBeforeGivingUp) return kOk;
      guarded_write(transport, port, kProcessIdRequest);
      polls = 0;
    }
    pause_ms(kPollPause);
    if (state.OutputComplemetFlag == 1) {
      drop_collected(state);
      pause_ms(kSettlePause);
      return kOk;
    }
    const bool lost = sent_job_is_lost(state);
    // Another code would say that the printer holds it.
    if (lost && !incomplete) return kOffline;
    const long error = error_code(state);
    if (error != kOk) return error;
    if (lost) return kOffline;
  }
  return kOk;
}

/// Ends the collecting with a request, and sends the job.
void send_job(const Transport& transport, PortHandle port, long PrintMode) {
  const TransportState& state = transport.state;
  // From here on: when a job is sent again, the request goes out ahead of it, and its confirmation
  // must not take the job away.
  const SendingJob sending(state);
  buffered_write(transport, port, kProcessIdRequest);
  state.TransactionPrint = PrintMode;
  state.bSleepFlag = 1;
  state.OutputComplemetFlag = 0;
  send_collected(transport, port);
}

long end(const Transport& transport, PortHandle port, long PrintMode) {
  const TransportState& state = transport.state;
  send_job(transport, port, PrintMode);
  const long error = wait_for_confirmation(transport, port);
  // The monitor goes on polling fast, so that the end of the error state is seen at once.
  if (error != kOk) return error;
  state.bSleepFlag = 0;
  return state.OutputComplemetFlag == 1 ? kOk : kOffline;
}

/// Stores what an operation sets; the port only has to be open.
long store(const Transport& transport, const char* portName, const Field<int>& field, long value) {
  if (!transport.registry.find(portName)) return kFailed;
  field = static_cast<int>(value);
  return kOk;
}

}  // namespace

long transaction_print(const Transport& transport, const char* portName, long PrintMode) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  return PrintMode > 0 ? begin(transport, port, PrintMode) : end(transport, port, PrintMode);
}

long set_reprint_mode(const Transport& transport, const char* portName, long RePrint) {
  return store(transport, portName, transport.state.RePrint, RePrint);
}

long set_protocol(const Transport& transport, const char* portName, long protocol) {
  return store(transport, portName, transport.state.bProtocol, protocol);
}
