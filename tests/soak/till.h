// A till that prints numbered receipts as the manual says, and compares what it is told with what
// is on paper.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "soak/faults.h"
#include "soak/model_printer.h"
#include "support/links.h"

namespace soak {

/// What came of a run.
struct Tally {
  std::size_t receipts = 0, transactions = 0, confirmed = 0, not_confirmed = 0;
  std::size_t asked_again = 0;    ///< confirmed by an empty transaction after a fault was mended
  std::size_t claimed_anew = 0;   ///< the state was misread, and came right with a new claim
  std::size_t misread_codes = 0;  ///< a fault was told that was not there: answers were spoilt
  // Confirmed, and not once on paper, for a reason that cannot be told from the outside.
  std::size_t memory_lost = 0, stale_answer = 0, sent_again = 0, torn_command = 0;
  std::array<std::size_t, kFaultKinds> by_kind{};
  std::vector<std::string> violations;
};

class Till {
 public:
  Till(testkit::Kernel& kernel, const testkit::Link& link, ModelPrinter& printer, Paper& paper,
       bool shows_power)
      : kernel_(kernel), link_(link), printer_(printer), paper_(paper), shows_power_(shows_power) {}

  bool open();
  void close();
  /// Prints until it is confirmed. A patient till lets late answers come in before it goes on.
  void print_receipt(const Fault& fault, bool patient);

  /// Numbers that transactions have got.
  std::uint32_t numbers() const { return next_; }
  /// Looks at all the paper once more: nothing came out later that should not have.
  void check_all_paper();

  const Tally& tally() const { return tally_; }

 private:
  /// What may be on paper of a number.
  struct Expectation {
    int least = 0, most = 1;  ///< times, whole
  };

  bool confirm(const Fault& fault, bool patient);
  long transaction(std::uint32_t number);
  void wait_until_ready();
  bool wait_for_ready(std::int64_t patience_ms);
  void rest(bool patient);
  void check_code(long result, const Fault& fault);
  void check_confirmed(std::uint32_t number, const Fault& fault);
  void violation(const std::string& what, std::uint32_t number, const Fault& fault);

  testkit::Kernel& kernel_;
  const testkit::Link& link_;
  const char* const port_ = link_.port.c_str();
  ModelPrinter& printer_;
  Paper& paper_;
  const bool shows_power_;
  bool lost_memory_ = false;  // seen while waiting
  std::uint32_t next_ = 0;
  std::vector<Expectation> expectations_;
  Tally tally_;
};

}  // namespace soak
