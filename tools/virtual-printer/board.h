// What the page shows, kept for its watchers: the printer's loop puts it there, any thread reads
// it. A watcher is told what has changed since it looked last, however long ago that was, so that
// it costs nothing to keep a slow one.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dot_image.h"
#include "receipt_files.h"
#include "transcript.h"

namespace virtual_printer {

using Status = std::vector<std::pair<std::string, std::string>>;

class Board {
 public:
  using Version = std::uint64_t;

  // Who nobody has told anything yet.
  static constexpr Version kNothing = 0;

  // Where the paper is cut into pictures that are sent anew when something is printed on them.
  static constexpr int kTileDots = 256;

  // By the printer's loop.
  void show_status(const Status& status);
  void add(const TranscriptEntry& entry);  // in place of the last, when that begins where it does
  void add_note(const std::string& kind, const std::string& hex, const std::string& words);
  void print(const DotImage& strip, int top, const std::string& text);  // rows from the upper edge
  void feed_to(int length);
  void deliver(RenderedReceipt receipt, PaperEnd end);
  void close();  // tells the watchers to go

  // What has changed since a version, as a JSON object, and the version of that; waits so long for
  // a change. Empty when there was none, nothing when the board is closed.
  struct News {
    Version version = kNothing;
    std::string json;
  };
  std::optional<News> news_since(Version seen, std::chrono::milliseconds patience) const;

  // Waits so long, or until the board is closed.
  void pause(std::chrono::milliseconds time) const;

  // PNGs: of a piece of the paper in the printer, and of a whole receipt. Nothing when there is no
  // such one, or no more.
  std::optional<std::string> tile(std::size_t paper, std::size_t index) const;
  std::optional<std::string> picture(std::size_t receipt) const;

 private:
  struct Record {
    Version version;
    std::optional<std::size_t> offset;  // of what was received
    std::string json;
  };
  struct Tile {
    Version version;
    DotImage dots;
  };
  struct Delivered {
    Version version;
    RenderedReceipt receipt;
    PaperEnd end;

    std::size_t size() const { return receipt.text.size() + receipt.picture.size(); }
  };

  Version change();
  void add_record(Record record);
  void forget_old_receipts();
  std::string status_json() const;
  std::string paper_json() const;
  std::string receipts_json(Version seen) const;
  std::string records_json(Version seen) const;
  std::string json_since(Version seen) const;

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  Version version_ = 1;
  bool closed_ = false;
  Status status_;
  Version status_version_ = 1;
  std::deque<Record> records_;
  std::size_t records_before_ = 0;  // no longer kept
  std::size_t paper_number_ = 1;
  Version paper_version_ = 1;
  int paper_length_ = 0;  // dots
  std::string paper_text_;
  std::vector<Tile> tiles_;
  std::map<std::size_t, Delivered> receipts_;  // by number
  std::size_t receipt_bytes_ = 0;
};

}  // namespace virtual_printer
