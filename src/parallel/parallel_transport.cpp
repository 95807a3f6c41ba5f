// The parallel transport's record and table.
#include "dispatch/bound.h"
#include "parallel/parallel_port.h"

namespace {

constexpr std::string_view kPrefixes[] = {"/dev/parport", "/dev/lp"};

// Reads do not wait, so there is nothing to be patient about.
constexpr ReadPatience kAtOnce{.min_length = 0, .silence_ms = 0};

constexpr Transport parallel{
    .prefixes = kPrefixes,
    .state = parallel_state,
    .registry = ParPorts::registry,
    .open = ParallelOpenPort,
    .write_anew = link_stands,
    .write = ParallelWritePort,
    .write_sends_again = false,
    .resend = ParallelWritePort,
    .write_now = ParallelWriteNow,
    .read = ParallelReadPort,
    .watch_line = ParallelWatchLine,
    .poll = ParallelPoll,
    .after_failed_poll = poll_again,
    .status_exchange = {.drain_first = true, .after_query_ms = 10},
    .patience = {.data = kAtOnce, .version = kAtOnce, .frame = kAtOnce},
    .short_write = {.cut = kRefused, .drawer = kRefused},
    .update_needs_open_port = true,
    .release = {.wake_up = {}, .pause_ms = 1000},
};

}  // namespace

PortImpl GetParallelPortImpl() {
  return table_of<parallel>();
}
