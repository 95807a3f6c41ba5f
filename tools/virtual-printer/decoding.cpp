#include "decoding.h"

#include <string>
#include <utility>
#include <variant>

#include "frame.h"

namespace virtual_printer {
namespace {

void take(Transcript& transcript, const Decoded& decoded, Piece piece) {
  transcript.take(decoded, piece);
  const auto* command = std::get_if<Command>(&decoded);
  if (command == nullptr || command->kind != CommandKind::kFramedJob) return;
  decode_job({piece.offset + kFrameHeaderLength, command->data},
             [&](const Decoded& part, Piece place) { transcript.take(part, place); });
}

void take_all(Transcript& transcript, CommandParser& parser) {
  while (const auto decoded = parser.next()) take(transcript, *decoded, parser.piece());
}

// A frame that never ends is refused as a whole; after one that ends wrong, more may stand.
void take_rest(Transcript& transcript, CommandParser& parser) {
  while (const auto decoded = parser.next(Expectation::kNoMoreOfFrame)) {
    take(transcript, *decoded, parser.piece());
  }
  if (!parser.unfinished().bytes.empty()) transcript.take_unfinished(parser.unfinished());
}

}  // namespace

void decode_capture(std::istream& capture, const std::function<void(const TranscriptEntry&)>& put) {
  constexpr std::size_t kChunk = 65536;
  Transcript transcript(put);
  CommandParser parser;
  std::string chunk(kChunk, '\0');
  while (capture.read(chunk.data(), kChunk).gcount() > 0) {
    parser.feed({chunk.data(), static_cast<std::size_t>(capture.gcount())});
    take_all(transcript, parser);
  }
  take_rest(transcript, parser);
  transcript.show_open_text();
}

}  // namespace virtual_printer
