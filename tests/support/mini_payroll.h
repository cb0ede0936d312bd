#pragma once

#include <string>

namespace excelexp {

/// A payroll small enough to check by hand: employees 1 to 5 in departments Sales (sections East, West) and
/// Works (section East), colour schemes "Title" and "Body", and the setup table MiniRecords for pay projects.
std::string MiniPayrollSql();

/// A row of MiniRecords: `columns` beside the period as "column = value" pairs would be read, e.g.
/// Record(2024, 1, "Normal", "1", "PayElement", "BASIC", "Basic pay", 3000).
std::string Record(int year, int period, const std::string& pay_record, const std::string& basis1,
                   const std::string& item_type, const std::string& item, const std::string& description,
                   double amount, const std::string& basis2 = "", const std::string& basis3 = "",
                   const std::string& item5 = "");

/// A spreadsheet `id` (file name "Mini") with one worksheet "Sheet" of number 1 at that summary level.
std::string SpreadsheetSql(const std::string& id, const std::string& summary_level);

/// A financial report `id` on a project of its own (`id` too) over the setup table, as an item of
/// worksheet 1.
struct FinancialItem {
  std::string id = "R1";
  int ordering = 1;
  std::string layout = "BreakdownList";
  std::string sub_type = "ProjSubTypePayRec";
  std::string level = "SumLevelEmpee";
  std::string cycle_method = "CycMtdPayPeriod";
  std::string cycle_group_by = "CalenGrpMth";
  std::string cycle_sub_group_by = "";
  std::string setup = "MiniRecords";
  int grand_total = 0;
  int employee_count = 0;
};
std::string FinancialItemSql(const FinancialItem& item);

/// Gives a column of the records (those that meet the condition) a value, and lets a component show it.
std::string ShownColumnSql(const std::string& component, const std::string& column, const std::string& value,
                           const std::string& condition = "1");

/// A column item of a report; orders follow the calls' `order`.
struct ColumnItem {
  std::string report = "R1";
  int order = 1;
  std::string type = "AnlysItem";
  std::string item = "";
  std::string grouping = "";
  std::string component = "";
  std::string title = "";
  std::string formula = "";
  int main_info = 0;
  int accumulates_text = 0;
  std::string scheme = "Body";
};
std::string ColumnItemSql(const ColumnItem& item);

/// A row item of a report.
struct RowItem {
  std::string report = "R1";
  int order = 1;
  std::string type = "AnlysItem";
  std::string item = "";
  std::string grouping = "";
  std::string component = "";
  std::string title = "";
  std::string formula = "";
  std::string scheme = "Body";
};
std::string RowItemSql(const RowItem& item);

/// A pay period chosen for the item of that ordering; the periods print in the order of the calls.
std::string ChosenPeriodSql(int year, int period, const std::string& pay_record = "Normal",
                            int sub_period = 0, int ordering = 1);

/// The period range of the item of that ordering.
std::string PeriodRangeSql(int from_year, int from_period, int to_year, int to_period, int ordering = 1);

/// What a band of report R1 begins with: the employee's number, in the order of these. Column item 1.
std::string ListByEmployeeSql();

/// A period that the column item accumulates; items have the system ids 1, 2, ... as they were made.
std::string RangeSql(int column_item, int year, int period, int sub_period, const std::string& pay_record);

/// A grouping level of report R1.
std::string GroupSql(int order, const std::string& table, const std::string& field, const std::string& title,
                     int sub_total, int employee_count);

}  // namespace excelexp
