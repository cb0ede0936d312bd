#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
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
  const Sheet* sheet = nullptr;
  CellRange range;

  int Rows() const { return range.last_row - range.first_row + 1; }
  int Columns() const { return range.last_col - range.first_col + 1; }
  bool IsCell() const { return Rows() == 1 && Columns() == 1; }
};

enum class ValueType : std::uint8_t { kEmpty, kNumber, kText, kBoolean, kError, kReference, kArray };

struct Storage;
struct Array;

/// What an expression gives. Most values own no memory: a text is the workbook's or the expression's, and a
/// reference is one area.
struct Value {
  ValueType type = ValueType::kEmpty;
  ErrorCode error = ErrorCode::kNull;
  double number = 0.0;                     ///< kNumber; 0 or 1 for kBoolean
  std::string_view text;                   ///< kText
  Area area;                               ///< kReference, unless `storage` has several
  std::shared_ptr<const Storage> storage;  ///< what had to be kept: a computed text, a union, an array

  static Value Number(double number);
  /// A text that was computed.
  static Value Text(std::string text);
  /// A text that lives longer than the value.
  static Value LastingText(std::string_view text);
  static Value Boolean(bool truth);
  static Value Error(ErrorCode code);
  static Value Reference(const Area& area);
  /// A reference to one or more areas.
  static Value Union(std::vector<Area> areas);
  static Value Table(Array array);

  bool IsError() const { return type == ValueType::kError; }
  bool IsScalar() const { return type != ValueType::kReference && type != ValueType::kArray; }

  std::span<const Area> Areas() const;  ///< of a kReference; at least one
  const Array& Items() const;           ///< of a kArray
};

/// A table of scalars, row by row.
struct Array {
  int rows = 0;
  int columns = 0;
  std::vector<Value> items;

  /// A single row or column repeats; beyond the last item stands #N/A.
  Value At(int row, int column) const;
};

struct Storage {
  std::string text;
  std::vector<Area> areas;
  Array array;
};

inline Value Value::Number(double number) {
  Value value;
  if (!std::isfinite(number)) return Error(ErrorCode::kNum);
  value.type = ValueType::kNumber;
  value.number = number == 0.0 ? 0.0 : number;  // there is no negative zero
  return value;
}

inline Value Value::LastingText(std::string_view text) {
  Value value;
  value.type = ValueType::kText;
  value.text = text;
  return value;
}

inline Value Value::Boolean(bool truth) {
  Value value;
  value.type = ValueType::kBoolean;
  value.number = truth ? 1.0 : 0.0;
  return value;
}

inline Value Value::Error(ErrorCode code) {
  Value value;
  value.type = ValueType::kError;
  value.error = code;
  return value;
}

inline Value Value::Reference(const Area& area) {
  Value value;
  value.type = ValueType::kReference;
  value.area = area;
  return value;
}

inline std::span<const Area> Value::Areas() const {
  return storage == nullptr ? std::span(&area, 1) : std::span(storage->areas);
}
inline const Array& Value::Items() const {
  return storage->array;
}

// Conversions of scalars as arithmetic and functions make them. Each throws FormulaError: the error that the
// value holds, or #VALUE! for a text that is none of what is asked for. An empty cell is 0, "" and FALSE.
double NumberOf(const Value& value);
std::string TextOf(const Value& value);
bool LogicalOf(const Value& value);

/// Below 0, 0 or above 0 as the application orders scalars that are no errors: numbers before texts before
/// logical values; texts without regard to case; an empty cell like 0, "" or FALSE, whatever stands opposite.
int Compare(const Value& left, const Value& right);
/// The same for two texts.
int CompareTexts(std::string_view left, std::string_view right);

/// A number as text where no format is given (15 digits). Throws UnknownResult for numbers that the
/// applications write differently: 1E15 and more, and below 1E-5.
std::string NumberText(double number);

/// Reads a number as people type it: "1,234.5", "$5", "(5)", "5%", "1E3", "2024-02-29", "12:30". Nothing for
/// a text that is none; throws UnknownResult for one that may be a date in the application's language.
std::optional<double> ReadNumber(std::string_view text);

}  // namespace excelexp::formula
