#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/host/DateTime.h"
#include "platform/spreadsheet/formula/Expression.h"
#include "platform/spreadsheet/formula/Value.h"

namespace excelexp::formula {

/// Defined names by their names in capitals.
using NameTable = std::map<std::string, std::shared_ptr<const Expression>, std::less<>>;

/// Where the evaluator gets the results of other formulas.
class ResultSource {
 public:
  virtual ~ResultSource() = default;
  /// nullptr when the formula with that index of the workbook is not computed yet; the source remembers that
  /// it was asked for.
  virtual const FormulaResult* Result(std::uint32_t formula) = 0;
};

struct CellPlace {
  const Sheet* sheet;
  int row;
  int column;
};

/// Computes expressions over a workbook.
///
/// A formula that meets results which are not there yet goes on with empty values, so that its source learns
/// of all that it needs at once, and gives nothing in the end. Branches of IF and CHOOSE are only entered on
/// what is known.
class Evaluator {
 public:
  Evaluator(const Workbook& workbook, DateTime now, ResultSource& results, const NameTable* names)
      : workbook_(workbook),
        now_(now),
        results_(results),
        names_(names),
        format_codes_(workbook.FormatCount()) {}

  /// The result of a formula in that cell; nothing when it has to wait for others.
  /// A shared expression is computed as if its relative references were moved.
  std::optional<FormulaResult> Run(const Expression& expression, const CellPlace& place,
                                   const Moves& moves = {});

  // What follows is for the functions.

  /// `in_array`: blocks of cells are computed item by item instead of intersecting them with the formula's
  /// cell.
  Value Evaluate(const Node& node, bool in_array);
  /// One value: of a block of cells the one in the formula's row or column, else #VALUE!.
  Value ToScalar(const Value& value);
  /// The same in place.
  void MakeScalar(Value& value) {
    if (!value.IsScalar()) value = ToScalar(value);
  }
  /// Throws UnknownResult for more than a million items.
  Array ToArray(const Value& value);

  Value ReadCell(const Sheet& sheet, int row, int column);
  Value ReadCell(const Cell& cell);

  /// Calls use(cell, row, column) for every cell of the area that exists, row by row.
  template <typename Use>
  static void ForEachCell(const Area& area, Use use) {
    const int last_row = std::min(area.range.last_row, area.sheet->LastRow());
    for (int row = area.range.first_row; row <= last_row; ++row) {
      const std::vector<Cell>& cells = area.sheet->Row(row);
      const int last_column = std::min(area.range.last_col, static_cast<int>(cells.size()));
      for (int column = area.range.first_col; column <= last_column; ++column) {
        use(cells[static_cast<std::size_t>(column - 1)], row, column);
      }
    }
  }

  /// Whether the cell holds a formula that calls SUBTOTAL.
  bool IsSubtotal(const Cell& cell) const;

  /// What CELL("format") tells of a cell.
  const std::string& FormatCodeOf(const Cell* cell);

  /// The arguments of the calls that are under way, the innermost call's last.
  std::vector<Value>& Arguments() { return arguments_; }

  const CellPlace& Place() const { return place_; }
  DateTime Now() const { return now_; }
  bool IsWaiting() const { return waiting_; }

 private:
  Value EvaluateReference(const Reference& reference) const;
  Value EvaluateName(const std::string& name, bool in_array);
  Value EvaluateUnary(const Node& node, bool in_array);
  Value EvaluateBinary(const Node& node, bool in_array);
  FormulaResult ToResult(const Value& value);

  const Workbook& workbook_;
  DateTime now_;
  ResultSource& results_;
  const NameTable* names_;                 ///< may be nullptr
  std::vector<std::string> format_codes_;  ///< by format; "" is not known yet
  std::vector<Value> arguments_;
  CellPlace place_ = {};
  Moves moves_ = {};
  bool waiting_ = false;
  int name_depth_ = 0;
};

}  // namespace excelexp::formula
