// Serves one line: feeds the printer from it, tells people what comes out.
#pragma once

#include <chrono>
#include <cstddef>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "answer_queue.h"
#include "child_process.h"
#include "control.h"
#include "control_request.h"
#include "line_faults.h"
#include "link.h"
#include "page.h"
#include "printer.h"
#include "receipt_files.h"
#include "signal_queue.h"

namespace virtual_printer {

struct ServiceOptions {
  std::string output_folder = ".";  // empty: receipts are not written
  std::string memory_file;          // empty: the memory lives as long as the process
  std::string record_file;          // empty: what arrives is not recorded
  std::optional<ScriptedFault> fault;
  std::optional<std::chrono::milliseconds> recovery;  // from the fault on
  LineFaults line;
  bool stay = false;  // when the command has ended
};

class Service : private PrinterListener {
 public:
  // The control socket and the page may be missing.
  Service(Link& link, SignalQueue& signals, ControlSocket* control, Page* page,
          ServiceOptions options);

  // Serves until a signal ends it.
  void run();

  // Serves until the command has ended and all that it sent is printed, or stays until a signal
  // ends it then; returns the command's exit status.
  // Signals to end are passed on to the command.
  int run(const std::vector<std::string>& command, const Environment& environment);

  // Whether all that came was understood and done.
  bool met_only_known_bytes() const {
    return unknown_count_ == 0 && refused_frames_ == 0 && refused_content_ == 0;
  }

 private:
  void report_decoded(const Decoded& decoded, Piece piece) override;
  void answer(std::string_view bytes) override;
  void beep() override;
  void report_unknown(const UnknownBytes& unknown) override;
  void report_refused(const RefusedFrame& frame) override;
  void report_refused(const Refused& content) override;
  void report_forgotten(std::size_t characters) override;
  void report_cut_off(std::size_t bytes) override;
  void report_condition(Condition condition, bool on) override;
  void report_firmware(const std::string& words) override;
  void remember(const Memory& memory) override;
  void deliver(const Receipt& receipt, PaperEnd end) override;

  void power_up();
  void serve_until_signal();
  void serve_once();
  void wait() const;
  std::optional<Clock::time_point> next_deadline() const;
  void act_on_time();
  void send_due_answers();
  void send(std::string_view bytes);
  void serve_requests();
  ControlReply control(const std::string& request);
  void change(const ConditionChange& change);
  void change(const SettingChange& change);
  void expect(const ScriptedFault& fault);
  Status status() const;
  void update_page();
  void complain(const std::string& words);
  bool takes_bytes() const;
  std::size_t most_to_read() const;
  std::size_t print_waiting_bytes();  // one read's worth, so that signals are seen between
  void receive(std::string_view bytes);
  void print_all_waiting_bytes();
  void look_for_hang_up();
  bool is_about_to_go_on() const;
  void finish();

  Link& link_;
  SignalQueue& signals_;
  ControlSocket* control_;
  Page* page_;
  ServiceOptions options_;
  std::optional<ReceiptFiles> files_;
  std::ofstream record_;
  AnswerQueue answers_;
  Printer printer_;
  bool fault_has_set_in_ = false;
  std::optional<Clock::time_point> recovery_due_;
  std::optional<Clock::time_point> frame_due_;
  std::optional<Clock::time_point> next_read_due_;  // of a slow line
  std::size_t unknown_count_ = 0;                   // reports
  std::size_t unknown_bytes_ = 0;
  std::size_t refused_frames_ = 0;
  std::size_t refused_content_ = 0;
  std::size_t receipt_count_ = 0;
};

}  // namespace virtual_printer
