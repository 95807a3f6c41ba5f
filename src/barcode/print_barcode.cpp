#include "barcode/print_barcode.h"

#include <array>
#include <cstring>

#include "barcode/linear_symbol.h"
#include "dispatch/port_operations.h"
#include "text/units.h"

// What cannot be printed as asked counts as success with nothing sent: applications rely on a
// receipt going on without its barcode.

long print_barcode(const Transport& transport, const char* portName, const char* BarcodeData,
                   long Symbology, long Height, long Width, long Alignment, long TextPosition) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  if (BarcodeData == nullptr) return kOk;
  const TransportState& state = transport.state;
  const LinearSymbol symbol{.data = {BarcodeData, std::strlen(BarcodeData)},
                            .symbology = wrap32(Symbology),
                            .height = wrap32(Height),
                            .width = wrap32(Width),
                            .alignment = wrap32(Alignment),
                            .text_position = wrap32(TextPosition)};
  const LinearSettings settings{.line_width = wrap32(state.RecLineWidth),
                                .line_chars = wrap32(state.RecLineChars),
                                .map_mode = wrap32(state.MapMode)};
  std::array<char, kLinearBlockSize> block;
  const std::size_t size = build_linear_symbol(symbol, settings, block).size;
  if (size > 0) buffered_write(transport, port, {block.data(), size});
  return kOk;
}
