#include "platform/spreadsheet/formula/Recalculate.h"

namespace excelexp::formula {

// No evaluator yet: results stay unknown, and the saved file asks the application to compute them.
void Recalculate(Workbook& workbook, DateTime /*now*/) {
  for (std::uint32_t i = 0; i < workbook.FormulaCount(); ++i) workbook.FormulaAt(i).result = {};
}

}  // namespace excelexp::formula
