#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/spreadsheet/Workbook.h"
#include "platform/spreadsheet/formula/FormulaText.h"

namespace excelexp::formula {

/// What a formula says, parsed and as it was given for the cell that it was first written in.
struct FormulaSource {
  std::shared_ptr<const Expression> expression;  ///< nullptr for a text that nobody parsed
  FormulaText text;
};

/// Makes formulas of texts; those that say the same of their own cells share one source.
class SharedFormulas {
 public:
  /// `text` with or without the leading "=", for a cell (row and column from 1). Throws ParseError.
  Formula Make(std::string_view text, int row, int column);

 private:
  /// A source and the cell that it was parsed for.
  struct Known {
    std::shared_ptr<const FormulaSource> source;
    int row = 0;
    int column = 0;

    Moves To(int other_row, int other_column) const { return {other_row - row, other_column - column}; }
  };
  struct Hash : TextHash {
    using is_transparent = void;
  };

  std::unordered_map<std::string, Known, Hash, std::equal_to<>> known_;  ///< by relative text
  Known last_;                                                           ///< a total stands beside totals
};

}  // namespace excelexp::formula
