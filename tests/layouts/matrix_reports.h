#pragma once

#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

namespace excelexp {

/// Two employees, 1 and 2, on a worksheet "Sheet" of spreadsheet "S", in the order of their ids. Basic pay in
/// January to March 2024; allowances, a head count, a remark, a cheque and overtime here and there, so that
/// most rows lack a record somewhere. March carries February's values and the differences too.
inline std::string MatrixPayroll() {
  std::string sql = MiniPayrollSql();
  for (int period = 1; period <= 3; ++period) {
    sql += Record(2024, period, "Normal", "1", "PayElement", "BASIC", "Basic pay", 1000 + period) +
           Record(2024, period, "Normal", "2", "PayElement", "BASIC", "Basic pay", 2000 + 10 * period);
  }
  sql += Record(2024, 2, "Normal", "1", "Allowance", "TRANSPORT", "Transport", 50.5) +
         Record(2024, 3, "Normal", "1", "Allowance", "TRANSPORT", "Transport", 60) +
         Record(2024, 2, "Normal", "2", "Allowance", "MEAL", "Meal", 20) +
         Record(2024, 1, "Normal", "1", "PaySystem", "PayHeadCount", "Head count", 0) +
         Record(2024, 1, "Normal", "1", "BankRecord", "BR01", "Cheque", 700, "", "", "ByCheque_1") +
         Record(2024, 3, "Normal", "1", "BankRecord", "BR01", "Cheque", 710, "", "", "ByCheque_1") +
         Record(2024, 3, "Normal", "1", "OTRecord", "OT15", "Overtime 1.5", 90);
  return sql + R"(
UPDATE MiniRecords SET AnlysText1 = 'probation' WHERE Basis1Id = '1' AND AnlysItemRecPeriodMonth = 1;
UPDATE MiniRecords SET AnlysCount1 = 1 WHERE AnlysItem1Id = 'PayHeadCount';
UPDATE MiniRecords SET AnlysFAmount1 = AnlysAmount1 - 5, AnlysDoubleValue1 = 5, AnlysDoubleValue3 = 1.5,
                       AnlysItem4Id = 'SGD'
  WHERE AnlysItemRecPeriodMonth = 3;
INSERT INTO AnItemLookup VALUES ('PayElement', 'Remark', '', 'AnlysText1', '', '');
INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Employee', 'EmployeeId');
)" + SpreadsheetSql("S", "SumLevelEmpee");
}

/// A row of one analysis item.
inline std::string AnalysisRow(int order, const std::string& grouping, const std::string& item,
                               const std::string& component, const std::string& title) {
  return RowItemSql(
      {.order = order, .item = item, .grouping = grouping, .component = component, .title = title});
}

inline std::string BasicRow(int order) {
  return AnalysisRow(order, "PayElement", "BASIC", "PayElementAmt", "Basic");
}

inline std::string AllAllowanceRows(int order) {
  return AnalysisRow(order, "Allowance", "<ALL>", "AllowanceAmt", "not shown");
}

/// A column with a field of the employee.
inline std::string EmployeeColumn(int order, const std::string& field, const std::string& title,
                                  int main_info = 0, const std::string& report = "R1") {
  return ColumnItemSql({.report = report,
                        .order = order,
                        .type = "SummLvlItem",
                        .grouping = "Employee",
                        .component = field,
                        .title = title,
                        .main_info = main_info});
}

}  // namespace excelexp
