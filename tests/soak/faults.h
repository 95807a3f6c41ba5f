// What goes wrong with one receipt, and the order in which everything does.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>

#include "soak/model_printer.h"

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

/// Brings the fault about; answers and speed are spoilt until `end_faults()`, and everything else
/// ends by itself.
void start(const Fault& fault, testkit::Kernel& kernel, ModelPrinter& printer);
void end_faults(ModelPrinter& printer);

/// First every kind at every byte, then at random. The same seed gives the same faults.
class FaultPlan {
 public:
  FaultPlan(std::uint64_t seed, std::size_t longest_job)
      : random_(seed), positions_(longest_job + 1) {}

  Fault next();
  /// Receipts until every kind has been at every byte.
  std::size_t sweep() const { return kKindsWithPosition * positions_; }

 private:
  std::size_t below(std::size_t limit) { return random_() % limit; }
  std::int64_t duration_of(FaultKind kind);

  std::mt19937_64 random_;
  std::size_t positions_;
  std::size_t given_ = 0;
};

}  // namespace soak
