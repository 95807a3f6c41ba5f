#include "device/drawer.h"

#include "dispatch/port_operations.h"

namespace {

// ESC p: the pin, then on-time and off-time in units of 2 ms.
constexpr std::string_view kDrawerPulse = "\033p\x30\x64\xc8";

}  // namespace

long open_cash_drawer(const Transport& transport, const char* portName) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  const bool healthy = !in_error_state(transport.state);
  if (transport.state.bDrawerOpened) return healthy ? kOk : kRefused;
  const long written = buffered_write(transport, port, kDrawerPulse);
  if (!healthy) return kRefused;
  return written == static_cast<long>(kDrawerPulse.size()) ? kOk : transport.short_write.drawer;
}
