#include "outcome.h"

namespace cli {

std::string_view name_of(Outcome outcome) {
  for (const OutcomeRow& row : kOutcomes) {
    if (row.outcome == outcome) return row.name;
  }
  return "";
}

}  // namespace cli
