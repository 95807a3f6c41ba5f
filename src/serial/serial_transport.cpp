// The serial transport's record and table.
#include "dispatch/bound.h"
#include "serial/serial_port.h"

namespace {

constexpr std::string_view kPrefixes[] = {"/dev/ttyS"};

constexpr Transport serial{
    .prefixes = kPrefixes,
    .state = serial_state,
    .registry = RegistryOf<serPorts>::registry,
    .open = SerialOpenPort,
    .close = SerialClosePort,
    .write = SerialWritePort,
    .write_now = SerialWriteNow,
    .read = SerialReadPortPrv,
    .status_exchange = {.drain_first = true, .after_query_ms = 20},
};

}  // namespace

PortImpl GetSerialPortImpl() {
  return table_of<serial>();
}
