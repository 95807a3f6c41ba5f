// A query and its answer, with the monitor kept off the line.
#pragma once

#include <span>

#include "dispatch/transport.h"

/// While it lives, the monitor does not read: the answer is the caller's. `bStopThread` is 1 for
/// as long as any caller waits.
class Exchange {
 public:
  explicit Exchange(const TransportState& state);
  ~Exchange();
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

 private:
  const TransportState& state_;
};

/// What a new monitor finds: 1 when a caller waits for an answer, else 0. Clears what an
/// application may have left.
void settle_exchanges(const TransportState& state);

/// Reads for a caller. Until it returns, the monitor does not read: where reads block, the one that
/// came second would wait for what the first has taken.
long read_for_caller(const Transport& transport, PortHandle port, std::span<char> buffer,
                     ReadPatience patience);

/// Reads up to 21 times, 10 ms apart, until something comes. The count of the last read.
long read_answer(const Transport& transport, PortHandle port, std::span<char> answer,
                 ReadPatience patience);
