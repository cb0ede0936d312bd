#pragma once

#include <string>
#include <string_view>

#include "platform/spreadsheet/formula/Value.h"

namespace excelexp::formula {

/// Whether `pattern` fits the whole text, without regard to case: ? is one character, * any number of them, ~
/// takes the next character as it is. Both in UTF-16 and small letters.
bool FitsWildcards(std::u16string_view pattern, std::u16string_view text);
bool HasWildcards(std::string_view pattern);
/// UTF-16 in small letters, as FitsWildcards wants it.
std::u16string Folded(std::string_view text);

/// The condition of SUMIF, COUNTIF and their relatives: a value, or a text such as ">=5", "<>x" or "b*".
class Criterion {
 public:
  explicit Criterion(const Value& condition);
  bool Fits(const Value& cell) const;

 private:
  enum class Relation : unsigned char { kEqual, kNotEqual, kLess, kLessEqual, kGreater, kGreaterEqual };

  bool FitsEqual(const Value& cell) const;

  Relation relation_ = Relation::kEqual;
  bool has_operator_ = false;
  Value wanted_;
  std::u16string pattern_;  ///< of a text to be equal to
};

}  // namespace excelexp::formula
