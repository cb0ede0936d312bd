#include "platform/spreadsheet/formula/Operators.h"

#include <algorithm>
#include <cmath>

#include "platform/spreadsheet/formula/Decimal.h"

namespace excelexp::formula {
namespace {

Value Arithmetic(Operator op, double left, double right) {
  switch (op) {
    case Operator::kAdd:
      return Value::Number(NearlyAdd(left, right));
    case Operator::kSubtract:
      return Value::Number(NearlyAdd(left, -right));
    case Operator::kMultiply:
      return Value::Number(left * right);
    case Operator::kDivide:
      if (right == 0.0) throw FormulaError{ErrorCode::kDivZero};
      return Value::Number(left / right);
    default:
      return Value::Number(Power(left, right));
  }
}

bool Holds(Operator op, int order) {
  switch (op) {
    case Operator::kEqual:
      return order == 0;
    case Operator::kNotEqual:
      return order != 0;
    case Operator::kLess:
      return order < 0;
    case Operator::kLessEqual:
      return order <= 0;
    case Operator::kGreater:
      return order > 0;
    default:
      return order >= 0;
  }
}

Value Applied(Operator op, const Value& left, const Value& right) {
  switch (op) {
    case Operator::kAdd:
    case Operator::kSubtract:
    case Operator::kMultiply:
    case Operator::kDivide:
    case Operator::kPower: {
      const double first = NumberOf(left);
      return Arithmetic(op, first, NumberOf(right));
    }
    case Operator::kConcatenate:
      return Value::Text(TextOf(left) + TextOf(right));
    default:
      return Value::Boolean(Holds(op, Compare(left, right)));
  }
}

CellRange Around(const CellRange& a, const CellRange& b) {
  return {std::min(a.first_row, b.first_row), std::min(a.first_col, b.first_col),
          std::max(a.last_row, b.last_row), std::max(a.last_col, b.last_col)};
}

CellRange Common(const CellRange& a, const CellRange& b) {
  return {std::max(a.first_row, b.first_row), std::max(a.first_col, b.first_col),
          std::min(a.last_row, b.last_row), std::min(a.last_col, b.last_col)};
}

Value Intersection(const Value& left, const Value& right) {
  std::vector<Area> common;
  for (const Area& a : left.Areas()) {
    for (const Area& b : right.Areas()) {
      const CellRange range = Common(a.range, b.range);
      const bool some = range.first_row <= range.last_row && range.first_col <= range.last_col;
      if (some && a.sheet == b.sheet) common.push_back({a.sheet, range});
    }
  }
  return common.empty() ? Value::Error(ErrorCode::kNull) : Value::Union(std::move(common));
}

}  // namespace

double Power(double base, double exponent) {
  if (base == 0.0 && exponent == 0.0) throw FormulaError{ErrorCode::kNum};
  if (base == 0.0 && exponent < 0.0) throw FormulaError{ErrorCode::kDivZero};
  const double power = std::pow(base, exponent);
  if (!std::isfinite(power)) throw FormulaError{ErrorCode::kNum};
  return power;
}

Value ApplyBinary(Operator op, const Value& left, const Value& right) {
  if (left.IsError()) return left;
  if (right.IsError()) return right;
  try {
    return Applied(op, left, right);
  } catch (const FormulaError& error) {
    return Value::Error(error.code);
  }
}

Value ApplyUnary(Operator op, const Value& operand) {
  if (operand.IsError()) return operand;
  // A plus leaves a text a text.
  if (op == Operator::kPlus) return operand;
  try {
    const double number = NumberOf(operand);
    return Value::Number(op == Operator::kMinus ? -number : number / 100.0);
  } catch (const FormulaError& error) {
    return Value::Error(error.code);
  }
}

Value CombineReferences(Operator op, const Value& left, const Value& right) {
  if (left.IsError()) return left;
  if (right.IsError()) return right;
  if (left.type != ValueType::kReference || right.type != ValueType::kReference) {
    return Value::Error(ErrorCode::kValue);
  }
  if (op == Operator::kIntersection) return Intersection(left, right);
  const std::span<const Area> lefts = left.Areas();
  const std::span<const Area> rights = right.Areas();
  if (op == Operator::kUnion) {
    std::vector<Area> areas(lefts.begin(), lefts.end());
    areas.insert(areas.end(), rights.begin(), rights.end());
    return Value::Union(std::move(areas));
  }
  if (lefts.size() != 1 || rights.size() != 1 || lefts[0].sheet != rights[0].sheet) {
    return Value::Error(ErrorCode::kValue);
  }
  return Value::Reference({lefts[0].sheet, Around(lefts[0].range, rights[0].range)});
}

}  // namespace excelexp::formula
