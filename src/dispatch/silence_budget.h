// A time-out that counts only the waiting in which nothing happened.
#pragma once

#include <algorithm>

#include "dispatch/system.h"

class SilenceBudget {
 public:
  explicit constexpr SilenceBudget(long milliseconds) : full_(milliseconds), left_(milliseconds) {}

  constexpr bool exhausted() const { return left_ <= 0; }

  /// Takes away what was waited in vain; what is left never falls below 0.
  constexpr void spend(long milliseconds) { left_ = std::max(left_ - milliseconds, 0L); }

  /// Something moved: the printer is alive, and gets the whole budget again.
  constexpr void restore() { left_ = full_; }

 private:
  long full_;
  long left_;
};

/// Waits in vain.
inline void pause_and_spend(SilenceBudget& budget, long milliseconds) {
  pause_ms(milliseconds);
  budget.spend(milliseconds);
}
