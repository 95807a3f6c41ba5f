// The error states as status codes, by priority.
#pragma once

#include "dispatch/results.h"
#include "status/transport_state.h"

/// Cover, paper or offline; 0 when there is none of them.
inline long blocking_code(const TransportState& state) {
  if (state.bCoverOpen) return kCoverOpen;
  if (state.bPaperEmpty) return kPaperEmpty;
  return state.bOffline ? kOffline : kOk;
}

/// The same, and a cutter jam behind them: 0 exactly when the printer is in no error state.
inline long error_code(const TransportState& state) {
  const long blocking = blocking_code(state);
  if (blocking != kOk) return blocking;
  return state.bCutterJam ? kCutterJam : kOk;
}
