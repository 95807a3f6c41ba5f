// Sets commands into lines. Knows nothing of drawing; images, symbols and page mode will become
// further kinds of content beside the cells of a line.
#pragma once

#include <cstddef>
#include <cstdint>

#include "command.h"
#include "receipt.h"

namespace virtual_printer {

class Typesetter {
 public:
  // Carries out one command; those that do not concern the paper do nothing.
  void execute(const Command& command);

  // Characters that stand on the open line, not yet on paper.
  std::size_t open_characters() const { return open_.cells.size(); }

  bool has_fed() const { return paper_.length > 0; }
  bool has_ink() const;
  int length() const { return paper_.length; }

  // Hands over the printed paper and goes on with a fresh piece; the open line stays open.
  Receipt tear_off();

  // Puts an open line on paper, if there is one.
  void print_open_line();

 private:
  void add_character(std::uint8_t character, const Style& style);
  void add_tab();
  void align(Alignment alignment);
  void apply_print_mode(unsigned bits);
  void apply_character_size(unsigned sizes);
  void place_open_cells();
  void feed_line();

  Style style_;
  Alignment alignment_ = Alignment::kLeft;
  int line_spacing_ = kDefaultLineSpacing;
  int open_width_ = 0;  // units
  Line open_;
  Receipt paper_;

  static constexpr int kDefaultLineSpacing = 30 * kHalfDotsPerDot;  // six lines to the inch
};

}  // namespace virtual_printer
