#include "demo/DemoDefinitions.h"

#include <string>
#include <utility>

#include "demo/DemoTable.h"

namespace excelexp {
namespace {

struct Scheme {
  std::string_view id;
  std::string_view desc;
  std::string_view colour;
  int size;
  std::string_view style;
  std::string_view underline;
  int width;   ///< characters; the last scheme in a column decides
  int height;  ///< points
};

constexpr Scheme kSchemes[] = {
    {"Header", "Lines above a report", "DarkTeal", 14, "FontBold", "UnderlineNone", 16, 20},
    {"Footer", "Lines below a report", "Grey50", 8, "FontItalic", "UnderlineNone", 16, 12},
    {"Title", "Headings and total labels", "DarkBlue", 9, "FontBold", "UnderlineNone", 16, 15},
    {"TitleThreeLines", "Headings of three lines", "DarkBlue", 9, "FontBold", "UnderlineNone", 16, 39},
    {"Group", "Values of group headings", "SeaGreen", 10, "FontBoldItalic", "UnderlineNone", 26, 15},
    {"Body", "Texts", "Black", 9, "FontRegular", "UnderlineNone", 16, 13},
    {"Name", "Names", "Black", 9, "FontRegular", "UnderlineNone", 26, 13},
    {"Amount", "Amounts", "Black", 9, "FontRegular", "UnderlineNone", 12, 13},
    {"AmountWide", "Amounts below a heading that tells its periods", "Black", 9, "FontRegular",
     "UnderlineNone", 30, 13},
    {"Deduct", "Amounts taken off", "DarkRed", 9, "FontRegular", "UnderlineNone", 12, 13},
    {"Total", "Totals of a row", "DarkBlue", 9, "FontBold", "UnderlineSingleAccounting", 13, 13},
    {"Note", "Remarks and codes", "Grey50", 9, "FontItalic", "UnderlineNone", 12, 13},
};

constexpr std::string_view kFooter = "Harbourlight Group - confidential\r\nPrinted <DateTime>";

/// Bytes of a text, for a blob column.
std::vector<std::uint8_t> Bytes(std::string_view text) {
  return {text.begin(), text.end()};
}

class DefinitionWriter {
 public:
  explicit DefinitionWriter(SqliteWriter& writer) : writer_(writer) {}

  void WriteSchemes() {
    DemoTable schemes(writer_,
                      "ColourScheme (ColourSchemeId, ColourSchemeDesc, ColourCodeId, ColourSchSize, "
                      "ColourSchFontStyle, ColourSchUnderline, ColourSchCellWidth, ColourSchCellHeight)");
    for (const Scheme& scheme : kSchemes) {
      schemes.Insert({scheme.id, scheme.desc, scheme.colour, scheme.size, scheme.style, scheme.underline,
                      scheme.width, scheme.height});
    }
  }

  void WriteSpreadsheets() {
    DemoTable spreadsheets(writer_,
                           "ExcelSpreadsheet (ExcelSpreadsheetId, ExcelSpreadsheetDesc, ExcelRptFileName)");
    spreadsheets.Insert({"DEMO", "Payroll and staff reports", "Payroll"});
    spreadsheets.Insert({"STAFF", "Staff list", "Staff"});
  }

  void WriteFamily(const DemoFamily& family) {
    for (const DemoProject& project : family.projects) WriteProject(project);
    for (const DemoFinancialRpt& report : family.financial) WriteFinancialRpt(report);
    for (const DemoEmployeeRpt& report : family.employee) WriteEmployeeRpt(report);
    for (const DemoSheet& sheet : family.sheets) WriteSheet(sheet, family);
  }

 private:
  void WriteProject(const DemoProject& project) {
    projects_.Insert({project.id, project.desc, "ProjTypePayroll", project.sub_type, project.setup,
                      project.cycle_method, project.group_by, project.sub_group_by, project.level,
                      project.basis1, project.basis2, project.policy2});
  }

  void WriteFinancialRpt(const DemoFinancialRpt& report) {
    reports_.Insert(
        {report.id, report.desc, report.project, report.layout, report.grand_total, report.employee_count});
    int order = 0;
    for (const DemoItem& item : report.columns) {
      columns_.Insert({++column_id_, report.id, ++order, item.type, item.item, item.grouping, item.component,
                       item.title, item.formula, item.range_in_title, item.main_info, item.scheme});
      for (const DemoLayoutPeriod& range : item.ranges) {
        ranges_.Insert(
            {column_id_, range.period.year, range.period.period, range.period.sub_period, range.pay_rec});
      }
    }
    order = 0;
    for (const DemoItem& item : report.rows) {
      rows_.Insert({++row_id_, report.id, ++order, item.type, item.item, item.grouping, item.component,
                    item.title, item.formula, item.scheme});
    }
    order = 0;
    for (const DemoGroup& group : report.groups) {
      groups_.Insert({++group_id_, report.id, ++order, group.title, group.table, group.field, group.sub_total,
                      group.employee_count, "Group"});
    }
    order = 0;
    for (const DemoSort& sort : report.sorts) {
      sorts_.Insert({++sort_id_, report.id, ++order, sort.table, sort.field});
    }
  }

  void WriteEmployeeRpt(const DemoEmployeeRpt& report) {
    emp_reports_.Insert({report.id, report.desc, report.type, !report.filter.empty(), report.filter,
                         report.employees_only, report.employee_count});
    int order = 0;
    for (const DemoItem& item : report.columns) {
      emp_columns_.Insert({++emp_column_id_, report.id, ++order, item.main_info, item.type, item.grouping,
                           item.component, item.title, item.scheme});
    }
    order = 0;
    for (const DemoGroup& group : report.groups) {
      emp_groups_.Insert({++emp_group_id_, report.id, ++order, group.table, group.field, group.title,
                          group.employee_count, "Group"});
    }
    order = 0;
    for (const DemoSort& sort : report.sorts) {
      emp_sorts_.Insert({++emp_sort_id_, report.id, ++order, sort.table, sort.field});
    }
  }

  void WriteSheet(const DemoSheet& sheet, const DemoFamily& family) {
    sheets_.Insert({++sheet_id_, sheet.spreadsheet, sheet_id_, sheet.name, sheet.level, sheet.basis1,
                    sheet.basis2, sheet.title_scheme, 1, 1, "Header", "Footer", Bytes(sheet.header),
                    Bytes(kFooter)});
    int order = 0;
    for (const DemoSheetItem& item : sheet.items) WriteSheetItem(item, ++order, family);
  }

  void WriteSheetItem(const DemoSheetItem& item, int order, const DemoFamily& family) {
    const bool employee = IsEmployeeRpt(item.report, family);
    items_.Insert({++item_id_, sheet_id_, order, employee ? "EmployeeRpt" : "FinancialRpt", item.report});
    if (employee) return;
    options_.Insert({item_id_, item.from.year, item.from.period, item.from.sub_period, item.to.year,
                     item.to.period, item.to.sub_period});
    int layout_order = 0;
    for (const DemoLayoutPeriod& layout : item.layout) {
      layout_.Insert({item_id_, ++layout_order, layout.period.year, layout.period.period,
                      layout.period.sub_period, layout.pay_rec});
    }
  }

  static bool IsEmployeeRpt(std::string_view id, const DemoFamily& family) {
    for (const DemoEmployeeRpt& report : family.employee) {
      if (report.id == id) return true;
    }
    return false;
  }

  SqliteWriter& writer_;
  int column_id_ = 0;
  int row_id_ = 0;
  int group_id_ = 0;
  int sort_id_ = 0;
  int emp_column_id_ = 0;
  int emp_group_id_ = 0;
  int emp_sort_id_ = 0;
  int sheet_id_ = 0;
  int item_id_ = 0;
  DemoTable projects_{
      writer_,
      "AnlysProject (AnlysProjectId, AnlysProjectDesc, AnlysProjectType, AnlysProjectSubType, "
      "AnlysSetupId, CycleMethod, CycleGroupBy, CycleSubGroupBy, SummaryLevel, Basis1, Basis2, "
      "BasisPolicyId2)"};
  DemoTable reports_{writer_,
                     "FinancialRpt (FinancialRptId, FinancialRptDesc, FinancialAnalysProjId, LayoutSchemeId, "
                     "FinancialHasGrandTot, FinancialHasTotEmpCt)"};
  DemoTable columns_{writer_,
                     "FinanceColItem (FinColItemSysId, FinancialRptId, FinColItemOrder, FinColItemType, "
                     "FinColItem, FinColGrouping, FinColComponent, FinColItemTitle, FinColExcelFormula, "
                     "FinColIncAccuRange, FinColIsRptMainInfo, ColourSchemeId)"};
  DemoTable ranges_{writer_,
                    "FinColAccumulated (FinColItemSysId, FinColAccuYear, FinColAccuMthPeriod, "
                    "FinColAccuSubPeriod, FinColAccuPayRecIdType)"};
  DemoTable rows_{writer_,
                  "FinanceRowItem (FinRowItemSysId, FinancialRptId, FinRowItemOrder, FinRowItemType, "
                  "FinRowItem, FinRowGrouping, FinRowComponent, FinRowItemTitle, FinRowExcelFormula, "
                  "ColourSchemeId)"};
  DemoTable groups_{writer_,
                    "FinanceGrpItem (FinGrpItemSysId, FinancialRptId, FinGrpItemOrder, FinGrpItemTitle, "
                    "FinGrpGrouping, FinGrpComponent, FinGrpHasSubTotal, FinGrpHasEmpCount, ColourSchemeId)"};
  DemoTable sorts_{writer_,
                   "FinanceSortItem (FinSortItemSysId, FinancialRptId, FinSortItemOrder, FinSortGrouping, "
                   "FinSortComponent)"};
  DemoTable emp_reports_{writer_,
                         "EmployeeRpt (EmpInfoRptId, EmpInfoRptDesc, EmpInfoRptType, EmployeeRptHasFilter, "
                         "EmployeeRptFilterCond, EmployeeRptHasEmpOnly, EmployeeRptHasEmpCt)"};
  DemoTable emp_columns_{writer_,
                         "EmpColItem (EmpColItemSysId, EmpInfoRptId, EmpColItemOrder, EmpColIsRptMainInfo, "
                         "EmpColItemType, EmpColSysTableId, EmpColSysAttributeId, EmpColItemTitle, "
                         "ColourSchemeId)"};
  DemoTable emp_groups_{writer_,
                        "EmpGrpItem (EmpGrpItemSysId, EmpInfoRptId, EmpGrpItemOrder, EmpGrpSysTableId, "
                        "EmpGrpSysAttributeId, EmpGrpItemTitle, EmpGrpHasEmpCount, ColourSchemeId)"};
  DemoTable emp_sorts_{writer_,
                       "EmpSortItem (EmpSortItemSysId, EmpInfoRptId, EmpSortItemOrder, EmpSortSysTableId, "
                       "EmpSortSysAttributeId)"};
  DemoTable sheets_{writer_,
                    "ExcelWkSheet (WkSheetSysId, ExcelSpreadsheetId, WkSheetOrder, WkSheetName, "
                    "WkSheetRptSumLvl, WkSheetRptBasis1, WkSheetRptBasis2, WkSheetTitleColourSchemeId, "
                    "WkSheetHasRptHeader, WkSheetHasRptFooter, WkSheetHeadColourSchemeId, "
                    "WkSheetFootColourSchemeId, WkSheetRptHeader, WkSheetRptFooter)"};
  DemoTable items_{writer_,
                   "ExcelWkSheetItem (WkSheetItemSysId, WkSheetSysId, WkSheetItemOrdering, "
                   "WkSheetItemRptType, WkSheetItemRptId)"};
  DemoTable options_{writer_,
                     "ExcelWSItemRptOpts (WkSheetItemSysId, WSItemFromYear, WSItemFromMthPeriod, "
                     "WSItemFromSubPeriod, WSItemToYear, WSItemToMthPeriod, WSItemToSubPeriod)"};
  DemoTable layout_{writer_,
                    "ExcelWSItemRptLayout (WkSheetItemSysId, WSRptLayoutOrder, WSRptLayoutYear, "
                    "WSRptLayoutMthPeriod, WSRptLayoutSubPeriod, WSRptLayoutPayRecIdType)"};
};

}  // namespace

DemoItem Field(std::string_view table, std::string_view field, std::string_view title,
               std::string_view scheme) {
  return {"SummLvlItem", "", table, field, title, scheme};
}

DemoItem MainField(std::string_view table, std::string_view field, std::string_view title,
                   std::string_view scheme) {
  DemoItem item = Field(table, field, title, scheme);
  item.main_info = true;
  return item;
}

DemoItem Amount(std::string_view grouping, std::string_view item, std::string_view component,
                std::string_view title, std::string_view scheme) {
  return {"AnlysItem", item, grouping, component, title, scheme};
}

DemoItem Total(std::string_view grouping, std::string_view component, std::string_view title,
               std::string_view scheme) {
  return {"AnlysItem", component, grouping, component, title, scheme};
}

DemoItem EveryItem(std::string_view grouping, std::string_view component, std::string_view scheme) {
  return {"AnlysItem", "<ALL>", grouping, component, "", scheme};
}

DemoItem Formula(std::string_view formula, std::string_view title, std::string_view scheme) {
  return {"CalculatedItem", "", "", "", title, scheme, formula};
}

DemoItem Blank(std::string_view title) {
  return {"BlankItem", "", "", "", title, "Note"};
}

DemoItem Accumulated(DemoItem item, std::vector<DemoLayoutPeriod> ranges, bool range_in_title) {
  item.ranges = std::move(ranges);
  item.range_in_title = range_in_title;
  return item;
}

void WriteDemoDefinitions(SqliteWriter& writer) {
  DefinitionWriter definitions(writer);
  definitions.WriteSchemes();
  definitions.WriteSpreadsheets();
  for (const DemoFamily& family :
       {DemoBreakdowns(), DemoAccumulations(), DemoMatrices(), DemoMovements(), DemoLeaves(), DemoStaff()}) {
    definitions.WriteFamily(family);
  }
}

}  // namespace excelexp
