#include "text_rendition.h"

#include <algorithm>

#include "code_page_437.h"

namespace virtual_printer {
namespace {

std::string text_of_cells(const std::vector<Cell>& cells) {
  const bool all_font_b = std::all_of(cells.begin(), cells.end(),
                                      [](const Cell& cell) { return cell.style.font == Font::kB; });
  const int column = all_font_b ? kFontB.cell_units : kFontA.cell_units;
  std::string text;
  int end = 0;
  for (const Cell& cell : cells) {
    text += std::string(static_cast<std::size_t>(std::max(cell.left - end, 0) / column), ' ');
    text += utf8_of_code_page_437(cell.character);
    end = cell.right();
  }
  return text;
}

}  // namespace

std::string text_of(const Line& line) {
  return line.picture ? '[' + line.picture->caption + ']' : text_of_cells(line.cells);
}

std::string text_of(const Receipt& receipt) {
  std::string text;
  for (const Line& line : receipt.lines) text += text_of(line) + '\n';
  return text;
}

}  // namespace virtual_printer
