// What goes wrong with one receipt.
#pragma once

#include <cstddef>
#include <cstdint>

namespace soak {

enum class FaultKind {
  // These set in behind a certain byte of the job.
  connection_lost,
  connection_closed,
  cover_open,
  paper_out,
  jam,
  power_off,
  restart,
  cover_then_power,
  busy,
  // Known before the job is sent, which is refused then.
  known_before,
  // These last for the whole receipt.
  late,
  doubled,
  split,
  garbled,
  mute,
  slow,
  none,
};

inline constexpr std::size_t kFaultKinds = std::size_t(FaultKind::none) + 1;
inline constexpr std::size_t kKindsWithPosition = std::size_t(FaultKind::busy) + 1;

const char* name_of(FaultKind kind);

struct Fault {
  FaultKind kind = FaultKind::none;
  std::size_t position = 0;  ///< bytes of the job before it sets in
  std::int64_t lasts_ms = 0;
};

}  // namespace soak
