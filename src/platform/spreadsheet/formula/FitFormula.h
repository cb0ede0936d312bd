#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/formula/Expression.h"

namespace excelexp::formula {

/// What a file format takes of one formula.
struct FormulaLimits {
  int max_arguments;     ///< of one call
  std::size_t max_size;  ///< in the unit of `measure`
  std::size_t (*measure)(const Node& node);
};

/// 30 arguments, 1,800 bytes of tokens in the measure of TokenSize.
extern const FormulaLimits kXlsLimits;
/// 255 arguments, 8,192 characters with the leading "=", as stored (NameStyle::kStored).
extern const FormulaLimits kXlsxLimits;

/// A defined name that a file must hold, hidden, for the whole workbook.
struct HiddenName {
  std::string name;  ///< in capitals
  std::shared_ptr<const Expression> expression;
};

struct FittedFormula {
  std::shared_ptr<const Expression> expression;  ///< the given one when it fits as it is
  std::vector<HiddenName> names;                 ///< a name uses earlier ones only
};

/// Where a formula stands; it decides the names of its pieces.
struct FormulaPosition {
  std::size_t sheet_number;  ///< counted from 1
  std::string sheet_name;
  int row;
  int column;
};

/// Whether FitFormula would give it back unchanged.
bool FitsAsItIs(const Expression& expression, const FormulaLimits& limits);

/// An equivalent formula within the limits. A call of SUM, COUNT, COUNTA, AVERAGE, MIN, MAX or PRODUCT with
/// too many arguments becomes nested calls (SUM(SUM(..),SUM(..)), SUM(COUNT(..),..)) or, where nesting would
/// change the value, unions of cells (MIN((A1,B1),(C1,D1))). Pieces of a formula that is still too long move
/// into hidden names, "_TOTAL_S1R12C3_1" and so on for row 12, column 3 of the first sheet, whose references
/// are absolute and name their sheet.
///
/// Throws SpreadsheetError for a formula that cannot be made to fit.
FittedFormula FitFormula(std::shared_ptr<const Expression> expression, const FormulaLimits& limits,
                         const FormulaPosition& position);

}  // namespace excelexp::formula
