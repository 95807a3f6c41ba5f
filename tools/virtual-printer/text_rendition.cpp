#include "text_rendition.h"

#include <algorithm>

#include "code_page_437.h"

namespace virtual_printer {
namespace {

std::string text_of(const Line& line) {
  if (line.cells.empty()) return {};
  const bool all_font_b = std::all_of(line.cells.begin(), line.cells.end(),
                                      [](const Cell& cell) { return cell.style.font == Font::kB; });
  const int column = all_font_b ? kFontB.cell_units : kFontA.cell_units;
  std::string text(static_cast<std::size_t>(line.cells.front().left / column), ' ');
  for (const Cell& cell : line.cells) text += utf8_of_code_page_437(cell.character);
  return text;
}

}  // namespace

std::string text_of(const Receipt& receipt) {
  std::string text;
  for (const Line& line : receipt.lines) text += text_of(line) + '\n';
  return text;
}

}  // namespace virtual_printer
