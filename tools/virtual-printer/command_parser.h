// Bytes in, in any split, commands out, one at a time. Knows no descriptor and keeps nothing but
// bytes not yet decoded, so that the same bytes always give the same commands.
#pragma once

#include <cstddef>
#include <functional>
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

// Where on the line something stands, and its bytes.
struct Piece {
  std::size_t offset = 0;  // from the first byte ever received
  std::string_view bytes;
};

class CommandParser {
 public:
  // The offset counts from the first byte ever received.
  explicit CommandParser(std::size_t offset = 0) : offset_(offset) {}

  void feed(std::string_view bytes) { pending_ += bytes; }

  // What stands next on the line; nothing when more bytes are needed to tell.
  std::optional<Decoded> next(Expectation expectation = Expectation::kMore);

  // Of what `next` returned last, until it is called or bytes are fed again.
  Piece piece() const { return {offset_ - last_, rest_from(taken_ - last_).substr(0, last_)}; }

  // What has not been decoded yet, as long.
  Piece unfinished() const { return {offset_, rest()}; }

  // An unfinished frame can only be told from a longer one by the silence after it.
  bool waits_for_frame() const;

  // Of the next byte to be decoded, and of the next to be fed.
  std::size_t offset() const { return offset_; }
  std::size_t end() const { return offset_ + pending_.size() - taken_; }

 private:
  std::string_view rest_from(std::size_t begin) const {
    return std::string_view(pending_).substr(begin);
  }
  std::string_view rest() const { return rest_from(taken_); }
  void drop_taken();

  std::string pending_;
  std::size_t taken_ = 0;  // of the pending bytes
  std::size_t last_ = 0;   // of these, by the last command
  std::size_t offset_;
};

// What a frame's job consists of, one by one; a frame within it is refused.
void decode_job(Piece job, const std::function<void(Decoded, Piece)>& take);

}  // namespace virtual_printer
