#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "layouts/ReportLayout.h"
#include "services/AllItems.h"
#include "services/AnalysisRecordLookup.h"
#include "services/BExcelExpEngDecodeFormula.h"
#include "services/CellPrinter.h"

namespace excelexp {

/// Which basis ids of the entity confine a layout's analysis records.
enum class EntityRecords {
  kByLevel,          ///< company: none; employee: the first; any other level: all three
  kAllBelowCompany,  ///< company: none; any other level: all three
  kAlwaysAll
};

/// What the financial layouts do differently before they print.
struct FinancialTraits {
  std::string_view class_name;  ///< as the messages name it
  EntityRecords records = EntityRecords::kByLevel;
  std::string_view records_operation = "ExecuteOperation";  ///< named when the records cannot be read
  LookupTraits lookup = {};
};

bool IsWholeNumber(const ValueColumn& value);
bool IsAmount(const ValueColumn& value);

/// What all financial layouts share: the report, its project, the entity's analysis records, and the steps of
/// printing one value. Every step that fails writes its message and returns false.
class FinancialLayout : public ReportLayout {
 public:
  /// `core` and `traits` outlive the layout.
  FinancialLayout(BExcelExpEngCore* core, const FinancialTraits& traits);

  void SetLastPrintedCol(int column) { core_->SetLastPrintedCol(column); }
  void SetLastPrintedRow(int row) { core_->SetLastPrintedRow(row); }
  void SetStartPrintedCol(int column) { core_->SetStartPrintedCol(column); }

 protected:
  /// "Class::Operation".
  OperationName Where(std::string_view operation) const { return {traits_.class_name, operation}; }
  /// Writes `where` + " Error: " + `text` between empty lines and returns false.
  bool Fail(const OperationName& where, std::string_view text);

  bool ReadReport();   ///< fills project_id_
  bool ReadProject();  ///< fills project_
  /// Reads how the project's periods are called, for headings, into project_.
  bool ReadCycle(const OperationName& where);
  bool OpenRecords();
  /// The conditions on the entity's basis ids, with leading blanks.
  std::string EntityCondition() const;
  /// "WHERE AnlysProjectId = ... AND AnlysIPAddress = ..." of the item being printed.
  std::string DataCondition() const;
  /// Opens ExcelRptLayoutQry: by the item's choice of periods, or by what the data holds. No rows is no
  /// failure here.
  bool OpenPeriods(const std::string& select);
  bool HasPeriods() const { return ExcelRptLayoutQry.RowCount() > 0; }
  bool FailNoPeriods();
  /// The chosen periods and their derivation from the data, as column groups.
  std::string ChosenPeriodsSql() const;
  std::string DataPeriodsSql() const;

  /// The report's column items that are not main information; `condition` (" AND ...") narrows them further.
  std::string ColumnItemsSql(std::string_view condition = "") const;
  /// "Warning: Column Items are not set for R." (`kind` is "Column" or "Row"); returns true, the result of
  /// such a report.
  bool WarnItemsNotSet(std::string_view kind);

  /// The items of a report that the query lists, whose columns are named "FinCol..." or "FinRow...".
  std::shared_ptr<std::vector<KnownColumnItem>> ItemsOf(Query& rows, std::string_view prefix);
  /// Where the item's values stand; nullptr after a failure. Valid as long as the item.
  const ValueColumn* ValueColumnOf(KnownColumnItem& item, const OperationName& where,
                                   std::string_view map_column = "AnlysMapField");
  /// Reads where the values of a (grouping, component) stand; `map_column` of AnItemLookup names the record's
  /// column.
  bool ReadValueColumn(const std::string& grouping, const std::string& component, const OperationName& where,
                       ValueColumn& value, std::string_view map_column = "AnlysMapField");
  /// Lists the items of an "<ALL>" item in AllFormulaQry.
  bool OpenAllItems(const std::string& grouping, const OperationName& where);
  /// The warning for an "<ALL>" item without items; `prefix` is "Warning " or "Warning Acc".
  void WarnNoItems(const std::string& grouping, std::string_view prefix = "Warning ");

  /// Prints a summary level item: a field of the current entity's record.
  void PrintEntityField(const std::string& grouping, const std::string& component, int row, int column);
  /// Prints the found record's value, or a blank of its type.
  void PrintValue(bool found, const ValueColumn& value, int row, int column);
  /// The same for a bank payment column: categories without their last two characters.
  void PrintBankValue(bool found, const ValueColumn& value, int row, int column);

  /// True on the first entity of the list, whose block carries the headings.
  bool AtFirstEntity() const { return core_->EmpCoyBasisQry->Bof(); }
  /// A row of column groups as the key of its records.
  static PeriodKey PeriodOf(const Query& periods);
  void RaiseLastPrintedRow(int row) {
    if (row > core_->LastPrintedRow) core_->SetLastPrintedRow(row);
  }
  /// A column item's (or row item's) text.
  static std::string Text(const Query& query, std::string_view field) {
    return query.FieldByName(field).AsString();
  }

  BExcelExpEngCore* core_;
  const FinancialTraits& traits_;
  ValueStyle value_style_;

  Query AnlysItemRecQry;
  Query ExcelRptLayoutQry;
  Query FinanceColItemQry;
  Query ColourSchemeQry;
  Query AllFormulaQry;

  CellPrinter cells_;
  BExcelExpEngDecodeFormula formulas_;
  AnalysisRecordLookup lookup_;

  std::string project_id_;
  KnownProject project_;
  int current_row_ = 1;
  int current_col_ = 1;
  std::string current_cell_;
};

}  // namespace excelexp
