// What came of a run, and how it is told.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "soak/fault_kind.h"

namespace soak {

struct Tally {
  std::size_t receipts = 0, transactions = 0, confirmed = 0, not_confirmed = 0;
  std::size_t asked_again = 0;    ///< confirmed by an empty transaction after a fault was mended
  std::size_t claimed_anew = 0;   ///< the state was misread, and came right with a new claim
  std::size_t misread_codes = 0;  ///< a fault was told that was not there: answers were spoilt
  // Confirmed, and not once on paper, for a reason that cannot be told from the outside.
  std::size_t memory_lost = 0, stale_answer = 0, sent_again = 0, torn_command = 0;
  std::array<std::size_t, kFaultKinds> by_kind{};
  std::vector<std::string> violations;
};

/// Receipts and transactions in one line.
std::string counts_of(const Tally& tally);
/// The lines of a report about everything else.
std::string incidents_of(const Tally& tally);
/// The first of the violations, a line for each; empty when there is none.
std::string violations_of(const Tally& tally);

}  // namespace soak
