#include "soak/program_soak.h"

#include <poll.h>

#include <algorithm>
#include <sstream>
#include <utility>

#include "soak/receipt_job.h"
#include "tzvio.h"

namespace soak {

using std::chrono::milliseconds;

namespace {

constexpr std::size_t kPoints = 5;        // at which the till is measured
constexpr std::int64_t kJobMs = 120;      // in which most of a job passes
constexpr std::int64_t kLatestMs = 4000;  // by which an answer comes late
constexpr std::int64_t kSettleMs = 2000;
constexpr std::int64_t kSecondRequestMs = 1000;  // when a transaction asks once more
constexpr milliseconds kPatience{60000};

/// At least so many bytes go out for a number: its text, the cut and the request.
std::size_t bytes_of(std::uint32_t number) {
  constexpr std::size_t kCut = 7, kRequest = 11;
  std::size_t bytes = kCut + kRequest;
  for (const std::string& line : lines_of(number)) bytes += line.size() + 1;
  return bytes;
}

/// As the printer calls what holds, and nullptr for what is no condition.
const char* condition_of(FaultKind kind) {
  switch (kind) {
    case FaultKind::connection_lost:
      return "connection-lost";
    case FaultKind::connection_closed:
      return "connection-closed";
    case FaultKind::cover_open:
    case FaultKind::cover_then_power:
    case FaultKind::known_before:
      return "cover";
    case FaultKind::paper_out:
      return "paper-out";
    case FaultKind::jam:
      return "jam";
    case FaultKind::power_off:
      return "power-off";
    case FaultKind::busy:
      return "busy";
    default:
      return nullptr;
  }
}

const char* condition_told_by(long result) {
  if (result == TZV_STATUS_COVER_OPEN) return "cover";
  return result == TZV_STATUS_PAPER_EMPTY ? "paper-out" : "jam";
}

bool spoils_answers(FaultKind kind) {
  return kind >= FaultKind::late && kind <= FaultKind::slow;
}

bool is_loss(const std::string& condition) {
  return condition == "connection-lost" || condition == "connection-closed";
}

bool contains(const std::vector<std::string>& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

ProgramSoak::ProgramSoak(Line line, const std::filesystem::path& folder, std::size_t receipts,
                         std::uint64_t seed)
    : line_(std::move(line)),
      receipts_(receipts),
      seed_(seed),
      random_(seed),
      printer_(line_, folder / line_.name),
      folder_(folder / line_.name),
      paper_(receipts * 20 + 1000) {}

void ProgramSoak::run() {
  if (!printer_.start()) return violation("the printer does not start", 0);
  const std::string till = "exec " + printer_.command_of(PRINTING_TILL_PROGRAM);
  till_ = std::make_unique<ChildProgram>(std::vector<std::string>{"/bin/sh", "-c", till},
                                         folder_ + "/till.errors");
  if (!serve_until([this] { return last_said_ == "open"; })) return violation("not opened", 0);
  const std::size_t step = (receipts_ + kPoints - 1) / kPoints;
  while (printed_ < receipts_) {
    // The first tenth fills what is filled once.
    const std::size_t first = receipts_ / 10;
    if (printed_ >= first && (printed_ - first) % step == 0) measure_at_rest();
    if (!print_receipt(next_fault())) return;
    ++printed_;
  }
  measure_at_rest();
  printer_.stop();
  check_all_paper();
}

void ProgramSoak::measure_at_rest() {
  if (print_receipt({})) figures_.add(measure(tally_.receipts, till_->id()));
}

// ------------------------------------------------------------------------------------- faults

/// Every kind once before any comes again; every third receipt meets none.
Fault ProgramSoak::next_fault() {
  if (below(3) == 0) return {};
  if (deck_.empty()) {
    for (std::size_t kind = 0; kind + 1 < kFaultKinds; ++kind) {
      deck_.push_back(static_cast<FaultKind>(kind));
    }
    std::shuffle(deck_.begin(), deck_.end(), random_);
  }
  Fault fault{.kind = deck_.back(), .position = below(bytes_of(next_number_))};
  deck_.pop_back();
  const bool takes_the_printer_away =
      static_cast<std::size_t>(fault.kind) < kKindsWithPosition &&
      (fault.kind < FaultKind::cover_open || fault.kind >= FaultKind::power_off);
  // A monitor that is at rest looks every half second; a printer takes longer to start.
  fault.lasts_ms = takes_the_printer_away ? 600 + static_cast<std::int64_t>(below(900))
                                          : 10 + static_cast<std::int64_t>(below(1500));
  return fault;
}

/// Some set in at a byte of the job, some at a moment of it, and some last until it is confirmed.
void ProgramSoak::start(const Fault& fault) {
  const std::int64_t moment = static_cast<std::int64_t>(below(kJobMs));
  switch (fault.kind) {
    case FaultKind::none:
      return;
    case FaultKind::restart:
      return after(moment, [this] { kill_printer(); });
    case FaultKind::known_before:
      return set_in("cover");
    case FaultKind::late:
      return spoil("answer-delay", std::to_string(1 + below(kLatestMs)));
    case FaultKind::doubled:
      return spoil("answer-double", "on");
    case FaultKind::split:
      return spoil("answer-split", "on");
    case FaultKind::garbled:
      return spoil("answer-garble", std::to_string(1 + below(1000000)));
    case FaultKind::mute:
      return spoil("mute", "on");
    case FaultKind::slow:
      return spoil("slow", std::to_string(50 + below(500)));
    default:
      break;
  }
  const char* const condition = condition_of(fault.kind);
  if (below(2) == 0) return after(moment, [this, condition] { set_in(condition); });
  printer_.ask("fault " + std::string(condition) + '@' + std::to_string(fault.position) + 'B');
}

void ProgramSoak::set_in(const char* condition) {
  printer_.ask("set " + std::string(condition) + " on");
}

void ProgramSoak::kill_printer() {
  printer_.kill();
  printer_.read_into(paper_);
  memory_lost_ = true;
  after(fault_.lasts_ms, [this] {
    if (!printer_.start()) violation("the printer does not start again", 0);
  });
}

void ProgramSoak::spoil(const std::string& setting, const std::string& value) {
  printer_.ask("set " + setting + ' ' + value);
  spoilt_.push_back(setting);
}

void ProgramSoak::end_spoiling() {
  for (const std::string& setting : std::exchange(spoilt_, {})) {
    printer_.ask("set " + setting + " off");
  }
}

/// Whatever has set in, however it came about, ends after a while.
void ProgramSoak::note_condition(const std::string& name, bool on) {
  memory_lost_ = memory_lost_ || name == "power-off" || is_loss(name);
  line_was_cut_ = line_was_cut_ || is_loss(name);
  if (!on) return;
  conditions_seen_.push_back(name);
  const bool is_followed = fault_.kind == FaultKind::cover_then_power && name == "cover";
  if (is_followed) after(fault_.lasts_ms / 2, [this] { set_in("power-off"); });
  after(is_followed ? 2 * fault_.lasts_ms : fault_.lasts_ms,
        [this, name] { printer_.ask("set " + name + " off"); });
}

// ------------------------------------------------------------------------ the course of things

bool ProgramSoak::print_receipt(const Fault& fault) {
  fault_ = fault;
  ++tally_.receipts;
  ++tally_.by_kind[static_cast<std::size_t>(fault.kind)];
  attempts_ = 0;
  conditions_seen_.clear();
  last_said_.clear();
  start(fault);
  constexpr int kRestMs = 2000;
  till_->say(std::to_string(below(2) * kRestMs));
  const bool done = serve_until([this] { return last_said_ == "done"; });
  if (!done) violation("the till stands still after \"" + last_said_ + '"', 0);
  end_spoiling();
  const bool calm = serve_until([this] { return due_.empty(); });
  stale_answers_ = stale_answers_ || spoils_answers(fault.kind);
  if (fault.kind == FaultKind::late) last_answer_ = Clock::now() + milliseconds(kLatestMs);
  if (stale_answers_ && below(2) == 0) settle();
  return done && calm;
}

/// Lets the monitor, which at rest looks every half second, read what answers are left.
void ProgramSoak::settle() {
  due_.emplace(std::max(last_answer_, Clock::now()) + milliseconds(kSettleMs),
               [this] { stale_answers_ = false; });
  serve_until([this] { return due_.empty(); });
}

void ProgramSoak::after(std::int64_t ms, std::function<void()> action) {
  due_.emplace(Clock::now() + milliseconds(ms), std::move(action));
}

bool ProgramSoak::serve_until(const std::function<bool()>& is_done) {
  const Clock::time_point deadline = Clock::now() + kPatience;
  while (!is_done()) {
    if (Clock::now() >= deadline || till_->is_silent()) return false;
    serve_once();
  }
  return true;
}

void ProgramSoak::serve_once() {
  std::vector<pollfd> sources{{till_->descriptor(), POLLIN, 0}};
  if (printer_.runs()) sources.push_back({printer_.descriptor(), POLLIN, 0});
  constexpr milliseconds kLongest{1000};
  milliseconds wait = kLongest;
  if (!due_.empty()) {
    wait = std::clamp(std::chrono::ceil<milliseconds>(due_.begin()->first - Clock::now()),
                      milliseconds(0), kLongest);
  }
  poll(sources.data(), sources.size(), static_cast<int>(wait.count()));
  while (const auto line = till_->next_line()) {
    // What the printer has said before the till could know of it.
    listen_to_printer();
    hear_till(*line);
  }
  listen_to_printer();
  while (!due_.empty() && due_.begin()->first <= Clock::now()) {
    const auto action = due_.extract(due_.begin());
    action.mapped()();
  }
}

void ProgramSoak::listen_to_printer() {
  while (printer_.runs()) {
    const auto line = printer_.next_line();
    if (!line) return;
    std::istringstream words(*line);
    std::string what, name, state;
    words >> what >> name >> state;
    if (what == "condition") note_condition(name, state == "on");
  }
}

void ProgramSoak::hear_till(const std::string& line) {
  std::istringstream words(line);
  std::uint32_t number = 0;
  long result = 0;
  std::int64_t took_ms = 0;
  words >> last_said_ >> number >> result >> took_ms;
  if (last_said_ == "begin") {
    ++tally_.transactions;
    next_number_ = number + 1;
    ++attempts_;
    memory_lost_ = false;
    torn_command_ = line_was_cut_;
    // What is spoilt for the whole receipt would be so for ever.
    if (attempts_ > 2) end_spoiling();
  } else if (last_said_ == "result" || last_said_ == "asked") {
    tally_.asked_again += last_said_ == "asked" && result == 0;
    check_result(number, result);
    stale_answers_ = stale_answers_ || took_ms >= kSecondRequestMs;
  } else if (last_said_ == "stuck") {
    ++tally_.claimed_anew;
    end_spoiling();
    help_till();
  } else if (last_said_ == "unopened" || last_said_ == "abandoned") {
    violation("the till gives up: " + line, number);
  }
}

/// Somebody sees to the printer before the port is opened anew.
void ProgramSoak::help_till() {
  if (due_.empty()) return till_->say("");
  constexpr std::int64_t kLook = 50;
  after(kLook, [this] { help_till(); });
}

// ------------------------------------------------------------------------------------ judging

void ProgramSoak::check_result(std::uint32_t number, long result) {
  printer_.read_into(paper_);
  if (result == 0) return check_confirmed(number);
  stale_answers_ = true;
  if (result == TZV_STATUS_OFFLINE) return;
  if (!keeps_data(result)) {
    violation("result " + std::to_string(result), number);
  } else if (!contains(conditions_seen_, condition_told_by(result))) {
    if (fault_.kind == FaultKind::split || fault_.kind == FaultKind::garbled) {
      ++tally_.misread_codes;
    } else {
      violation("told " + std::to_string(result) + " for nothing", number);
    }
  }
}

void ProgramSoak::check_confirmed(std::uint32_t number) {
  ++tally_.confirmed;
  if (paper_.of(number).whole > 0) {
    line_was_cut_ = false;
  } else if (stale_answers_) {
    ++tally_.stale_answer;
  } else if (memory_lost_ && !line_.shows_power()) {
    ++tally_.memory_lost;
  } else if (torn_command_ && line_.name.starts_with("serial")) {
    ++tally_.torn_command;
  } else {
    violation("confirmed and not on paper", number);
  }
}

void ProgramSoak::check_all_paper() {
  printer_.read_into(paper_);
  for (std::uint32_t number = 0; number < next_number_; ++number) {
    const Paper::Account& paper = paper_.of(number);
    tally_.sent_again += paper.whole > 1;
    // Over a new connection, which prints a line of its own, a job is sent whole once more.
    const int most = 1 + (line_.is_network() ? paper.reconnections : 0);
    if (paper.whole > most) {
      violation("in the end " + std::to_string(paper.whole) + " times on paper", number);
    }
  }
  tally_.not_confirmed = tally_.transactions - tally_.confirmed;
}

void ProgramSoak::violation(const std::string& what, std::uint32_t number) {
  tally_.violations.push_back(line_.name + ", number " + std::to_string(number) + ", " +
                              name_of(fault_.kind) + " for " + std::to_string(fault_.lasts_ms) +
                              " ms: " + what);
}

std::string ProgramSoak::summary() const {
  return '\n' + line_.name + ", virtual printer, seed " + std::to_string(seed_) + ": " +
         counts_of(tally_) + incidents_of(tally_) + figures_.table();
}

}  // namespace soak
