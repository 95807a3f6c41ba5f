#include "text/print_text.h"

#include <cstring>

#include "dispatch/port_operations.h"
#include "text/translate.h"
#include "text/units.h"

namespace {

TextSettings text_settings(const TransportState& state) {
  return {.line_chars = wrap32(state.RecLineChars),
          .line_spacing = wrap32(state.RecLineSpacing),
          .lines_to_paper_cut = wrap32(state.RecLinesToPaperCut),
          .map_mode = wrap32(state.MapMode),
          .rotated = state.RotateCtrl != 0};
}

LineColumns load_columns(const TransportState& state) {
  return {.line_is_open = wrap32(state.SaveFlag),
          .current = wrap32(state.RecSidewaysCharsCur),
          .widest = wrap32(state.RecSidewaysChars)};
}

void store_columns(const TransportState& state, const LineColumns& columns) {
  state.SaveFlag = columns.line_is_open;
  state.RecSidewaysCharsCur = columns.current;
  state.RecSidewaysChars = columns.widest;
}

long print_text(const Transport& transport, PortHandle port, std::string_view text) {
  // What a transaction can hold bounds the output: longer text could not be confirmed.
  ByteBuffer commands(TZV_PAGE_BUFFER_SIZE);
  LineColumns columns = load_columns(transport.state);
  translate(text, text_settings(transport.state), columns, commands);
  if (!commands.ok()) return kRefused;
  store_columns(transport.state, columns);
  // Callers rely on 0 here whatever the write did; a transaction tells whether it printed.
  buffered_write(transport, port, commands.bytes());
  return 0;
}

}  // namespace

long print_normal(const Transport& transport, const char* portName, const char* writeBuffer) {
  const PortHandle port = transport.registry.find(portName);
  if (!port || writeBuffer == nullptr) return kFailed;
  return print_text(transport, port, {writeBuffer, std::strlen(writeBuffer)});
}

long print_normal_size(const Transport& transport, const char* portName, const char* writeBuffer,
                       long wlen) {
  const PortHandle port = transport.registry.find(portName);
  if (!port || writeBuffer == nullptr) return kFailed;
  if (wlen < 0) return kRefused;
  return print_text(transport, port, {writeBuffer, static_cast<std::size_t>(wlen)});
}
