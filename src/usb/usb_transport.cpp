// The USB transport's record and table.
#include "dispatch/bound.h"
#include "usb/usb_port.h"

namespace {

constexpr std::string_view kPrefixes[] = {"/dev/usb/lp", "/dev/usblp"};

constexpr Transport usb{
    .prefixes = kPrefixes,
    .state = usb_state,
    .registry = UsbPorts::registry,
    .open = USBOpenPort,
    .write_anew = link_stands,
    .write = USBWritePort,
    .write_sends_again = false,
    .resend = USBWritePort,
    .write_now = USBWriteNow,
    .read = USBReadPortPrv,
    .watch_line = nothing_to_watch,
    .poll = USBPoll,
    .after_failed_poll = USBReopen,
    .status_exchange = {.drain_first = false, .after_query_ms = 0},
    .patience = {.data = {.min_length = 1, .silence_ms = 100},
                 .version = {.min_length = 1, .silence_ms = 50},
                 .frame = {.min_length = 1, .silence_ms = 50}},
    .short_write = {.cut = kOk, .drawer = kOk},
    .update_needs_open_port = false,
    .release = {.wake_up = {}, .pause_ms = 0},
};

}  // namespace

PortImpl GetUsbPortImpl() {
  return table_of<usb>();
}
