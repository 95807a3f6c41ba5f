// Brings faults about with the model of a printer, in an order that a seed gives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

#include "soak/fault_kind.h"
#include "soak/model_printer.h"

namespace soak {

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
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
  std::int64_t duration_of(FaultKind kind);

  std::mt19937_64 random_;
  std::size_t positions_;
  std::size_t given_ = 0;
};

}  // namespace soak
