#include "text/translate.h"

#include <algorithm>

#include "dispatch/bytes.h"
#include "text/alignment.h"
#include "text/escapes.h"
#include "text/units.h"

namespace {

using namespace std::string_view_literals;

// Escapes are octal: a hexadecimal one would swallow the letters that follow it.
constexpr std::string_view kSelectPrintMode = "\033!"sv;  // ESC ! n
constexpr std::string_view kSetLineSpacing = "\0333"sv;   // ESC 3 n
constexpr std::string_view kDefaultLineSpacing = "\0333<"sv;
constexpr std::string_view kEmphasisOn = "\033E1"sv;
constexpr std::string_view kEmphasisAndUnderlineOff = "\033E0\033-0"sv;
constexpr std::string_view kUnderlineSingle = "\033-1"sv;
constexpr std::string_view kUnderlineDouble = "\033-2"sv;
constexpr std::string_view kReverseOn = "\035B\001"sv;
constexpr std::string_view kCut = "\033m"sv;

constexpr char kLineFeed = '\n';
constexpr char kCarriageReturn = '\r';

// Bits of the ESC ! argument.
constexpr uint8_t kModeBase = 0x40;
constexpr uint8_t kSmallFont = 0x01;
constexpr uint8_t kEmphasised = 0x08;
constexpr uint8_t kDoubleHeight = 0x10;
constexpr uint8_t kDoubleWidth = 0x20;
constexpr uint8_t kDoubleBoth = kDoubleHeight | kDoubleWidth;

// Steps of the two nibbles of a character size.
constexpr uint8_t kWidthStep = 0x10;
constexpr uint8_t kHeightStep = 0x01;
constexpr uint8_t kWidthNibble = 0xf0;
constexpr uint8_t kHeightNibble = 0x0f;

constexpr int32_t kLargestSpacing = 255;
constexpr int32_t kFeedPiece = 50;  // dots fed by one line of a long unit feed

/// What the number of characters per line stands for.
struct LineFormat {
  std::string_view reset;
  int32_t line_chars;
  uint8_t print_mode;
};

// The resets select ESC ! 46 or 47 (hexadecimal) although the first mode sent later is built on
// 40 or 41: both are what the printers have always been sent.
constexpr LineFormat kLineFormats[] = {
    {"\033E0\033-0\033!F\035B0\033a0"sv, 42, kModeBase},
    {"\033E0\033-0\033!G\035B0\033a0"sv, 56, kModeBase | kSmallFont},
    {"\033E0\033-0\033!F\033r0\033a0"sv, 33, kModeBase},
    {"\033E0\033-0\033!G\033r0\033a0"sv, 40, kModeBase | kSmallFont},
};

// Another number of characters: no reset, and the state of 42.
constexpr LineFormat kUnknownFormat{"", 0, kModeBase};

const LineFormat& format_for(int32_t line_chars) {
  for (const LineFormat& format : kLineFormats) {
    if (format.line_chars == line_chars) return format;
  }
  return kUnknownFormat;
}

/// Finds the next byte of a kind; each byte of the text is looked at once, however often the next
/// one is asked for.
class NextByte {
 public:
  NextByte(std::string_view text, char byte) : text_(text), byte_(byte), at_(find(0)) {}

  /// Where it stands from an index on, which never goes back; the text's length when there is none.
  std::size_t from(std::size_t index) {
    if (at_ < index) at_ = find(index);
    return at_;
  }

 private:
  std::size_t find(std::size_t index) const {
    return std::min(text_.find(byte_, index), text_.size());
  }

  std::string_view text_;
  char byte_;
  std::size_t at_;
};

enum class Underline { off, single, twofold };

class Translator {
 public:
  Translator(std::string_view text, const TextSettings& settings, LineColumns& columns,
             ByteBuffer& output)
      : text_(text),
        settings_(settings),
        format_(format_for(settings.line_chars)),
        columns_(columns),
        output_(output),
        print_mode_(format_.print_mode) {}

  void run();

 private:
  void prologue();
  std::size_t next_sequence(std::size_t index);
  void plain(std::size_t start, std::size_t end);
  std::size_t next_line_end(std::size_t index) {
    return std::min(next_feed_.from(index), next_return_.from(index));
  }
  void end_line();
  void ordinary(std::size_t count);
  std::size_t sequence(std::size_t start);

  // Each executes one command letter; false: not recognised.
  bool execute(const EscapeSequence& sequence);
  bool align(const EscapeSequence& sequence);
  bool character(const EscapeSequence& sequence);
  bool feed(const EscapeSequence& sequence);
  bool paper(const EscapeSequence& sequence);

  bool size(int32_t number);
  void underline(int32_t number);
  void widen(int32_t factor);
  void heighten(int32_t factor);
  void scale(uint8_t kept_nibble, uint8_t other_double, uint8_t other_step, int32_t own);
  void normal();
  void unit_feed(int32_t number);

  void send_print_mode();
  void send_bare_print_mode();
  void send_size();
  void send_underline();
  void send_line_spacing(int32_t spacing);

  const std::string_view text_;
  NextByte next_escape_{text_, kEsc};
  NextByte next_feed_{text_, kLineFeed};
  NextByte next_return_{text_, kCarriageReturn};
  const TextSettings& settings_;
  const LineFormat& format_;
  LineColumns& columns_;
  ByteBuffer& output_;

  uint8_t print_mode_;     // the ESC ! argument
  uint8_t size_mode_ = 0;  // width factor - 1 and height factor - 1, a nibble each
  Underline underline_ = Underline::off;
  bool at_line_start_ = true;  // nothing printed and no alignment given on this line yet
  int32_t line_columns_ = 0;
  int32_t extra_columns_ = 0;  // columns that a character takes beyond its one
};

void Translator::run() {
  prologue();
  std::size_t start = 0;
  while (output_.ok()) {
    const std::size_t escape = next_sequence(start);
    plain(start, escape);
    if (escape == text_.size()) break;
    start = sequence(escape);
  }
  if (columns_.line_is_open == 1) columns_.current = line_columns_;
}

/// Where the next sequence starts. An ESC that starts none is a character like any other.
std::size_t Translator::next_sequence(std::size_t index) {
  for (;; ++index) {
    index = next_escape_.from(index);
    if (index == text_.size() || begins_with(rest_of(text_, index), kEscapeStart)) return index;
  }
}

void Translator::prologue() {
  output_.append(format_.reset);
  const int32_t dots = to_dots(settings_.line_spacing, settings_.map_mode);
  const int32_t spacing = std::min(add_wrapping(dots, dots), kLargestSpacing);
  if (!settings_.rotated) send_line_spacing(spacing);
  if (columns_.line_is_open == 0) {
    columns_.line_is_open = 1;
  } else if (columns_.line_is_open == 1) {
    line_columns_ = columns_.current;
  }
}

/// Text without sequences goes out as it stands; its lines are only counted.
void Translator::plain(std::size_t start, std::size_t end) {
  output_.append(first_of(rest_of(text_, start), end - start));
  std::size_t line_end = next_line_end(start);
  while (line_end < end) {
    ordinary(line_end - start);
    end_line();
    start = line_end + 1;
    line_end = next_line_end(start);
  }
  if (start < end) ordinary(end - start);
}

void Translator::end_line() {
  at_line_start_ = true;
  columns_.widest = std::max(columns_.widest, line_columns_);
  columns_.current = 0;
  columns_.line_is_open = 0;
  line_columns_ = 0;
  extra_columns_ = 0;
}

void Translator::ordinary(std::size_t count) {
  at_line_start_ = false;
  const auto columns = static_cast<uint32_t>(count) * static_cast<uint32_t>(extra_columns_ + 1);
  line_columns_ = add_wrapping(line_columns_, static_cast<int32_t>(columns));
}

/// Executes the sequence at `start` and returns where the text goes on. What is not recognised is
/// passed through: ESC '|' as it stands, and the rest as text.
std::size_t Translator::sequence(std::size_t start) {
  const EscapeSequence parsed = parse_escape(text_, start);
  if (execute(parsed)) return parsed.end;
  output_.append(kEscapeStart);
  return start + kEscapeStart.size();
}

bool Translator::execute(const EscapeSequence& sequence) {
  switch (sequence.command) {
    case 'A':
      return align(sequence);
    case 'C':
      return character(sequence);
    case 'F':
      return feed(sequence);
    case 'P':
      return paper(sequence);
    case 'N':
      normal();
      return true;
    case 'L':
      return "bst"sv.find(sequence.modifier) != std::string_view::npos;
    case 'T':
      return sequence.modifier == 'f';
    default:
      return false;
  }
}

bool Translator::align(const EscapeSequence& sequence) {
  if (sequence.modifier != 'c' && sequence.modifier != 'r') return false;
  // The printer aligns whole lines: once text stands on the line it is too late.
  if (at_line_start_) output_.append(sequence.modifier == 'c' ? kAlignCenter : kAlignRight);
  at_line_start_ = false;
  return true;
}

bool Translator::character(const EscapeSequence& sequence) {
  switch (sequence.modifier) {
    case 0:
      return size(sequence.number);
    case 'b':
      print_mode_ |= kEmphasised;
      output_.append(kEmphasisOn);
      return true;
    case 'u':
      underline(sequence.number);
      return true;
    case 'h':
      widen(sequence.number);
      return true;
    case 'v':
      heighten(sequence.number);
      return true;
    case 'r':
      if (sequence.reverse) output_.append(kReverseOn);
      return true;
    case 'i':
    case 's':
      return true;
    default:
      return false;
  }
}

bool Translator::feed(const EscapeSequence& sequence) {
  switch (sequence.modifier) {
    case 'l':
      output_.append(static_cast<std::size_t>(std::max(sequence.number, 1)), kLineFeed);
      return true;
    case 'u':
      if (!settings_.rotated) unit_feed(sequence.number);
      return true;
    case 'r':
      return true;
    default:
      return false;
  }
}

bool Translator::paper(const EscapeSequence& sequence) {
  switch (sequence.modifier) {
    case 'f':
      output_.append(static_cast<std::size_t>(std::max(settings_.lines_to_paper_cut, 0)),
                     kLineFeed);
      output_.append(kCut);
      return true;
    case 0:
      output_.append(kCut);
      return true;
    case 's':
      return true;
    default:
      return false;
  }
}

/// 1 normal, 2 double width, 3 double height, 4 both.
bool Translator::size(int32_t number) {
  constexpr uint8_t kModes[] = {0, kDoubleWidth, kDoubleHeight, kDoubleBoth};
  if (number < 1 || number > 4) return false;
  const uint8_t mode = kModes[number - 1];
  extra_columns_ = (mode & kDoubleWidth) != 0 ? 1 : 0;
  print_mode_ = static_cast<uint8_t>((print_mode_ & ~kDoubleBoth) | mode);
  send_print_mode();
  return true;
}

void Translator::underline(int32_t number) {
  underline_ = number == 2 ? Underline::twofold : Underline::single;
  send_underline();
}

void Translator::widen(int32_t factor) {
  if (factor < 1 || factor > 8) return;
  extra_columns_ = factor - 1;
  if (factor > 2) {
    scale(kHeightNibble, kDoubleHeight, kHeightStep, (factor - 1) * kWidthStep);
    return;
  }
  print_mode_ &= static_cast<uint8_t>(~kDoubleWidth);
  if (factor == 2) print_mode_ |= kDoubleWidth;
  if (factor == 2 && size_mode_ != 0) {
    size_mode_ = static_cast<uint8_t>(size_mode_ + kWidthStep);
    send_size();
    return;
  }
  // With underline on, double width goes out twice: receipts were laid out on that stream.
  if (factor == 2 && underline_ != Underline::off) send_bare_print_mode();
  send_print_mode();
}

void Translator::heighten(int32_t factor) {
  if (factor < 1 || factor > 8) return;
  extra_columns_ = 0;
  if (factor > 2) {
    scale(kWidthNibble, kDoubleWidth, kWidthStep, (factor - 1) * kHeightStep);
    return;
  }
  print_mode_ &= static_cast<uint8_t>(~kDoubleHeight);
  if (factor == 2) print_mode_ |= kDoubleHeight;
  send_print_mode();
}

/// Scales one direction by 3 to 8; a doubling of the other direction moves from the mode into the
/// character size.
void Translator::scale(uint8_t kept_nibble, uint8_t other_double, uint8_t other_step, int32_t own) {
  size_mode_ &= kept_nibble;
  if ((print_mode_ & other_double) != 0) size_mode_ = static_cast<uint8_t>(size_mode_ + other_step);
  print_mode_ &= static_cast<uint8_t>(~kDoubleBoth);
  size_mode_ = static_cast<uint8_t>(size_mode_ + own);
  send_size();
}

void Translator::normal() {
  if (at_line_start_) output_.append(kAlignLeft);
  output_.append(kEmphasisAndUnderlineOff);
  // Where the number of characters is unknown, mode and underline stay as they are.
  if (&format_ != &kUnknownFormat) {
    print_mode_ = format_.print_mode;
    underline_ = Underline::off;
  }
  send_bare_print_mode();
}

/// Feeds a length. Each line of a long feed doubles the spacing again and only its low byte is
/// sent: that is the stream that printers in the field get, and receipts are laid out for it.
void Translator::unit_feed(int32_t number) {
  const int32_t dots = to_dots(number, settings_.map_mode);
  int32_t spacing = add_wrapping(dots, dots);
  if (dots > kFeedPiece) {
    for (int32_t i = 0; i < dots / kFeedPiece && output_.ok(); ++i) {
      spacing = add_wrapping(spacing, spacing);
      if (spacing == 0) spacing = 1;
      send_line_spacing(spacing);
      output_.append(kLineFeed);
    }
    spacing = add_wrapping(spacing, spacing);
  }
  send_line_spacing(spacing);
  output_.append(kLineFeed);
  output_.append(kDefaultLineSpacing);
}

/// ESC ! clears the printer's underline, so it is sent again.
void Translator::send_print_mode() {
  send_bare_print_mode();
  send_underline();
}

void Translator::send_bare_print_mode() {
  output_.append(kSelectPrintMode);
  output_.append(static_cast<char>(print_mode_));
}

/// Scaled sizes go out with ESC ! like a mode, and without the underline: required of old.
void Translator::send_size() {
  output_.append(kSelectPrintMode);
  output_.append(static_cast<char>(size_mode_));
}

void Translator::send_underline() {
  if (underline_ == Underline::single) output_.append(kUnderlineSingle);
  if (underline_ == Underline::twofold) output_.append(kUnderlineDouble);
}

/// The low byte counts; a spacing of 0 would print lines over each other.
void Translator::send_line_spacing(int32_t spacing) {
  output_.append(kSetLineSpacing);
  output_.append(static_cast<char>(spacing == 0 ? 1 : spacing));
}

}  // namespace

void translate(std::string_view text, const TextSettings& settings, LineColumns& columns,
               ByteBuffer& output) {
  Translator(text, settings, columns, output).run();
}
