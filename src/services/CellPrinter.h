#pragma once

#include <span>
#include <string>
#include <string_view>

#include "engine/BExcelExpEngCore.h"
#include "platform/database/Query.h"
#include "services/BExcelExpEngColorScheme.h"
#include "services/BExcelExpEngFieldType.h"

namespace excelexp {

/// How values of analysis records are shown; the defaults are those of most layouts.
struct ValueStyle {
  std::string_view integer_format;  ///< number format of whole numbers; "" leaves the cell's
  bool short_midnight = false;      ///< a timestamp at midnight shows its date only
};

/// The cell work that frames and layouts share: texts, formulas and analysis values in a colour scheme, with
/// the messages that go with it. `where` is always "Class::Operation" as the messages name it.
class CellPrinter {
 public:
  /// Neither is owned; `colour_scheme_query` is the owner's ColourSchemeQry.
  CellPrinter(BExcelExpEngCore* core, Query* colour_scheme_query);

  /// Opens the owner's query on these schemes; false, logged, when that fails or finds none.
  bool OpenSchemes(std::span<const std::string> ids, std::string_view where);
  /// On the scheme of an item and the worksheet's title scheme.
  bool OpenSchemes(const std::string& item_scheme, std::string_view where);
  /// On the worksheet's title scheme alone.
  bool OpenTitleScheme(std::string_view where);

  /// Formats the cell or block by a scheme of the open query; false when the scheme is not there (logged as
  /// "Unable to locate Colour Scheme Record." unless `where` is empty) or the formatting fails.
  bool Format(const std::string& scheme_id, const std::string& range, std::string_view where);
  bool FormatAsTitle(const std::string& range, std::string_view where);
  /// Formats by the row the query stands on.
  bool FormatAsCurrent(const std::string& range) { return colour_scheme_.FormatExcelCell(range) != 0; }

  /// Writing beyond column 256 throws SpreadsheetError: there is no cell name to format by.
  void WriteText(int row, int column, const std::string& text);
  void WriteNumber(int row, int column, const Variant& number);
  void WriteAmountFormat(const std::string& cell);
  /// Where the style has a format for whole numbers.
  void WriteIntegerFormat(const std::string& cell, const ValueStyle& style);
  /// An empty formula (its decoding failed and said so) leaves an empty text.
  void WriteFormula(int row, int column, const std::string& formula);
  /// A text in the title scheme.
  bool WriteTitle(int row, int column, const std::string& text, std::string_view where);
  /// Merges columns of one row, or a block of rows.
  void Merge(int first_row, int first_column, int last_row, int last_column);

  /// Writes a column of the query's current analysis record by its type.
  void WriteAnalysisValue(const Query& records, const std::string& column, std::string_view type, int row,
                          int col, const ValueStyle& style);

  /// Writes a field of the query's current row by its column type. A value that cannot be read leaves the
  /// cell empty and the user a warning that names field and cell.
  void WriteField(const std::string& type, const std::string& field, const Query& source, int row,
                  int column);

  BExcelExpEngFieldType& FieldType() { return field_type_; }

 private:
  void RequireColumn(int column) const;

  BExcelExpEngCore* core_;
  Query* colour_scheme_query_;
  BExcelExpEngColorScheme colour_scheme_;
  BExcelExpEngFieldType field_type_;
};

}  // namespace excelexp
