#include "symbol_setter.h"

#include <cstddef>

#include "command_argument.h"

namespace virtual_printer {
namespace {

// In a block that stores data, and where the data begins.
constexpr std::size_t kClassAt = 2;
constexpr std::size_t kStoredAt = 5;
constexpr char kPdf417Class = '0';

// In a block with a linear symbol.
constexpr std::size_t kLinearAt = 2;

// The digit alone: programs also send numbers here that mean something else to other symbols.
QrModel model_of(std::uint8_t digit, QrModel before) {
  return digit >= '1' && digit <= '3' ? static_cast<QrModel>(digit - '0') : before;
}

}  // namespace

bool SymbolSetter::take(const Command& command) {
  switch (command.kind) {
    case CommandKind::kModuleWidth:
      module_dots_ = command.argument;
      return true;
    case CommandKind::kBarHeight:
      bar_dots_ = command.argument;
      return true;
    case CommandKind::kSymbolTextFont:
      text_.font = command.argument == 0 ? Font::kA : Font::kB;
      return true;
    case CommandKind::kSymbolTextPlace:
      text_.place = static_cast<SymbolText::Place>(command.argument);
      return true;
    case CommandKind::kPdf417Columns:
      pdf417_columns_ = command.argument;
      return true;
    case CommandKind::kPdf417ModuleWidth:
      pdf417_module_dots_ = command.argument;
      return true;
    case CommandKind::kQrModel:
      qr_model_ = model_of(command.argument, qr_model_);
      return true;
    case CommandKind::kQrModuleSize:
      qr_module_dots_ = command.argument;
      return true;
    case CommandKind::kQrErrorCorrection:
      qr_level_ = command.argument - '0';
      return true;
    case CommandKind::kStoreSymbol:
      store(command.data);
      return true;
    default:
      return false;
  }
}

void SymbolSetter::store(const std::string& block) {
  (block[kClassAt] == kPdf417Class ? pdf417_data_ : qr_data_) = block.substr(kStoredAt);
}

Symbol SymbolSetter::symbol_for(const Command& command) const {
  switch (command.kind) {
    case CommandKind::kPrintPdf417:
      return pdf417_symbol(pdf417_data_, pdf417_columns_, pdf417_module_dots_);
    case CommandKind::kPrintQrCode:
      return qr_code_symbol(qr_data_, qr_model_, qr_level_, qr_module_dots_);
    default:
      return linear_symbol(command.data.front(), std::string_view(command.data).substr(kLinearAt),
                           module_dots_, bar_dots_);
  }
}

}  // namespace virtual_printer
