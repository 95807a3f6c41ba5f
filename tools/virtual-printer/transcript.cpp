#include "transcript.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>
#include <variant>

#include "description.h"
#include "hex.h"
#include "json.h"

namespace virtual_printer {
namespace {

// A line of paper, more or less; and what keeps one entry short whatever a till sends.
constexpr std::size_t kLongestText = 64;

constexpr std::size_t kMostShownWhole = 12;
constexpr std::size_t kBeginning = 8;
constexpr int kHexColumns = 40;

bool is_text(const Decoded& decoded) {
  const auto* command = std::get_if<Command>(&decoded);
  return command != nullptr && command->kind == CommandKind::kText;
}

TranscriptEntry entry_of(TranscriptEntry::Kind kind, Piece piece, std::string words) {
  const bool whole = piece.bytes.size() <= kMostShownWhole;
  return {kind, piece.offset, piece.bytes.size(),
          hex_of(piece.bytes, whole ? kMostShownWhole : kBeginning), std::move(words)};
}

}  // namespace

void Transcript::take(const Decoded& decoded, Piece piece) {
  if (is_text(decoded)) return take_text(piece);
  end_text();
  const auto kind = std::holds_alternative<Command>(decoded) ? TranscriptEntry::Kind::kCommand
                                                             : TranscriptEntry::Kind::kTrouble;
  put_(entry_of(kind, piece, words_for(decoded)));
}

void Transcript::take_unfinished(Piece piece) {
  end_text();
  put_(entry_of(TranscriptEntry::Kind::kTrouble, piece, "unfinished: its end is missing"));
}

void Transcript::show_open_text() {
  if (std::exchange(text_is_shown_, true)) return;
  put_(entry_of(TranscriptEntry::Kind::kText, {text_offset_, text_}, "text " + in_quotes(text_)));
}

void Transcript::take_text(Piece piece) {
  if (text_.size() >= kLongestText || piece.offset != text_offset_ + text_.size()) end_text();
  if (text_.empty()) text_offset_ = piece.offset;
  text_ += piece.bytes;
  text_is_shown_ = false;
}

void Transcript::end_text() {
  show_open_text();
  text_.clear();
}

std::string line_of(const TranscriptEntry& entry) {
  std::array<char, 64> beginning{};
  std::snprintf(beginning.data(), beginning.size(), "%8zu  %-*s  ", entry.offset, kHexColumns,
                entry.hex.c_str());
  return beginning.data() + entry.words;
}

std::string json_of(const TranscriptEntry& entry) {
  constexpr std::array kKinds{"text", "command", "trouble"};
  return "{\"offset\":" + std::to_string(entry.offset) +
         ",\"length\":" + std::to_string(entry.length) + ",\"kind\":\"" +
         kKinds.at(static_cast<std::size_t>(entry.kind)) + "\",\"hex\":" + json_string(entry.hex) +
         ",\"words\":" + json_string(entry.words) + "}";
}

}  // namespace virtual_printer
