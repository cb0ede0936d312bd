#pragma once

#include "engine/BExcelExpEngCore.h"
#include "services/Population.h"

namespace excelexp {

/// Prepares one employee information item: finds out whether the report selects anybody, and whether those
/// are employees or persons. The first report of a worksheet with data confines the later ones to its people.
/// Used once.
class BExcelExpEngEmpRptInfo {
 public:
  /// Prepares the item that the context holds.
  explicit BExcelExpEngEmpRptInfo(BExcelExpEngCore* core);

  /// 1 the report selects employees, 2 it selects persons, 0 it selects nobody, -1 after a failure. A failing
  /// definition is in the internal log; a failing selection has no entry here.
  int ExecuteOperation();
  /// Runs the selection; the results are those of ExecuteOperation.
  int CheckEmployeeRptData();

  void SetFirstWkSheetItem(bool first) { core_->SetFirstWkSheetItem(first); }
  void SetFirstWkSheetItemSQL(const std::string& sql) { core_->SetFirstWkSheetItemSQL(sql); }
  void SetFirstWSItemEmpRptType(const std::string& type) { core_->SetFirstWSItemEmpRptType(type); }
  void SetFirstWSItemEmpHasFilter(int has_filter) { core_->SetFirstWSItemEmpHasFilter(has_filter); }
  void SetFirstWSItemEmpFilter(const std::string& filter) { core_->SetFirstWSItemEmpFilter(filter); }
  void SetFirstWSItemHasGrandTot(int has) { core_->SetFirstWSItemHasGrandTot(has); }
  void SetFirstWSItemHasTotEmpCt(int has) { core_->SetFirstWSItemHasTotEmpCt(has); }

 private:
  /// The report type's table pieces with so many blanks between them.
  std::string Tables(std::size_t blanks) const;
  void BecomeFirst(const std::string& restriction);

  BExcelExpEngCore* core_;
  Query EmployeeRptDetailQry;
  Query ExcelEmpRptDetailQry;
};

}  // namespace excelexp
