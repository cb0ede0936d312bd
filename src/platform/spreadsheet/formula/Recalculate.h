#pragma once

#include "platform/host/DateTime.h"
#include "platform/spreadsheet/Workbook.h"
#include "platform/spreadsheet/formula/Evaluator.h"

namespace excelexp::formula {

/// Computes the result of every formula of the workbook, in dependency order; a cycle shows 0, as the
/// application shows it when it does not iterate. A formula that calls a function outside the evaluator's
/// list, or depends on one that does, gets FormulaResult::kUnknown. `now` is what NOW() and TODAY() see.
void Recalculate(Workbook& workbook, DateTime now);

/// Computes one formula as if it stood at `place`, with the results that the workbook's formulas have and
/// with `names`.
FormulaResult Evaluate(const Workbook& workbook, const Expression& expression, const CellPlace& place,
                       DateTime now, const NameTable& names = {});

}  // namespace excelexp::formula
