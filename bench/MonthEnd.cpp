#include "bench/MonthEnd.h"

#include <cstddef>
#include <stdexcept>

#include "demo/DemoDatabase.h"
#include "platform/database/SqliteWriter.h"

namespace excelexp {
namespace {

/// Of the demo's people about a tenth joined late or left early; more are made than are wanted.
int WithSpare(int employees) {
  return employees + employees / 6 + 20;
}

// The figures an analysis copies: twelve items of the regular pay in each of the last three months. Employees
// beyond those wanted have none.
constexpr char kFigures[] = R"(
CREATE TABLE SetupMonthEnd AS
  SELECT * FROM SetupPayByType
  WHERE AnlysItemRecYear = 2024 AND AnlysItemRecPeriodMonth BETWEEN 10 AND 12 AND AnlysPayRecBasis = 'Normal'
    AND AnlysItem1Id IN ('BASIC', 'PENSION', 'BasicPay', 'TotalAllowance', 'OvertimePay', 'ShiftPay',
                         'TotalReimbursement', 'GrossWage', 'TotalDeduction', 'NetWage', 'WorkingDays',
                         'PayHeadCount')
    AND CAST(Basis1Id AS INTEGER) IN (SELECT EmployeeSysId FROM PayRecord WHERE PayRecYear = 2024
                                      AND PayRecPeriod BETWEEN 10 AND 12 AND PayRecId = 'MONTHEND'
                                      GROUP BY 1 HAVING COUNT(*) = 3 ORDER BY 1 LIMIT )";

constexpr char kDefinitions[] = R"();
INSERT INTO EmpCode1 SELECT printf('G%05d', EmployeeSysId), printf('Group %05d', EmployeeSysId) FROM Employee;
UPDATE Employee SET EmpCode1Id = printf('G%05d', (Paid.Place + 4) / 5)
  FROM (SELECT CAST(Basis1Id AS INTEGER) AS Id, ROW_NUMBER() OVER (ORDER BY CAST(Basis1Id AS INTEGER)) AS Place
        FROM SetupMonthEnd GROUP BY 1) AS Paid WHERE Paid.Id = EmployeeSysId;
CREATE INDEX EmployeeOfCode1 ON Employee (EmpCode1Id);
INSERT INTO ExcelSpreadsheet VALUES ('FLAT', '', 'Flat'), ('GROUPED', '', 'Grouped');
INSERT INTO ExcelWkSheet (WkSheetSysId, ExcelSpreadsheetId, WkSheetOrder, WkSheetName, WkSheetRptSumLvl)
  VALUES (9001, 'FLAT', 1, 'Payroll', 'SumLevelEmpee'), (9002, 'GROUPED', 1, 'Payroll', 'SumLevelEmpee');
INSERT INTO AnlysProject (AnlysProjectId, AnlysProjectType, AnlysSetupId, CycleMethod, CycleGroupBy, CycleSubGroupBy)
  VALUES ('MONTHEND', 'ProjTypePayroll', 'SetupMonthEnd', 'CycMtdPayPeriod', 'PeriodGrpPd', 'SubGrpPayRecType');
INSERT INTO FinancialRpt VALUES ('FLAT', '', 'MONTHEND', 'BreakdownList', 0, 0),
                                ('GROUPED', '', 'MONTHEND', 'BreakdownList', 0, 0);
INSERT INTO ExcelWkSheetItem VALUES (9001, 9001, 1, 'FinancialRpt', 'FLAT'), (9002, 9002, 1, 'FinancialRpt', 'GROUPED');
INSERT INTO ExcelWSItemRptOpts VALUES (9001, 2024, 10, 0, 2024, 12, 0), (9002, 2024, 10, 0, 2024, 12, 0);
INSERT INTO ExcelWSItemRptLayout
  SELECT Item.column1, Month.column1 - 9, 2024, Month.column1, 0, 'Normal'
  FROM (VALUES (9001), (9002)) AS Item JOIN (VALUES (10), (11), (12)) AS Month;
INSERT INTO FinanceColItem
  SELECT 900000 + 100 * Report.column2 + Item.column1, Report.column1, Item.column1, Item.column2, Item.column3, Item.column4,
         Item.column5, Item.column5, '', 0, Item.column2 = 'SummLvlItem', Item.column6
  FROM (VALUES ('FLAT', 1), ('GROUPED', 2)) AS Report JOIN (VALUES
    (1, 'SummLvlItem', '', 'Employee', 'EmployeeId', 'Body'),
    (2, 'SummLvlItem', '', 'Employee', 'EmployeeName', 'Name'),
    (3, 'SummLvlItem', '', 'Employee', 'PositionDesc', 'Body'),
    (4, 'SummLvlItem', '', 'Employee', 'DepartmentDesc', 'Body'),
    (5, 'AnlysItem', 'BASIC', 'PayElement', 'PayElementAmt', 'Amount'),
    (6, 'AnlysItem', 'BasicPay', 'PaySystem', 'BasicPay', 'Amount'),
    (7, 'AnlysItem', 'TotalAllowance', 'PaySystem', 'TotalAllowance', 'Amount'),
    (8, 'AnlysItem', 'OvertimePay', 'PaySystem', 'OvertimePay', 'Amount'),
    (9, 'AnlysItem', 'ShiftPay', 'PaySystem', 'ShiftPay', 'Amount'),
    (10, 'AnlysItem', 'TotalReimbursement', 'PaySystem', 'TotalReimbursement', 'Amount'),
    (11, 'AnlysItem', 'GrossWage', 'PaySystem', 'GrossWage', 'Total'),
    (12, 'AnlysItem', 'PENSION', 'Deduction', 'DeductionAmt', 'Deduct'),
    (13, 'AnlysItem', 'TotalDeduction', 'PaySystem', 'TotalDeduction', 'Deduct'),
    (14, 'AnlysItem', 'NetWage', 'PaySystem', 'NetWage', 'Total'),
    (15, 'AnlysItem', 'WorkingDays', 'PaySystem', 'WorkingDays', 'Note'),
    (16, 'AnlysItem', 'PayHeadCount', 'PaySystem', 'PayHeadCount', 'Note')) AS Item;
INSERT INTO FinanceGrpItem VALUES (9001, 'GROUPED', 1, 'Group', 'Employee', 'EmpCode1Id', 1, 1, 'DefColourScheme');
)";

constexpr char kStoredRecords[] = R"(
INSERT INTO AnlysItemRecord
  (AnlysProjectId, AnlysIPAddress, AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod, AnlysPayRecBasis,
   Basis1Id, AnlysDispSectionId, AnlysItem1Id, AnlysItem2Id, AnlysItem3Id, AnlysItem4Id, AnlysItem5Id, AnlysItemDesc,
   AnlysLookUpId, AnlysAmount1, AnlysAmount2, AnlysDoubleValue3, AnlysCount1)
  SELECT 'MONTHEND', 'stored_1', * FROM SetupMonthEnd;
)";

}  // namespace

void WriteMonthEnd(const std::string& file, int employees) {
  DemoOptions options;
  options.employees = WithSpare(employees);
  WriteDemoDatabase(file, options);
  SqliteWriter writer(file);
  writer.Transaction([&] { writer.ExecuteScript(kFigures + std::to_string(employees) + kDefinitions); });
  if (writer.Rows("SELECT DISTINCT Basis1Id FROM SetupMonthEnd").size() !=
      static_cast<std::size_t>(employees)) {
    throw std::runtime_error("the demo has too few people for a month-end of " + std::to_string(employees));
  }
}

void StoreRecords(const std::string& file) {
  SqliteWriter writer(file);
  writer.Transaction([&] { writer.ExecuteScript(kStoredRecords); });
}

}  // namespace excelexp
