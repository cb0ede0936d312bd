#pragma once

#include <span>
#include <string>
#include <string_view>

#include "engine/BExcelExpEngCore.h"
#include "platform/database/Query.h"
#include "services/BExcelExpEngColorScheme.h"
#include "services/BExcelExpEngFieldType.h"
#include "services/DefinitionMemory.h"

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

  /// Chooses these schemes; false, logged, when they cannot be read or there are none.
  bool OpenSchemes(std::span<const std::string> ids, const OperationName& where);
  /// The scheme of an item and the worksheet's title scheme.
  bool OpenSchemes(const std::string& item_scheme, const OperationName& where);
  /// Those of an item again; the item keeps what the first time found.
  bool OpenSchemes(KnownColumnItem& item, const OperationName& where);
  /// The worksheet's title scheme alone.
  bool OpenTitleScheme(const OperationName& where);

  /// Formats the cell by one of the chosen schemes; false when the scheme is not there (logged as
  /// "Unable to locate Colour Scheme Record." unless `where` is empty) or the formatting fails.
  bool Format(const std::string& scheme_id, int row, int column, const OperationName& where);
  /// By the item's scheme; the item's are the chosen ones.
  bool Format(KnownColumnItem& item, int row, int column, const OperationName& where);
  bool FormatAsTitle(int row, int column, const OperationName& where);
  /// Formats by the first of the chosen schemes.
  bool FormatAsFirst(int row, int column, const OperationName& where);

  /// Writing beyond column 256 throws SpreadsheetError: there is no cell name to format by.
  void WriteText(int row, int column, const std::string& text);
  void WriteNumber(int row, int column, double number);
  void WriteAmount(int row, int column, double amount);
  void WriteAmountFormat(int row, int column);
  /// Where the style has a format for whole numbers.
  void WriteIntegerFormat(int row, int column, const ValueStyle& style);
  /// An empty formula (its decoding failed and said so) leaves an empty text.
  void WriteFormula(int row, int column, const std::string& formula);
  /// Repeats the formula of the cell to the left for this one.
  void RepeatFormula(int row, int column);
  /// A text in the title scheme.
  bool WriteTitle(int row, int column, const std::string& text, const OperationName& where);
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
  bool Recall(const std::string& question);
  bool Choose(const std::string& question, std::string sql, const OperationName& where);
  bool OpenChosen(const OperationName& where);
  bool ApplyKnown(const std::string& scheme_id, int row, int column);
  bool FormatByRow(const std::string& scheme_id, int row, int column);

  BExcelExpEngCore* core_;
  Query* colour_scheme_query_;
  BExcelExpEngColorScheme colour_scheme_;
  BExcelExpEngFieldType field_type_;
  std::shared_ptr<SchemeSet> chosen_;
};

}  // namespace excelexp
