// What came over the line, as entries for people: the characters of a run of text are one.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "command.h"
#include "command_parser.h"

namespace virtual_printer {

struct TranscriptEntry {
  enum class Kind { kText, kCommand, kTrouble };

  Kind kind = Kind::kCommand;
  std::size_t offset = 0;
  std::size_t length = 0;
  std::string hex;  // of long data the beginning
  std::string words;

  bool operator==(const TranscriptEntry&) const = default;
};

class Transcript {
 public:
  explicit Transcript(std::function<void(const TranscriptEntry&)> put) : put_(std::move(put)) {}

  void take(const Decoded& decoded, Piece piece);

  // Bytes after which nothing comes that would make them a command.
  void take_unfinished(Piece piece);

  // Puts the text that has come so far; what follows it puts the longer text, at the same offset.
  void show_open_text();

 private:
  void take_text(Piece piece);
  void end_text();

  std::function<void(const TranscriptEntry&)> put_;
  std::size_t text_offset_ = 0;
  std::string text_;
  bool text_is_shown_ = true;
};

// One line each, as `decode` prints them: for people, or one JSON object.
std::string line_of(const TranscriptEntry& entry);
std::string json_of(const TranscriptEntry& entry);

}  // namespace virtual_printer
