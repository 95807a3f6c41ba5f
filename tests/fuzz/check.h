// What a fuzz target demands of its input.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Ends the program, and with it the run, when a rule does not hold.
inline void check(bool holds, const char* rule) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", rule);
  std::abort();
}

}  // namespace fuzz
