// The network transport's table. It accepts its names and supplies no operation yet: every
// operation on such a port answers -3.
#include "dispatch/port_impl.h"
#include "dispatch/port_operations.h"
#include <unistd.h>
#include "tzvio_state.h"

NETPort netPorts[TZV_PORTS] = {};

namespace {

constexpr std::string_view kPrefixes[] = {"SOCKET:"};

}  // namespace

PortImpl GetNetPortImpl() {
  RegistryOf<netPorts, &NETPort::sock, close>::forget_all();
  PortImpl impl{};
  impl.MatchPortName = [](const char* portName) { return match_prefixes(kPrefixes, portName); };
  return impl;
}
