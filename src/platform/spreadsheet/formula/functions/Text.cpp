#include <algorithm>

#include "platform/spreadsheet/formula/Call.h"
#include "platform/spreadsheet/formula/Criterion.h"
#include "platform/spreadsheet/formula/Decimal.h"
#include "platform/spreadsheet/formula/Lexis.h"
#include "platform/spreadsheet/formula/NumberFormatter.h"

namespace excelexp::formula {
namespace {

constexpr std::size_t kMostUnits = 32767;  ///< UTF-16 units of one text

Value TextValue(std::string text) {
  if (text.size() > kMostUnits && Utf16Length(text) > kMostUnits) return Value::Error(ErrorCode::kValue);
  return Value::Text(std::move(text));
}

Value TextValue(const std::u16string& units) {
  return TextValue(ToUtf8(units));
}

std::u16string Units(const Call& call, std::size_t i) {
  return ToUtf16(call.Text(i));
}

/// A count or a place; #VALUE! below `least`.
std::size_t AtLeast(const Call& call, std::size_t i, int least, int absent) {
  const int number = call.Whole(i, absent);
  if (number < least) throw FormulaError{ErrorCode::kValue};
  return static_cast<std::size_t>(number);
}

Value Left(Call& call) {
  const std::size_t count = AtLeast(call, 1, 0, 1);
  return TextValue(Units(call, 0).substr(0, count));
}

Value Right(Call& call) {
  const std::u16string units = Units(call, 0);
  const std::size_t count = std::min(AtLeast(call, 1, 0, 1), units.size());
  return TextValue(units.substr(units.size() - count));
}

Value Mid(Call& call) {
  const std::u16string units = Units(call, 0);
  const std::size_t start = std::min(AtLeast(call, 1, 1, 1) - 1, units.size());
  return TextValue(units.substr(start, AtLeast(call, 2, 0, 0)));
}

Value Replace(Call& call) {
  std::u16string units = Units(call, 0);
  const std::size_t start = std::min(AtLeast(call, 1, 1, 1) - 1, units.size());
  return TextValue(units.replace(start, AtLeast(call, 2, 0, 0), Units(call, 3)));
}

Value Substitute(Call& call) {
  const std::string text = call.Text(0);
  const std::string old_part = call.Text(1);
  const std::string new_part = call.Text(2);
  const std::size_t only = AtLeast(call, 3, call.Count() > 3 ? 1 : 0, 0);  // 0: every one
  if (old_part.empty()) return TextValue(text);
  std::string result;
  std::size_t start = 0;
  std::size_t number = 0;
  for (std::size_t found; (found = text.find(old_part, start)) != std::string::npos;
       start = found + old_part.size()) {
    result += text.substr(start, found - start);
    result += only == 0 || ++number == only ? new_part : old_part;
  }
  return TextValue(result + text.substr(start));
}

Value Find(Call& call) {
  const std::u16string part = Units(call, 0);
  const std::u16string text = Units(call, 1);
  const std::size_t start = AtLeast(call, 2, 1, 1) - 1;
  const std::size_t found = start <= text.size() ? text.find(part, start) : std::u16string::npos;
  if (found == std::u16string::npos) return Value::Error(ErrorCode::kValue);
  return Value::Number(static_cast<double>(found + 1));
}

Value Search(Call& call) {
  // What fits the beginning of the rest of the text.
  const std::u16string pattern = Folded(call.Text(0)) + u'*';
  const std::u16string text = Folded(call.Text(1));
  for (std::size_t start = AtLeast(call, 2, 1, 1) - 1; start <= text.size(); ++start) {
    if (FitsWildcards(pattern, std::u16string_view(text).substr(start))) {
      return Value::Number(static_cast<double>(start + 1));
    }
  }
  return Value::Error(ErrorCode::kValue);
}

Value Trim(Call& call) {
  std::string trimmed;
  for (const char c : call.Text(0)) {
    if (c != ' ' || (!trimmed.empty() && trimmed.back() != ' ')) trimmed += c;
  }
  if (!trimmed.empty() && trimmed.back() == ' ') trimmed.pop_back();
  return TextValue(trimmed);
}

/// Every letter behind something that is no letter becomes a capital, all others small.
Value Proper(Call& call) {
  const std::u16string small = Folded(call.Text(0));
  std::u16string proper;
  bool in_word = false;
  for (const char16_t unit : small) {
    const std::string letter = ToUtf8(std::u16string_view(&unit, 1));
    const std::string capital = Capitals(letter);
    const bool is_letter = capital != letter || SmallLetters(capital) != capital;
    proper += in_word || !is_letter ? std::u16string(1, unit) : ToUtf16(capital);
    in_word = is_letter;
  }
  return TextValue(proper);
}

Value Concatenate(Call& call) {
  std::string joined;
  for (std::size_t i = 0; i < call.Count(); ++i) joined += call.Text(i);
  return TextValue(joined);
}

Value Repeat(Call& call) {
  const std::string text = call.Text(0);
  const std::size_t times = AtLeast(call, 1, 0, 0);
  if (!text.empty() && times > kMostUnits) return Value::Error(ErrorCode::kValue);
  std::string repeated;
  for (std::size_t i = 0; i < times && repeated.size() <= 4 * kMostUnits; ++i) repeated += text;
  return TextValue(repeated);
}

/// What the codes 128 to 159 of Windows-1252 mean; 0 where they mean nothing.
constexpr char16_t kWindows1252[] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                     0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

Value Char(Call& call) {
  const int code = call.Whole(0);
  if (code < 1 || code > 255) return Value::Error(ErrorCode::kValue);
  const bool special = code >= 128 && code < 160;
  const auto unit = special ? kWindows1252[code - 128] : static_cast<char16_t>(code);
  if (unit == 0) throw UnknownResult{};
  return TextValue(std::u16string(1, unit));
}

Value Code(Call& call) {
  const std::u16string units = Units(call, 0);
  if (units.empty()) return Value::Error(ErrorCode::kValue);
  const auto* special = std::find(std::begin(kWindows1252), std::end(kWindows1252), units[0]);
  if (special != std::end(kWindows1252))
    return Value::Number(128.0 + static_cast<double>(special - kWindows1252));
  if (units[0] >= 256) throw UnknownResult{};
  return Value::Number(units[0]);
}

Value Clean(Call& call) {
  std::string text = call.Text(0);
  std::erase_if(text, [](char c) { return static_cast<unsigned char>(c) < 32; });
  return TextValue(text);
}

/// TEXT. Numbers written as texts count as numbers; logical values are shown as they are.
Value Format(Call& call) {
  const NumberFormatter formatter(call.Text(1));
  const Value& value = call[0];
  if (value.type == ValueType::kBoolean) return TextValue(TextOf(value));
  if (value.type == ValueType::kText) {
    const std::optional<double> number = ReadNumber(value.text);
    return TextValue(number ? formatter.Number(*number) : formatter.Text(std::string(value.text)));
  }
  return TextValue(formatter.Number(NumberOf(value)));
}

Value ValueOf(Call& call) {
  return Value::Number(call.Number(0));
}

Value Fixed(Call& call) {
  const double number = call.Number(0);
  const int decimals = call.Whole(1, 2);
  if (decimals > 127 || decimals < -127) return Value::Error(ErrorCode::kValue);
  return TextValue(FixedText(number, decimals, !call.Logical(2, false)));
}

/// T and N take the upper left cell of a block.
Value First(const Call& call) {
  const Value& value = call[0];
  if (value.type != ValueType::kReference) return call.Cells().ToScalar(value);
  const Area& area = value.Areas()[0];
  return call.Cells().ReadCell(*area.sheet, area.range.first_row, area.range.first_col);
}

Value TextOrNothing(Call& call) {
  const Value value = First(call);
  return value.type == ValueType::kText || value.IsError() ? value : Value::LastingText("");
}

Value NumberOrZero(Call& call) {
  Value value = First(call);
  if (value.IsError()) return value;
  return Value::Number(value.type == ValueType::kText ? 0.0 : NumberOf(value));
}

constexpr Implementation kFunctions[] = {
    {"CHAR", Arguments::kScalars, Char},
    {"CLEAN", Arguments::kScalars, Clean},
    {"CODE", Arguments::kScalars, Code},
    {"CONCATENATE", Arguments::kScalars, Concatenate},
    {"EXACT", Arguments::kScalars, [](Call& call) { return Value::Boolean(call.Text(0) == call.Text(1)); }},
    {"FIND", Arguments::kScalars, Find},
    {"FIXED", Arguments::kScalars, Fixed},
    {"LEFT", Arguments::kScalars, Left},
    {"LEN", Arguments::kScalars,
     [](Call& call) { return Value::Number(static_cast<double>(Utf16Length(call.Text(0)))); }},
    {"LOWER", Arguments::kScalars, [](Call& call) { return TextValue(SmallLetters(call.Text(0))); }},
    {"MID", Arguments::kScalars, Mid},
    {"N", Arguments::kOperands, NumberOrZero},
    {"PROPER", Arguments::kScalars, Proper},
    {"REPLACE", Arguments::kScalars, Replace},
    {"REPT", Arguments::kScalars, Repeat},
    {"RIGHT", Arguments::kScalars, Right},
    {"SEARCH", Arguments::kScalars, Search},
    {"SUBSTITUTE", Arguments::kScalars, Substitute},
    {"T", Arguments::kOperands, TextOrNothing},
    {"TEXT", Arguments::kScalars, Format},
    {"TRIM", Arguments::kScalars, Trim},
    {"UPPER", Arguments::kScalars, [](Call& call) { return TextValue(Capitals(call.Text(0))); }},
    {"VALUE", Arguments::kScalars, ValueOf},
};

}  // namespace

std::span<const Implementation> TextFunctions() {
  return kFunctions;
}

}  // namespace excelexp::formula
