// Serves one line: feeds the printer from it, tells people what comes out.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "child_process.h"
#include "port_link.h"
#include "printer.h"
#include "receipt_files.h"
#include "signal_queue.h"

namespace virtual_printer {

class Service : private PrinterListener {
 public:
  Service(PortLink& link, SignalQueue& signals, const std::string& output_directory)
      : link_(link), signals_(signals), files_(output_directory) {}

  // Serves until a signal ends it.
  void run();

  // Serves until the command has ended and all that it sent is printed; returns its exit status.
  // Signals to end are passed on to the command.
  int run(const std::vector<std::string>& command);

  bool met_unknown_bytes() const { return unknown_count_ > 0; }

 private:
  void answer(std::string_view bytes) override;
  void report_unknown(const UnknownBytes& unknown) override;
  void report_forgotten(std::size_t characters) override;
  void deliver(const Receipt& receipt, PaperEnd end) override;

  void wait() const;
  std::size_t print_waiting_bytes();  // one read's worth, so that signals are seen between
  void finish();

  PortLink& link_;
  SignalQueue& signals_;
  ReceiptFiles files_;
  Printer printer_{*this};
  std::size_t unknown_count_ = 0;
};

}  // namespace virtual_printer
