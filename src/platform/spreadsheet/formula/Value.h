#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp::formula {

/// Thrown where a function or operator cannot give a value; becomes the error value of the call.
struct FormulaError {
  ErrorCode code;
};

/// Thrown where only the application knows the result; the whole formula gets FormulaResult::kUnknown.
struct UnknownResult {};

/// A block of cells of one sheet.
struct Area {
  const Sheet* sheet;
  CellRange range;

  int Rows() const { return range.last_row - range.first_row + 1; }
  int Columns() const { return range.last_col - range.first_col + 1; }
  bool IsCell() const { return Rows() == 1 && Columns() == 1; }
};

enum class ValueType : std::uint8_t { kEmpty, kNumber, kText, kBoolean, kError, kReference, kArray };

struct Array;

/// What an expression gives.
struct Value {
  ValueType type = ValueType::kEmpty;
  ErrorCode error = ErrorCode::kNull;
  double number = 0.0;  ///< kNumber; 0 or 1 for kBoolean
  std::string text;
  std::vector<Area> areas;             ///< kReference: more than one for a union
  std::shared_ptr<const Array> array;  ///< kArray

  static Value Number(double number);
  static Value Text(std::string text);
  static Value Boolean(bool truth);
  static Value Error(ErrorCode code);
  static Value Reference(Area area);

  bool IsError() const { return type == ValueType::kError; }
  bool IsScalar() const { return type != ValueType::kReference && type != ValueType::kArray; }
};

/// A table of scalars, row by row.
struct Array {
  int rows = 0;
  int columns = 0;
  std::vector<Value> items;

  /// A single row or column repeats; beyond the last item stands #N/A.
  Value At(int row, int column) const;
};

// Conversions of scalars as arithmetic and functions make them. Each throws FormulaError: the error that the
// value holds, or #VALUE! for a text that is none of what is asked for. An empty cell is 0, "" and FALSE.
double NumberOf(const Value& value);
std::string TextOf(const Value& value);
bool LogicalOf(const Value& value);

/// Below 0, 0 or above 0 as the application orders scalars that are no errors: numbers before texts before
/// logical values; texts without regard to case; an empty cell like 0, "" or FALSE, whatever stands opposite.
int Compare(const Value& left, const Value& right);

/// A number as text where no format is given (15 digits). Throws UnknownResult for numbers that the
/// applications write differently: 1E15 and more, and below 1E-5.
std::string NumberText(double number);

/// Reads a number as people type it: "1,234.5", "$5", "(5)", "5%", "1E3", "2024-02-29", "12:30". Nothing for
/// a text that is none; throws UnknownResult for one that may be a date in the application's language.
std::optional<double> ReadNumber(std::string_view text);

}  // namespace excelexp::formula
