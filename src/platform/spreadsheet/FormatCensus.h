#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/InternPool.h"
#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

/// The number of a format code that means the same in every language version of the application; nothing for
/// a format that a file must define.
std::optional<int> BuiltInNumberFormat(std::string_view code);

/// What a file has to define for the formats that its cells really use: each distinct cell format, font and
/// number format once, in the order of first use. A workbook also keeps formats that cells only passed
/// through; they count for nothing.
class FormatCensus {
 public:
  static constexpr std::uint32_t kUnused = UINT32_MAX;

  /// The default format is always used and stands first; its font comes with its bold, italic and bold italic
  /// twins, the first four fonts of every .xls file.
  explicit FormatCensus(const Workbook& workbook);

  /// Whether the format was new.
  bool Add(FormatId id) {
    if (index_[id] != kUnused) return false;
    AddNew(id);
    return true;
  }
  void AddAll();  ///< every cell of every sheet

  struct Entry {
    FormatId id;
    std::uint32_t font;  ///< index into Fonts()
    int number_format;   ///< built-in number, or kFirstCustom + index into NumberFormats()
  };
  static constexpr int kFirstCustom = 164;  ///< [MS-XLS] 2.4.126 Format: custom formats start here

  const std::vector<Entry>& Entries() const { return entries_; }
  /// Index into Entries().
  std::uint32_t IndexOf(FormatId id) const { return index_[id]; }

  /// Fonts are formats with everything but the font left at the default.
  const InternPool<CellFormat, CellFormatHash>& Fonts() const { return fonts_; }
  const InternPool<std::string, TextHash>& NumberFormats() const { return number_formats_; }

 private:
  void AddNew(FormatId id);

  const Workbook& workbook_;
  std::vector<Entry> entries_;
  std::vector<std::uint32_t> index_;  ///< by format id
  InternPool<CellFormat, CellFormatHash> fonts_;
  InternPool<std::string, TextHash> number_formats_;
};

}  // namespace excelexp
