// The serial transport's record and table.
#include "dispatch/bound.h"
#include "serial/serial_port.h"

namespace {

constexpr std::string_view kPrefixes[] = {"/dev/ttyS"};

constexpr Transport serial{
    .prefixes = kPrefixes,
    .state = serial_state,
    .registry = SerialPorts::registry,
    .open = SerialOpenPort,
    .write_anew = link_stands,
    .write = SerialWritePort,
    .write_sends_again = false,
    .resend = SerialWritePort,
    .write_now = SerialWriteNow,
    .read = SerialReadPortPrv,
    .watch_line = SerialWatchLine,
    .poll = SerialPoll,
    .after_failed_poll = poll_again,
    .status_exchange = {.drain_first = true, .after_query_ms = 20},
    .patience = {.data = {.min_length = 1, .silence_ms = 200},
                 .version = {.min_length = 1, .silence_ms = 200},
                 .frame = {.min_length = 2, .silence_ms = 200}},
    .short_write = {.cut = kRefused, .drawer = kRefused},
    .update_needs_open_port = true,
    .release = {.wake_up = {}, .pause_ms = 0},
};

}  // namespace

PortImpl GetSerialPortImpl() {
  return table_of<serial>();
}
