#include "service.h"

#include <poll.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "hex.h"
#include "memory_file.h"

namespace virtual_printer {
namespace {

// More than the kernel keeps for a pseudo-terminal's reader (12 KiB). Whoever sends without end
// must not keep the printer from ending.
constexpr std::size_t kMostThatWaits = 32768;

// How long a till may pause within a frame before the frame counts as broken.
constexpr std::chrono::milliseconds kFrameSilence{1000};

// How often a slow line moves on in a second.
constexpr int kSlowSteps = 50;

// Whatever is due later is seen on waking up in between.
constexpr std::int64_t kLongestWaitMs = 3600000;

// A line for whoever watches, at once.
void say(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

std::string switch_word(bool on) {
  return on ? "on" : "off";
}

std::string lines_of(const Status& status) {
  std::string lines;
  for (const auto& [name, value] : status) {
    lines.append(name).append(" ").append(value).append("\n");
  }
  return lines;
}

std::optional<ReceiptFiles> open_folder(const std::string& path) {
  return path.empty() ? std::nullopt : std::optional<ReceiptFiles>(path);
}

std::ofstream open_record(const std::string& path) {
  std::ofstream file;
  if (path.empty()) return file;
  file.open(path, std::ios::binary | std::ios::trunc);
  if (!file) throw std::runtime_error("cannot write " + path);
  return file;
}

// Of long data its beginning says what it was.
std::string hex_after_blank(std::string_view bytes) {
  constexpr std::size_t kMostShown = 32;
  return ' ' + hex_of(bytes, kMostShown);
}

}  // namespace

Service::Service(Link& link, SignalQueue& signals, ControlSocket* control, Page* page,
                 ServiceOptions options)
    : link_(link),
      signals_(signals),
      control_(control),
      page_(page),
      options_(std::move(options)),
      files_(open_folder(options_.output_folder)),
      record_(open_record(options_.record_file)),
      answers_(options_.line),
      printer_(*this, open_memory(options_.memory_file)) {}

void Service::run() {
  power_up();
  if (page_ != nullptr) page_->serve();
  serve_until_signal();
  finish();
}

int Service::run(const std::vector<std::string>& command, const Environment& environment) {
  power_up();
  ChildProcess child(command, environment);
  if (page_ != nullptr) page_->serve();  // the command is to inherit no browser's connection
  std::optional<int> status;
  while (!status || is_about_to_go_on()) {
    serve_once();
    while (const auto signal = signals_.next()) {
      if (*signal == SIGCHLD) continue;
      options_.stay = false;
      if (status) recovery_due_.reset();
      if (!status) child.send_signal(*signal);
    }
    if (!status && (status = child.ended())) print_all_waiting_bytes();
  }
  if (options_.stay) serve_until_signal();
  finish();
  return *status;
}

void Service::serve_until_signal() {
  while (true) {
    serve_once();
    if (const auto signal = signals_.next(); signal && *signal != SIGCHLD) break;
  }
}

// A command that has sent all and ended does not keep its receipt from being printed when the
// printer is about to recover.
bool Service::is_about_to_go_on() const {
  return recovery_due_ &&
         (printer_.held_bytes() > 0 || printer_.conditions().has(Condition::kBusy));
}

void Service::power_up() {
  link_.refuse_nibble_mode(options_.line.nibble_refusals);
  if (options_.fault) expect(*options_.fault);
}

void Service::expect(const ScriptedFault& fault) {
  const bool in_bytes = fault.unit == ScriptedFault::Unit::kBytes;
  if (in_bytes && fault.condition == Condition::kBusy) link_.limit_room(fault.after);
  printer_.expect_fault(fault);
  look_for_hang_up();
  send_due_answers();
}

void Service::serve_once() {
  update_page();  // also on the first turn, when nothing has happened yet
  wait();
  print_waiting_bytes();
  act_on_time();
  serve_requests();
}

// What was sent before a request is printed before it, and whoever asked finds the page changed.
void Service::serve_requests() {
  const auto answer = [this](const std::string& request) {
    print_all_waiting_bytes();
    ControlReply reply = control(request);
    update_page();
    return reply;
  };
  if (control_ != nullptr) control_->serve(answer);
  if (page_ != nullptr) page_->requests().serve(answer);
}

void Service::update_page() {
  if (page_ == nullptr) return;
  page_->show_paper(printer_.paper());
  page_->show_status(status());
}

void Service::wait() const {
  std::vector<pollfd> sources{{signals_.descriptor(), POLLIN, 0}};
  if (takes_bytes()) {
    for (const int descriptor : link_.descriptors()) sources.push_back({descriptor, POLLIN, 0});
  }
  if (control_ != nullptr) {
    for (const int descriptor : control_->descriptors()) sources.push_back({descriptor, POLLIN, 0});
  }
  if (page_ != nullptr) sources.push_back({page_->requests().descriptor(), POLLIN, 0});
  int timeout_ms = -1;
  if (const auto deadline = next_deadline()) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now());
    timeout_ms = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, kLongestWaitMs));
  }
  if (poll(sources.data(), sources.size(), timeout_ms) < 0 && errno != EINTR) {
    check(-1, "cannot wait for the line");
  }
}

std::optional<Clock::time_point> Service::next_deadline() const {
  std::optional<Clock::time_point> next;
  for (const auto& deadline : {answers_.next_due(), recovery_due_, frame_due_, next_read_due_}) {
    if (deadline && (!next || *deadline < *next)) next = deadline;
  }
  return next;
}

void Service::act_on_time() {
  const Clock::time_point now = Clock::now();
  if (recovery_due_ && *recovery_due_ <= now) {
    recovery_due_.reset();
    change(ConditionChange{options_.fault->condition, false});
  }
  if (next_read_due_ && *next_read_due_ <= now) next_read_due_.reset();
  if (frame_due_ && *frame_due_ <= now) {
    frame_due_.reset();
    printer_.line_is_silent();
    look_for_hang_up();
  }
  send_due_answers();
}

ControlReply Service::control(const std::string& request) {
  const auto parsed = parse_control_request(request);
  if (!parsed) return {false, "the printer does not understand: " + request};
  if (std::holds_alternative<StatusQuery>(*parsed)) return {true, lines_of(status())};
  if (const auto* condition = std::get_if<ConditionChange>(&*parsed)) change(*condition);
  if (const auto* setting = std::get_if<SettingChange>(&*parsed)) change(*setting);
  if (const auto* fault = std::get_if<ScriptedFault>(&*parsed)) expect(*fault);
  return {true, ""};
}

void Service::change(const ConditionChange& change) {
  printer_.set(change.condition, change.on);
  look_for_hang_up();
  send_due_answers();
}

void Service::change(const SettingChange& change) {
  options_.line.*change.setting->value = change.value;
  if (change.setting->value == &LineFaults::nibble_refusals) link_.refuse_nibble_mode(change.value);
  next_read_due_.reset();
}

void Service::look_for_hang_up() {
  if (!link_.take_hang_up()) return;
  printer_.connection_has_ended();
  answers_.clear();
  frame_due_.reset();
}

Status Service::status() const {
  Status status;
  for (const Condition condition : kAllConditions) {
    status.emplace_back(name_of(condition), switch_word(printer_.conditions().has(condition)));
  }
  for (const LineSetting& setting : kLineSettings) {
    status.emplace_back(setting.name, value_in_words(setting, options_.line));
  }
  const auto count = [&](const char* name, std::size_t number) {
    status.emplace_back(name, std::to_string(number));
  };
  count("receipts", receipt_count_);
  count("lines", printer_.printed_lines());
  count("unknown bytes", unknown_bytes_);
  count("refused frames", refused_frames_);
  count("refused content", refused_content_);
  count("bytes held", printer_.held_bytes());
  return status;
}

bool Service::takes_bytes() const {
  return !printer_.conditions().has(Condition::kBusy) && !next_read_due_;
}

std::size_t Service::most_to_read() const {
  const std::size_t most = printer_.bytes_before_fault();
  if (options_.line.slow == 0) return most;
  return std::min(most, static_cast<std::size_t>(std::max(options_.line.slow / kSlowSteps, 1)));
}

std::size_t Service::print_waiting_bytes() {
  if (!takes_bytes()) return 0;
  const std::string bytes = link_.read_waiting(most_to_read());
  look_for_hang_up();
  if (bytes.empty()) return 0;
  if (options_.line.slow > 0) {
    next_read_due_ = Clock::now() + std::chrono::microseconds(std::chrono::seconds(bytes.size())) /
                                        options_.line.slow;
  }
  receive(bytes);
  frame_due_.reset();
  if (printer_.waits_for_frame()) frame_due_ = Clock::now() + kFrameSilence;
  look_for_hang_up();
  send_due_answers();
  return bytes.size();
}

// Byte by byte, because all that follows a lost connection is lost with it.
void Service::receive(std::string_view bytes) {
  for (const char& byte : bytes) {
    if (printer_.conditions().is_cut_off()) break;
    if (record_.is_open()) record_.put(byte);
    printer_.receive({&byte, 1});
  }
  record_.flush();
}

void Service::print_all_waiting_bytes() {
  std::size_t total = 0;
  while (total < kMostThatWaits) {
    const std::size_t length = print_waiting_bytes();
    if (length == 0) break;
    total += length;
  }
}

void Service::finish() {
  next_read_due_.reset();
  options_.line.slow = 0;
  print_all_waiting_bytes();
  printer_.finish();
  if (printer_.held_bytes() > 0) {
    std::fprintf(stderr, "bytes held back, never printed: %zu\n", printer_.held_bytes());
  }
  if (unknown_count_ > 0) std::fprintf(stderr, "unknown commands in all: %zu\n", unknown_count_);
  if (refused_frames_ > 0) std::fprintf(stderr, "refused frames in all: %zu\n", refused_frames_);
  if (refused_content_ > 0) std::fprintf(stderr, "refused content in all: %zu\n", refused_content_);
}

void Service::report_decoded(const Decoded& decoded, Piece piece) {
  if (page_ != nullptr) page_->show_decoded(decoded, piece);
}

void Service::answer(std::string_view bytes) {
  answers_.push(bytes, Clock::now());
}

void Service::send_due_answers() {
  while (const auto bytes = answers_.pop_due(Clock::now())) send(*bytes);
}

void Service::send(std::string_view bytes) {
  const std::size_t taken = printer_.conditions().is_cut_off() ? 0 : link_.write(bytes);
  if (page_ != nullptr) page_->show_answer(bytes.substr(0, taken));
  if (taken < bytes.size()) {
    complain("answer lost, nobody reads the line:" + hex_after_blank(bytes.substr(taken)));
  }
}

// What has no place of its own among the commands.
void Service::complain(const std::string& words) {
  std::fprintf(stderr, "%s\n", words.c_str());
  if (page_ != nullptr) page_->show_note(words);
}

void Service::beep() {
  say("beep");
}

void Service::report_unknown(const UnknownBytes& unknown) {
  ++unknown_count_;
  unknown_bytes_ += unknown.bytes.size();
  std::fprintf(stderr, "unknown bytes at %zu:%s\n", unknown.offset,
               hex_after_blank(unknown.bytes).c_str());
}

void Service::report_refused(const RefusedFrame& frame) {
  ++refused_frames_;
  std::fprintf(stderr, "frame refused at %zu: %s\n", frame.offset, frame.reason.c_str());
}

void Service::report_refused(const Refused& content) {
  ++refused_content_;
  complain(std::string("refused: ") + content.what());
}

void Service::report_forgotten(std::size_t characters) {
  complain("forgotten before it was printed: " + std::to_string(characters) + " characters");
}

void Service::report_cut_off(std::size_t bytes) {
  complain("connection ended within a command: " + std::to_string(bytes) + " bytes forgotten");
}

// Whoever reads the line may rely on it: the other end has seen the condition by then. A printer
// without power says nothing, not even what it was about to say.
void Service::report_condition(Condition condition, bool on) {
  link_.show(printer_.conditions());
  say("condition " + std::string(name_of(condition)) + ' ' + switch_word(on));
  if (condition == Condition::kPowerOff && on) answers_.clear();
  if (!options_.fault || options_.fault->condition != condition || !options_.recovery) return;
  if (!on) {
    recovery_due_.reset();
  } else if (!std::exchange(fault_has_set_in_, true)) {
    recovery_due_ = Clock::now() + *options_.recovery;
  }
}

void Service::report_firmware(const std::string& words) {
  say(words);
}

void Service::remember(const Memory& memory) {
  write_memory(options_.memory_file, memory);
}

void Service::deliver(const Receipt& receipt, PaperEnd end) {
  ++receipt_count_;
  RenderedReceipt rendered = render(receipt);
  if (files_) say("receipt " + files_->write(rendered, end).string());
  if (page_ != nullptr) page_->show_receipt(std::move(rendered), end);
}

}  // namespace virtual_printer
