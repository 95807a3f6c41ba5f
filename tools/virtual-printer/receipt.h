// Printed paper, before it is drawn: lines of styled cells and pictures at exact positions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dot_image.h"

namespace virtual_printer {

// Horizontal positions count 1/21 dot: then a line of 640 dots divides evenly into 42 cells of
// font A and into 56 of font B, and no rounding adds up along a line.
inline constexpr int kUnitsPerDot = 21;
inline constexpr int kPaperDots = 640;
inline constexpr int kPaperUnits = kPaperDots * kUnitsPerDot;

// Vertical positions count half dots, the unit of the line spacing command.
inline constexpr int kHalfDotsPerDot = 2;

// No page and no picture is longer, in dots.
inline constexpr int kLongestPage = 2304;

enum class Font : std::uint8_t { kA, kB };
enum class Alignment : std::uint8_t { kLeft, kCentre, kRight };

struct FontMetrics {
  int cell_units;    // width
  int ascent_dots;   // rows above the baseline
  int descent_dots;  // rows below it
  int em_dots;       // size of the type within the cell
};

// The ascents and descents keep their order at every size, so on a line with its baselines
// aligned no cell reaches beyond the tallest one.
inline constexpr FontMetrics kFontA{kPaperUnits / 42, 18, 6, 22};
inline constexpr FontMetrics kFontB{kPaperUnits / 56, 13, 4, 16};

constexpr const FontMetrics& metrics_of(Font font) {
  return font == Font::kA ? kFontA : kFontB;
}

struct Style {
  Font font = Font::kA;
  bool bold = false;
  bool reverse = false;
  int underline_dots = 0;
  int width_factor = 1;
  int height_factor = 1;

  bool operator==(const Style&) const = default;
};

struct Cell {
  std::uint8_t character = 0;  // code page 437
  Style style;
  int left = 0;  // units from the paper's left edge

  int width() const { return metrics_of(style.font).cell_units * style.width_factor; }
  int right() const { return left + width(); }
  int ascent() const { return metrics_of(style.font).ascent_dots * style.height_factor; }
  int descent() const { return metrics_of(style.font).descent_dots * style.height_factor; }
};

// Dots that stand on a line as they are, be they a symbol's or a picture's.
struct Picture {
  DotImage dots;
  std::string caption;  // what it is, for people
  int left = 0;         // units from the paper's left edge
  int top = 0;          // dots from the line's top
};

struct Line {
  std::vector<Cell> cells;
  std::optional<Picture> picture;
  int top = 0;      // half dots from the paper's top edge
  int ascent = 0;   // dots above the baseline of the cells, up to the tallest content's top
  int descent = 0;  // dots below it

  bool is_blank() const { return cells.empty() && !picture; }
  int height() const { return ascent + descent; }
};

struct Receipt {
  std::vector<Line> lines;  // an empty line is a bare feed
  int length = 0;           // half dots
};

}  // namespace virtual_printer
