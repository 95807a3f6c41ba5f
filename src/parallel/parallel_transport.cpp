// The parallel transport's table. It accepts its names and supplies no operation yet: every
// operation on such a port answers -3.
#include "dispatch/port_impl.h"
#include "dispatch/port_operations.h"
#include <unistd.h>
#include "tzvio_state.h"

ParPort parPorts[TZV_PORTS] = {};

namespace {

constexpr std::string_view kPrefixes[] = {"/dev/parport", "/dev/lp"};

}  // namespace

PortImpl GetParallelPortImpl() {
  RegistryOf<parPorts, &ParPort::port, close>::forget_all();
  PortImpl impl{};
  impl.MatchPortName = [](const char* portName) { return match_prefixes(kPrefixes, portName); };
  return impl;
}
