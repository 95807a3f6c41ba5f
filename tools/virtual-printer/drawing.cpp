#include "drawing.h"

#include <algorithm>
#include <memory>

#include "code_page_437.h"
#include "glyphs.h"

namespace virtual_printer {
namespace {

// Just below the baseline, inside the descent of both fonts, and for all sizes on a line alike.
constexpr int kUnderlineDotsBelowBaseline = 2;

// A dot is burnt when the shape covers half of it or more.
constexpr unsigned char kHalfCovered = 0x80;

struct SurfaceDeleter {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDeleter {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};

int nearest_dot(int units) {
  return (units + kUnitsPerDot / 2) / kUnitsPerDot;
}

// Cells end where their neighbours begin, so that reversed ones join without a gap.
struct CellBox {
  int left, top, width, height;  // dots
  int baseline;
};

CellBox box_of(const Cell& cell, int baseline) {
  const int left = nearest_dot(cell.left);
  return {left, baseline - cell.ascent(), nearest_dot(cell.right()) - left,
          cell.ascent() + cell.descent(), baseline};
}

// One line on a canvas of its own: the canvas stays small however long the paper is.
class LineCanvas {
 public:
  LineCanvas(GlyphShapes& glyphs, const Line& line)
      : glyphs_(glyphs),
        line_(line),
        surface_(cairo_image_surface_create(CAIRO_FORMAT_A8, kPaperDots, line.height())),
        context_(cairo_create(surface_.get())) {}

  void draw() {
    for (const Cell& cell : line_.cells) draw_cell(cell);
    cairo_surface_flush(surface_.get());
  }

  void copy_to(DotImage& image, int top) const {
    const unsigned char* row = cairo_image_surface_get_data(surface_.get());
    const int stride = cairo_image_surface_get_stride(surface_.get());
    for (int y = 0; y < line_.height(); ++y, row += stride) {
      for (int x = 0; x < kPaperDots; ++x) {
        if (row[x] >= kHalfCovered) image.set_ink(x, top + y);
      }
    }
  }

 private:
  void draw_cell(const Cell& cell) {
    const CellBox box = box_of(cell, line_.ascent);
    cairo_save(context_.get());
    cairo_rectangle(context_.get(), box.left, box.top, box.width, box.height);
    cairo_clip(context_.get());
    if (cell.style.reverse) {
      cairo_paint(context_.get());
      cairo_set_operator(context_.get(), CAIRO_OPERATOR_CLEAR);
    }
    draw_glyph(cell, box);
    draw_underline(cell, box);
    cairo_restore(context_.get());
  }

  void draw_glyph(const Cell& cell, const CellBox& box) {
    const GlyphShape shape = glyphs_.shape_of(cell.character, cell.style.bold);
    const double width = static_cast<double>(cell.width()) / kUnitsPerDot;
    cairo_save(context_.get());
    cairo_translate(context_.get(), static_cast<double>(cell.left) / kUnitsPerDot, 0);
    if (fills_its_cell(cell.character)) {
      const double scale = box.height / (shape.block_ascent + shape.block_descent);
      cairo_translate(context_.get(), 0, box.top + shape.block_ascent * scale);
      cairo_scale(context_.get(), width / shape.advance, scale);
    } else {
      cairo_translate(context_.get(), 0, box.baseline);
      cairo_scale(context_.get(), width / shape.advance, height_scale(cell, shape));
    }
    glyphs_.fill(context_.get());
    cairo_restore(context_.get());
  }

  // Characters taller than the cell, such as capitals with accents, are pressed into it.
  static double height_scale(const Cell& cell, const GlyphShape& shape) {
    const double natural =
        metrics_of(cell.style.font).em_dots * cell.style.height_factor / shape.em;
    const double to_top = cell.ascent() / std::max(shape.ink_ascent, 1.0);
    const double to_bottom = cell.descent() / std::max(shape.ink_descent, 1.0);
    return std::min({natural, to_top, to_bottom});
  }

  void draw_underline(const Cell& cell, const CellBox& box) {
    cairo_rectangle(context_.get(), box.left, box.baseline + kUnderlineDotsBelowBaseline, box.width,
                    cell.style.underline_dots);
    cairo_fill(context_.get());
  }

  GlyphShapes& glyphs_;
  const Line& line_;
  std::unique_ptr<cairo_surface_t, SurfaceDeleter> surface_;
  std::unique_ptr<cairo_t, ContextDeleter> context_;
};

// What lies beyond the paper's right edge is lost.
void draw_picture(const Picture& picture, DotImage& image, int line_top) {
  const int left = nearest_dot(picture.left);
  const int width = std::min(picture.dots.width(), image.width() - left);
  for (int y = 0; y < picture.dots.height(); ++y) {
    for (int x = 0; x < width; ++x) {
      if (picture.dots.ink(x, y)) image.set_ink(left + x, line_top + picture.top + y);
    }
  }
}

}  // namespace

void draw_line(GlyphShapes& glyphs, const Line& line, DotImage& image, int top) {
  if (line.picture) draw_picture(*line.picture, image, top);
  if (line.cells.empty()) return;
  LineCanvas canvas(glyphs, line);
  canvas.draw();
  canvas.copy_to(image, top);
}

DotImage draw(const Receipt& receipt) {
  const int length = (receipt.length + 1) / kHalfDotsPerDot;
  DotImage image(kPaperDots, length + 2 * kPaperMarginDots);
  GlyphShapes glyphs;
  for (const Line& line : receipt.lines) {
    draw_line(glyphs, line, image, kPaperMarginDots + line.top / kHalfDotsPerDot);
  }
  return image;
}

}  // namespace virtual_printer
