#include "platform/spreadsheet/formula/Criterion.h"

#include "platform/spreadsheet/formula/Decimal.h"
#include "platform/spreadsheet/formula/Lexis.h"

namespace excelexp::formula {
namespace {

/// How many characters the element at the front of a pattern takes; a tilde takes the next one along.
std::size_t ElementLength(std::u16string_view pattern) {
  return pattern.front() == u'~' && pattern.size() > 1 ? 2 : 1;
}

bool FitsElement(std::u16string_view pattern, char16_t unit) {
  if (pattern.front() == u'?') return true;
  return (ElementLength(pattern) == 2 ? pattern[1] : pattern.front()) == unit;
}

Value ReadWanted(std::string_view text) {
  const std::string capitals = Capitals(text);
  if (capitals == "TRUE" || capitals == "FALSE") return Value::Boolean(capitals == "TRUE");
  for (int code = 0; code <= static_cast<int>(ErrorCode::kNotAvailable); ++code) {
    if (capitals == ErrorText(static_cast<ErrorCode>(code)))
      return Value::Error(static_cast<ErrorCode>(code));
  }
  if (const std::optional<double> number = ReadNumber(text)) return Value::Number(*number);
  return Value::Text(std::string(text));
}

}  // namespace

bool FitsWildcards(std::u16string_view pattern, std::u16string_view text) {
  // Behind the last star everything may be tried again one character further.
  bool starred = false;
  std::u16string_view pattern_behind_star;
  std::u16string_view text_behind_star;
  while (!text.empty() || !pattern.empty()) {
    if (!pattern.empty() && pattern.front() == u'*') {
      pattern.remove_prefix(1);
      starred = true;
      pattern_behind_star = pattern;
      text_behind_star = text;
    } else if (!pattern.empty() && !text.empty() && FitsElement(pattern, text.front())) {
      pattern.remove_prefix(ElementLength(pattern));
      text.remove_prefix(1);
    } else if (starred && !text_behind_star.empty()) {
      text_behind_star.remove_prefix(1);
      text = text_behind_star;
      pattern = pattern_behind_star;
    } else {
      return false;
    }
  }
  return true;
}

bool HasWildcards(std::string_view pattern) {
  return pattern.find_first_of("?*~") != std::string_view::npos;
}

std::u16string Folded(std::string_view text) {
  return ToUtf16(SmallLetters(text));
}

Criterion::Criterion(const Value& condition) : wanted_(condition) {
  if (condition.type == ValueType::kEmpty) {
    wanted_ = Value::Number(0.0);
    return;
  }
  if (condition.type != ValueType::kText) return;
  static constexpr struct {
    std::string_view text;
    Relation relation;
  } kRelations[] = {{"<>", Relation::kNotEqual},     {"<=", Relation::kLessEqual},
                    {">=", Relation::kGreaterEqual}, {"=", Relation::kEqual},
                    {"<", Relation::kLess},          {">", Relation::kGreater}};
  std::string_view rest = condition.text;
  for (const auto& row : kRelations) {
    if (!rest.starts_with(row.text)) continue;
    rest.remove_prefix(row.text.size());
    relation_ = row.relation;
    has_operator_ = true;
    break;
  }
  wanted_ = ReadWanted(rest);
  if (wanted_.type == ValueType::kText) pattern_ = Folded(wanted_.text);
}

bool Criterion::FitsEqual(const Value& cell) const {
  switch (wanted_.type) {
    case ValueType::kNumber:
      if (cell.type == ValueType::kNumber) return NearlyEqual(cell.number, wanted_.number);
      // A text that reads as the number fits as well.
      if (cell.type == ValueType::kText) {
        const std::optional<double> number = ReadNumber(cell.text);
        return number && NearlyEqual(*number, wanted_.number);
      }
      return false;
    case ValueType::kBoolean:
      return cell.type == ValueType::kBoolean && cell.number == wanted_.number;
    case ValueType::kError:
      return cell.IsError() && cell.error == wanted_.error;
    default:
      break;
  }
  if (wanted_.text.empty()) {
    // "=" asks for cells that hold nothing, "" also for empty texts.
    return cell.type == ValueType::kEmpty ||
           (!has_operator_ && cell.type == ValueType::kText && cell.text.empty());
  }
  return cell.type == ValueType::kText && FitsWildcards(pattern_, Folded(cell.text));
}

bool Criterion::Fits(const Value& cell) const {
  if (relation_ == Relation::kEqual) return FitsEqual(cell);
  if (relation_ == Relation::kNotEqual) return !FitsEqual(cell);
  if (cell.type != wanted_.type) return false;
  const int order = Compare(cell, wanted_);
  switch (relation_) {
    case Relation::kLess:
      return order < 0;
    case Relation::kLessEqual:
      return order <= 0;
    case Relation::kGreater:
      return order > 0;
    default:
      return order >= 0;
  }
}

}  // namespace excelexp::formula
