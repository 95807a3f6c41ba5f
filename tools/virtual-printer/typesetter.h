// Sets commands into lines. Knows nothing of drawing; images, symbols and page mode will become
// further kinds of content beside the cells of a line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "command.h"
#include "receipt.h"

namespace virtual_printer {

class Typesetter {
 public:
  // Carries out one command; those that do not concern the paper do nothing.
  void execute(const Command& command);

  // Settings as at the start, the open line forgotten; what is on paper stays there.
  void reset();

  // A line of the printer's own, white on black: whatever the till's settings are, it stands out.
  void print_notice(std::string_view text);

  // Characters that stand on the open line, not yet on paper.
  std::size_t open_characters() const { return open_.cells.size(); }

  bool has_fed() const { return paper_.length > 0; }
  bool has_ink() const;
  int length() const { return paper_.length; }
  std::size_t printed_lines() const { return printed_lines_; }  // ever

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
  std::size_t printed_lines_ = 0;

  static constexpr int kDefaultLineSpacing = 30 * kHalfDotsPerDot;  // six lines to the inch
};

}  // namespace virtual_printer
