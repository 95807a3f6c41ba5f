// tzvio: prints, and finds out how a receipt printer is, from a shell.
#include <tzvio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "commands.h"
#include "reporter.h"

namespace {

using cli::Invocation;
using cli::Outcome;

std::string exit_codes() {
  std::string text = "\nExit codes:\n";
  for (const cli::OutcomeRow& row : cli::kOutcomes) {
    const std::string code = std::to_string(static_cast<int>(row.outcome));
    text += std::string(5 - code.size(), ' ') + code + "  " + std::string(row.meaning) + "\n";
  }
  return text;
}

constexpr const char* kExamples =
    "\nExamples:\n"
    "  tzvio ports\n"
    "  tzvio doctor --port /dev/ttyS0\n"
    "  export TZVIO_PORT=SOCKET:192.168.0.10\n"
    "  tzvio print Hello --cut\n"
    "  tzvio status --json\n"
    "  tzvio COMMAND --help\n";

void describe(CLI::App& app, Invocation& invocation) {
  cli::describe_common_options(app, invocation.options);
  app.set_version_flag("--version", "tzvio " TZV_VERSION);
  using Add = void(CLI::App&, Invocation&);
  constexpr Add* kCommands[] = {cli::add_print,     cli::add_barcode,       cli::add_image,
                                cli::add_logo,      cli::add_cut,           cli::add_drawer,
                                cli::add_status,    cli::add_watch,         cli::add_doctor,
                                cli::add_ports,     cli::add_identify,      cli::add_update,
                                cli::add_check_bmp, cli::add_check_barcode, cli::add_words};
  for (Add* const add : kCommands) add(app, invocation);
  app.require_subcommand(1);
  app.footer(kExamples + exit_codes());
}

int bad_usage(const CLI::App& app, const CLI::ParseError& error, int argc, char** argv) {
  if (app.exit(error) == 0) return 0;
  const bool json = std::find(argv, argv + argc, std::string_view("--json")) != argv + argc;
  const cli::Json told{{"outcome", cli::name_of(Outcome::kUsage)},
                       {"exit", static_cast<int>(Outcome::kUsage)},
                       {"message", error.what()}};
  if (json) std::puts(told.dump(-1, ' ', false, cli::Json::error_handler_t::replace).c_str());
  return static_cast<int>(Outcome::kUsage);
}

}  // namespace

// Only memory that runs out is not caught: it ends the tool.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
  Invocation invocation;
  CLI::App app("Prints on a receipt printer, and finds out how it is.", "tzvio");
  describe(app, invocation);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return bad_usage(app, error, argc, argv);
  }
  cli::start_reporting(invocation);
  const int status = cli::tell(invocation.run(invocation.options));
  // The port is closed; nothing is to be waited for.
  std::fflush(nullptr);
  _exit(status);
}
