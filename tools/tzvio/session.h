// One port for the time of one command.
#pragma once

#include <optional>
#include <string>

#include "link.h"
#include "options.h"
#include "outcome.h"

namespace cli {

class Session {
 public:
  // Opens nothing yet, and has the program ended when nothing moves.
  explicit Session(const Options& options);
  // Releases and closes, whatever was reached.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Each gives what went wrong, or nothing.

  // Opens the port. That the printer does not answer is told only if it has to.
  std::optional<Result> open(bool must_answer = true);

  // The fault that the printer told when it was asked at the open.
  std::optional<Result> fault_at_open() const;

  // Starts the monitor.
  std::optional<Result> claim();

  // The same, and waits until the printer is known to confirm what it is sent; a fault may last for
  // --wait. An empty transaction finds out.
  std::optional<Result> make_ready();

  // What the monitor knows to be the matter. The library's status codes have a jammed cutter behind
  // "offline", which it brings with it.
  Outcome fault_now() const;

  // Waits for the end of a fault, as long as --wait has it. The fault that is left; kDone when it
  // has ended, kUnconfirmed when the printer was without power meanwhile and has forgotten all.
  Outcome wait_out_fault();

  // An empty transaction: kDone when all that was sent before is printed.
  static constexpr long kConfirmed = 0;
  long settle() const;

  // Makes a lost network connection anew; other links do that themselves.
  void mend_line() const;

  const char* port() const { return options_.port.c_str(); }
  const LinkState& state() const { return state_of(*link_); }
  const Options& options() const { return options_; }

 private:
  std::optional<Result> explain_unopened(long result) const;
  Result fault(Outcome outcome) const;

  const Options& options_;
  std::optional<Link> link_;
  std::string settings_;
  bool is_open_ = false;
  bool is_claimed_ = false;
  Outcome fault_at_open_ = Outcome::kDone;
};

// That none was named.
Result no_port();

// A pause between two looks at the monitor's flags.
void pause_between_looks();

}  // namespace cli
