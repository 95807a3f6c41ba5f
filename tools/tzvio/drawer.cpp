// tzvio drawer
#include <tzvio.h>

#include "commands.h"
#include "job.h"

namespace cli {
namespace {

// The library sends nothing to a drawer that it knows to be open; that much is told before.
Result run(const Options& options) {
  return print_job(options, true, [](Session& session) -> std::optional<Result> {
    if (GetDrawerStatus(session.port()) == 1) {
      return Result{.words = "the drawer is open already", .fields = {{"drawer_open", true}}};
    }
    return collected(session, [&] { return OpenCashDrawer(session.port()); });
  });
}

}  // namespace

void add_drawer(CLI::App& app, Invocation& invocation) {
  CLI::App* const command = add_command(app, "drawer", "Open the cash drawer");
  command->footer("  tzvio drawer --port /dev/ttyS0");
  set_work(command, invocation, run);
}

}  // namespace cli
