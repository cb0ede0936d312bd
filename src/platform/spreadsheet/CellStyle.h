#pragma once

#include <optional>
#include <string>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

/// What a colour scheme asks for, as the wrapper's format operations take it one by one: font, colour, style,
/// underline and effects of the cell, the width of its column and the height of its row.
struct CellStyle {
  struct FontStyle {
    bool bold;
    bool italic;
  };

  std::string font_name;
  double font_size = 0.0;               ///< points
  int font_colour = 0;                  ///< palette index, 0 or the application's constant for automatic
  std::optional<FontStyle> font_style;  ///< nothing leaves the cell's
  Underline underline = Underline::kNone;
  bool strikethrough = false;
  bool superscript = false;
  bool subscript = false;
  double column_width = 0.0;  ///< characters
  double row_height = 0.0;    ///< points
};

}  // namespace excelexp
