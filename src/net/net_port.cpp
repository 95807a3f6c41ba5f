// Opening a network port, and opening it anew after its connection was lost.
#include "net/net_port.h"

#include <sys/socket.h>

#include <cstdlib>

#include "dispatch/system.h"
#include "status/claim.h"
#include "status/collected_job.h"
#include "tzvio.h"

NETPort netPorts[TZV_PORTS] = {};

namespace {

constexpr std::size_t kPrefixLength = 7;  // "SOCKET:"
constexpr std::string_view kDiagnosticLine = "LINK\n";
constexpr long kSettlePause = 1000;  // milliseconds

}  // namespace

Opened NETOpenPort(int entry, const char* portName, const char* portSettings) {
  NETPort opened = NetPorts::named(portName);
  const char* const address = portName + kPrefixLength;
  if (std::strlen(address) >= sizeof opened.RealIP) return {kFailed};
  std::memcpy(opened.RealIP, address, std::strlen(address));
  if (portSettings != nullptr) {
    opened.portnum = static_cast<int>(std::strtol(portSettings, nullptr, 10));
  }

  const Connection made = connect_to(opened);
  if (made.sock == -1) return {kFailed};
  opened.sock = made.sock;
  // A connection that came about within the call is taken as it is, without asking the printer.
  return {NetPorts::store(entry, opened), made.at_once};
}

bool reconnect(PortHandle port) {
  const NETPort lost = NetPorts::copy(port);
  stop_monitor(network, lost.portName);
  if (InitNET(lost.portName) != kOk) return false;
  network_state.bPowerOFF = 0;
  send_job_again(network_state);
  pause_ms(kSettlePause);
  return true;
}

long InitNET(const char* portName) {
  const PortHandle port = portName != nullptr ? NetPorts::find(portName) : PortHandle{};
  if (!port) return kFailed;
  const NETPort lost = NetPorts::copy(port);
  lose_sent_job(network_state);
  NetPorts::give_up(port);
  const Connection made = connect_to(lost);
  if (made.sock == -1 || !NetPorts::replace(port, made.sock)) return kFailed;
  // As at an open: nothing is done about a connection that came about within the call.
  if (made.at_once) return kOk;
  NetworkWriteNow(port, kDiagnosticLine);
  return start_monitor(network, portName) ? kOk : kFailed;
}
