#include "platform/spreadsheet/formula/Value.h"

#include <charconv>
#include <cmath>

#include "platform/spreadsheet/formula/Decimal.h"
#include "platform/spreadsheet/formula/Lexis.h"

namespace excelexp::formula {
namespace {

/// The order of types in comparisons.
int Rank(ValueType type) {
  if (type == ValueType::kNumber) return 0;
  return type == ValueType::kText ? 1 : 2;
}

Value EmptyLike(const Value& other) {
  switch (other.type) {
    case ValueType::kText:
      return Value::LastingText("");
    case ValueType::kBoolean:
      return Value::Boolean(false);
    default:
      return Value::Number(0.0);
  }
}

int CompareNumbers(double left, double right) {
  if (NearlyEqual(left, right)) return 0;
  return left < right ? -1 : 1;
}

}  // namespace

Value Value::Text(std::string text) {
  auto storage = std::make_shared<const Storage>(Storage{std::move(text), {}, {}});
  Value value = LastingText(storage->text);
  value.storage = std::move(storage);
  return value;
}

Value Value::Union(std::vector<Area> areas) {
  if (areas.size() == 1) return Reference(areas.front());
  Value value;
  value.type = ValueType::kReference;
  value.storage = std::make_shared<const Storage>(Storage{{}, std::move(areas), {}});
  return value;
}

Value Value::Table(Array array) {
  Value value;
  value.type = ValueType::kArray;
  value.storage = std::make_shared<const Storage>(Storage{{}, {}, std::move(array)});
  return value;
}

Value Array::At(int row, int column) const {
  if (rows == 1) row = 0;
  if (columns == 1) column = 0;
  if (row >= rows || column >= columns) return Value::Error(ErrorCode::kNotAvailable);
  return items[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(column)];
}

double NumberOf(const Value& value) {
  switch (value.type) {
    case ValueType::kEmpty:
      return 0.0;
    case ValueType::kNumber:
    case ValueType::kBoolean:
      return value.number;
    case ValueType::kError:
      throw FormulaError{value.error};
    case ValueType::kText:
      if (const std::optional<double> number = ReadNumber(value.text)) return *number;
      break;
    default:
      break;
  }
  throw FormulaError{ErrorCode::kValue};
}

std::string TextOf(const Value& value) {
  switch (value.type) {
    case ValueType::kEmpty:
      return "";
    case ValueType::kNumber:
      return NumberText(value.number);
    case ValueType::kBoolean:
      return value.number != 0.0 ? "TRUE" : "FALSE";
    case ValueType::kError:
      throw FormulaError{value.error};
    case ValueType::kText:
      return std::string(value.text);
    default:
      throw FormulaError{ErrorCode::kValue};
  }
}

bool LogicalOf(const Value& value) {
  if (value.type != ValueType::kText) return NumberOf(value) != 0.0;
  const std::string capitals = Capitals(value.text);
  if (capitals == "TRUE") return true;
  if (capitals == "FALSE") return false;
  throw FormulaError{ErrorCode::kValue};
}

int Compare(const Value& left, const Value& right) {
  if (left.type == ValueType::kEmpty && right.type == ValueType::kEmpty) return 0;
  if (left.type == ValueType::kEmpty) return Compare(EmptyLike(right), right);
  if (right.type == ValueType::kEmpty) return Compare(left, EmptyLike(left));
  if (left.type != right.type) return Rank(left.type) < Rank(right.type) ? -1 : 1;
  return left.type == ValueType::kText ? CompareTexts(left.text, right.text)
                                       : CompareNumbers(left.number, right.number);
}

int CompareTexts(std::string_view left, std::string_view right) {
  if (left == right) return 0;
  const auto beyond_ascii = [](std::string_view text) { return IsBeyondAscii(text.front()); };
  for (; !left.empty() && !right.empty(); left.remove_prefix(1), right.remove_prefix(1)) {
    if (beyond_ascii(left) || beyond_ascii(right)) {
      const int order = SmallLetters(left).compare(SmallLetters(right));
      return order < 0 ? -1 : order > 0 ? 1 : 0;
    }
    const char a = SmallLetter(left.front());
    const char b = SmallLetter(right.front());
    if (a != b) return a < b ? -1 : 1;
  }
  return left.empty() ? (right.empty() ? 0 : -1) : 1;
}

std::string NumberText(double number) {
  const double size = std::fabs(number);
  if (size >= 1e15 || (size > 0.0 && size < 1e-5)) throw UnknownResult{};
  // Enough decimals for 15 significant digits, and no zeros after the last one that counts.
  const int before_point = size >= 1.0 ? static_cast<int>(std::floor(std::log10(size))) + 1 : 0;
  const int leading_zeros =
      size >= 1.0 || size == 0.0 ? 0 : static_cast<int>(-std::floor(std::log10(size))) - 1;
  char buffer[64];
  const std::to_chars_result written =
      std::to_chars(buffer, buffer + sizeof buffer, number == 0.0 ? 0.0 : number, std::chars_format::fixed,
                    15 - before_point + leading_zeros);
  std::string text(static_cast<const char*>(buffer), static_cast<const char*>(written.ptr));
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

}  // namespace excelexp::formula
