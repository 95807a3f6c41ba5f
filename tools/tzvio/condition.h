// What the printer's state is, as its monitor saw it, in words and for programs.
#pragma once

#include <string>

#include "link.h"
#include "outcome.h"

namespace cli {

struct Condition {
  bool cover_open;
  bool paper_out;
  bool paper_near_end;
  bool offline;  // in effect: the other faults take the printer offline too
  bool cutter_jam;
  bool power_off;
  bool drawer_open;

  bool operator==(const Condition&) const = default;
};

Condition look_at(const LinkState& state);

// The most important fault; kDone when there is none.
Outcome fault_of(const Condition& condition);
Outcome fault_of_code(long status_code);

// "ready", "cover open" and so on.
std::string words_for(const Condition& condition);
std::string words_for(Outcome fault);

// What to do about a fault.
std::string advice_for(Outcome fault);

Json fields_of(const Condition& condition);

}  // namespace cli
