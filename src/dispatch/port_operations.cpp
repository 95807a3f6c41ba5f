#include "dispatch/port_operations.h"

#include <cstring>

#include "status/queries.h"

namespace {

void reset_for_fresh_port(const TransportState& state) {
  drop_collected(state);
  state.bProtocol = 0;
  state.RePrint = 0;
  state.bSleepFlag = 0;
  state.TransactionPrint = 0;
  state.bPowerOFF = 0;
}

long collect(const TransportState& state, std::string_view bytes) {
  // PageSize is exported, so an application may have written anything into it.
  const long held = state.PageSize;
  const long length = static_cast<long>(bytes.size());
  if (held < 0 || held > TZV_PAGE_BUFFER_SIZE || length > TZV_PAGE_BUFFER_SIZE - held) {
    return kRefused;
  }
  std::memcpy(state.PageBuffer + held, bytes.data(), bytes.size());
  state.PageSize = held + length;
  return length;
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
  if (transport.registry.find(portName) != kNoPort) return 0;
  const PortIndex port = transport.registry.find_free();
  if (port == kNoPort || std::strlen(portName) >= kPortNameSize) return kFailed;

  const long opened = transport.open(port, portName, portSettings);
  if (opened != 0) return opened;
  reset_for_fresh_port(transport.state);
  // Whatever the printer answers, the port stays open: a till may open before the paper is in.
  return ask_open_status(transport, port);
}

long write_port(const Transport& transport, const char* portName, const char* writeBuffer,
                long length) {
  const PortIndex port = transport.registry.find(portName);
  if (port == kNoPort || writeBuffer == nullptr || length < 0) return kFailed;
  return guarded_write(transport, port, {writeBuffer, static_cast<std::size_t>(length)});
}

long read_port(const Transport& transport, const char* portName, char* readBuffer, long length) {
  if (length == 0) return 0;
  const PortIndex port = transport.registry.find(portName);
  if (port == kNoPort || readBuffer == nullptr || length < 0) return kFailed;
  return transport.read(port, {readBuffer, static_cast<std::size_t>(length)}, kRawRead);
}

long close_port(const Transport& transport, const char* portName) {
  const PortIndex port = transport.registry.find(portName);
  if (port == kNoPort) return kFailed;
  transport.close(port);
  drop_collected(transport.state);
  transport.state.bProtocol = 0;
  transport.state.RePrint = 0;
  return 0;
}

void release_ports(const Transport& transport) {
  for (PortIndex port = 0; port < TZV_PORTS; ++port) {
    const char* name = transport.registry.name_of(port);
    if (name != nullptr) close_port(transport, name);
  }
}

long guarded_write(const Transport& transport, PortIndex port, std::string_view bytes) {
  if (in_error_state(transport.state)) return kRefused;
  return transport.write(port, bytes);
}

long buffered_write(const Transport& transport, PortIndex port, std::string_view bytes) {
  const TransportState& state = transport.state;
  if (state.RePrint != 0 || state.TransactionPrint != 0) return collect(state, bytes);
  return guarded_write(transport, port, bytes);
}
