// A till that prints numbered receipts as the manual says, and compares what it is told with what
// is on paper.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "soak/faults.h"
#include "soak/model_printer.h"
#include "soak/tally.h"
#include "support/links.h"

namespace soak {

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
