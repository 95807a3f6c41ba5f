#include "condition.h"

namespace cli {

Condition look_at(const LinkState& state) {
  Condition condition{.cover_open = seen(state.bCoverOpen) != 0,
                      .paper_out = seen(state.bPaperEmpty) != 0,
                      .paper_near_end = seen(state.bPaperNearEmpty) != 0,
                      .offline = seen(state.bOffline) != 0,
                      .cutter_jam = seen(state.bCutterJam) != 0,
                      .power_off = seen(state.bPowerOFF) != 0,
                      .drawer_open = seen(state.bDrawerOpened) != 0};
  // While a fault lasts the monitor asks again and again, and the offline flag with it comes and
  // goes; the printer does neither.
  condition.offline |= fault_of(condition) != Outcome::kDone;
  return condition;
}

Outcome fault_of(const Condition& condition) {
  if (condition.power_off) return Outcome::kOffline;
  if (condition.cover_open) return Outcome::kCoverOpen;
  if (condition.paper_out) return Outcome::kPaperOut;
  if (condition.cutter_jam) return Outcome::kCutterJam;
  return condition.offline ? Outcome::kOffline : Outcome::kDone;
}

Outcome fault_of_code(long status_code) {
  switch (status_code) {
    case TZV_STATUS_COVER_OPEN:
      return Outcome::kCoverOpen;
    case TZV_STATUS_PAPER_EMPTY:
      return Outcome::kPaperOut;
    case TZV_STATUS_OFFLINE:
      return Outcome::kOffline;
    case TZV_STATUS_CUTTER_JAM:
      return Outcome::kCutterJam;
    default:
      return Outcome::kDone;
  }
}

std::string words_for(const Condition& condition) {
  if (condition.power_off) return "no power, or the line is lost";
  return words_for(fault_of(condition));
}

std::string words_for(Outcome fault) {
  switch (fault) {
    case Outcome::kCoverOpen:
      return "cover open";
    case Outcome::kPaperOut:
      return "paper out";
    case Outcome::kCutterJam:
      return "cutter jammed";
    case Outcome::kOffline:
      return "offline";
    default:
      return "ready";
  }
}

std::string advice_for(Outcome fault) {
  switch (fault) {
    case Outcome::kCoverOpen:
      return "close the cover";
    case Outcome::kPaperOut:
      return "put in a new roll";
    case Outcome::kCutterJam:
      return "free the cutter";
    case Outcome::kOffline:
      return "switch the printer on, and look at its cable";
    default:
      return "";
  }
}

Json fields_of(const Condition& condition) {
  std::string name = "ready";
  const Outcome fault = fault_of(condition);
  if (fault != Outcome::kDone) name = name_of(fault);
  return {{"state", name},
          {"cover_open", condition.cover_open},
          {"paper_out", condition.paper_out},
          {"paper_near_end", condition.paper_near_end},
          {"offline", condition.offline},
          {"cutter_jam", condition.cutter_jam},
          {"power_off", condition.power_off},
          {"drawer_open", condition.drawer_open}};
}

}  // namespace cli
