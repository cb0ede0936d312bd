#include <algorithm>
#include <iterator>
#include <vector>

#include "platform/spreadsheet/formula/Call.h"
#include "platform/spreadsheet/formula/Criterion.h"

namespace excelexp::formula {
namespace {

/// Blocks of the same shape with a condition each, and a block whose cells are used where all conditions
/// hold.
struct Conditions {
  std::vector<const Area*> areas;
  std::vector<Criterion> criteria;

  /// An argument pair; throws #VALUE! for another shape than the first pair's.
  void Add(Call& call, std::size_t i) {
    const Area& area = call.Cells(i);
    if (!areas.empty() && (area.Rows() != areas[0]->Rows() || area.Columns() != areas[0]->Columns())) {
      throw FormulaError{ErrorCode::kValue};
    }
    areas.push_back(&area);
    criteria.emplace_back(call.Cells().ToScalar(call[i + 1]));
  }

  bool HoldAt(Evaluator& evaluator, int row, int column) const {
    for (std::size_t i = 0; i < areas.size(); ++i) {
      const CellRange& range = areas[i]->range;
      const Value cell =
          evaluator.ReadCell(*areas[i]->sheet, range.first_row + row, range.first_col + column);
      if (!criteria[i].Fits(cell)) return false;
    }
    return true;
  }

  bool HoldForEmpty() const {
    return std::all_of(criteria.begin(), criteria.end(),
                       [](const Criterion& criterion) { return criterion.Fits({}); });
  }
};

/// How far cells exist below and right of an area's corner, within `rows` and `columns`.
void Reach(const Area& area, int rows, int columns, int& used_rows, int& used_columns) {
  used_rows = std::max(used_rows, std::min(rows, area.sheet->LastRow() - area.range.first_row + 1));
  used_columns =
      std::max(used_columns, std::min(columns, area.sheet->LastColumn() - area.range.first_col + 1));
}

/// Calls use(row, column), counted from the corner, where all conditions hold and cells exist; `used` reaches
/// as far as the conditions do. Returns how often they hold, among cells that do not exist as well.
template <typename Use>
double ForEachFit(Evaluator& evaluator, const Conditions& conditions, const Area& used, Use use) {
  const int rows = conditions.areas[0]->Rows();
  const int columns = conditions.areas[0]->Columns();
  int used_rows = 0;
  int used_columns = 0;
  for (const Area* area : conditions.areas) Reach(*area, rows, columns, used_rows, used_columns);
  Reach(used, rows, columns, used_rows, used_columns);

  double fitting = 0.0;
  for (int row = 0; row < used_rows; ++row) {
    for (int column = 0; column < used_columns; ++column) {
      if (!conditions.HoldAt(evaluator, row, column)) continue;
      fitting += 1.0;
      use(row, column);
    }
  }
  const double beyond = static_cast<double>(rows) * columns - static_cast<double>(used_rows) * used_columns;
  return beyond > 0.0 && conditions.HoldForEmpty() ? fitting + beyond : fitting;
}

struct Totals {
  Sum sum;
  double numbers = 0.0;
};

/// `used`: whose cells are summed; its upper left corner counts, its shape is the conditions'.
Totals Collect(Call& call, const Conditions& conditions, const Area& used) {
  Evaluator& evaluator = call.Cells();
  Totals totals;
  ForEachFit(evaluator, conditions, used, [&](int row, int column) {
    const Value value =
        evaluator.ReadCell(*used.sheet, used.range.first_row + row, used.range.first_col + column);
    if (value.IsError()) throw FormulaError{value.error};
    if (value.type != ValueType::kNumber) return;
    totals.sum.Add(value.number);
    totals.numbers += 1.0;
  });
  return totals;
}

Value SumOf(const Totals& totals) {
  return Value::Number(totals.sum.Total());
}

Value AverageOf(const Totals& totals) {
  return totals.numbers == 0.0 ? Value::Error(ErrorCode::kDivZero)
                               : Value::Number(totals.sum.Total() / totals.numbers);
}

/// SUMIF, AVERAGEIF: range, condition, cells to use (the range itself when absent).
template <Value (*result)(const Totals&)>
Value OneCondition(Call& call) {
  Conditions conditions;
  conditions.Add(call, 0);
  return result(Collect(call, conditions, call.Cells(call.Count() > 2 ? 2 : 0)));
}

/// SUMIFS, AVERAGEIFS: cells to use, then pairs of range and condition.
template <Value (*result)(const Totals&)>
Value SeveralConditions(Call& call) {
  if (call.Count() % 2 == 0) return Value::Error(ErrorCode::kValue);
  Conditions conditions;
  for (std::size_t i = 1; i < call.Count(); i += 2) conditions.Add(call, i);
  const Area& used = call.Cells(0);
  if (used.Rows() != conditions.areas[0]->Rows() || used.Columns() != conditions.areas[0]->Columns()) {
    return Value::Error(ErrorCode::kValue);
  }
  return result(Collect(call, conditions, used));
}

/// COUNTIF and COUNTIFS. Errors among the cells are only cells that fit or do not.
Value CountFitting(Call& call) {
  if (call.Count() % 2 != 0) return Value::Error(ErrorCode::kValue);
  Conditions conditions;
  for (std::size_t i = 0; i < call.Count(); i += 2) conditions.Add(call, i);
  return Value::Number(ForEachFit(call.Cells(), conditions, *conditions.areas[0], [](int, int) {}));
}

constexpr Implementation kFunctions[] = {
    {"AVERAGEIF", Arguments::kOperands, OneCondition<AverageOf>},
    {"AVERAGEIFS", Arguments::kOperands, SeveralConditions<AverageOf>},
    {"COUNTIF", Arguments::kOperands, CountFitting},
    {"COUNTIFS", Arguments::kOperands, CountFitting},
    {"SUMIF", Arguments::kOperands, OneCondition<SumOf>},
    {"SUMIFS", Arguments::kOperands, SeveralConditions<SumOf>},
};

}  // namespace

std::span<const Implementation> ConditionalFunctions() {
  return kFunctions;
}

}  // namespace excelexp::formula
