#pragma once

#include <string>
#include <string_view>

#include "platform/spreadsheet/formula/NumberPattern.h"

namespace excelexp::formula {

/// Writes values by a number format, as TEXT does: English names of months and days, point and comma,
/// whatever the locale is. Throws UnknownResult for formats it does not write (fractions, eras, other
/// calendars).
class NumberFormatter {
 public:
  explicit NumberFormatter(std::string_view pattern) : pattern_(NumberPattern::Parse(pattern)) {}

  /// Throws FormulaError (#VALUE!) for a date outside the calendar.
  std::string Number(double value) const;
  std::string Text(std::string_view text) const;

 private:
  NumberPattern pattern_;
};

/// "1,234.50": a number with that many decimals, rounded half away from zero; negative `decimals` round left
/// of the point.
std::string FixedText(double value, int decimals, bool grouped);

}  // namespace excelexp::formula
