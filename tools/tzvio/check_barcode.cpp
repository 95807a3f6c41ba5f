// tzvio check-barcode
#include <memory>

#include "commands.h"
#include "symbol_check.h"

namespace cli {

void add_check_barcode(CLI::App& app, Invocation& invocation) {
  CLI::App* const command =
      add_command(app, "check-barcode",
                  "Say whether a bar code would be printed, and why not; takes no printer");
  const auto request = std::make_shared<SymbolRequest>();
  add_symbol_options(command, *request);
  command->footer("  tzvio check-barcode ean-13 4006381333932");
  set_work(command, invocation, [request](const Options& options) {
    SymbolRequest prepared = *request;
    if (auto failed = prepare(prepared)) return *failed;
    return check_symbol(prepared, options);
  });
}

}  // namespace cli
