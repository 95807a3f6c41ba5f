// tzvio cut
#include <tzvio.h>

#include <memory>

#include "commands.h"
#include "job.h"

namespace cli {
namespace {

struct Cut {
  bool partial = false;
  bool confirm = true;
};

}  // namespace

void add_cut(CLI::App& app, Invocation& invocation) {
  CLI::App* const command = add_command(app, "cut", "Feed five lines and cut the paper");
  const auto cut = std::make_shared<Cut>();
  command->add_flag("--partial", cut->partial, "Leave a bridge of paper");
  add_confirm_option(command, cut->confirm);
  command->footer("  tzvio cut --partial");
  set_work(command, invocation, [cut](const Options& options) {
    return print_job(options, cut->confirm, [&](Session& session) {
      return collected(session, [&] { return CutPaper(session.port(), cut->partial ? 50 : 100); });
    });
  });
}

}  // namespace cli
