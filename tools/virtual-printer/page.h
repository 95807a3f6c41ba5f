// The page as the printer's loop has it: what happens goes in here, and requests come out.
#pragma once

#include <string>
#include <string_view>

#include "board.h"
#include "glyphs.h"
#include "page_server.h"
#include "printer.h"
#include "request_queue.h"
#include "transcript.h"

namespace virtual_printer {

class Page {
 public:
  explicit Page(PageAddress address) : server_(board_, requests_, std::move(address)) {}

  std::string url() const { return server_.url(); }
  RequestQueue& requests() { return requests_; }

  void serve() { server_.serve(); }

  void show_decoded(const Decoded& decoded, Piece piece) { transcript_.take(decoded, piece); }
  void show_answer(std::string_view bytes);
  void show_note(const std::string& words);
  void show_status(const Status& status) { board_.show_status(status); }

  // What has been printed of it since the last time.
  void show_paper(const Receipt& paper);

  void show_receipt(RenderedReceipt receipt, PaperEnd end);

 private:
  Board board_;
  RequestQueue requests_;
  PageServer server_;
  Transcript transcript_{[this](const TranscriptEntry& entry) { board_.add(entry); }};
  GlyphShapes glyphs_;
  std::size_t drawn_lines_ = 0;
};

}  // namespace virtual_printer
