#include "dispatch/port_operations.h"

#include <unistd.h>

#include <atomic>
#include <cstring>

#include "status/collected_job.h"
#include "status/exchange.h"
#include "status/queries.h"

namespace {

std::atomic<pid_t> last_opener = 0;

void leave_modes(const TransportState& state) {
  state.bProtocolStatus = 0;
  state.bProtocol = 0;
  state.RePrint = 0;
}

void reset_for_fresh_port(const TransportState& state) {
  drop_collected(state);
  leave_modes(state);
  state.bSleepFlag = 0;
  state.TransactionPrint = 0;
  state.bPowerOFF = 0;
}

void close_open_port(const Transport& transport, PortHandle port) {
  transport.registry.release(port);
  drop_collected(transport.state);
  leave_modes(transport.state);
}

}  // namespace

long match_prefixes(std::span<const std::string_view> prefixes, const char* portName) {
  if (portName == nullptr) return kNotAccepted;
  for (const std::string_view prefix : prefixes) {
    if (std::strncmp(portName, prefix.data(), prefix.size()) == 0) return 0;
  }
  return kNotAccepted;
}

long match_port_name(const Transport& transport, const char* portName) {
  return match_prefixes(transport.prefixes, portName);
}

long open_port(const Transport& transport, const char* portName, const char* portSettings) {
  if (transport.registry.find(portName)) return 0;
  const int entry = transport.registry.find_free();
  if (entry < 0 || std::strlen(portName) >= kPortNameSize) return kFailed;

  last_opener = getpid();
  const Opened opened = transport.open(entry, portName, portSettings);
  if (opened.result != kOk || opened.settled) return opened.result;
  reset_for_fresh_port(transport.state);
  // Whatever the printer answers, the port stays open: a till may open before the paper is in.
  return ask_open_status(transport, transport.registry.at(entry));
}

long write_port(const Transport& transport, const char* portName, const char* writeBuffer,
                long length) {
  const PortHandle port = transport.registry.find(portName);
  if (!port || writeBuffer == nullptr || length < 0) return kFailed;
  return guarded_write(transport, port, {writeBuffer, static_cast<std::size_t>(length)});
}

long read_port(const Transport& transport, const char* portName, char* readBuffer, long length) {
  if (length == 0) return 0;
  const PortHandle port = transport.registry.find(portName);
  if (!port || readBuffer == nullptr || length < 0) return kFailed;
  return read_for_caller(transport, port, {readBuffer, static_cast<std::size_t>(length)}, kRawRead);
}

long close_port(const Transport& transport, const char* portName) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  close_open_port(transport, port);
  return 0;
}

bool opened_by_this_process() {
  return last_opener == getpid();
}

void release_ports(const Transport& transport) {
  for (int entry = 0; entry < TZV_PORTS; ++entry) {
    const PortHandle port = transport.registry.at(entry);
    if (port) close_open_port(transport, port);
  }
}

long guarded_write(const Transport& transport, PortHandle port, std::string_view bytes) {
  if (const auto sent = transport.write_anew(port, bytes)) return *sent;
  if (in_error_state(transport.state)) return kRefused;
  return transport.write(port, bytes);
}

long buffered_write(const Transport& transport, PortHandle port, std::string_view bytes) {
  const TransportState& state = transport.state;
  if (state.RePrint != 0 || state.TransactionPrint != 0) return collect(state, bytes);
  return guarded_write(transport, port, bytes);
}

long hand_on(const Transport& transport, const char* portName,
             std::initializer_list<std::string_view> pieces) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  const bool healthy = !in_error_state(transport.state);
  for (const std::string_view piece : pieces) buffered_write(transport, port, piece);
  return healthy ? kOk : kRefused;
}
