#include "session.h"

#include <tzvio.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>

#include "condition.h"
#include "device_look.h"
#include "guardian.h"
#include "serial/serial_settings.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

// How long a claimed printer may count as offline before its monitor has looked at it.
constexpr seconds kFirstLook{3};
// The monitor's flags show what the open was told within so long.
constexpr seconds kFirstReport{2};
constexpr useconds_t kPauseUs = 20000;
constexpr seconds kBetweenConnections{1};

}  // namespace

Result no_port() {
  return {.outcome = Outcome::kUsage,
          .words = "which port? Say --port, or set TZVIO_PORT; `tzvio ports` lists devices"};
}

void pause_between_looks() {
  show_life();
  usleep(kPauseUs);
}

Session::Session(const Options& options)
    : options_(options),
      link_(link_of(options.port)),
      settings_(settings_for(link_, options.settings)) {
  start_guardian(options.port, options.timeout_s);
}

Session::~Session() {
  if (is_claimed_) ReleaseDevice(port());
  if (is_open_) ClosePort(port());
}

std::optional<Result> Session::open(bool must_answer) {
  if (options_.port.empty()) return no_port();
  const long result = OpenPort(port(), settings_.c_str());
  is_open_ = link_ && GetError(port()) != TZV_FAILED;
  if (!is_open_) return explain_unopened(result);
  fault_at_open_ = fault_of_code(result);
  state().RecLineChars = options_.columns;
  state().RecLineWidth = options_.line_width;
  state().MapMode = options_.unit;
  if (result >= 0 || !must_answer) return std::nullopt;
  // A connection that is refused may count as made until the first exchange.
  const Look look =
      *link_ == Link::kNetwork ? look_at_port(*link_, options_.port, settings_) : Look{};
  if (look.outcome != Outcome::kDone) return Result{.outcome = look.outcome, .words = look.words};
  return Result{.outcome = Outcome::kNoAnswer,
                .words = options_.port +
                         ": the printer does not answer: is it switched on, its "
                         "cable plugged in, and are the settings (" +
                         settings_ + ") its own?"};
}

std::optional<Result> Session::explain_unopened(long result) const {
  if (!link_)
    return Result{.outcome = Outcome::kNotAccepted, .words = no_link_words(options_.port)};
  if (result == TZV_NOT_ACCEPTED) {
    return Result{.outcome = Outcome::kNotAccepted,
                  .words = "the settings '" + settings_ +
                           "' are not accepted; as an example, 9600,none,8,1,none"};
  }
  if (result == TZV_REFUSED) {
    return Result{.outcome = Outcome::kNoDevice,
                  .words = options_.port + " takes no settings: nothing real is behind it"};
  }
  const Look look = look_at_port(*link_, options_.port, settings_);
  if (look.outcome != Outcome::kDone) return Result{.outcome = look.outcome, .words = look.words};
  return Result{.outcome = Outcome::kNoDevice,
                .words = options_.port +
                         " cannot be opened; its name may be too long, or another "
                         "program may have claimed it"};
}

std::optional<Result> Session::fault_at_open() const {
  if (fault_at_open_ == Outcome::kDone) return std::nullopt;
  return fault(fault_at_open_);
}

std::optional<Result> Session::claim() {
  is_claimed_ = ClaimDevice(port(), 0) == 0;
  if (is_claimed_) return std::nullopt;
  return Result{.outcome = Outcome::kRefused, .words = options_.port + " cannot be claimed"};
}

std::optional<Result> Session::make_ready() {
  if (auto failed = claim()) return failed;
  const auto begin = Clock::now();
  bool is_shown = fault_at_open_ == Outcome::kDone;  // by the monitor's flags
  for (;;) {
    const auto waited = Clock::now() - begin;
    if (fault_now() == Outcome::kDone && (is_shown || waited >= kFirstReport)) {
      if (settle() == kConfirmed) return std::nullopt;
      if (fault_now() == Outcome::kDone) return fault(Outcome::kNoAnswer);
    }
    const Outcome outcome = fault_now();
    is_shown |= outcome == fault_at_open_;
    const bool may_be_first_look = outcome == Outcome::kOffline && waited < kFirstLook;
    const bool is_too_long = waited >= seconds(options_.wait_s) && !may_be_first_look;
    if (outcome != Outcome::kDone && is_too_long) return fault(outcome);
    mend_line();
    pause_between_looks();
  }
}

Outcome Session::wait_out_fault() {
  const auto deadline = Clock::now() + seconds(options_.wait_s);
  bool has_forgotten = false;
  while (fault_now() != Outcome::kDone && Clock::now() < deadline) {
    has_forgotten |= look_at(state()).power_off;
    mend_line();
    pause_between_looks();
  }
  const Outcome fault = fault_now();
  return fault == Outcome::kDone && has_forgotten ? Outcome::kUnconfirmed : fault;
}

Outcome Session::fault_now() const {
  return fault_of(look_at(state()));
}

long Session::settle() const {
  TransactionPrint(port(), TZV_TRANSACTION_BEGIN);
  return TransactionPrint(port(), TZV_TRANSACTION_END);
}

void Session::mend_line() const {
  static Clock::time_point next{};
  if (*link_ != Link::kNetwork || seen(state().bPowerOFF) == 0 || Clock::now() < next) return;
  // Any write makes a lost connection anew, even one of nothing.
  WritePort(port(), "", 0);
  next = Clock::now() + kBetweenConnections;
}

Result Session::fault(Outcome outcome) const {
  if (outcome == Outcome::kNoAnswer) {
    return {.outcome = outcome,
            .words = options_.port +
                     ": the printer takes data but confirms nothing; nothing was "
                     "printed"};
  }
  return {.outcome = outcome,
          .words = options_.port + ": " + words_for(outcome) +
                   "; nothing was printed: " + advice_for(outcome) + ", and try again",
          .fields = fields_of(look_at(state()))};
}

}  // namespace cli
