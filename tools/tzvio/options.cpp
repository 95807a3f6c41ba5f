#include "options.h"

#include <tzvio.h>

#include <array>
#include <utility>

namespace cli {
namespace {

constexpr std::array<std::pair<const char*, long>, 4> kUnits{{{"dots", TZV_MAP_DOTS},
                                                              {"twips", TZV_MAP_TWIPS},
                                                              {"mils", TZV_MAP_ENGLISH},
                                                              {"cmm", TZV_MAP_METRIC}}};

constexpr int kDay = 24 * 3600;

}  // namespace

void describe_common_options(CLI::App& app, Options& options) {
  constexpr int kLongestLine = 10000;
  app.option_defaults()->take_last();
  app.add_option("-p,--port", options.port,
                 "Port: /dev/ttyS..., /dev/usb/lp..., /dev/parport... or SOCKET:ADDRESS "
                 "(or TZVIO_PORT in the environment)")
      ->option_text("PORT")
      ->envname("TZVIO_PORT");
  app.add_option("-s,--settings", options.settings,
                 "Settings: of a serial port, 9600,none,8,1,none unless given; of a network port "
                 "its TCP port, 9100 unless given (or TZVIO_SETTINGS)")
      ->option_text("SETTINGS")
      ->envname("TZVIO_SETTINGS");
  app.add_flag("--json", options.json, "One JSON object for the outcome, on standard output");
  app.add_flag("-q,--quiet", options.quiet, "No words about the outcome on standard error");
  app.add_option("--timeout", options.timeout_s,
                 "End when nothing has moved for so many seconds; 30 unless given")
      ->option_text("SECONDS")
      ->check(CLI::Range(1, kDay));
  app.add_option("--wait", options.wait_s,
                 "How many seconds a fault (cover, paper, cutter, power) may last before the "
                 "command gives up; 0 unless given")
      ->option_text("SECONDS")
      ->check(CLI::Range(0, kDay));
  app.add_option(
         "--columns", options.columns,
         "Characters of a line: 42 or 56 (33 or 40 on two-colour printers); 42 unless given")
      ->option_text("42|56|33|40")
      ->check(CLI::IsMember({42, 56, 33, 40}));
  app.add_option("--line-width", options.line_width, "Width of a line in dots; 640 unless given")
      ->option_text("DOTS")
      ->check(CLI::Range(1, kLongestLine));
  add_choice(app, "--unit", options.unit, kUnits,
             "Unit of heights and widths: dots of 0.141 mm, twips (1/1440 inch), mils (1/1000 "
             "inch) or cmm (1/100 mm); dots unless given");
}

CLI::App* add_command(CLI::App& app, const std::string& name, const std::string& description) {
  CLI::App* const command = app.add_subcommand(name, description);
  command->fallthrough();
  command->option_defaults()->take_last();
  return command;
}

void set_work(CLI::App* command, Invocation& invocation,
              std::function<Result(const Options&)> run) {
  // Of a command within a command both names count.
  const CLI::App* const outer = command->get_parent();
  const std::string before = outer->get_parent() != nullptr ? outer->get_name() + " " : "";
  command->final_callback([&invocation, name = before + command->get_name(), run = std::move(run)] {
    invocation.command = name;
    invocation.run = run;
  });
}

}  // namespace cli
