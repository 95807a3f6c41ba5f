#include "soak/tally.h"

#include <algorithm>
#include <sstream>

namespace soak {

std::string counts_of(const Tally& tally) {
  std::ostringstream text;
  text << tally.receipts << " receipts, " << tally.transactions << " transactions, "
       << tally.confirmed << " confirmed (" << tally.asked_again << " by asking again), "
       << tally.not_confirmed << " not\n";
  return text.str();
}

std::string incidents_of(const Tally& tally) {
  std::ostringstream text;
  text << "  faults:";
  for (std::size_t kind = 0; kind < kFaultKinds; ++kind) {
    text << (kind > 0 ? ", " : " ") << tally.by_kind[kind] << ' '
         << name_of(static_cast<FaultKind>(kind));
  }
  text << "\n  known exceptions: " << tally.memory_lost << " memory lost unseen, "
       << tally.stale_answer << " confirmed by an earlier answer, " << tally.sent_again
       << " more than once on paper, " << tally.torn_command
       << " begun within a torn command\n  spoilt answers: " << tally.misread_codes
       << " told as another fault, " << tally.claimed_anew
       << " mended by a new claim\n  violations: " << tally.violations.size() << '\n';
  return text.str();
}

std::string violations_of(const Tally& tally) {
  constexpr std::size_t kMost = 20;
  std::string text;
  for (std::size_t i = 0; i < std::min(tally.violations.size(), kMost); ++i) {
    text += tally.violations[i] + '\n';
  }
  return text;
}

}  // namespace soak
