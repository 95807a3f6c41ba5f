// Sets commands into lines, on the paper or on a page that is still to be printed. Knows nothing of
// drawing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "command.h"
#include "receipt.h"
#include "symbol_setter.h"

namespace virtual_printer {

class Typesetter {
 public:
  // Carries out one command; those that do not concern the paper do nothing. Throws Refused for
  // what cannot be printed, when all that can be is.
  void execute(const Command& command);

  // A picture of the printer's own, where the till has one printed.
  void print_picture(DotImage dots, const std::string& name);

  // Settings as at the start, the open line forgotten; what is on paper stays there.
  void reset();

  // A line of the printer's own, white on black: whatever the till's settings are, it stands out.
  void print_notice(std::string_view text);

  // Characters and pictures that stand on the open line or on a page, not yet on paper.
  std::size_t unprinted() const;

  bool has_fed() const { return paper_.length > 0; }
  bool has_ink() const;
  int length() const { return paper_.length; }
  const Receipt& paper() const { return paper_; }
  std::size_t printed_lines() const { return printed_lines_; }  // ever

  // Hands over the printed paper and goes on with a fresh piece; the open line stays open.
  Receipt tear_off();

  // Puts an open line on paper, if there is one.
  void print_open_line();

 private:
  bool execute_picture(const Command& command);
  bool execute_page(const Command& command);
  void add_character(std::uint8_t character, const Style& style);
  void add_tab();
  void align(Alignment alignment);
  void apply_print_mode(unsigned bits);
  void apply_character_size(unsigned sizes);

  void print_symbol(Symbol symbol);
  int left_of_next(int width_dots);  // picture; units
  void put_and_feed(Line line);

  void begin_page();
  void print_page();
  void leave_page();
  void move_down_to(int dots);

  Receipt& sheet() { return page_ ? *page_ : paper_; }
  int shift_for(int width) const;
  void go_to_position();
  void place_open_cells();
  void end_open_line();
  void put(Line line);
  void feed(int half_dots);
  void feed_line();

  Style style_;
  Alignment alignment_ = Alignment::kLeft;
  int line_spacing_ = kDefaultLineSpacing;
  SymbolSetter symbols_;
  std::string downloaded_image_;  // as it came; empty: none
  int open_width_ = 0;            // units
  std::optional<int> position_;   // of the next item, in units, where the till has set it
  bool open_is_positioned_ = false;
  Line open_;
  std::optional<Receipt> page_;  // its length is how far down the next line stands
  std::size_t lines_beyond_page_ = 0;
  Receipt paper_;
  std::size_t printed_lines_ = 0;

  static constexpr int kDefaultLineSpacing = 30 * kHalfDotsPerDot;  // six lines to the inch
};

}  // namespace virtual_printer
