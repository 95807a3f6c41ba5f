#include "symbols.h"

#include <zint.h>

#include <array>
#include <cstdio>
#include <memory>

#include "command.h"
#include "linear_data.h"
#include "receipt.h"

namespace virtual_printer {
namespace {

// A row of PDF417 is so many times as high as a module is wide.
constexpr int kPdf417RowModules = 3;

// Modules of PDF417 that are no data, and in a column of data.
constexpr int kPdf417Frame = 69;
constexpr int kPdf417Column = 17;

struct EncodedDeleter {
  void operator()(zint_symbol* symbol) const { ZBarcode_Delete(symbol); }
};
using Encoded = std::unique_ptr<zint_symbol, EncodedDeleter>;

// Characters as they are where every text can have them.
std::string readable(std::string_view data) {
  std::string text;
  for (const char byte : data) {
    if (byte >= ' ' && byte <= '~') {
      if (byte == '"' || byte == '\\') text += '\\';
      text += byte;
      continue;
    }
    std::array<char, 5> hex{};
    std::snprintf(hex.data(), hex.size(), "\\x%02X", static_cast<unsigned char>(byte));
    text += hex.data();
  }
  return text;
}

Encoded encoded(int kind, std::string_view data, int option_1 = -1, int option_2 = 0) {
  if (data.empty()) throw Refused("no data");
  Encoded symbol(ZBarcode_Create());
  symbol->symbology = kind;
  symbol->input_mode = DATA_MODE;
  symbol->option_1 = option_1;
  symbol->option_2 = option_2;
  const std::string copy(data);
  const int result =
      ZBarcode_Encode(symbol.get(), reinterpret_cast<const unsigned char*>(copy.c_str()),
                      static_cast<int>(copy.size()));
  // Where zint would choose another size than asked for, the printer would not.
  const bool refused = result >= ZINT_ERROR || result == ZINT_WARN_INVALID_OPTION;
  if (refused) throw Refused(symbol->errtxt);
  return symbol;
}

DotImage dots_of(const zint_symbol& symbol, int module_dots, int row_dots) {
  DotImage image(symbol.width * module_dots, symbol.rows * row_dots);
  for (int row = 0; row < symbol.rows; ++row) {
    for (int x = 0; x < symbol.width; ++x) {
      const unsigned byte = symbol.encoded_data[row][x / 8];
      if ((byte >> (x % 8) & 1U) == 0) continue;
      image.fill(x * module_dots, row * row_dots, module_dots, row_dots);
    }
  }
  return image;
}

std::string caption_of(std::string_view name, std::string_view data) {
  return std::string(name) + " \"" + readable(data) + '"';
}

// Whatever refuses a symbol, people are told which it was.
template <typename Make>
Symbol named(const std::string& caption, Make make) {
  try {
    return make();
  } catch (const Refused& refused) {
    throw Refused(caption + ": " + refused.what());
  }
}

std::string_view name_of(QrModel model) {
  return model == QrModel::kMicro ? "Micro QR Code" : "QR Code";
}

}  // namespace

Symbol linear_symbol(char symbology, std::string_view data, int module_dots, int bar_dots) {
  const std::string name(name_of_symbology(symbology));
  return named(caption_of(name, data), [&]() -> Symbol {
    const LinearData linear = linear_data(symbology, data);
    const Encoded symbol = encoded(linear.encoder, linear.data);
    const std::string text(reinterpret_cast<const char*>(symbol->text));
    return {name + ' ' + text, text, dots_of(*symbol, module_dots, bar_dots)};
  });
}

Symbol pdf417_symbol(std::string_view data, int columns, int module_dots) {
  const std::string caption = caption_of("PDF417", data);
  return named(caption, [&]() -> Symbol {
    Encoded symbol = encoded(BARCODE_PDF417, data, -1, columns);
    const int most = (kPaperDots / module_dots - kPdf417Frame) / kPdf417Column;
    if (columns == 0 && most > 0 && symbol->width * module_dots > kPaperDots) {
      symbol = encoded(BARCODE_PDF417, data, -1, most);
    }
    return {caption, "", dots_of(*symbol, module_dots, kPdf417RowModules * module_dots)};
  });
}

Symbol qr_code_symbol(std::string_view data, QrModel model, int level, int module_dots) {
  const std::string caption = caption_of(name_of(model), data);
  return named(caption, [&]() -> Symbol {
    if (model == QrModel::kOne) throw Refused("model 1 cannot be printed");
    const int kind = model == QrModel::kMicro ? BARCODE_MICROQR : BARCODE_QRCODE;
    const Encoded symbol = encoded(kind, data, level + 1);
    return {caption, "", dots_of(*symbol, module_dots, module_dots)};
  });
}

}  // namespace virtual_printer
