#include "barcode/print_2d_barcode.h"

#include <cstring>

#include "barcode/data_2d.h"
#include "dispatch/command.h"
#include "dispatch/port_operations.h"
#include "text/alignment.h"
#include "text/position.h"
#include "tzvio.h"

namespace {

// Symbol classes of GS ( k.
constexpr char kPdf417 = '0';
constexpr char kQrCode = '1';

// Functions of GS ( k. The first of PDF417's has another meaning in the class of QR Code: its
// model.
constexpr char kColumnsOrModel = 'A';
constexpr char kModuleWidth = 'C';
constexpr char kErrorCorrection = 'E';
constexpr char kStore = 'P';
constexpr char kPrint = 'Q';

constexpr Command<8> function(char symbol_class, char number, long parameter) {
  return command(0x1d, '(', 'k', 3, 0, symbol_class, number, parameter);
}

constexpr Command<8> store(char symbol_class, std::string_view data) {
  const std::size_t count = data.size() + 3;
  return command(0x1d, '(', 'k', count % 256, count / 256, symbol_class, kStore, '0');
}

constexpr Command<8> print(char symbol_class) {
  return function(symbol_class, kPrint, '0');
}

/// The commands that set a symbol up.
struct Setup {
  char symbol_class;
  Command<8> first, second;
};

Setup pdf417_setup(char symbol_class, long Param1, long Param2) {
  return {symbol_class, function(symbol_class, kColumnsOrModel, Param1),
          function(symbol_class, kModuleWidth, Param2)};
}

Setup qr_code_setup(long Param1, long Param2) {
  return {kQrCode, function(kQrCode, kModuleWidth, Param1),
          function(kQrCode, kErrorCorrection, '0' + (Param2 & 0xff))};
}

/// The data to encode; none when it cannot be printed, which counts as success with nothing sent.
std::optional<std::string_view> data_of(const char* BarcodeData, long DataLength, long Symbology) {
  if (Symbology != TZV_BARCODE_PDF417 && Symbology != TZV_BARCODE_QRCODE) return std::nullopt;
  if (BarcodeData == nullptr || DataLength < 0 || DataLength > kLongest2dData) return std::nullopt;
  const std::size_t length =
      DataLength != 0 ? static_cast<std::size_t>(DataLength) : std::strlen(BarcodeData);
  if (length > kLongest2dData) return std::nullopt;
  return std::string_view(BarcodeData, length);
}

long nothing_to_print(const Transport& transport, const char* portName) {
  return transport.registry.find(portName) ? kOk : kFailed;
}

}  // namespace

long print_2d_barcode(const Transport& transport, const char* portName, const char* BarcodeData,
                      long DataLength, long Symbology, long Param1, long Param2, long Alignment) {
  const auto data = data_of(BarcodeData, DataLength, Symbology);
  if (!data) return nothing_to_print(transport, portName);
  const bool pdf417 = Symbology == TZV_BARCODE_PDF417;
  const auto& [symbol, first, second] =
      pdf417 ? pdf417_setup(kPdf417, Param1, Param2) : qr_code_setup(Param1, Param2);
  const std::string_view align = alignment_prefix(Alignment);
  if (pdf417) {
    return hand_on(transport, portName,
                   {align, first, second, store(symbol, *data), *data, print(symbol)});
  }
  return hand_on(transport, portName,
                 {align, first, second, store(symbol, *data), *data, print(symbol), "\r\n"});
}

long print_2d_barcode_xy(const Transport& transport, const char* portName, const char* BarcodeData,
                         long DataLength, long Symbology, long Param1, long Param2, long PosX,
                         long PosY) {
  const auto data = data_of(BarcodeData, DataLength, Symbology);
  if (!data) return nothing_to_print(transport, portName);
  // At a position PDF417 goes out in the class of QR Code: a QR Code is printed, the first
  // parameter chooses its model and the second its module width. Pages are laid out for that.
  const auto& [symbol, first, second] = Symbology == TZV_BARCODE_PDF417
                                            ? pdf417_setup(kQrCode, Param1, Param2)
                                            : qr_code_setup(Param1, Param2);
  return hand_on(transport, portName,
                 {first, second, store(symbol, *data), *data, PrintXCommand(PosX),
                  PrintYCommand(PosY), print(symbol), "\n"});
}
