#include "glyphs.h"

#include "code_page_437.h"

namespace virtual_printer {
namespace {

constexpr const char* kTypeface = "DejaVu Sans Mono";

// Large beside any cell, so that measures in whole units lose nothing.
constexpr double kEm = 256;

constexpr std::uint8_t kFullBlock = 0xDB;

// The same shapes at every size and on every screen: no fitting to somebody's pixels.
void use_exact_outlines(PangoContext* context) {
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(context, options);
  cairo_font_options_destroy(options);
  pango_context_set_round_glyph_positions(context, FALSE);
}

}  // namespace

GlyphShapes::GlyphShapes()
    : fonts_(pango_cairo_font_map_new()),
      context_(pango_font_map_create_context(fonts_.get())),
      layout_((use_exact_outlines(context_.get()), pango_layout_new(context_.get()))),
      font_(pango_font_description_from_string(kTypeface)) {
  pango_font_description_set_absolute_size(font_.get(), kEm * PANGO_SCALE);
}

PangoRectangle GlyphShapes::ink_of(std::uint8_t character, PangoRectangle* logical) const {
  pango_layout_set_text(layout_.get(), utf8_of_code_page_437(character).c_str(), -1);
  PangoRectangle ink;
  pango_layout_line_get_extents(pango_layout_get_line_readonly(layout_.get(), 0), &ink, logical);
  return ink;
}

GlyphShape GlyphShapes::shape_of(std::uint8_t character, bool bold) {
  pango_font_description_set_weight(font_.get(), bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  pango_layout_set_font_description(layout_.get(), font_.get());
  const PangoRectangle block = ink_of(kFullBlock, nullptr);
  PangoRectangle logical;
  const PangoRectangle ink = ink_of(character, &logical);
  return {kEm,
          pango_units_to_double(logical.width),
          pango_units_to_double(PANGO_ASCENT(ink)),
          pango_units_to_double(PANGO_DESCENT(ink)),
          pango_units_to_double(PANGO_ASCENT(block)),
          pango_units_to_double(PANGO_DESCENT(block))};
}

void GlyphShapes::fill(cairo_t* context) const {
  cairo_new_path(context);
  pango_cairo_layout_line_path(context, pango_layout_get_line_readonly(layout_.get(), 0));
  cairo_fill(context);
}

}  // namespace virtual_printer
