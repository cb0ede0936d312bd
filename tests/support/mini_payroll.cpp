#include "support/mini_payroll.h"

#include "platform/database/SqlText.h"
#include "platform/host/Format.h"

namespace excelexp {
namespace {

std::string Values(const std::vector<std::string>& texts) {
  std::string list;
  for (const std::string& text : texts) list += (list.empty() ? "" : ", ") + text;
  return "(" + list + ");\n";
}

}  // namespace

std::string MiniPayrollSql() {
  return R"(
INSERT INTO ColourScheme (ColourSchemeId, ColourCodeId) VALUES ('Title', 'Blue'), ('Body', 'Black');
INSERT INTO Company (CompanyId, CompanyName) VALUES ('001', 'Harbour Works');
INSERT INTO Department VALUES ('SAL', 'Sales'), ('WRK', 'Works');
INSERT INTO Section VALUES ('E', 'East'), ('W', 'West');
INSERT INTO Personal (PersonalSysId, PersonalName, IdentityNo, Gender) VALUES
  (11, 'Ana Berg', 'P11', '0'), (12, 'Ben Cole', 'P12', '1'), (13, 'Cy Dunn', 'P13', '1'), (14, 'Di Ewing', 'P14', '0'),
  (15, 'Ed Frost', 'P15', '1');
INSERT INTO Employee (EmployeeSysId, PersonalSysId, EmployeeId, EmployeeName, CompanyId, DepartmentId, SectionId, HireDate)
VALUES
  (1, 11, 'E01', 'Ana Berg', '001', 'SAL', 'E', '2019-02-01'), (2, 12, 'E02', 'Ben Cole', '001', 'SAL', 'E', '2020-03-01'),
  (3, 13, 'E03', 'Cy Dunn', '001', 'SAL', 'W', '2021-04-01'), (4, 14, 'E04', 'Di Ewing', '001', 'WRK', 'E', '2022-05-01'),
  (5, 15, 'E05', 'Ed Frost', '001', 'WRK', 'E', '2023-06-01');
CREATE TABLE MiniRecords AS SELECT * FROM AnlysItemRecord WHERE 0;
)";
}

std::string Record(int year, int period, const std::string& pay_record, const std::string& basis1,
                   const std::string& item_type, const std::string& item, const std::string& description,
                   double amount, const std::string& basis2, const std::string& basis3,
                   const std::string& item5) {
  return "INSERT INTO MiniRecords (AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod, "
         "AnlysPayRecBasis, "
         "Basis1Id, AnlysDispSectionId, AnlysItem1Id, AnlysItemDesc, AnlysAmount1, Basis2Id, Basis3Id, "
         "AnlysItem5Id, "
         "AnlysItem2Id, AnlysItem3Id, AnlysItem4Id, AnlysLookUpId, SysAttributeCountry, AnlysAmount2, "
         "AnlysFAmount1, "
         "AnlysFAmount2, AnlysDoubleValue1, AnlysDoubleValue2, AnlysDoubleValue3, AnlysCount1, AnlysCount2, "
         "AnlysCount3, "
         "AnlysFlag1, AnlysText1) VALUES " +
         Values({std::to_string(year),
                 std::to_string(period),
                 "0",
                 SqlText(pay_record),
                 SqlText(basis1),
                 SqlText(item_type),
                 SqlText(item),
                 SqlText(description),
                 FloatToText(amount),
                 SqlText(basis2),
                 SqlText(basis3),
                 SqlText(item5),
                 "''",
                 "''",
                 "''",
                 "''",
                 "''",
                 "0",
                 "0",
                 "0",
                 "0",
                 "0",
                 "0",
                 "0",
                 "0",
                 "0",
                 "0",
                 "''"});
}

std::string SpreadsheetSql(const std::string& id, const std::string& summary_level) {
  return "INSERT INTO ExcelSpreadsheet VALUES (" + SqlText(id) + ", '', 'Mini');\n" +
         "INSERT INTO ExcelWkSheet (WkSheetSysId, ExcelSpreadsheetId, WkSheetOrder, WkSheetName, "
         "WkSheetRptSumLvl, "
         "WkSheetTitleColourSchemeId) VALUES " +
         Values({"1", SqlText(id), "1", "'Sheet'", SqlText(summary_level), "'Title'"});
}

std::string FinancialItemSql(const FinancialItem& item) {
  const std::string sys_id = std::to_string(100 + item.ordering);
  return "INSERT INTO AnlysProject (AnlysProjectId, AnlysProjectSubType, AnlysSetupId, CycleMethod, "
         "CycleGroupBy, "
         "CycleSubGroupBy, SummaryLevel) VALUES " +
         Values({SqlText(item.id), SqlText(item.sub_type), SqlText(item.setup), SqlText(item.cycle_method),
                 SqlText(item.cycle_group_by), SqlText(item.cycle_sub_group_by), SqlText(item.level)}) +
         "INSERT INTO FinancialRpt VALUES " +
         Values({SqlText(item.id), "''", SqlText(item.id), SqlText(item.layout),
                 std::to_string(item.grand_total), std::to_string(item.employee_count)}) +
         "INSERT INTO ExcelWkSheetItem VALUES " +
         Values({sys_id, "1", std::to_string(item.ordering), "'FinancialRpt'", SqlText(item.id)}) +
         "INSERT INTO ExcelWSItemRptOpts (WkSheetItemSysId) VALUES " + Values({sys_id});
}

std::string ColumnItemSql(const ColumnItem& item) {
  return "INSERT INTO FinanceColItem (FinancialRptId, FinColItemOrder, FinColItemType, FinColItem, "
         "FinColGrouping, "
         "FinColComponent, FinColItemTitle, FinColExcelFormula, FinColIncAccuRange, FinColIsRptMainInfo, "
         "ColourSchemeId, FinColItemSysId) SELECT " +
         SqlText(item.report) + ", " + std::to_string(item.order) + ", " + SqlText(item.type) + ", " +
         SqlText(item.item) + ", " + SqlText(item.grouping) + ", " + SqlText(item.component) + ", " +
         SqlText(item.title) + ", " + SqlText(item.formula) + ", " + std::to_string(item.accumulates_text) +
         ", " + std::to_string(item.main_info) + ", " + SqlText(item.scheme) +
         ", COALESCE(MAX(FinColItemSysId), 0) + 1 FROM FinanceColItem;\n";
}

std::string RowItemSql(const RowItem& item) {
  return "INSERT INTO FinanceRowItem (FinancialRptId, FinRowItemOrder, FinRowItemType, FinRowItem, "
         "FinRowGrouping, FinRowComponent, FinRowItemTitle, FinRowExcelFormula, ColourSchemeId, "
         "FinRowItemSysId) SELECT " +
         SqlText(item.report) + ", " + std::to_string(item.order) + ", " + SqlText(item.type) + ", " +
         SqlText(item.item) + ", " + SqlText(item.grouping) + ", " + SqlText(item.component) + ", " +
         SqlText(item.title) + ", " + SqlText(item.formula) + ", " + SqlText(item.scheme) +
         ", COALESCE(MAX(FinRowItemSysId), 0) + 1 FROM FinanceRowItem;\n";
}

std::string ChosenPeriodSql(int year, int period, const std::string& pay_record, int sub_period,
                            int ordering) {
  return "INSERT INTO ExcelWSItemRptLayout SELECT " + std::to_string(100 + ordering) + ", COUNT(*) + 1, " +
         std::to_string(year) + ", " + std::to_string(period) + ", " + std::to_string(sub_period) + ", " +
         SqlText(pay_record) + " FROM ExcelWSItemRptLayout;\n";
}

std::string PeriodRangeSql(int from_year, int from_period, int to_year, int to_period, int ordering) {
  return "UPDATE ExcelWSItemRptOpts SET WSItemFromYear = " + std::to_string(from_year) +
         ", WSItemFromMthPeriod = " + std::to_string(from_period) +
         ", WSItemToYear = " + std::to_string(to_year) +
         ", WSItemToMthPeriod = " + std::to_string(to_period) +
         " WHERE WkSheetItemSysId = " + std::to_string(100 + ordering) + ";\n";
}

std::string ListByEmployeeSql() {
  return ColumnItemSql({.order = 1,
                        .type = "SummLvlItem",
                        .grouping = "Employee",
                        .component = "EmployeeId",
                        .title = "No.",
                        .main_info = 1}) +
         "INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Employee', 'EmployeeId');\n";
}

std::string RangeSql(int column_item, int year, int period, int sub_period, const std::string& pay_record) {
  return "INSERT INTO FinColAccumulated VALUES " +
         Values({std::to_string(column_item), std::to_string(year), std::to_string(period),
                 std::to_string(sub_period), SqlText(pay_record)});
}

std::string GroupSql(int order, const std::string& table, const std::string& field, const std::string& title,
                     int sub_total, int employee_count) {
  return "INSERT INTO FinanceGrpItem VALUES " +
         Values({std::to_string(order), "'R1'", std::to_string(order), SqlText(title), SqlText(table),
                 SqlText(field), std::to_string(sub_total), std::to_string(employee_count), "'Body'"});
}

std::string ShownColumnSql(const std::string& component, const std::string& column, const std::string& value,
                           const std::string& condition) {
  return "UPDATE MiniRecords SET " + column + " = " + value + " WHERE " + condition +
         "; UPDATE AnItemLookup SET AnlysMapField = '" + column + "' WHERE AnlysLookupId = '" + component +
         "';";
}

}  // namespace excelexp
