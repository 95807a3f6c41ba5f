// tzvio barcode
#include <tzvio.h>

#include <memory>

#include "commands.h"
#include "job.h"
#include "symbol_check.h"

namespace cli {
namespace {

struct Barcode {
  SymbolRequest symbol;
  bool confirm = true;
};

long print_symbol(const char* port, const SymbolRequest& request) {
  if (!is_2d(request.symbology)) {
    return PrintBarCode(port, request.data.c_str(), request.symbology, request.height,
                        request.width, request.alignment, request.text_position);
  }
  const bool pdf417 = request.symbology == TZV_BARCODE_PDF417;
  return Print2DBarCode(port, request.data.data(), static_cast<long>(request.data.size()),
                        request.symbology, pdf417 ? request.data_columns : request.module_dots,
                        pdf417 ? request.module_dots : request.error_correction, request.alignment);
}

Result run(const Options& options, Barcode barcode) {
  if (auto failed = prepare(barcode.symbol)) return *failed;
  Result checked = check_symbol(barcode.symbol, options);
  if (checked.outcome != Outcome::kDone) return checked;
  return print_job(options, barcode.confirm, [&](Session& session) {
    return collected(session, [&] { return print_symbol(session.port(), barcode.symbol); });
  });
}

}  // namespace

void add_barcode(CLI::App& app, Invocation& invocation) {
  CLI::App* const command = add_command(app, "barcode", "Print a bar code, PDF417 or QR Code");
  const auto barcode = std::make_shared<Barcode>();
  add_symbol_options(command, barcode->symbol);
  add_confirm_option(command, barcode->confirm);
  command->footer(
      "  tzvio barcode ean-13 400638133393 --width 380 --align centre\n"
      "  tzvio barcode qrcode https://shop.example/4711 --module 6");
  set_work(command, invocation,
           [barcode](const Options& options) { return run(options, *barcode); });
}

}  // namespace cli
