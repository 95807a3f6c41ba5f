// One line in real time: a till and a virtual printer, two programs, and what goes wrong between
// them. What the till is told is compared with the paper.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "soak/child_program.h"
#include "soak/fault_kind.h"
#include "soak/figures.h"
#include "soak/printer_program.h"
#include "soak/receipts.h"
#include "soak/tally.h"

namespace soak {

class ProgramSoak {
 public:
  ProgramSoak(Line line, const std::filesystem::path& folder, std::size_t receipts,
              std::uint64_t seed);

  /// Prints all receipts, or as many as there are before the till stands still.
  void run();
  /// To be looked at while it runs.
  std::size_t printed() const { return printed_; }

  const Line& line() const { return line_; }
  const Tally& tally() const { return tally_; }
  const Figures& figures() const { return figures_; }
  std::string summary() const;

 private:
  using Clock = std::chrono::steady_clock;

  // Faults.
  Fault next_fault();
  void start(const Fault& fault);
  void set_in(const char* condition);
  void kill_printer();
  void spoil(const std::string& setting, const std::string& value);
  void end_spoiling();
  void note_condition(const std::string& name, bool on);

  // The course of things.
  bool print_receipt(const Fault& fault);
  void settle();
  void measure_at_rest();
  bool serve_until(const std::function<bool()>& is_done);
  void serve_once();
  void listen_to_printer();
  void hear_till(const std::string& line);
  void after(std::int64_t ms, std::function<void()> action);
  void help_till();

  // Judging.
  void check_result(std::uint32_t number, long result);
  void check_confirmed(std::uint32_t number);
  void check_all_paper();
  void violation(const std::string& what, std::uint32_t number);

  std::size_t below(std::size_t limit) { return random_() % limit; }

  const Line line_;
  const std::size_t receipts_;
  const std::uint64_t seed_;
  std::mt19937_64 random_;
  PrinterProgram printer_;
  std::unique_ptr<ChildProgram> till_;
  std::string folder_;
  Paper paper_;
  Tally tally_;
  Figures figures_;
  std::atomic<std::size_t> printed_ = 0;

  Fault fault_;                  // of the receipt that is being printed
  std::vector<FaultKind> deck_;  // kinds that have still to come in this round
  std::vector<std::string> spoilt_;
  std::multimap<Clock::time_point, std::function<void()>> due_;
  std::string last_said_;  // by the till, its first word
  int attempts_ = 0;       // at the receipt
  std::uint32_t next_number_ = 0;
  std::vector<std::string> conditions_seen_;  // since the receipt began
  bool stale_answers_ = false;                // one to an earlier request may come yet
  Clock::time_point last_answer_;             // when the last of the late ones may come
  bool memory_lost_ = false;                  // or bytes on their way to it, since the job began
  bool line_was_cut_ = false;                 // since a receipt was whole
  bool torn_command_ = false;                 // may have lain before the printer when the job began
};

}  // namespace soak
