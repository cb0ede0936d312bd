#include <algorithm>
#include <optional>

#include "platform/spreadsheet/formula/Call.h"
#include "platform/spreadsheet/formula/Criterion.h"
#include "platform/spreadsheet/formula/Expression.h"

namespace excelexp::formula {
namespace {

/// A row or a column of cells.
class Line {
 public:
  Line(Evaluator& evaluator, const Area& area, bool is_column)
      : evaluator_(evaluator), area_(area), is_column_(is_column) {}

  /// How many of its cells may hold something.
  int Length() const {
    return is_column_ ? std::min(area_.Rows(), area_.sheet->LastRow() - area_.range.first_row + 1)
                      : std::min(area_.Columns(), area_.sheet->LastColumn() - area_.range.first_col + 1);
  }
  Value At(int i) const {
    return evaluator_.ReadCell(*area_.sheet, area_.range.first_row + (is_column_ ? i : 0),
                               area_.range.first_col + (is_column_ ? 0 : i));
  }

 private:
  Evaluator& evaluator_;
  const Area& area_;
  bool is_column_;
};

std::optional<int> FindEqual(const Line& line, const Value& key) {
  const bool wildcards = key.type == ValueType::kText && HasWildcards(key.text);
  const std::u16string pattern = wildcards ? Folded(key.text) : std::u16string();
  for (int i = 0; i < line.Length(); ++i) {
    const Value cell = line.At(i);
    if (cell.type != key.type) continue;
    if (wildcards ? FitsWildcards(pattern, Folded(cell.text)) : Compare(cell, key) == 0) return i;
  }
  return std::nullopt;
}

/// The last of the cells that are not beyond the key in the line's order; `ascending` or not. Only cells of
/// the key's type count. What a search by halves finds in a line without order only the application knows.
std::optional<int> FindLastBefore(const Line& line, const Value& key, bool ascending) {
  std::optional<int> found;
  std::optional<Value> before;
  for (int i = 0; i < line.Length(); ++i) {
    Value cell = line.At(i);
    if (cell.type != key.type) continue;
    if (before && (ascending ? Compare(*before, cell) > 0 : Compare(*before, cell) < 0))
      throw UnknownResult{};
    const int order = Compare(cell, key);
    if (ascending ? order <= 0 : order >= 0) found = i;
    before = std::move(cell);
  }
  return found;
}

Value Key(const Call& call) {
  Value key = call.Cells().ToScalar(call[0]);
  if (key.IsError()) throw FormulaError{key.error};
  return key.type == ValueType::kEmpty ? Value::Number(0.0) : key;
}

bool Flag(const Call& call, std::size_t i, bool absent) {
  return i < call.Count() ? LogicalOf(call.Cells().ToScalar(call[i])) : absent;
}

int WholeArgument(const Call& call, std::size_t i) {
  const double number = NumberOf(call.Cells().ToScalar(call[i]));
  if (!(number > -1e9 && number < 1e9)) throw FormulaError{ErrorCode::kValue};
  return static_cast<int>(number);
}

/// An array that was computed has no cells to look at; the application looks at its items.
const Area& Table(const Call& call, std::size_t i) {
  if (call[i].type == ValueType::kArray) throw UnknownResult{};
  return call.Cells(i);
}

/// VLOOKUP looks down the first column, HLOOKUP along the first row.
Value LookUpTable(Call& call, bool vertical) {
  const Value key = Key(call);
  const Area& table = Table(call, 1);
  const int number = WholeArgument(call, 2);
  if (number < 1) return Value::Error(ErrorCode::kValue);
  if (number > (vertical ? table.Columns() : table.Rows())) return Value::Error(ErrorCode::kRef);
  const Line line(call.Cells(), table, vertical);
  const std::optional<int> found =
      Flag(call, 3, true) ? FindLastBefore(line, key, true) : FindEqual(line, key);
  if (!found) return Value::Error(ErrorCode::kNotAvailable);
  const int row = table.range.first_row + (vertical ? *found : number - 1);
  const int column = table.range.first_col + (vertical ? number - 1 : *found);
  return call.Cells().ReadCell(*table.sheet, row, column);
}

Value VerticalLookup(Call& call) {
  return LookUpTable(call, true);
}
Value HorizontalLookup(Call& call) {
  return LookUpTable(call, false);
}

/// LOOKUP: in the longer direction of its table, the result from the last row or column or from another line.
Value LookUp(Call& call) {
  const Value key = Key(call);
  const Area& table = Table(call, 1);
  const bool down = table.Rows() >= table.Columns();
  const Line line(call.Cells(), table, down);
  const std::optional<int> found = FindLastBefore(line, key, true);
  if (!found) return Value::Error(ErrorCode::kNotAvailable);
  Area results = call.Count() > 2 ? Table(call, 2) : table;
  const bool results_down = call.Count() > 2 ? results.Rows() >= results.Columns() : down;
  if (call.Count() == 2) {
    (down ? results.range.first_col : results.range.first_row) =
        down ? table.range.last_col : table.range.last_row;
  }
  return Line(call.Cells(), results, results_down).At(*found);
}

Value Match(Call& call) {
  const Value key = Key(call);
  const Area& area = Table(call, 1);
  if (area.Rows() > 1 && area.Columns() > 1) return Value::Error(ErrorCode::kNotAvailable);
  const Line line(call.Cells(), area, area.Rows() > 1);
  const int kind = call.Count() > 2 ? WholeArgument(call, 2) : 1;
  const std::optional<int> found = kind == 0 ? FindEqual(line, key) : FindLastBefore(line, key, kind > 0);
  return found ? Value::Number(*found + 1) : Value::Error(ErrorCode::kNotAvailable);
}

/// Narrows one axis of a block to its n-th row or column; 0 keeps all of them.
void Narrow(int& first, int& last, int number) {
  if (number < 0) throw FormulaError{ErrorCode::kValue};
  if (number == 0) return;
  if (number > last - first + 1) throw FormulaError{ErrorCode::kRef};
  first = last = first + number - 1;
}

Value Index(Call& call) {
  if (call[0].IsError()) return call[0];
  if (call.Count() > 3) throw UnknownResult{};
  Area area = Table(call, 0);
  int row = WholeArgument(call, 1);
  int column = call.Count() > 2 ? WholeArgument(call, 2) : 0;
  // In a single row the one number counts columns.
  if (call.Count() == 2 && area.Rows() == 1) std::swap(row, column);
  Narrow(area.range.first_row, area.range.last_row, row);
  Narrow(area.range.first_col, area.range.last_col, column);
  return Value::Reference(area);
}

Value Row(Call& call) {
  return Value::Number(call.Count() == 0 ? call.Cells().Place().row : call.Cells(0).range.first_row);
}

Value Column(Call& call) {
  return Value::Number(call.Count() == 0 ? call.Cells().Place().column : call.Cells(0).range.first_col);
}

Value Rows(Call& call) {
  return Value::Number(Table(call, 0).Rows());
}
Value Columns(Call& call) {
  return Value::Number(Table(call, 0).Columns());
}

Value Address(Call& call) {
  const int row = call.Whole(0);
  const int column = call.Whole(1);
  const int kind = call.Whole(2, 1);  // 1: both absolute, 2: the row, 3: the column, 4: none
  const bool a1 = call.Logical(3, true);
  if (row < 1 || row > Workbook::kMaxRows || column < 1 || column > Workbook::kMaxColumns || kind < 1 ||
      kind > 4) {
    return Value::Error(ErrorCode::kValue);
  }
  const bool row_absolute = kind <= 2;
  const bool column_absolute = kind == 1 || kind == 3;
  Node node;
  node.type = NodeType::kReference;
  node.reference.range = {row, column, row, column};
  node.reference.row_absolute[0] = row_absolute;
  node.reference.column_absolute[0] = column_absolute;
  if (call.Count() > 4) node.reference.sheet = call.Text(4);
  if (a1) return Value::Text(Print(node));
  if (call.Count() > 4) throw UnknownResult{};
  const auto part = [](char letter, int number, bool absolute) {
    const std::string digits = std::to_string(number);
    return letter + (absolute ? digits : "[" + digits + "]");
  };
  return Value::Text(part('R', row, row_absolute) + part('C', column, column_absolute));
}

constexpr Implementation kFunctions[] = {
    {"ADDRESS", Arguments::kScalars, Address},  {"COLUMN", Arguments::kOperands, Column},
    {"COLUMNS", Arguments::kOperands, Columns}, {"HLOOKUP", Arguments::kOperands, HorizontalLookup},
    {"INDEX", Arguments::kOperands, Index},     {"LOOKUP", Arguments::kOperands, LookUp},
    {"MATCH", Arguments::kOperands, Match},     {"ROW", Arguments::kOperands, Row},
    {"ROWS", Arguments::kOperands, Rows},       {"VLOOKUP", Arguments::kOperands, VerticalLookup},
};

}  // namespace

std::span<const Implementation> LookupFunctions() {
  return kFunctions;
}

}  // namespace excelexp::formula
