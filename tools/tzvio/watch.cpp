// tzvio watch
#include <tzvio.h>

#include <chrono>
#include <ctime>
#include <memory>

#include "commands.h"
#include "condition.h"
#include "reporter.h"
#include "session.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;

// A claimed printer counts as offline until its monitor has looked at it and read its report.
constexpr std::chrono::milliseconds kFirstReport{700};

std::string now_in_words() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[32];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &local)};
}

void tell_condition(const Condition& condition) {
  const std::string time = now_in_words();
  std::string text = time + " " + words_for(condition);
  if (condition.paper_near_end) text += ", paper near its end";
  if (condition.drawer_open) text += ", drawer open";
  Json fields{{"time", time}};
  fields.update(fields_of(condition));
  tell_line(text, fields);
}

void watch_until(const Session& session, Clock::time_point end) {
  const auto begin = Clock::now();
  std::optional<Condition> told;
  while (Clock::now() < end) {
    const Condition condition = look_at(session.state());
    const bool is_known = told || Clock::now() - begin >= kFirstReport;
    if (is_known && condition != told) {
      tell_condition(condition);
      told = condition;
    }
    session.mend_line();
    pause_between_looks();
  }
}

Result run(const Options& options, int seconds) {
  Session session(options);
  if (auto failed = session.open(false)) return *failed;
  if (auto failed = session.claim()) return *failed;
  const auto end =
      seconds > 0 ? Clock::now() + std::chrono::seconds(seconds) : Clock::time_point::max();
  watch_until(session, end);
  return {};
}

}  // namespace

void add_watch(CLI::App& app, Invocation& invocation) {
  constexpr int kYear = 366 * 24 * 3600;
  CLI::App* const command =
      add_command(app, "watch", "Say how the printer is, and a line for each change");
  const auto seconds = std::make_shared<int>(0);
  command->add_option("--for", *seconds, "End after so long; until interrupted unless given")
      ->option_text("SECONDS")
      ->check(CLI::Range(1, kYear));
  command->footer("  tzvio watch --json --for 3600 >> printer.log");
  set_work(command, invocation,
           [seconds](const Options& options) { return run(options, *seconds); });
}

}  // namespace cli
