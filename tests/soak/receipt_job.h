// What the tills of the soaks do alike, as the manual says.
#pragma once

#include <cstdint>
#include <string>

#include "soak/receipts.h"
#include "tzvio.h"

namespace soak {

/// A write that finds no taker for so long is given up: a part of the job is missing.
inline constexpr std::int64_t kWriteGivesUp = 5000;  // milliseconds
/// By then the monitor has seen what an end has met.
inline constexpr std::int64_t kMonitorHasLooked = 1000;  // milliseconds

/// For a while after such a result, the printer holds what it has received.
inline bool keeps_data(long result) {
  return result == TZV_STATUS_COVER_OPEN || result == TZV_STATUS_PAPER_EMPTY ||
         result == TZV_STATUS_CUTTER_JAM;
}

inline bool is_ready(long code) {
  return code == TZV_STATUS_OK || code == TZV_STATUS_PAPER_NEAR_EMPTY;
}

inline void collect(const char* port, std::uint32_t number) {
  std::string text;
  for (const std::string& line : lines_of(number)) text += line + '\n';
  TransactionPrint(port, TZV_TRANSACTION_BEGIN);
  PrintNormal(port, text.c_str());
  CutPaper(port, 100);
}

/// Whether what is held has come out: a transaction of nothing but the request.
inline long ask_again(const char* port) {
  TransactionPrint(port, TZV_TRANSACTION_BEGIN);
  return TransactionPrint(port, TZV_TRANSACTION_END);
}

}  // namespace soak
