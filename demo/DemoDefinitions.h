#pragma once

#include <string_view>
#include <vector>

#include "platform/database/SqliteWriter.h"

namespace excelexp {

// Report definitions as data. A family file lists what its worksheets need; the order of rows is the order
// in the report, and ids and orders are counted when they are written. Item references in formulas,
// <Item#3>, name an item by that order: 1 is the first column (or row) of its report.

struct DemoPeriod {
  int year = 0;
  int period = 0;
  int sub_period = 0;
};

/// A period that a report prints, or accumulates, and the pay record type or id ("" is every one in an
/// accumulation).
struct DemoLayoutPeriod {
  DemoPeriod period;
  std::string_view pay_rec;
};

/// A column or row of a report.
struct DemoItem {
  std::string_view type;       ///< SummLvlItem, AnlysItem, CalculatedItem, BlankItem
  std::string_view item;       ///< an analysis item, "<ALL>", a bank payment, a status
  std::string_view grouping;   ///< an analysis item type, or the table of a field
  std::string_view component;  ///< what of the item, or the field
  std::string_view title;
  std::string_view scheme;
  std::string_view formula = "";
  bool main_info = false;
  bool range_in_title = false;
  std::vector<DemoLayoutPeriod> ranges = {};
};

// The ways to say an item.
DemoItem MainField(std::string_view table, std::string_view field, std::string_view title,
                   std::string_view scheme = "Body");
DemoItem Field(std::string_view table, std::string_view field, std::string_view title,
               std::string_view scheme = "Body");
DemoItem Amount(std::string_view grouping, std::string_view item, std::string_view component,
                std::string_view title, std::string_view scheme = "Amount");
/// An item of the types whose items are named by their component: pay totals, leave, movements.
DemoItem Total(std::string_view grouping, std::string_view component, std::string_view title,
               std::string_view scheme = "Amount");
/// Every analysis item of a type.
DemoItem EveryItem(std::string_view grouping, std::string_view component, std::string_view scheme = "Amount");
DemoItem Formula(std::string_view formula, std::string_view title, std::string_view scheme = "Total");
DemoItem Blank(std::string_view title = "");
/// The item summed over periods; none is every period of the data.
DemoItem Accumulated(DemoItem item, std::vector<DemoLayoutPeriod> ranges, bool range_in_title = true);

struct DemoGroup {
  std::string_view title;
  std::string_view table;
  std::string_view field;
  bool sub_total = true;
  bool employee_count = true;
};

struct DemoSort {
  std::string_view table;
  std::string_view field;
};

struct DemoProject {
  std::string_view id;
  std::string_view desc;
  std::string_view sub_type;
  std::string_view setup;
  std::string_view level = "SumLevelEmpee";
  std::string_view group_by = "PeriodGrpPd";
  std::string_view sub_group_by = "SubGrpPayRecType";
  std::string_view basis1 = "";
  std::string_view basis2 = "";
  std::string_view policy2 = "";
  std::string_view cycle_method = "CycMtdPayPeriod";
};

struct DemoFinancialRpt {
  std::string_view id;
  std::string_view desc;
  std::string_view project;
  std::string_view layout;
  std::vector<DemoItem> columns;
  std::vector<DemoItem> rows = {};
  std::vector<DemoGroup> groups = {};
  std::vector<DemoSort> sorts = {};
  bool grand_total = false;
  bool employee_count = false;
};

struct DemoEmployeeRpt {
  std::string_view id;
  std::string_view desc;
  std::string_view type;  ///< the table set
  std::vector<DemoItem> columns;
  std::vector<DemoGroup> groups = {};
  std::vector<DemoSort> sorts = {};
  std::string_view filter = "";
  bool employees_only = true;
  bool employee_count = false;
};

/// A report on a worksheet, with the period range of its data and the periods it prints (none: those of the
/// data). An employee report has neither.
struct DemoSheetItem {
  std::string_view report;
  DemoPeriod from = {};
  DemoPeriod to = {};
  std::vector<DemoLayoutPeriod> layout = {};
};

struct DemoSheet {
  std::string_view name;
  std::string_view level;
  std::string_view header;
  std::vector<DemoSheetItem> items;
  std::string_view basis1 = "";
  std::string_view basis2 = "";
  std::string_view spreadsheet = "DEMO";
  std::string_view title_scheme = "Title";
};

/// The worksheets of one family of layouts and what they print.
struct DemoFamily {
  std::vector<DemoProject> projects = {};
  std::vector<DemoFinancialRpt> financial = {};
  std::vector<DemoEmployeeRpt> employee = {};
  std::vector<DemoSheet> sheets = {};
};

DemoFamily DemoBreakdowns();
DemoFamily DemoAccumulations();
DemoFamily DemoMatrices();
DemoFamily DemoMovements();
DemoFamily DemoLeaves();
DemoFamily DemoStaff();

/// Writes the colour schemes, the spreadsheets and every family's reports and worksheets.
void WriteDemoDefinitions(SqliteWriter& writer);

}  // namespace excelexp
