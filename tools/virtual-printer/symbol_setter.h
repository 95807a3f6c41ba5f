// What the till has set for symbols, and the data that it has stored for one.
#pragma once

#include <string>

#include "command.h"
#include "receipt.h"
#include "symbols.h"

namespace virtual_printer {

// The characters that stand with a linear symbol.
struct SymbolText {
  enum Place { kNowhere, kAbove, kBelow };

  Place place = kNowhere;
  Font font = Font::kA;
};

class SymbolSetter {
 public:
  // Remembers a setting or data; whether the command was one.
  bool take(const Command& command);

  // The symbol that a command prints; throws Refused.
  Symbol symbol_for(const Command& command) const;

  const SymbolText& text() const { return text_; }

 private:
  void store(const std::string& block);

  int module_dots_ = 3;
  int bar_dots_ = 162;
  SymbolText text_;
  int pdf417_columns_ = 0;
  int pdf417_module_dots_ = 3;
  std::string pdf417_data_;
  QrModel qr_model_ = QrModel::kTwo;
  int qr_module_dots_ = 3;
  int qr_level_ = 0;
  std::string qr_data_;
};

}  // namespace virtual_printer
