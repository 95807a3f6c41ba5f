// Bytes in, in any split, commands out, one at a time. Knows no descriptor and keeps nothing but
// bytes not yet decoded, so that the same bytes always give the same commands.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "command.h"

namespace virtual_printer {

// What is known about the bytes that have not come yet.
enum class Expectation {
  kMore,
  kNoMoreOfFrame,  // the line is silent: a frame that is unfinished now is broken
  kNothing,        // the line has ended: a command that is unfinished now will never be one
};

class CommandParser {
 public:
  // The offset counts from the first byte ever received.
  explicit CommandParser(std::size_t offset = 0) : offset_(offset) {}

  void feed(std::string_view bytes) { pending_ += bytes; }

  // What stands next on the line; nothing when more bytes are needed to tell.
  std::optional<Decoded> next(Expectation expectation = Expectation::kMore);

  // An unfinished frame can only be told from a longer one by the silence after it.
  bool waits_for_frame() const;

  // Of the next byte to be decoded, and of the next to be fed.
  std::size_t offset() const { return offset_; }
  std::size_t end() const { return offset_ + pending_.size() - taken_; }

 private:
  std::string_view rest() const { return std::string_view(pending_).substr(taken_); }
  void take(std::size_t length);

  std::string pending_;
  std::size_t taken_ = 0;  // of the pending bytes
  std::size_t offset_;
};

}  // namespace virtual_printer
