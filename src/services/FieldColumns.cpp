#include "services/FieldColumns.h"

#include <string>

#include "services/BExcelExpEngCalcFields.h"

namespace excelexp {

std::shared_ptr<std::vector<KnownColumnItem>> FieldColumns(BExcelExpEngCore* core, Query& rows,
                                                           const FieldColumnNames& names, int by_employee) {
  const auto text = [&rows](std::string_view name) { return rows.FieldByName(name).AsString(); };
  const std::string context = std::to_string(by_employee) + "\n" + core->ExcelWkSheetTitleColourSchemeId;
  return core->Memory->ItemsOf(rows, context, [&] {
    KnownColumnItem column;
    column.type = text(names.item_type);
    column.grouping = text(names.table);
    column.component = text(names.field);
    column.title = text(names.title);
    column.scheme = text("ColourSchemeId");
    core->CalcFields->Search(column.grouping, column.component, by_employee, nullptr);
    column.select = core->CalcFields->GetSelectList();
    column.field_type = core->CalcFields->GetFieldType();
    return column;
  });
}

}  // namespace excelexp
