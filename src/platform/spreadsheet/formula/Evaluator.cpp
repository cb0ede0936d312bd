#include "platform/spreadsheet/formula/Evaluator.h"

#include <algorithm>

#include "platform/spreadsheet/formula/Call.h"
#include "platform/spreadsheet/formula/NumberPattern.h"
#include "platform/spreadsheet/formula/Operators.h"

namespace excelexp::formula {
namespace {

constexpr std::int64_t kMostItems = 1'000'000;
constexpr int kMostNamesInNames =
    16;  ///< names use each other in few levels; a name that uses itself ends here

bool IsReferenceOperator(Operator op) {
  return op == Operator::kRange || op == Operator::kUnion || op == Operator::kIntersection;
}

bool CallsSubtotal(const Node& node) {
  if (node.type == NodeType::kCall && node.text == "SUBTOTAL") return true;
  return std::any_of(node.children.begin(), node.children.end(),
                     [](const std::unique_ptr<Node>& child) { return CallsSubtotal(*child); });
}

Value FromResult(const FormulaResult& result) {
  switch (result.type) {
    case FormulaResult::Type::kNumber:
      return Value::Number(result.number);
    case FormulaResult::Type::kText:
      return Value::LastingText(result.text);
    case FormulaResult::Type::kBoolean:
      return Value::Boolean(result.number != 0.0);
    case FormulaResult::Type::kError:
      return Value::Error(result.error);
    case FormulaResult::Type::kUnknown:
      break;
  }
  throw UnknownResult{};
}

Array OneItem(Value value) {
  Array array;
  array.rows = array.columns = 1;
  array.items.push_back(std::move(value));
  return array;
}

}  // namespace

std::optional<FormulaResult> Evaluator::Run(const Expression& expression, const CellPlace& place,
                                            const Moves& moves) {
  place_ = place;
  moves_ = moves;
  waiting_ = false;
  name_depth_ = 0;
  FormulaResult result;
  try {
    Value value = Evaluate(expression.Root(), false);
    MakeScalar(value);
    result = ToResult(value);
  } catch (const UnknownResult&) {
    result = {};
  }
  if (waiting_) return std::nullopt;
  return result;
}

FormulaResult Evaluator::ToResult(const Value& value) {
  FormulaResult result;
  result.number = value.number;
  switch (value.type) {
    case ValueType::kText:
      result.type = FormulaResult::Type::kText;
      result.text = value.text;
      break;
    case ValueType::kBoolean:
      result.type = FormulaResult::Type::kBoolean;
      break;
    case ValueType::kError:
      result.type = FormulaResult::Type::kError;
      result.error = value.error;
      break;
    default:
      result.type = FormulaResult::Type::kNumber;
      break;  // an empty cell shows 0
  }
  return result;
}

Value Evaluator::Evaluate(const Node& node, bool in_array) {
  switch (node.type) {
    case NodeType::kNumber:
      return Value::Number(node.number);
    case NodeType::kText:
      return Value::LastingText(node.text);
    case NodeType::kBoolean:
      return Value::Boolean(node.number != 0.0);
    case NodeType::kError:
      return Value::Error(node.error);
    case NodeType::kMissing:
      return {};
    case NodeType::kReference:
      return EvaluateReference(node.reference);
    case NodeType::kName:
      return EvaluateName(node.text, in_array);
    case NodeType::kUnary:
      return EvaluateUnary(node, in_array);
    case NodeType::kBinary:
      return EvaluateBinary(node, in_array);
    case NodeType::kCall:
      return EvaluateCall(*this, node, in_array);
    case NodeType::kParentheses:
      return Evaluate(*node.children[0], in_array);
  }
  return {};
}

Value Evaluator::EvaluateReference(const Reference& reference) const {
  auto cells = static_cast<const ReferredCells&>(reference);
  if (moves_.Any() && !Move(cells, moves_)) return Value::Error(ErrorCode::kRef);
  if (reference.sheet.empty()) return Value::Reference({place_.sheet, cells.range});
  const Sheet* first = workbook_.FindSheet(reference.sheet);
  if (first == nullptr) return Value::Error(ErrorCode::kRef);
  if (reference.last_sheet.empty()) return Value::Reference({first, cells.range});
  const Sheet* last = workbook_.FindSheet(reference.last_sheet);
  if (last == nullptr) return Value::Error(ErrorCode::kRef);
  std::vector<Area> areas;
  bool inside = false;
  for (const std::unique_ptr<Sheet>& sheet : workbook_.Sheets()) {
    const bool is_end = sheet.get() == first || sheet.get() == last;
    if (inside || is_end) areas.push_back({sheet.get(), cells.range});
    if (is_end && first != last) inside = !inside;
  }
  return Value::Union(std::move(areas));
}

Value Evaluator::EvaluateName(const std::string& name, bool in_array) {
  const auto found = names_ == nullptr ? NameTable::const_iterator{} : names_->find(name);
  if (names_ == nullptr || found == names_->end() || name_depth_ >= kMostNamesInNames) {
    return Value::Error(ErrorCode::kName);
  }
  ++name_depth_;
  Value value = Evaluate(found->second->Root(), in_array);
  --name_depth_;
  return value;
}

Value Evaluator::EvaluateUnary(const Node& node, bool in_array) {
  Value operand = Evaluate(*node.children[0], in_array);
  if (!in_array) MakeScalar(operand);
  if (operand.IsScalar()) return ApplyUnary(node.op, operand);
  Array array = ToArray(operand);
  for (Value& item : array.items) item = ApplyUnary(node.op, item);
  return Value::Table(std::move(array));
}

Value Evaluator::EvaluateBinary(const Node& node, bool in_array) {
  const bool of_references = IsReferenceOperator(node.op);
  Value left = Evaluate(*node.children[0], in_array && !of_references);
  Value right = Evaluate(*node.children[1], in_array && !of_references);
  if (of_references) return CombineReferences(node.op, left, right);
  if (!in_array) {
    MakeScalar(left);
    MakeScalar(right);
  }
  if (left.IsScalar() && right.IsScalar()) return ApplyBinary(node.op, left, right);
  const Array lefts = ToArray(left);
  const Array rights = ToArray(right);
  Array results;
  results.rows = std::max(lefts.rows, rights.rows);
  results.columns = std::max(lefts.columns, rights.columns);
  for (int row = 0; row < results.rows; ++row) {
    for (int column = 0; column < results.columns; ++column) {
      results.items.push_back(ApplyBinary(node.op, lefts.At(row, column), rights.At(row, column)));
    }
  }
  return Value::Table(std::move(results));
}

Value Evaluator::ToScalar(const Value& value) {
  if (value.IsScalar()) return value;
  if (value.type == ValueType::kArray) return value.Items().At(0, 0);
  if (value.Areas().size() != 1) return Value::Error(ErrorCode::kValue);
  const Area& area = value.Areas()[0];
  const CellRange& range = area.range;
  if (area.IsCell()) return ReadCell(*area.sheet, range.first_row, range.first_col);
  if (area.Columns() == 1 && place_.row >= range.first_row && place_.row <= range.last_row) {
    return ReadCell(*area.sheet, place_.row, range.first_col);
  }
  if (area.Rows() == 1 && place_.column >= range.first_col && place_.column <= range.last_col) {
    return ReadCell(*area.sheet, range.first_row, place_.column);
  }
  return Value::Error(ErrorCode::kValue);
}

Array Evaluator::ToArray(const Value& value) {
  if (value.type == ValueType::kArray) return value.Items();
  if (value.type != ValueType::kReference) return OneItem(value);
  if (value.Areas().size() != 1) return OneItem(Value::Error(ErrorCode::kValue));
  const Area& area = value.Areas()[0];
  if (static_cast<std::int64_t>(area.Rows()) * area.Columns() > kMostItems) throw UnknownResult{};
  Array array;
  array.rows = area.Rows();
  array.columns = area.Columns();
  array.items.resize(static_cast<std::size_t>(array.rows) * static_cast<std::size_t>(array.columns));
  ForEachCell(area, [&](const Cell& cell, int row, int column) {
    const auto index =
        static_cast<std::size_t>(row - area.range.first_row) * static_cast<std::size_t>(array.columns) +
        static_cast<std::size_t>(column - area.range.first_col);
    array.items[index] = ReadCell(cell);
  });
  return array;
}

Value Evaluator::ReadCell(const Sheet& sheet, int row, int column) {
  const Cell* cell = sheet.Find(row, column);
  return cell == nullptr ? Value{} : ReadCell(*cell);
}

Value Evaluator::ReadCell(const Cell& cell) {
  switch (cell.type) {
    case CellType::kEmpty:
      return {};
    case CellType::kNumber:
      return Value::Number(cell.number);
    case CellType::kText:
      return Value::LastingText(workbook_.Text(cell.text));
    case CellType::kFormula:
      break;
  }
  const FormulaResult* result = results_.Result(cell.formula);
  if (result != nullptr) return FromResult(*result);
  waiting_ = true;
  return {};
}

bool Evaluator::IsSubtotal(const Cell& cell) const {
  if (cell.type != CellType::kFormula) return false;
  const std::shared_ptr<const Expression>& expression = workbook_.FormulaAt(cell.formula).SharedExpression();
  return expression != nullptr && CallsSubtotal(expression->Root());
}

const std::string& Evaluator::FormatCodeOf(const Cell* cell) {
  const FormatId id = cell == nullptr ? 0 : cell->format;
  std::string& code = format_codes_[id];
  if (code.empty()) code = FormatCode(NumberPattern::Parse(workbook_.Format(id).number_format));
  return code;
}

}  // namespace excelexp::formula
