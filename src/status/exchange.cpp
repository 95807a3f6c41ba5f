#include "status/exchange.h"

#include "dispatch/lock.h"
#include "dispatch/system.h"

// The monitor looks at bStopThread and reads under the same lock, so once the flag is up no read
// of the monitor's is under way.

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

long read_answer(const Transport& transport, PortHandle port, std::span<char> answer,
                 ReadPatience patience) {
  constexpr int kReads = 21;
  constexpr long kPause = 10;  // milliseconds
  for (int reads = 1;; ++reads) {
    const long count = transport.read(port, answer, patience);
    if (count > 0 || reads == kReads) return count;
    pause_ms(kPause);
  }
}
