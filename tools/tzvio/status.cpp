// tzvio status
#include <tzvio.h>

#include "commands.h"
#include "condition.h"
#include "session.h"

namespace cli {
namespace {

std::string lines_for(const Condition& condition) {
  return "state: " + words_for(condition) + "\npaper: " +
         (condition.paper_out        ? "out"
          : condition.paper_near_end ? "near its end"
                                     : "there") +
         "\ndrawer: " + (condition.drawer_open ? "open" : "closed") + "\n";
}

Result run(const Options& options) {
  Session session(options);
  if (auto failed = session.open()) return *failed;
  const auto failed = session.make_ready();
  const Condition condition = look_at(session.state());
  if (!failed) return {.text = lines_for(condition), .fields = fields_of(condition)};
  if (fault_of(condition) == Outcome::kDone) return *failed;
  return {.outcome = failed->outcome,
          .words = options.port + ": " + words_for(condition) + ": " + advice_for(failed->outcome),
          .text = lines_for(condition),
          .fields = fields_of(condition)};
}

}  // namespace

void add_status(CLI::App& app, Invocation& invocation) {
  CLI::App* const command = add_command(app, "status", "Look once how the printer is");
  command->footer(
      "The printer is asked to confirm an empty job: a line that another program left unended is\n"
      "forgotten.\n"
      "  tzvio status --json");
  set_work(command, invocation, run);
}

}  // namespace cli
