#pragma once

#include "engine/BExcelExpEngCore.h"
#include "platform/analysis/AnlysProjectStructure.h"

namespace excelexp {

/// Prepares one financial worksheet item: has the host's analysis engine generate the item's analysis records
/// under its data key, and finds out whether there are any to print. The first report of a worksheet with
/// data confines the later ones to its entities. Used once.
class BExcelExpEngFinRptInfo {
 public:
  /// Prepares the item that the context holds.
  explicit BExcelExpEngFinRptInfo(BExcelExpEngCore* core);

  /// 1 there are records to print, 0 there are none, -1 after a failure, which is in the internal log.
  int ExecuteOperation();
  /// Runs the analysis project that the request holds.
  bool ExecuteProcAnalysProject();
  /// Looks for records; the results are those of ExecuteOperation.
  int CheckFinancialRptData();

  void SetFirstWkSheetItem(bool first) { core_->SetFirstWkSheetItem(first); }
  void SetFirstWSItemAnalysProj(const std::string& project) { core_->SetFirstWSItemAnalysProj(project); }
  void SetFirstWSItemHasGrandTot(int has) { core_->SetFirstWSItemHasGrandTot(has); }
  void SetFirstWSItemHasTotEmpCt(int has) { core_->SetFirstWSItemHasTotEmpCt(has); }
  void SetFirstWkSheetItemSQL(const std::string& sql) { core_->SetFirstWkSheetItemSQL(sql); }

 private:
  bool ReadDefinitions();
  void FillRequest();
  bool FillAsOfDate();
  bool JudgeResult(int result);
  void SetRestriction(const std::string& project, const std::string& key);

  BExcelExpEngCore* core_;
  AnlysProjectStructure request_;
  Query FinancialRptDetailsQry;
  Query AnalyProjDetailsQry;
  Query AnalyProjProcessQry;
};

}  // namespace excelexp
