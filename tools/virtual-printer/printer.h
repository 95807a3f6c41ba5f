// The printer as its line sees it: bytes in; answers, reports and finished paper out.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "command.h"
#include "command_parser.h"
#include "printer_status.h"
#include "receipt.h"
#include "typesetter.h"

namespace virtual_printer {

enum class PaperEnd { kCut, kUncut };

// What the printer does to the world. A page in a browser would be one more of these.
class PrinterListener {
 public:
  PrinterListener() = default;
  PrinterListener(const PrinterListener&) = delete;
  PrinterListener& operator=(const PrinterListener&) = delete;
  virtual ~PrinterListener() = default;

  virtual void answer(std::string_view bytes) = 0;
  virtual void report_unknown(const UnknownBytes& unknown) = 0;
  // An initialise command made the printer forget text that no line feed had printed.
  virtual void report_forgotten(std::size_t characters) = 0;
  virtual void deliver(const Receipt& receipt, PaperEnd end) = 0;
};

class Printer {
 public:
  explicit Printer(PrinterListener& listener) : listener_(listener) {}

  void receive(std::string_view bytes);

  // Nothing more will come: what is printed or waits to be printed is delivered uncut.
  void finish();

  PrinterCondition& condition() { return condition_; }

 private:
  void handle(const std::vector<Decoded>& decoded);
  void carry_out(const Command& command);
  void deliver(PaperEnd end);

  PrinterListener& listener_;
  CommandParser parser_;
  PrinterCondition condition_;
  Typesetter typesetter_;
};

}  // namespace virtual_printer
