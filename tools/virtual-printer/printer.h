// The printer as its line sees it: bytes in; answers, reports and finished paper out.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "command.h"
#include "command_parser.h"
#include "conditions.h"
#include "memory.h"
#include "receipt.h"
#include "typesetter.h"

namespace virtual_printer {

enum class PaperEnd { kCut, kUncut };

// What the printer does to the world. It may not call the printer back.
class PrinterListener {
 public:
  PrinterListener() = default;
  PrinterListener(const PrinterListener&) = delete;
  PrinterListener& operator=(const PrinterListener&) = delete;
  virtual ~PrinterListener() = default;

  // As soon as it has come, whenever it will be carried out.
  virtual void report_decoded(const Decoded& decoded, Piece piece) = 0;
  virtual void answer(std::string_view bytes) = 0;
  virtual void beep() = 0;
  virtual void report_unknown(const UnknownBytes& unknown) = 0;
  virtual void report_refused(const RefusedFrame& frame) = 0;
  // What the printer knows how to print, but not with that data.
  virtual void report_refused(const Refused& content) = 0;
  // Text that no line feed had printed, or a page that was left before it was printed.
  virtual void report_forgotten(std::size_t characters) = 0;
  // A connection ended within a command or a frame.
  virtual void report_cut_off(std::size_t bytes) = 0;
  virtual void report_condition(Condition condition, bool on) = 0;
  virtual void report_firmware(const std::string& words) = 0;
  virtual void remember(const Memory& memory) = 0;
  virtual void deliver(const Receipt& receipt, PaperEnd end) = 0;
};

class Printer {
 public:
  explicit Printer(PrinterListener& listener, Memory memory = {})
      : listener_(listener), memory_(std::move(memory)) {}

  // What is obeyed on arrival is obeyed; the rest is printed, or held while a condition stops
  // printing.
  void receive(std::string_view bytes);

  // While a frame is unfinished, its sender's silence says that it is broken.
  bool waits_for_frame() const { return parser_.waits_for_frame(); }
  void line_is_silent() { decode(Expectation::kNoMoreOfFrame); }

  // Whoever was connected is no more: the rest of an unfinished command will not come, and nobody
  // is left who wanted reports.
  void connection_has_ended();

  // Nothing more will come: what is printed or waits to be printed is delivered uncut. What a
  // condition holds back stays unprinted.
  void finish();

  // Goes on printing when the condition was the last that stopped it.
  void set(Condition condition, bool on);

  // Counted from now on; at zero it sets in now. The one that was expected before is not any more.
  void expect_fault(ScriptedFault fault);

  // How many bytes may be received at once for a fault to set in at the very one.
  std::size_t bytes_before_fault() const;

  const Conditions& conditions() const { return conditions_; }
  // Printed since the last cut.
  const Receipt& paper() const { return typesetter_.paper(); }
  std::size_t printed_lines() const { return typesetter_.printed_lines(); }
  std::size_t held_bytes() const { return held_bytes_ + parser_.end() - parser_.offset(); }

 private:
  struct Held {
    Decoded decoded;
    std::size_t length;  // bytes on the line
  };

  void decode(Expectation expectation);
  void take(Decoded decoded, Piece piece);
  void take_frame(Piece job);
  void refuse(const RefusedFrame& frame, std::size_t length);
  void hold(Decoded decoded, std::size_t length);
  void print_held();
  bool is_off() const { return conditions_.has(Condition::kPowerOff); }

  void carry_out(const Decoded& decoded);
  void carry_out(const Command& command);
  void print(const Command& command);
  void set_in_type(const Command& command);
  void report_forgotten();
  void start_self_test(int page);
  void store_serial_number(const std::string& content);
  void store_images(const std::string& images);
  void print_stored(const Command& command);
  void check_firmware(const std::string& block);
  void deliver(PaperEnd end);

  void change(Condition condition, bool on);
  void forget_everything();
  std::size_t counted_for(const ScriptedFault& fault) const;
  void let_fault_set_in();

  PrinterListener& listener_;
  Memory memory_;
  CommandParser parser_;
  std::deque<Held> held_;  // in the order in which it is to be printed
  std::size_t held_bytes_ = 0;
  Conditions conditions_;
  bool reports_enabled_ = false;
  std::optional<ScriptedFault> fault_;
  Typesetter typesetter_;
};

}  // namespace virtual_printer
