// What can be the matter with the printer, and the names by which people say it.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace virtual_printer {

enum class Condition {
  kCoverOpen,
  kPaperOut,
  kPaperNearEnd,
  kCutterJam,
  kDrawerOpen,
  kOffline,
  kPowerOff,
  kMarkSeen,  // the black mark's sensor sees one
  // Of the line, whatever the printer's own state.
  kConnectionLost,    // by a reset, and no new one comes about
  kConnectionClosed,  // the same in an orderly way
  kBusy,              // no byte is taken
  kTakesNothing,      // writes succeed with no byte taken
  kClaimRefused,
  kNibbleRefused,
};

// In the order in which people are shown them.
inline constexpr std::array kAllConditions{
    Condition::kCoverOpen,        Condition::kPaperOut,      Condition::kPaperNearEnd,
    Condition::kCutterJam,        Condition::kDrawerOpen,    Condition::kOffline,
    Condition::kPowerOff,         Condition::kMarkSeen,      Condition::kConnectionLost,
    Condition::kConnectionClosed, Condition::kBusy,          Condition::kTakesNothing,
    Condition::kClaimRefused,     Condition::kNibbleRefused,
};

std::string_view name_of(Condition condition);

// Whether the printer's reports tell it.
bool is_reported(Condition condition);

std::optional<Condition> condition_named(std::string_view name);

class Conditions {
 public:
  bool has(Condition condition) const { return present_[index_of(condition)]; }

  // Whether that changed anything.
  bool set(Condition condition, bool present);

  // Something that a person has to put right first.
  bool stop_printing() const;

  // Nothing that is sent arrives, in either direction.
  bool is_cut_off() const {
    return has(Condition::kConnectionLost) || has(Condition::kConnectionClosed);
  }

 private:
  static std::size_t index_of(Condition condition) { return static_cast<std::size_t>(condition); }

  std::array<bool, kAllConditions.size()> present_{};
};

// A condition that sets in by itself, once.
struct ScriptedFault {
  enum class Unit { kLines, kBytes };

  Condition condition{};
  std::size_t after = 0;  // lines printed or bytes received from then on; 0: at once
  Unit unit = Unit::kLines;

  bool operator==(const ScriptedFault&) const = default;
};

// As people write it, "paper-out@12" or "connection-lost@300B"; nothing when it is not well-formed.
std::optional<ScriptedFault> parse_scripted_fault(std::string_view text);

}  // namespace virtual_printer
