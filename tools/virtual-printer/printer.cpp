#include "printer.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

#include "bit_image.h"
#include "command_argument.h"
#include "firmware.h"
#include "frame.h"
#include "printer_status.h"

namespace virtual_printer {
namespace {

using namespace std::string_view_literals;

// Paper that nobody cuts is delivered in pieces of about four metres, the longest that a picture
// can hold, so that neither memory nor the picture grows without end.
constexpr int kLongestPiece = 30000 * kHalfDotsPerDot;

constexpr std::string_view kFrameTaken = "\x06\0"sv;
constexpr std::string_view kFrameRefused = "\x15\0"sv;

bool is_cut(CommandKind kind) {
  return kind == CommandKind::kPartialCut || kind == CommandKind::kFullCut;
}

}  // namespace

void Printer::receive(std::string_view bytes) {
  parser_.feed(bytes);
  if (is_off()) {
    forget_everything();
  } else {
    decode(Expectation::kMore);
  }
  let_fault_set_in();
}

void Printer::connection_has_ended() {
  const std::size_t unfinished = parser_.end() - parser_.offset();
  if (unfinished > 0) listener_.report_cut_off(unfinished);
  parser_ = CommandParser(parser_.end());
  reports_enabled_ = false;
}

void Printer::finish() {
  decode(Expectation::kNothing);
  if (!conditions_.stop_printing()) {
    typesetter_.print_open_line();
    report_forgotten();
  }
  if (typesetter_.has_ink()) deliver(PaperEnd::kUncut);
}

void Printer::set(Condition condition, bool on) {
  change(condition, on);
  print_held();
}

void Printer::expect_fault(ScriptedFault fault) {
  fault.after += counted_for(fault);
  fault_ = fault;
  let_fault_set_in();
}

void Printer::decode(Expectation expectation) {
  while (!is_off()) {
    auto decoded = parser_.next(expectation);
    if (!decoded) return;
    take(std::move(*decoded), parser_.piece());
    print_held();
  }
}

// Whoever asks for the condition asks because of it: were these held back with the rest, nobody
// would ever learn why the printer stands still.
void Printer::take(Decoded decoded, Piece piece) {
  listener_.report_decoded(decoded, piece);
  if (const auto* frame = std::get_if<RefusedFrame>(&decoded)) {
    return refuse(*frame, piece.bytes.size());
  }
  const auto* command = std::get_if<Command>(&decoded);
  if (command != nullptr && command->kind == CommandKind::kRealTimeStatus) {
    return listener_.answer(real_time_status(command->argument, conditions_));
  }
  if (command != nullptr && command->kind == CommandKind::kAutomaticStatus) {
    reports_enabled_ = command->argument != 0;
    if (reports_enabled_) listener_.answer(status_report(conditions_));
    return;
  }
  if (command != nullptr && command->kind == CommandKind::kFramedJob) {
    return take_frame({piece.offset + kFrameHeaderLength, command->data});
  }
  hold(std::move(decoded), piece.bytes.size());
}

void Printer::take_frame(Piece job) {
  listener_.answer(kFrameTaken);
  decode_job(job, [this](Decoded decoded, Piece piece) { take(std::move(decoded), piece); });
}

void Printer::refuse(const RefusedFrame& frame, std::size_t length) {
  listener_.answer(kFrameRefused);
  listener_.report_refused(frame);
  hold(Command{CommandKind::kNotice, 0, "FRAME REFUSED: " + frame.reason}, length);
}

void Printer::hold(Decoded decoded, std::size_t length) {
  held_.push_back({std::move(decoded), length});
  held_bytes_ += length;
}

void Printer::print_held() {
  while (!held_.empty() && !conditions_.stop_printing() && !is_off()) {
    const Held next = std::move(held_.front());
    held_.pop_front();
    held_bytes_ -= next.length;
    carry_out(next.decoded);
    let_fault_set_in();
  }
}

void Printer::carry_out(const Decoded& decoded) {
  if (const auto* unknown = std::get_if<UnknownBytes>(&decoded)) {
    listener_.report_unknown(*unknown);
  } else if (const auto* command = std::get_if<Command>(&decoded)) {
    carry_out(*command);
  }
}

void Printer::carry_out(const Command& command) {
  switch (command.kind) {
    case CommandKind::kSensorQuery:
      return listener_.answer(sensor_reply(conditions_));
    case CommandKind::kMarkQuery:
      return listener_.answer(mark_reply(conditions_));
    case CommandKind::kProcessId:
      return listener_.answer(process_id_reply(command.data));
    case CommandKind::kVersionQuery:
      return listener_.answer(version_reply());
    case CommandKind::kSerialNumberQuery:
      return listener_.answer(serial_number_reply(memory_.identity));
    case CommandKind::kStoreSerialNumber:
      return store_serial_number(command.data);
    case CommandKind::kStoreImages:
      return store_images(command.data);
    case CommandKind::kEraseImages:
      return store_images(Memory().images);
    case CommandKind::kFirmware:
      return check_firmware(command.data);
    case CommandKind::kDrawerPulse:
      return change(Condition::kDrawerOpen, true);
    case CommandKind::kBeep:
      return listener_.beep();
    case CommandKind::kSelfTest:
      return start_self_test(command.argument);
    default:
      return print(command);
  }
}

void Printer::print(const Command& command) {
  const bool forgets =
      command.kind == CommandKind::kInitialize || command.kind == CommandKind::kStandardMode;
  if (forgets) report_forgotten();
  try {
    set_in_type(command);
  } catch (const Refused& refused) {
    listener_.report_refused(refused);
  }
  if (is_cut(command.kind)) {
    if (typesetter_.has_fed()) deliver(PaperEnd::kCut);
  } else if (typesetter_.length() > kLongestPiece) {
    deliver(PaperEnd::kUncut);
  }
}

void Printer::set_in_type(const Command& command) {
  if (command.kind == CommandKind::kPrintStored) return print_stored(command);
  typesetter_.execute(command);
}

void Printer::print_stored(const Command& command) {
  const auto number = static_cast<unsigned char>(command.data[0]);
  const std::string name = "stored picture " + std::to_string(number);
  const auto image = image_in(memory_.images, number);
  if (!image) throw Refused(name + ": there is none");
  typesetter_.print_picture(enlarged(*image, without_digit(command.data[1])), name + ',');
}

void Printer::report_forgotten() {
  if (typesetter_.unprinted() > 0) listener_.report_forgotten(typesetter_.unprinted());
}

// The page goes before all that is held; a fault in its middle holds back its rest like any job's.
void Printer::start_self_test(int page) {
  typesetter_.print_open_line();
  CommandParser parser;
  parser.feed(self_test_page(page, memory_.identity));
  std::vector<Held> commands;
  while (auto decoded = parser.next()) commands.push_back({std::move(*decoded), 0});
  held_.insert(held_.begin(), commands.begin(), commands.end());
}

void Printer::store_serial_number(const std::string& content) {
  const bool stored = virtual_printer::store_serial_number(content, memory_.identity);
  if (stored) listener_.remember(memory_);
  listener_.answer(acknowledgement(stored));
}

void Printer::store_images(const std::string& images) {
  memory_.images = images;
  listener_.remember(memory_);
}

void Printer::check_firmware(const std::string& block) {
  const FirmwareCheck check = virtual_printer::check_firmware(block);
  listener_.report_firmware(check.words);
  if (!check.good) listener_.report_refused(Refused(check.words));
}

void Printer::deliver(PaperEnd end) {
  listener_.deliver(typesetter_.tear_off(), end);
}

void Printer::change(Condition condition, bool on) {
  if (!conditions_.set(condition, on)) return;
  listener_.report_condition(condition, on);
  if (is_off()) {
    forget_everything();
  } else if (reports_enabled_ && is_reported(condition)) {
    listener_.answer(status_report(conditions_));
  }
}

// Offsets go on counting: what is lost was received all the same.
void Printer::forget_everything() {
  parser_ = CommandParser(parser_.end());
  held_.clear();
  held_bytes_ = 0;
  reports_enabled_ = false;
  typesetter_.reset();
}

std::size_t Printer::bytes_before_fault() const {
  if (!fault_ || fault_->unit != ScriptedFault::Unit::kBytes) return SIZE_MAX;
  return fault_->after - std::min(fault_->after, parser_.end());
}

std::size_t Printer::counted_for(const ScriptedFault& fault) const {
  return fault.unit == ScriptedFault::Unit::kLines ? printed_lines() : parser_.end();
}

void Printer::let_fault_set_in() {
  if (!fault_ || counted_for(*fault_) < fault_->after) return;
  const Condition condition = fault_->condition;
  fault_.reset();
  change(condition, true);
}

}  // namespace virtual_printer
