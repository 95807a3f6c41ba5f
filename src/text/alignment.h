// The command that aligns what follows it: ESC a n.
#pragma once

#include <string_view>

#include "tzvio.h"

inline constexpr std::string_view kAlignLeft = "\033a0";
inline constexpr std::string_view kAlignCenter = "\033a1";
inline constexpr std::string_view kAlignRight = "\033a2";

/// The command for an `Alignment` or `Position` argument; what is not known centres.
constexpr std::string_view alignment_prefix(long alignment) {
  if (alignment == TZV_ALIGN_LEFT) return kAlignLeft;
  return alignment == TZV_ALIGN_RIGHT ? kAlignRight : kAlignCenter;
}
