#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

/// What one format call asks for: a property of a cell's format set to a value, the rest left alone. Small
/// and comparable, so that a workbook can remember what a change makes of a format.
struct FormatChange {
  enum class Property : std::uint8_t {
    kFont,
    kColour,
    kStyle,
    kUnderline,
    kEffects,
    kNumberFormat,
    kWordWrap,
    kCentred,
    kAll,
  };

  static FormatChange Font(std::uint32_t name, double points);  ///< `name` from Workbook::InternName
  static FormatChange Colour(int palette_index);
  static FormatChange Style(bool bold, bool underline, bool italic);  ///< no underline: as it was
  static FormatChange Underlined(Underline kind);
  /// A font cannot be raised and lowered at once: subscript is set last and wins, as in the application.
  static FormatChange Effects(bool strikethrough, bool superscript, bool subscript);
  static FormatChange Number(std::uint32_t name);  ///< `name` from Workbook::InternName
  static FormatChange WordWrap(bool wrap) { return {Property::kWordWrap, 0, wrap}; }
  /// Several changes one after the other; `list` from Workbook::AddChanges.
  static FormatChange All(std::uint32_t list) { return {Property::kAll, list, 0}; }
  static FormatChange Centred(bool centred) { return {Property::kCentred, 0, centred}; }

  void Apply(CellFormat& format, const Workbook& workbook) const;
  std::size_t Hash() const {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;
    const std::uint64_t parts = static_cast<std::uint64_t>(value) * kOdd +
                                (std::uint64_t{name} << 8 | static_cast<std::uint64_t>(property));
    const std::uint64_t mixed = parts * kOdd;
    return mixed ^ mixed >> 32;
  }
  friend bool operator==(const FormatChange&, const FormatChange&) = default;

  Property property = Property::kFont;
  std::uint32_t name = 0;  ///< kFont, kNumberFormat: index of the name; kAll: of the list
  std::int64_t value = 0;  ///< a number, flags, or the bits of a size
};

}  // namespace excelexp
