#include "soak/model_printer.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace soak {

namespace {

using namespace std::string_view_literals;

constexpr unsigned char kOnline = 0x88;  // no error, not busy

enum class Kind { serial, parallel, usb, network };

Kind kind_of(std::string_view path) {
  if (path.starts_with("/dev/tty")) return Kind::serial;
  if (path.starts_with("/dev/usb")) return Kind::usb;
  return path.starts_with("SOCKET") ? Kind::network : Kind::parallel;
}

/// Bytes of a command, as far as they can be told from its beginning; 0: more have to come.
std::size_t length_of(std::string_view command) {
  if (command.size() < 2) return 0;
  if (command.starts_with("\x1d("sv)) {
    if (command.size() < 5) return 0;
    return 5U + static_cast<unsigned char>(command[3]);
  }
  constexpr std::string_view kWithoutArgument[] = {"\x1b@", "\x1bi", "\x1bm"};
  for (const std::string_view known : kWithoutArgument) {
    if (command == known) return 2;
  }
  return 3;
}

std::string report_of(Condition condition) {
  switch (condition) {
    case Condition::cover_open:
      return testkit::kCoverOpen;
    case Condition::paper_out:
      return {"\x1c\x00\x0c\x0f", 4};
    case Condition::jam:
      return {"\x1c\x08\x00\x0f", 4};
    default:
      return testkit::kHealthy;
  }
}

}  // namespace

ModelPrinter::ModelPrinter(testkit::Kernel& kernel, std::string path, bool shows_power,
                           Paper& paper, std::uint64_t seed)
    : kernel_(kernel),
      path_(std::move(path)),
      device_(kernel.plug(path_)),
      paper_(paper),
      random_(seed) {
  device_.take = [this](std::string_view bytes) { return take(bytes); };
  device_.has_modem_lines = shows_power;
  show_state();
}

// --------------------------------------------------------------------------------- receiving

void ModelPrinter::when_received(std::size_t bytes, std::function<void()> action) {
  received_ = 0;
  action_at_ = bytes;
  action_ = std::move(action);
}

long ModelPrinter::take(std::string_view bytes) {
  if (connection_is_old_ && reachable()) {
    refuse_old_connection();
    return taken(0, bytes.size());
  }
  reconnections_ += bytes == "LINK\n"sv;
  if (reachable() && obey_at_once(bytes)) return static_cast<long>(bytes.size());
  std::size_t count = 0;
  const auto act_when_due = [this] {
    if (action_ && received_ == action_at_) std::exchange(action_, nullptr)();
  };
  for (; count < bytes.size(); ++count) {
    act_when_due();
    if (!reachable() || refuses_bytes()) break;
    ++received_;
    buffer_ += bytes[count];
    print_received();
  }
  act_when_due();
  return taken(count, bytes.size());
}

/// On a USB node and a parallel port a busy printer takes nothing; on other links bytes wait for
/// it.
bool ModelPrinter::refuses_bytes() const {
  const Kind kind = kind_of(path_);
  return busy_ && (kind == Kind::usb || kind == Kind::parallel);
}

/// What a write comes to of which the printer got that many bytes.
long ModelPrinter::taken(std::size_t count, std::size_t offered) {
  if (count == offered) return static_cast<long>(offered);
  switch (kind_of(path_)) {
    case Kind::serial:
      // Nobody is asked: the rest goes nowhere.
      lost_memory_ = true;
      return static_cast<long>(offered);
    case Kind::network:
      // Into the system's buffers, from where the rest gets no further; or the send notices.
      lost_memory_ = true;
      if (random_() % 2 == 0) return static_cast<long>(offered);
      break;
    case Kind::usb:
      if (!reachable() && count == 0) {
        errno = ENODEV;
        return -1;
      }
      return static_cast<long>(count);
    case Kind::parallel:
      return static_cast<long>(count);
  }
  if (count > 0 && random_() % 2 == 0) return static_cast<long>(count);
  errno = ECONNRESET;
  return -1;
}

/// What a printer obeys on arrival, whatever waits to be printed.
bool ModelPrinter::obey_at_once(std::string_view bytes) {
  if (bytes == testkit::kEnableReports) {
    reports_ = true;
    report();
    return true;
  }
  const bool asks_offline_cause = bytes == "\x10\x04\x02"sv;
  if (!asks_offline_cause && bytes != "\x10\x04\x04"sv) return false;
  const Condition told = asks_offline_cause ? Condition::cover_open : Condition::paper_out;
  const char* const bad = asks_offline_cause ? "\x16" : "\x72";
  answer(condition_ == told ? bad : "\x12");
  return true;
}

// ---------------------------------------------------------------------------------- printing

void ModelPrinter::print_received() {
  if (slowness > 0) {
    if (!std::exchange(ticking_, true)) kernel_.at(kernel_.now_ms() + 10, [this] { tick(); });
    return;
  }
  std::size_t printed = 0;
  while (printed < buffer_.size() && !holds()) print(buffer_[printed++]);
  buffer_.erase(0, printed);
}

void ModelPrinter::tick() {
  ticking_ = false;
  if (slowness == 0) return print_received();
  const std::size_t count = std::min(slowness, buffer_.size());
  for (std::size_t i = 0; i < count && !holds(); ++i) {
    print(buffer_.front());
    buffer_.erase(0, 1);
  }
  if (!buffer_.empty() && !holds()) print_received();
}

void ModelPrinter::print(char byte) {
  const bool introduces = byte == '\x1b' || byte == '\x1d' || byte == '\x10';
  if (!command_.empty() || introduces) {
    if (command_.empty()) command_job_ = job_of_next_byte();
    command_ += byte;
    const std::size_t length = length_of(command_);
    if (length > 0 && command_.size() >= length) execute();
  } else if (byte == '\n') {
    paper_.line(std::exchange(line_, {}));
  } else {
    line_ += byte;
  }
  if (old_bytes_ > 0) --old_bytes_;
}

void ModelPrinter::execute() {
  const std::string command = std::exchange(command_, {});
  swallowed_ = swallowed_ || command_job_ != job_of_next_byte();
  if (command == "\x1b@") line_.clear();
  if (command == "\x1bi" || command == "\x1bm") {
    if (!line_.empty()) paper_.line(std::exchange(line_, {}));
    paper_.cut();
  }
  if (command.starts_with("\x1d(H\x06\x00"sv)) {
    answer("\x37\x22" + command.substr(7, 4) + std::string(1, '\0'), job_of_next_byte());
  }
}

// ------------------------------------------------------------------------------------ faults

void ModelPrinter::set(Condition condition) {
  condition_ = condition;
  conditions_seen_ |= 1U << int(condition);
  show_state();
  report();
  print_received();
}

void ModelPrinter::power_off() {
  powered_ = false;
  forget_memory();
  if (kind_of(path_) == Kind::usb) kernel_.cut(path_, ENODEV);
  show_state();
}

void ModelPrinter::power_on() {
  if (powered_) return;
  powered_ = true;
  connection_is_old_ = kind_of(path_) == Kind::network;
  if (connected_) kernel_.plug_back(path_);
  show_state();
}

void ModelPrinter::disconnect(bool orderly) {
  connected_ = false;
  ++losses_;
  forget_answers();
  const Kind kind = kind_of(path_);
  connection_is_old_ = false;
  if (kind == Kind::usb) kernel_.cut(path_, ENODEV);
  if (kind == Kind::network) kernel_.cut(path_, orderly ? 0 : ECONNRESET);
  // A serial line and a parallel port have no connection that could end.
  if (kind == Kind::usb || kind == Kind::network) {
    reports_ = reports_ && kind == Kind::usb;
    command_.clear();
  }
  show_state();
}

/// To a printer that was off meanwhile, a connection of before is unknown, and it says so.
void ModelPrinter::refuse_old_connection() {
  disconnect(false);
  connect();
}

void ModelPrinter::connect() {
  if (connected_) return;
  connected_ = true;
  if (powered_) kernel_.plug_back(path_);
  show_state();
}

void ModelPrinter::set_busy(bool busy) {
  busy_ = busy;
  show_state();
  print_received();
}

void ModelPrinter::forget_memory() {
  lost_memory_ = true;
  reports_ = false;
  buffer_.clear();
  old_bytes_ = 0;
  command_.clear();
  line_.clear();
  forget_answers();
}

void ModelPrinter::forget_answers() {
  ++connection_;
  device_.input.clear();
}

void ModelPrinter::show_state() {
  device_.modem_lines = reachable() ? TIOCM_DSR : 0;
  device_.has_nibble_mode = reachable();
  device_.status_lines = reachable() && !busy_ && !holds() ? kOnline : 0;
}

// ----------------------------------------------------------------------------------- answers

void ModelPrinter::begin_job() {
  ++job_;
  old_bytes_ = buffer_.size();
  // What lies unread is an answer to something earlier.
  stale_ = device_.input.find("FFFF") != std::string::npos;
  lost_memory_ = false;
  swallowed_ = false;
  losses_ = 0;
  reconnections_ = 0;
  conditions_seen_ = 1U << int(condition_);
}

void ModelPrinter::report() {
  if (reports_ && reachable()) answer(report_of(condition_));
}

void ModelPrinter::answer(std::string bytes, std::uint32_t job) {
  if (answers.lost) return;
  if (answers.garbled) {
    char& spoilt = bytes[static_cast<std::size_t>(random_() % bytes.size())];
    spoilt = static_cast<char>(spoilt ^ (1 << random_() % 8));
  }
  const std::int64_t late = answers.late_ms;
  if (answers.split) {
    for (const char byte : bytes) deliver({byte}, job, late + random_ms(12));
  } else {
    deliver(bytes, job, late);
  }
  if (answers.doubled) deliver(bytes, job, late + random_ms(300));
}

void ModelPrinter::deliver(const std::string& bytes, std::uint32_t job, std::int64_t delay_ms) {
  const auto arrive = [this, bytes, job, connection = connection_] {
    if (connection != connection_) return;
    device_.input += bytes;
    stale_ = stale_ || (job != kNoJob && job != job_);
  };
  // In the order in which they were given.
  last_answer_ms_ = std::max(last_answer_ms_, kernel_.now_ms() + delay_ms);
  if (last_answer_ms_ <= kernel_.now_ms()) return arrive();
  kernel_.at(last_answer_ms_, arrive);
}

}  // namespace soak
