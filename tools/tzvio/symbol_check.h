// Whether the library would print a symbol, and how, by its own rules; and whether a printer can
// encode the data.
#pragma once

#include <optional>
#include <string>

#include "options.h"
#include "outcome.h"
#include "symbologies.h"

namespace cli {

struct SymbolRequest {
  long symbology = 0;
  std::string data;
  bool escapes = false;
  long height = 80;
  long width = 300;
  long alignment = 0;
  long text_position = 2;
  long module_dots = 4;       // PDF417 and QR Code
  long data_columns = 0;      // PDF417
  long error_correction = 1;  // QR Code
};

// SYMBOLOGY, DATA and the options that decide about the symbol.
void add_symbol_options(CLI::App* command, SymbolRequest& request);

// Puts bytes in the place of escapes.
std::optional<Result> prepare(SymbolRequest& request);

// What would be printed: outcome kDone; or kNotPrintable and why.
Result check_symbol(const SymbolRequest& request, const Options& options);

}  // namespace cli
