// The shapes of the printer's characters, from the type on this machine.
#pragma once

#include <pango/pangocairo.h>

#include <cstdint>
#include <memory>

namespace virtual_printer {

// Measures in a size of type of our own choosing (em); callers scale.
struct GlyphShape {
  double em;
  double advance;
  double ink_ascent;    // of this character, above the baseline
  double ink_descent;   // of this character, below it
  double block_ascent;  // of the full block, which says what a whole cell is
  double block_descent;
};

class GlyphShapes {
 public:
  GlyphShapes();

  GlyphShape shape_of(std::uint8_t character, bool bold);

  // Fills the character last asked for, its origin at the current origin.
  void fill(cairo_t* context) const;

 private:
  struct ObjectDeleter {
    void operator()(gpointer object) const { g_object_unref(object); }
  };
  struct FontDeleter {
    void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
  };

  PangoRectangle ink_of(std::uint8_t character, PangoRectangle* logical) const;

  std::unique_ptr<PangoFontMap, ObjectDeleter> fonts_;
  std::unique_ptr<PangoContext, ObjectDeleter> context_;
  std::unique_ptr<PangoLayout, ObjectDeleter> layout_;
  std::unique_ptr<PangoFontDescription, FontDeleter> font_;
};

}  // namespace virtual_printer
