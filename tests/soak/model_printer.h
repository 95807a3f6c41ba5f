// A printer behind a device of the scripted kernel: takes bytes, prints numbered receipts, holds
// what it cannot print, confirms jobs, reports its state, and fails in every way a printer does.
#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <string_view>

#include "soak/receipts.h"
#include "support/scripted_kernel.h"

namespace soak {

/// What keeps a printer from printing on.
enum class Condition { none, cover_open, paper_out, jam };

/// What becomes of the answers on their way.
struct AnswerFaults {
  std::int64_t late_ms = 0;
  bool doubled = false;
  bool split = false;
  bool garbled = false;
  bool lost = false;
};

class ModelPrinter {
 public:
  /// A real serial line that has no modem signals does not show whether anybody is there.
  ModelPrinter(testkit::Kernel& kernel, std::string path, bool shows_power, Paper& paper,
               std::uint64_t seed);

  /// Does that behind the job's byte of that number from now on; 0: before the first.
  void when_received(std::size_t bytes, std::function<void()> action);
  void forget_action() { action_ = nullptr; }
  /// How many bytes came since; the action may wait for more of them than there are.
  std::size_t received() const { return received_; }

  void set(Condition condition);
  /// What has been the matter since the last `begin_job()`.
  bool was(Condition condition) const { return (conditions_seen_ >> int(condition) & 1) != 0; }

  void power_off();
  void power_on();
  /// The cable, the plug or the connection; an orderly end is something only a connection has.
  void disconnect(bool orderly);
  void connect();

  AnswerFaults answers;
  /// Bytes printed in 10 ms; 0: all at once.
  std::size_t slowness = 0;
  /// While set, the printer takes nothing where the link lets it say so.
  void set_busy(bool busy);

  /// What follows belongs to another job: answers to earlier requests are stale from now on.
  void begin_job();
  /// Whether one was there to be read since then.
  bool gave_stale_answer() const { return stale_; }
  /// Whether the printer took bytes of this job for the rest of a command that an earlier one left
  /// torn.
  bool swallowed() const { return swallowed_; }
  /// Whether bytes or the printer's memory got lost since then.
  bool lost_memory() const { return lost_memory_; }
  /// How often the till connected anew since then, and so sent what it was sending once more.
  int reconnections() const { return reconnections_; }
  /// How often the connection was lost since then.
  int losses() const { return losses_; }

 private:
  static constexpr std::uint32_t kNoJob = 0;  ///< of answers that confirm none

  bool reachable() const { return powered_ && connected_; }
  bool holds() const { return condition_ != Condition::none || busy_; }
  bool refuses_bytes() const;
  long take(std::string_view bytes);
  long taken(std::size_t count, std::size_t offered);
  bool obey_at_once(std::string_view bytes);
  void print_received();
  void tick();
  void print(char byte);
  void execute();
  void refuse_old_connection();
  std::uint32_t job_of_next_byte() const { return old_bytes_ > 0 ? job_ - 1 : job_; }
  void forget_memory();
  void forget_answers();
  void show_state();
  void report();
  void answer(std::string bytes, std::uint32_t job = kNoJob);
  void deliver(const std::string& bytes, std::uint32_t job, std::int64_t delay_ms);
  std::int64_t random_ms(int most) { return std::uniform_int_distribution(1, most)(random_); }

  testkit::Kernel& kernel_;
  std::string path_;
  testkit::Device& device_;
  Paper& paper_;
  std::mt19937_64 random_;

  std::function<void()> action_;
  std::size_t action_at_ = 0, received_ = 0;

  bool powered_ = true, connected_ = true, busy_ = false, ticking_ = false;
  Condition condition_ = Condition::none;
  unsigned conditions_seen_ = 0;
  bool reports_ = false;
  std::string buffer_;             // received and not printed
  std::string command_;            // not complete
  std::uint32_t command_job_ = 0;  // where it began
  std::string line_;
  unsigned connection_ = 0;  // answers of an earlier one are not given any more

  std::uint32_t job_ = 1;
  std::size_t old_bytes_ = 0;  // of the buffer, which came before this job
  std::int64_t last_answer_ms_ = 0;
  bool stale_ = false, lost_memory_ = false, swallowed_ = false;
  bool connection_is_old_ = false;  // made before the power went
  int losses_ = 0, reconnections_ = 0;
};

}  // namespace soak
