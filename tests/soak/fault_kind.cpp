#include "soak/fault_kind.h"

#include <array>

namespace soak {

const char* name_of(FaultKind kind) {
  constexpr std::array<const char*, kFaultKinds> kNames{
      "connection lost", "connection closed", "cover open",   "paper out",
      "cutter jam",      "power off",         "restarted",    "cover, then power off",
      "takes nothing",   "cover open before", "late answers", "doubled answers",
      "split answers",   "garbled answers",   "no answers",   "slow printer",
      "no fault"};
  return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace soak
