// The network transport's record and table.
#include "dispatch/bound.h"
#include "net/net_port.h"

namespace {

constexpr std::string_view kPrefixes[] = {"SOCKET:"};

// Reads wait for as long as the printer takes.
constexpr ReadPatience kBlocking{.min_length = 1, .silence_ms = 200};

}  // namespace

constexpr Transport network{
    .prefixes = kPrefixes,
    .state = network_state,
    .registry = NetPorts::registry,
    .open = NETOpenPort,
    .write_anew = NetworkWriteAnew,
    .write = NetworkWritePort,
    .write_sends_again = true,
    .resend = NetworkResend,
    .write_now = NetworkWriteNow,
    .read = NETReadPortPrv,
    .watch_line = nothing_to_watch,
    .poll = NetworkPoll,
    .after_failed_poll = NetworkGiveUp,
    .status_exchange = {.drain_first = false, .after_query_ms = 0},
    .patience = {.data = kBlocking, .version = kBlocking, .frame = kBlocking},
    .short_write = {.cut = kRefused, .drawer = kOk},
    .update_needs_open_port = true,
    // GS a 255
    .release = {.wake_up = "\035a\xff", .pause_ms = 300},
};

PortImpl GetNetPortImpl() {
  return table_of<network>();
}
