#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace excelexp::formula {

/// One piece of a number format.
struct PatternToken {
  enum class Kind : unsigned char {
    kLiteral,   ///< text
    kDigit,     ///< symbol '0', '#' or '?'
    kPoint,     ///< the decimal point
    kExponent,  ///< symbol '+' or '-'
    kPercent,
    kText,     ///< @
    kDate,     ///< symbol y, m, d, h, n (minutes) or s; count letters
    kElapsed,  ///< [h], [n] or [s]; count letters
    kHalfDay,  ///< AM/PM (count 2) or A/P (count 1)
    kGeneral,
  };
  Kind kind = Kind::kLiteral;
  char symbol = '\0';
  int count = 0;  ///< of kDate with symbol s: letters; the decimals of seconds follow as kPoint and kDigit
  std::string text;
};

/// What stands between the semicolons of a number format.
struct PatternSection {
  std::vector<PatternToken> tokens;
  bool coloured = false;
  bool grouped = false;        ///< a comma between digits: 1,234
  bool currency = false;       ///< a currency sign
  bool parenthesised = false;  ///< an opening parenthesis as a literal
  int thousands = 0;           ///< commas behind the digits, each dividing by 1,000
  int percents = 0;
  int decimals = 0;  ///< digits behind the decimal point, before an exponent
  bool exponent = false;
  bool date = false;
  bool general = false;
  /// "<", "<=", "=", ">=", ">" or "<>" with the number after it; "" for none
  std::string comparison;
  double bound = 0.0;

  bool HasDigits() const;
};

/// A number format such as "#,##0.00;[Red]-#,##0.00;-;@".
struct NumberPattern {
  std::vector<PatternSection> sections;  ///< at least one
  bool understood = true;                ///< false for fractions, eras and whatever else we do not write

  static NumberPattern Parse(std::string_view pattern);
};

/// What CELL("format") tells of a number format: "G", "F0", ",2", "C2-", "P0", "D4" and so on, by the table
/// in the application's documentation of CELL.
std::string FormatCode(const NumberPattern& pattern);

}  // namespace excelexp::formula
