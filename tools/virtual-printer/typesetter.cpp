#include "typesetter.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "bit_image.h"
#include "command_argument.h"

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

constexpr int kLongestPageHalfDots = kLongestPage * kHalfDotsPerDot;

int bottom_of(const Line& line) {
  return line.top + line.height() * kHalfDotsPerDot;
}

std::string size_of(const DotImage& dots) {
  return std::to_string(dots.width()) + " x " + std::to_string(dots.height());
}

int right_end_of(const std::vector<Cell>& cells) {
  return cells.empty() ? 0 : cells.back().right();
}

std::vector<Cell> cells_of(std::string_view text, Font font) {
  std::vector<Cell> cells;
  for (const char character : text) {
    cells.push_back(
        {static_cast<std::uint8_t>(character), Style{.font = font}, right_end_of(cells)});
  }
  return cells;
}

// The characters of a symbol stand in the middle of it, as far as the paper lets them.
std::vector<Cell> cells_beside(const Picture& symbol, const std::string& text, Font font) {
  std::vector<Cell> cells = cells_of(text, font);
  if (right_end_of(cells) > kPaperUnits) cells = cells_of(text, Font::kB);
  const int width = right_end_of(cells);
  const int centred = symbol.left + (symbol.dots.width() * kUnitsPerDot - width) / 2;
  const int left = std::clamp(centred, 0, std::max(kPaperUnits - width, 0));
  for (Cell& cell : cells) cell.left += left;
  return cells;
}

// Above the bars or below them; the line's baseline is that of the text.
void add_text(Line& line, const std::string& text, const SymbolText& setting) {
  line.cells = cells_beside(*line.picture, text, setting.font);
  if (line.cells.empty()) return;
  const Cell& cell = line.cells.front();
  const int bars = line.picture->dots.height();
  const bool above = setting.place == SymbolText::kAbove;
  line.ascent = cell.ascent() + (above ? 0 : bars);
  line.descent = cell.descent() + (above ? bars : 0);
  line.picture->top = above ? cell.ascent() + cell.descent() : 0;
}

// Lines that stand beside each other on a page are one to the reader.
bool are_beside(const Line& left, const Line& right) {
  return left.top == right.top && !left.picture && !right.picture && left.ascent == right.ascent &&
         left.descent == right.descent;
}

std::vector<Line> in_reading_order(std::vector<Line> lines) {
  std::stable_sort(lines.begin(), lines.end(), [](const Line& one, const Line& other) {
    const auto left_of = [](const Line& line) {
      return line.picture ? line.picture->left : line.cells.front().left;
    };
    return std::make_tuple(one.top, left_of(one)) < std::make_tuple(other.top, left_of(other));
  });
  std::vector<Line> ordered;
  for (Line& line : lines) {
    if (!ordered.empty() && are_beside(ordered.back(), line)) {
      std::vector<Cell>& cells = ordered.back().cells;
      cells.insert(cells.end(), line.cells.begin(), line.cells.end());
    } else {
      ordered.push_back(std::move(line));
    }
  }
  return ordered;
}

}  // namespace

void Typesetter::execute(const Command& command) {
  if (symbols_.take(command) || execute_picture(command) || execute_page(command)) return;
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

bool Typesetter::execute_picture(const Command& command) {
  switch (command.kind) {
    case CommandKind::kLinearSymbol:
    case CommandKind::kPrintPdf417:
    case CommandKind::kPrintQrCode:
      print_symbol(symbols_.symbol_for(command));
      return true;
    case CommandKind::kDownloadImage:
      downloaded_image_ = command.data;
      return true;
    case CommandKind::kPrintDownloaded:
      if (downloaded_image_.empty()) throw Refused("picture: none is downloaded");
      print_picture(enlarged(image_in(downloaded_image_), command.argument), "picture");
      return true;
    default:
      return false;
  }
}

bool Typesetter::execute_page(const Command& command) {
  switch (command.kind) {
    case CommandKind::kPageMode:
      begin_page();
      return true;
    case CommandKind::kPrintPage:
      print_page();
      return true;
    case CommandKind::kStandardMode:
      leave_page();
      return true;
    case CommandKind::kPositionX:
      position_ = static_cast<int>(number_of(command.data)) * kUnitsPerDot;
      return true;
    case CommandKind::kPositionY:
      move_down_to(static_cast<int>(number_of(command.data)));
      return true;
    default:
      return false;
  }
}

void Typesetter::reset() {
  Typesetter fresh;
  fresh.paper_ = tear_off();
  fresh.printed_lines_ = printed_lines_;
  *this = std::move(fresh);
}

void Typesetter::print_notice(std::string_view text) {
  end_open_line();
  Style style;
  style.reverse = true;
  for (const char character : text) add_character(static_cast<std::uint8_t>(character), style);
  feed_line();
}

std::size_t Typesetter::unprinted() const {
  std::size_t count = open_.cells.size() + lines_beyond_page_;
  if (!page_) return count;
  for (const Line& line : page_->lines) count += line.picture ? 1 : line.cells.size();
  return count;
}

bool Typesetter::has_ink() const {
  return std::any_of(paper_.lines.begin(), paper_.lines.end(),
                     [](const Line& line) { return !line.is_blank(); });
}

Receipt Typesetter::tear_off() {
  return std::exchange(paper_, Receipt());
}

void Typesetter::print_open_line() {
  if (!page_) end_open_line();
}

// A full line is printed by the character that no longer fits, not by the one that filled it:
// 42 characters and a line feed are one line, not two.
void Typesetter::add_character(std::uint8_t character, const Style& style) {
  go_to_position();
  Cell cell{character, style, open_width_};
  if (cell.right() > kPaperUnits) {
    end_open_line();
    cell.left = 0;
  }
  open_width_ = cell.right();
  open_.cells.push_back(cell);
}

void Typesetter::add_tab() {
  go_to_position();
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

void Typesetter::print_picture(DotImage dots, const std::string& name) {
  const std::string caption = name + ' ' + size_of(dots);
  if (dots.height() > kLongestPage) throw Refused(caption + ": too long");
  Line line;
  line.descent = dots.height();
  const int left = left_of_next(dots.width());
  line.picture = Picture{std::move(dots), caption, left};
  put_and_feed(std::move(line));
}

// Half a symbol is none, so one that the paper's edge would cut is not printed.
void Typesetter::print_symbol(Symbol symbol) {
  const int left = left_of_next(symbol.dots.width());
  if (left + symbol.dots.width() * kUnitsPerDot > kPaperUnits) {
    throw Refused(symbol.caption + ": reaches beyond the paper");
  }
  Line line;
  line.picture = Picture{std::move(symbol.dots), std::move(symbol.caption), left};
  line.descent = line.picture->dots.height();
  const SymbolText& text = symbols_.text();
  if (text.place != SymbolText::kNowhere) add_text(line, symbol.text, text);
  put_and_feed(std::move(line));
}

// Pictures stand on lines of their own; what follows stands right below them.
int Typesetter::left_of_next(int width_dots) {
  const auto position = std::exchange(position_, std::nullopt);
  end_open_line();
  return position.value_or(page_ ? 0 : shift_for(width_dots * kUnitsPerDot));
}

void Typesetter::put_and_feed(Line line) {
  const int height = line.height() * kHalfDotsPerDot;
  put(std::move(line));
  feed(height);
}

void Typesetter::begin_page() {
  if (page_) return;
  end_open_line();
  page_.emplace();
}

// The paper is fed as far as the page has something on it, and the page is blank again.
void Typesetter::print_page() {
  if (!page_) return;
  end_open_line();
  Receipt page = std::exchange(*page_, Receipt());
  int length = 0;
  for (Line& line : in_reading_order(std::move(page.lines))) {
    length = std::max(length, bottom_of(line));
    line.top += paper_.length;
    paper_.lines.push_back(std::move(line));
    ++printed_lines_;
  }
  paper_.length += length;
  const std::size_t beyond = std::exchange(lines_beyond_page_, 0);
  if (beyond > 0) throw Refused("lines beyond the end of the page: " + std::to_string(beyond));
}

void Typesetter::leave_page() {
  if (!page_) return;
  page_.reset();
  lines_beyond_page_ = 0;
  open_ = Line();
  open_width_ = 0;
  position_.reset();
}

// The paper cannot go back, so on it the command has no effect.
void Typesetter::move_down_to(int dots) {
  if (!page_) return;
  const auto position = position_;
  end_open_line();
  position_ = position;
  page_->length = std::min(dots, kLongestPage) * kHalfDotsPerDot;
}

int Typesetter::shift_for(int width) const {
  const int space = std::max(kPaperUnits - width, 0);
  return alignment_ == Alignment::kLeft ? 0 : alignment_ == Alignment::kCentre ? space / 2 : space;
}

void Typesetter::go_to_position() {
  if (!position_) return;
  open_width_ = *std::exchange(position_, std::nullopt);
  open_is_positioned_ = true;
}

void Typesetter::place_open_cells() {
  const int shift = open_is_positioned_ || page_ ? 0 : shift_for(open_width_);
  for (Cell& cell : open_.cells) {
    cell.left += shift;
    open_.ascent = std::max(open_.ascent, cell.ascent());
    open_.descent = std::max(open_.descent, cell.descent());
  }
}

void Typesetter::end_open_line() {
  if (!open_.cells.empty()) feed_line();
}

// On a page a blank line is nothing; on paper it is a feed that counts.
void Typesetter::put(Line line) {
  line.top = sheet().length;
  if (!page_) {
    ++printed_lines_;
  } else if (line.is_blank()) {
    return;
  } else if (bottom_of(line) > kLongestPageHalfDots) {
    ++lines_beyond_page_;
    return;
  }
  sheet().lines.push_back(std::move(line));
}

void Typesetter::feed(int half_dots) {
  sheet().length += half_dots;
  if (page_) page_->length = std::min(page_->length, kLongestPageHalfDots);
}

void Typesetter::feed_line() {
  place_open_cells();
  Line line = std::exchange(open_, Line());
  open_width_ = 0;
  open_is_positioned_ = false;
  position_.reset();
  const int height = line.height() * kHalfDotsPerDot;
  put(std::move(line));
  feed(std::max(line_spacing_, height));
}

}  // namespace virtual_printer
