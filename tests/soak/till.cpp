#include "soak/till.h"

#include "soak/receipt_job.h"
#include "tzvio.h"

namespace soak {

namespace {

constexpr int kAttempts = 10;
constexpr int kFirstDescriptor = 700;
constexpr std::int64_t kLook = 100;        // milliseconds
constexpr std::int64_t kPatience = 30000;  // milliseconds
// Longer than any answer is late.
constexpr std::int64_t kRest = 12000;  // milliseconds

Condition told_by(long result) {
  if (result == TZV_STATUS_COVER_OPEN) return Condition::cover_open;
  return result == TZV_STATUS_PAPER_EMPTY ? Condition::paper_out : Condition::jam;
}

}  // namespace

bool Till::open() {
  return OpenPort(port_, link_.settings.c_str()) == 0 && ClaimDevice(port_, 0) == 0 &&
         wait_for_ready(kPatience);
}

void Till::close() {
  ReleaseDevice(port_);
  kernel_.run_for(1000);
  ClosePort(port_);
}

void Till::print_receipt(const Fault& fault, bool patient) {
  ++tally_.receipts;
  // As a system does, which gives out those that are free again.
  kernel_.number_descriptors_from(kFirstDescriptor);
  ++tally_.by_kind[static_cast<std::size_t>(fault.kind)];
  start(fault, kernel_, printer_);
  if (!confirm(fault, patient)) violation("never confirmed", next_ - 1, fault);
  end_faults(printer_);
  const bool answers_linger = fault.kind >= FaultKind::late && fault.kind <= FaultKind::slow;
  if (answers_linger) rest(patient);
  wait_until_ready();
}

bool Till::confirm(const Fault& fault, bool patient) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const std::uint32_t number = next_++;
    expectations_.resize(next_);
    long result = transaction(number);
    check_code(result, fault);
    if (keeps_data(result)) {
      wait_until_ready();
      // The printer has held what it had received, unless its power has gone meanwhile.
      if (!lost_memory_) {
        result = ask_again(port_);
        tally_.asked_again += result == 0;
      }
    }
    if (result == 0) {
      check_confirmed(number, fault);
      return true;
    }
    ++tally_.not_confirmed;
    expectations_[number].most = 1 + printer_.reconnections();
    // What is spoilt for the whole receipt would be so for ever.
    if (attempt == 1) end_faults(printer_);
    kernel_.run_for(kMonitorHasLooked);
    rest(patient);
    wait_until_ready();
  }
  return false;
}

long Till::transaction(std::uint32_t number) {
  ++tally_.transactions;
  printer_.begin_job();
  collect(port_, number);
  // In an error state nothing would be sent, and the result would be as of a job that is held.
  if (GetError(port_) != TZV_STATUS_OK) wait_until_ready();
  const std::int64_t began = kernel_.now_ms();
  const long result = TransactionPrint(port_, TZV_TRANSACTION_END);
  lost_memory_ = kernel_.now_ms() - began >= kWriteGivesUp;
  return result;
}

// ------------------------------------------------------------------------------------ waiting

void Till::rest(bool patient) {
  if (patient) kernel_.run_for(kRest);
}

void Till::wait_until_ready() {
  if (wait_for_ready(kPatience)) return;
  // What is spoilt for the whole receipt would be so for ever.
  end_faults(printer_);
  // A report that was spoilt on its way stays as it was read until there is another.
  ++tally_.claimed_anew;
  ReleaseDevice(port_);
  kernel_.run_for(1000);
  ClaimDevice(port_, 0);
  if (!wait_for_ready(kPatience)) violation("never ready again", next_ - 1, {});
}

bool Till::wait_for_ready(std::int64_t patience_ms) {
  const std::int64_t deadline = kernel_.now_ms() + patience_ms;
  for (int looks = 1; kernel_.now_ms() < deadline; ++looks) {
    const long code = GetError(port_);
    if (is_ready(code)) return true;
    lost_memory_ = lost_memory_ || code == TZV_STATUS_OFFLINE;
    kernel_.run_for(kLook);
    // Any write makes a lost connection anew, even one of nothing.
    if (looks % 10 == 0) WritePort(port_, "", 0);
  }
  return false;
}

// ------------------------------------------------------------------------------------ judging

void Till::check_code(long result, const Fault& fault) {
  if (result == 0 || result == TZV_STATUS_OFFLINE) return;
  if (!keeps_data(result)) {
    violation("result " + std::to_string(result), next_ - 1, fault);
  } else if (!printer_.was(told_by(result))) {
    if (fault.kind == FaultKind::split || fault.kind == FaultKind::garbled) {
      ++tally_.misread_codes;
    } else {
      violation("told " + std::to_string(result) + " for nothing", next_ - 1, fault);
    }
  }
}

void Till::check_confirmed(std::uint32_t number, const Fault& fault) {
  ++tally_.confirmed;
  const Paper::Account& paper = paper_.of(number);
  expectations_[number] = {.least = 1, .most = 1 + printer_.reconnections()};
  if (paper.whole > 0) {
    if (paper.torn > printer_.losses()) violation("torn without a loss", number, fault);
  } else if (printer_.gave_stale_answer()) {
    ++tally_.stale_answer;
    // It comes out yet, or what was lost is not known to be.
    expectations_[number].least = 0;
  } else if (printer_.lost_memory() && !shows_power_) {
    ++tally_.memory_lost;
    expectations_[number] = {.least = 0, .most = 0};
  } else if (printer_.swallowed()) {
    ++tally_.torn_command;
    expectations_[number] = {.least = 0, .most = 0};
  } else {
    violation("confirmed and not on paper", number, fault);
  }
}

void Till::check_all_paper() {
  for (std::uint32_t number = 0; number < next_; ++number) {
    const auto [least, most] = expectations_[number];
    const int found = paper_.of(number).whole;
    tally_.sent_again += found > 1;
    if (found < least || found > most) {
      violation("in the end " + std::to_string(found) + " times on paper", number, {});
    }
  }
}

void Till::violation(const std::string& what, std::uint32_t number, const Fault& fault) {
  tally_.violations.push_back("number " + std::to_string(number) + ", " + name_of(fault.kind) +
                              " at byte " + std::to_string(fault.position) + " for " +
                              std::to_string(fault.lasts_ms) + " ms: " + what);
}

}  // namespace soak
