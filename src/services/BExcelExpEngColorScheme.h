#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/BExcelExpEngCore.h"
#include "platform/database/Query.h"
#include "platform/spreadsheet/CellStyle.h"

namespace excelexp {

/// Applies a stored colour scheme to a range. The owner opens the query on the schemes it needs (rows of
/// `ColourScheme` joined with `ColourCodeMapping`); the service moves it to a scheme and formats with the row
/// it stands on.
class BExcelExpEngColorScheme {
 public:
  /// Neither is owned; both outlive the object. `message_class` is the class that the messages name.
  BExcelExpEngColorScheme(BExcelExpEngCore* core, Query* colour_scheme_query,
                          std::string_view message_class = "BExcelExpEngColorScheme");

  /// Moves the query to the scheme; false (then do not format) when it has no such row.
  bool ColourSchRecLocate(const std::string& colour_scheme_id);

  /// Formats the range ("B7", "B7:D9") of the current worksheet by the current row; 0, with its entry in the
  /// internal log, when the underline keyword cannot be read. Replaces the result of the context's SQLQry.
  int FormatExcelCell(const std::string& range);

  /// What the current row asks for; nothing, with its entry in the internal log, when the underline keyword
  /// cannot be read. Replaces the result of the context's SQLQry.
  std::optional<CellStyle> StyleOfRow();

 private:
  BExcelExpEngCore* core_;
  Query* colour_scheme_query_;
  std::string message_class_;
};

}  // namespace excelexp
