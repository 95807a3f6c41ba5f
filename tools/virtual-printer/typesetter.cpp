#include "typesetter.h"

#include <algorithm>
#include <utility>

namespace virtual_printer {
namespace {

constexpr unsigned kModeFontB = 0x01;
constexpr unsigned kModeEmphasised = 0x08;
constexpr unsigned kModeDoubleHeight = 0x10;
constexpr unsigned kModeDoubleWidth = 0x20;
constexpr unsigned kModeUnderline = 0x80;

constexpr unsigned kSizeMask = 0x07;
constexpr unsigned kSizeWidthShift = 4;

constexpr int kTabColumns = 8;
constexpr std::uint8_t kBlank = ' ';

}  // namespace

void Typesetter::execute(const Command& command) {
  switch (command.kind) {
    case CommandKind::kText:
      return add_character(command.argument, style_);
    case CommandKind::kLineFeed:
      return feed_line();
    case CommandKind::kTab:
      return add_tab();
    case CommandKind::kInitialize:
      return reset();
    case CommandKind::kNotice:
      return print_notice(command.data);
    case CommandKind::kEmphasis:
      style_.bold = command.argument != 0;
      return;
    case CommandKind::kUnderline:
      style_.underline_dots = command.argument;
      return;
    case CommandKind::kReverse:
      style_.reverse = command.argument != 0;
      return;
    case CommandKind::kAlignment:
      return align(static_cast<Alignment>(command.argument));
    case CommandKind::kPrintMode:
      return apply_print_mode(command.argument);
    case CommandKind::kCharacterSize:
      return apply_character_size(command.argument);
    case CommandKind::kLineSpacing:
      line_spacing_ = command.argument;
      return;
    case CommandKind::kDefaultLineSpacing:
      line_spacing_ = kDefaultLineSpacing;
      return;
    case CommandKind::kPartialCut:
    case CommandKind::kFullCut:
      return print_open_line();
    case CommandKind::kCarriageReturn:  // the line feed alone ends a line
    case CommandKind::kColour:          // the paper knows one colour
    default:                            // what concerns the printer, not the paper
      return;
  }
}

void Typesetter::reset() {
  Typesetter fresh;
  fresh.paper_ = tear_off();
  fresh.printed_lines_ = printed_lines_;
  *this = std::move(fresh);
}

void Typesetter::print_notice(std::string_view text) {
  print_open_line();
  Style style;
  style.reverse = true;
  for (const char character : text) add_character(static_cast<std::uint8_t>(character), style);
  feed_line();
}

bool Typesetter::has_ink() const {
  return std::any_of(paper_.lines.begin(), paper_.lines.end(),
                     [](const Line& line) { return !line.cells.empty(); });
}

Receipt Typesetter::tear_off() {
  return std::exchange(paper_, Receipt());
}

void Typesetter::print_open_line() {
  if (!open_.cells.empty()) feed_line();
}

// A full line is printed by the character that no longer fits, not by the one that filled it:
// 42 characters and a line feed are one line, not two.
void Typesetter::add_character(std::uint8_t character, const Style& style) {
  Cell cell{character, style, open_width_};
  if (cell.right() > kPaperUnits) {
    feed_line();
    cell.left = 0;
  }
  open_width_ = cell.right();
  open_.cells.push_back(cell);
}

void Typesetter::add_tab() {
  Style blank = style_;
  blank.underline_dots = 0;
  blank.reverse = false;
  blank.width_factor = 1;
  const int stop = kTabColumns * metrics_of(blank.font).cell_units;
  const int target = std::min((open_width_ / stop + 1) * stop, kPaperUnits);
  while (open_width_ + metrics_of(blank.font).cell_units <= target) add_character(kBlank, blank);
}

// Printed text cannot move any more: in the middle of a line the command has no effect.
void Typesetter::align(Alignment alignment) {
  if (open_.cells.empty()) alignment_ = alignment;
}

void Typesetter::apply_print_mode(unsigned bits) {
  style_.font = (bits & kModeFontB) != 0 ? Font::kB : Font::kA;
  style_.bold = (bits & kModeEmphasised) != 0;
  style_.height_factor = (bits & kModeDoubleHeight) != 0 ? 2 : 1;
  style_.width_factor = (bits & kModeDoubleWidth) != 0 ? 2 : 1;
  style_.underline_dots = (bits & kModeUnderline) != 0 ? 1 : 0;
}

void Typesetter::apply_character_size(unsigned sizes) {
  style_.width_factor = static_cast<int>((sizes >> kSizeWidthShift) & kSizeMask) + 1;
  style_.height_factor = static_cast<int>(sizes & kSizeMask) + 1;
}

void Typesetter::place_open_cells() {
  const int space = kPaperUnits - open_width_;
  const int shift = alignment_ == Alignment::kLeft     ? 0
                    : alignment_ == Alignment::kCentre ? space / 2
                                                       : space;
  for (Cell& cell : open_.cells) {
    cell.left += shift;
    open_.ascent = std::max(open_.ascent, cell.ascent());
    open_.descent = std::max(open_.descent, cell.descent());
  }
}

void Typesetter::feed_line() {
  place_open_cells();
  open_.top = paper_.length;
  const int height = (open_.ascent + open_.descent) * kHalfDotsPerDot;
  paper_.length += std::max(line_spacing_, height);
  paper_.lines.push_back(std::exchange(open_, Line()));
  ++printed_lines_;
  open_width_ = 0;
}

}  // namespace virtual_printer
