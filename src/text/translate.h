// Text with escape sequences -> the printer's commands. Knows no port: settings and text in,
// bytes and columns out.
#pragma once

#include <cstdint>
#include <string_view>

#include "text/byte_buffer.h"

/// What the link's settings say about text.
struct TextSettings {
  int32_t line_chars;          ///< `RecLineChars`
  int32_t line_spacing;        ///< `RecLineSpacing`, in units of `map_mode`
  int32_t lines_to_paper_cut;  ///< `RecLinesToPaperCut`
  int32_t map_mode;            ///< `MapMode`
  bool rotated;                ///< `RotateCtrl` is not 0
};

/// The columns used, kept from call to call.
struct LineColumns {
  int32_t line_is_open;  ///< `SaveFlag`: 1 while text without a line end was printed
  int32_t current;       ///< `RecSidewaysCharsCur`: columns of that line
  int32_t widest;        ///< `RecSidewaysChars`: columns of the widest line so far
};

/// Appends the whole command stream for one call's text: reset, line spacing, translation.
/// Check `output.ok()` afterwards; `columns` hold the new count then.
void translate(std::string_view text, const TextSettings& settings, LineColumns& columns,
               ByteBuffer& output);
