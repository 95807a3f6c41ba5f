#include "status/exchange.h"

#include "dispatch/lock.h"
#include "dispatch/system.h"

// The monitor looks at bStopThread and at the count of reads, and reads, under the same lock; so
// once either is up no read of the monitor's is under way.

namespace {

void count_read(HandOver& hand_over, int change) {
  const MutexLock lock(hand_over.mutex);
  hand_over.reads += change;
}

}  // namespace

Exchange::Exchange(const TransportState& state) : state_(state) {
  const MutexLock lock(state.hand_over.mutex);
  ++state.hand_over.exchanges;
  state.bStopThread = 1;
}

Exchange::~Exchange() {
  const MutexLock lock(state_.hand_over.mutex);
  if (--state_.hand_over.exchanges == 0) state_.bStopThread = 0;
}

void settle_exchanges(const TransportState& state) {
  const MutexLock lock(state.hand_over.mutex);
  state.bStopThread = state.hand_over.exchanges > 0;
}

long read_for_caller(const Transport& transport, PortHandle port, std::span<char> buffer,
                     ReadPatience patience) {
  count_read(transport.state.hand_over, 1);
  const long count = transport.read(port, buffer, patience);
  count_read(transport.state.hand_over, -1);
  return count;
}

long read_answer(const Transport& transport, PortHandle port, std::span<char> answer,
                 ReadPatience patience) {
  constexpr int kReads = 21;
  constexpr long kPause = 10;  // milliseconds
  for (int reads = 1;; ++reads) {
    const long count = read_for_caller(transport, port, answer, patience);
    if (count > 0 || reads == kReads) return count;
    pause_ms(kPause);
  }
}
