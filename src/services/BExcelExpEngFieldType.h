#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "engine/BExcelExpEngCore.h"
#include "platform/database/Query.h"
#include "platform/host/DateTime.h"

namespace excelexp {

/// Writes one database value into one cell of the current worksheet as its column type asks: numbers as
/// numbers, amounts in the context's number format, dates and times as text, a few coded columns as words.
class BExcelExpEngFieldType {
 public:
  explicit BExcelExpEngFieldType(BExcelExpEngCore* core) : core_(core) {}

  /// The value written last as a select-list item: the value, " AS ", the field's name. A quote inside a text
  /// value is not doubled. "" after OutputBlank and for a column type that is not known.
  std::string GetSelectList() const;

  /// Writes the field of the query's current row into the cell. `cell_name` names the same cell as row and
  /// column. 0 when reading or writing raised an error.
  int Output(const std::string& cell_name, const std::string& column_type, const std::string& field_name,
             const Query* source, int row, int column);

  /// Writes an empty value of the type; an amount becomes 0 when `zero_fill` is set. Always 1.
  int OutputBlank(const std::string& cell_name, const std::string& column_type, int row, int column,
                  bool zero_fill);

  /// "dd/mm/yyyy" for a moment at midnight, else "dd/mm/yyyy hh:nn:ss".
  std::string TimeStampDisplayFormat(DateTime value) const;

 private:
  void OutputValue(const std::string& cell_name, const std::string& column_type,
                   const std::string& field_name, const Field& field, int row, int column);
  void NoteWritten(std::string_view quote, std::variant<std::string, double> value,
                   const std::string& field_name);
  void WriteText(int row, int column, const std::string& text);
  void WriteNumber(int row, int column, double number);

  BExcelExpEngCore* core_;
  // What was written last. Hardly anybody asks for it, so it becomes a select-list item then.
  bool written_ = false;
  std::string_view written_quote_;
  std::variant<std::string, double> written_value_;
  std::string written_field_;
};

}  // namespace excelexp
