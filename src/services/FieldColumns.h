#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "engine/BExcelExpEngCore.h"
#include "services/DefinitionMemory.h"

namespace excelexp {

/// Where a definition table says what a column shows of an entity.
struct FieldColumnNames {
  std::string_view item_type;
  std::string_view table;  ///< with field, what the calculated-fields service searches
  std::string_view field;
  std::string_view title;
};

inline constexpr FieldColumnNames kEmployeeReportColumns = {"EmpColItemType", "EmpColSysTableId",
                                                            "EmpColSysAttributeId", "EmpColItemTitle"};
inline constexpr FieldColumnNames kFinancialReportColumns = {"FinColItemType", "FinColGrouping",
                                                             "FinColComponent", "FinColItemTitle"};

/// The column items of a definition's rows, with how their fields are selected and of which type they are.
/// `by_employee` is that of BExcelExpEngCalcFields, which is searched for each item. What the run knows
/// already is not asked again.
std::shared_ptr<std::vector<KnownColumnItem>> FieldColumns(BExcelExpEngCore* core, Query& rows,
                                                           const FieldColumnNames& names, int by_employee);

}  // namespace excelexp
