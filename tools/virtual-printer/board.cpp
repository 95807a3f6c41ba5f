#include "board.h"

#include <utility>

#include "json.h"
#include "png.h"
#include "receipt.h"

namespace virtual_printer {
namespace {

constexpr std::size_t kMostRecords = 1000;
constexpr std::size_t kMostReceipts = 30;
constexpr std::size_t kMostReceiptBytes = std::size_t{8} * 1024 * 1024;
constexpr std::size_t kMostPaperText = 65536;

std::string named(std::string_view name, const std::string& json) {
  return '"' + std::string(name) + "\":" + json;
}

void add_to(std::string& list, const std::string& item) {
  list += (list.empty() ? "" : ",") + item;
}

}  // namespace

void Board::show_status(const Status& status) {
  const std::lock_guard lock(mutex_);
  if (status == status_) return;
  status_ = status;
  status_version_ = change();
}

// Later characters of a text do not make it another one.
void Board::add(const TranscriptEntry& entry) {
  const std::lock_guard lock(mutex_);
  const bool grown = !records_.empty() && records_.back().offset == entry.offset;
  if (grown) records_.pop_back();
  add_record({change(), entry.offset, json_of(entry)});
}

void Board::add_note(const std::string& kind, const std::string& hex, const std::string& words) {
  const std::lock_guard lock(mutex_);
  add_record({change(), std::nullopt,
              '{' + named("kind", json_string(kind)) + ',' + named("hex", json_string(hex)) + ',' +
                  named("words", json_string(words)) + '}'});
}

void Board::print(const DotImage& strip, int top, const std::string& text) {
  const std::lock_guard lock(mutex_);
  paper_version_ = change();
  for (int y = 0; y < strip.height(); ++y) {
    const auto index = static_cast<std::size_t>((top + y) / kTileDots);
    while (tiles_.size() <= index) tiles_.push_back({version_, DotImage(kPaperDots, kTileDots)});
    tiles_[index].version = version_;
    for (int x = 0; x < strip.width(); ++x) {
      if (strip.ink(x, y)) tiles_[index].dots.set_ink(x, (top + y) % kTileDots);
    }
  }
  paper_text_ += text + '\n';
  if (paper_text_.size() > kMostPaperText) paper_text_.erase(0, paper_text_.find('\n') + 1);
}

void Board::feed_to(int length) {
  const std::lock_guard lock(mutex_);
  if (length == paper_length_) return;
  paper_length_ = length;
  paper_version_ = change();
}

void Board::deliver(RenderedReceipt receipt, PaperEnd end) {
  const std::lock_guard lock(mutex_);
  const Delivered delivered{change(), std::move(receipt), end};
  receipt_bytes_ += delivered.size();
  receipts_.emplace(paper_number_, delivered);
  forget_old_receipts();
  ++paper_number_;
  paper_version_ = version_;
  paper_length_ = 0;
  paper_text_.clear();
  tiles_.clear();
}

void Board::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  changed_.notify_all();
}

std::optional<Board::News> Board::news_since(Version seen,
                                             std::chrono::milliseconds patience) const {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, patience, [&] { return version_ > seen || closed_; });
  if (closed_) return std::nullopt;
  return News{version_, version_ > seen ? json_since(seen) : ""};
}

void Board::pause(std::chrono::milliseconds time) const {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, time, [&] { return closed_; });
}

// Made into a PNG only when nobody waits for it any more.
std::optional<std::string> Board::tile(std::size_t paper, std::size_t index) const {
  std::unique_lock lock(mutex_);
  if (paper != paper_number_ || index >= tiles_.size()) return std::nullopt;
  const DotImage dots = tiles_[index].dots;
  lock.unlock();
  return png_of(dots);
}

std::optional<std::string> Board::picture(std::size_t receipt) const {
  const std::lock_guard lock(mutex_);
  const auto found = receipts_.find(receipt);
  if (found == receipts_.end()) return std::nullopt;
  return found->second.receipt.picture;
}

Board::Version Board::change() {
  changed_.notify_all();
  return ++version_;
}

void Board::add_record(Record record) {
  records_.push_back(std::move(record));
  if (records_.size() <= kMostRecords) return;
  records_.pop_front();
  ++records_before_;
}

// The newest stays, however long it is.
void Board::forget_old_receipts() {
  while (receipts_.size() > 1 &&
         (receipts_.size() > kMostReceipts || receipt_bytes_ > kMostReceiptBytes)) {
    receipt_bytes_ -= receipts_.begin()->second.size();
    receipts_.erase(receipts_.begin());
  }
}

std::string Board::status_json() const {
  std::string members;
  for (const auto& [name, value] : status_) add_to(members, named(name, json_string(value)));
  return '{' + members + '}';
}

std::string Board::paper_json() const {
  std::string versions;
  for (const Tile& tile : tiles_) add_to(versions, std::to_string(tile.version));
  return '{' + named("number", std::to_string(paper_number_)) + ',' +
         named("length", std::to_string(paper_length_)) + ',' +
         named("tiles", '[' + versions + ']') + ',' + named("text", json_string(paper_text_)) + '}';
}

std::string Board::receipts_json(Version seen) const {
  std::string list;
  for (const auto& [number, delivered] : receipts_) {
    if (delivered.version <= seen) continue;
    add_to(list, '{' + named("number", std::to_string(number)) + ',' +
                     named("cut", delivered.end == PaperEnd::kCut ? "true" : "false") + ',' +
                     named("height", std::to_string(delivered.receipt.height)) + ',' +
                     named("text", json_string(delivered.receipt.text)) + '}');
  }
  return '[' + list + ']';
}

// What is new stands at the end, behind what a watcher has from the number on that is told.
std::string Board::records_json(Version seen) const {
  std::string list;
  std::size_t first = records_.size();
  while (first > 0 && records_[first - 1].version > seen) --first;
  for (std::size_t i = first; i < records_.size(); ++i) add_to(list, records_[i].json);
  return '{' + named("from", std::to_string(records_before_ + first)) + ',' +
         named("entries", '[' + list + ']') + '}';
}

std::string Board::json_since(Version seen) const {
  std::string members = named("start", seen == kNothing ? "true" : "false");
  if (status_version_ > seen) add_to(members, named("status", status_json()));
  if (!receipts_.empty() && receipts_.rbegin()->second.version > seen) {
    add_to(members, named("receipts", receipts_json(seen)));
  }
  if (paper_version_ > seen) add_to(members, named("paper", paper_json()));
  if (!records_.empty() && records_.back().version > seen) {
    add_to(members, named("log", records_json(seen)));
  }
  return '{' + members + '}';
}

}  // namespace virtual_printer
