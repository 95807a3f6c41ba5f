// The condition in which device services send nothing.
#pragma once

#include "status/transport_state.h"

/// Paper out or cover open. Offline and a cutter jam do not stop a service: they may be what it is
/// asked about.
inline bool cannot_serve(const TransportState& state) {
  return state.bPaperEmpty || state.bCoverOpen;
}
