#include "device/paper.h"

#include "dispatch/port_operations.h"
#include "text/alignment.h"

namespace {

constexpr std::string_view kFullCut = "\n\n\n\n\n\033i";
constexpr std::string_view kPartialCut = "\n\n\n\n\n\033m";
constexpr long kFullCutPercent = 100;

}  // namespace

long cut_paper(const Transport& transport, const char* portName, long Percent) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  const std::string_view cut = Percent == kFullCutPercent ? kFullCut : kPartialCut;
  // In an error state the cut still goes the way of the receipt: a transaction collects it.
  const bool healthy = !in_error_state(transport.state);
  const long written = buffered_write(transport, port, cut);
  if (!healthy) return kRefused;
  return written == static_cast<long>(cut.size()) ? kOk : transport.short_write.cut;
}

long write_port_position(const Transport& transport, const char* portName, long Position) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  buffered_write(transport, port, alignment_prefix(Position));
  return kOk;
}
