#include "platform/spreadsheet/formula/Call.h"

namespace excelexp::formula {
namespace {

template <ValueType type, bool expected>
Value IsType(Call& call) {
  return Value::Boolean((call[0].type == type) == expected);
}

Value IsNotAvailable(Call& call) {
  return Value::Boolean(call[0].IsError() && call[0].error == ErrorCode::kNotAvailable);
}

Value IsOtherError(Call& call) {
  return Value::Boolean(call[0].IsError() && call[0].error != ErrorCode::kNotAvailable);
}

/// CELL of the upper left cell of a block. What depends on the application's windows or on what it changed
/// last is left to it.
Value CellInformation(Call& call) {
  call.Cells().MakeScalar(call.Values()[0]);
  const std::string what = TextOf(call[0]);
  const auto is = [&what](std::string_view known) { return CompareTexts(what, known) == 0; };
  if (call.Count() < 2) throw UnknownResult{};
  const Area& area = call.Cells(1);
  const int row = area.range.first_row;
  const int column = area.range.first_col;
  if (is("format")) return Value::LastingText(call.Cells().FormatCodeOf(area.sheet->Find(row, column)));
  if (is("row")) return Value::Number(row);
  if (is("col")) return Value::Number(column);
  if (is("address")) {
    if (area.sheet != call.Cells().Place().sheet) throw UnknownResult{};
    return Value::Text("$" + ColumnLetters(column) + "$" + std::to_string(row));
  }
  if (is("contents")) {
    const Value value = call.Cells().ReadCell(*area.sheet, row, column);
    return value.type == ValueType::kEmpty ? Value::Number(0.0) : value;
  }
  if (is("type")) {
    const Value value = call.Cells().ReadCell(*area.sheet, row, column);
    return Value::LastingText(value.type == ValueType::kEmpty  ? "b"
                              : value.type == ValueType::kText ? "l"
                                                               : "v");
  }
  for (const char* known : {"color", "filename", "parentheses", "prefix", "protect", "width"}) {
    if (is(known)) throw UnknownResult{};
  }
  return Value::Error(ErrorCode::kValue);
}

constexpr Implementation kFunctions[] = {
    {"CELL", Arguments::kOperands, CellInformation},
    {"ISBLANK", Arguments::kAnything, IsType<ValueType::kEmpty, true>},
    {"ISERR", Arguments::kAnything, IsOtherError},
    {"ISERROR", Arguments::kAnything, IsType<ValueType::kError, true>},
    {"ISLOGICAL", Arguments::kAnything, IsType<ValueType::kBoolean, true>},
    {"ISNA", Arguments::kAnything, IsNotAvailable},
    {"ISNONTEXT", Arguments::kAnything, IsType<ValueType::kText, false>},
    {"ISNUMBER", Arguments::kAnything, IsType<ValueType::kNumber, true>},
    {"ISTEXT", Arguments::kAnything, IsType<ValueType::kText, true>},
    {"NA", Arguments::kScalars, [](Call&) { return Value::Error(ErrorCode::kNotAvailable); }},
};

}  // namespace

std::span<const Implementation> InformationFunctions() {
  return kFunctions;
}

}  // namespace excelexp::formula
