#include "page.h"

#include <utility>

#include "drawing.h"
#include "hex.h"
#include "text_rendition.h"

namespace virtual_printer {

void Page::show_answer(std::string_view bytes) {
  constexpr std::size_t kMostShown = 12;
  transcript_.show_open_text();
  board_.add_note("answer", hex_of(bytes, kMostShown), "answer");
}

void Page::show_note(const std::string& words) {
  transcript_.show_open_text();
  board_.add_note("trouble", "", words);
}

void Page::show_paper(const Receipt& paper) {
  transcript_.show_open_text();
  for (; drawn_lines_ < paper.lines.size(); ++drawn_lines_) {
    const Line& line = paper.lines[drawn_lines_];
    DotImage strip(kPaperDots, line.height());
    draw_line(glyphs_, line, strip, 0);
    board_.print(strip, kPaperMarginDots + line.top / kHalfDotsPerDot, text_of(line));
  }
  board_.feed_to(kPaperMarginDots + paper.length / kHalfDotsPerDot);
}

void Page::show_receipt(RenderedReceipt receipt, PaperEnd end) {
  drawn_lines_ = 0;
  board_.deliver(std::move(receipt), end);
}

}  // namespace virtual_printer
